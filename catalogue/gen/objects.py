"""Reader for objects.def: one block per object type, one property per line."""
import re
from dataclasses import dataclass, field
from typing import List, Optional

from . import asn
from .errors import SourceError

CONFORMANCE_CODES = ("R", "W", "O")


@dataclass
class PropertyLine:
    name: str
    conformance: str
    type: asn.TypeNode
    type_text: str
    empty: bool
    internal: Optional[int]
    default: Optional[str]
    line: int


@dataclass
class ObjectBlock:
    name: str
    line: int
    properties: List[PropertyLine] = field(default_factory=list)


_FLAG = re.compile(r"^(empty|internal=-?\d+|default=\S+)$")


def _split_flags(words):
    """Trailing flags are recognised from the end so a type may contain blanks."""
    flags = []
    while words and _FLAG.match(words[-1]):
        flags.insert(0, words.pop())
    return words, flags


def parse(text, path):
    objects = []
    current = None
    for line_no, raw in enumerate(text.split("\n"), start=1):
        line = raw.split("--", 1)[0].strip()
        if not line:
            continue
        words = line.split()
        if words[0] == "OBJECT":
            if current is not None:
                raise SourceError(path, line_no, f"OBJECT {current.name} is not closed by END")
            if len(words) != 2:
                raise SourceError(path, line_no, "expected 'OBJECT <object-type-name>'")
            current = ObjectBlock(words[1], line_no)
            continue
        if words[0] == "END":
            if current is None or len(words) != 1:
                raise SourceError(path, line_no, "END without OBJECT")
            objects.append(current)
            current = None
            continue
        if current is None:
            raise SourceError(path, line_no, f"property line outside an OBJECT block: '{line}'")
        if len(words) < 3:
            raise SourceError(path, line_no, "expected '<property> <R|W|O> <type> [flags]'")
        name, code = words[0], words[1]
        if code not in CONFORMANCE_CODES:
            raise SourceError(path, line_no, f"unknown conformance code '{code}' (R, W or O)")
        type_words, flags = _split_flags(words[2:])
        if not type_words:
            raise SourceError(path, line_no, f"property '{name}' has no type")
        type_text = " ".join(type_words)
        node = asn.parse_type(type_text, path, line_no)
        if isinstance(node, asn.Constructed) or isinstance(node, asn.Named):
            raise SourceError(path, line_no, f"property '{name}': inline {node.kind} is not allowed here; "
                                             "name the type in types.asn")
        empty = False
        internal = None
        default = None
        for flag in flags:
            if flag == "empty":
                empty = True
            elif flag.startswith("internal="):
                internal = int(flag.split("=", 1)[1])
            else:
                default = flag.split("=", 1)[1]
        current.properties.append(PropertyLine(name, code, node, type_text, empty, internal, default, line_no))
    if current is not None:
        raise SourceError(path, current.line, f"OBJECT {current.name} is not closed by END")
    return objects
