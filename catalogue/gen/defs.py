"""Readers for numbers.def (fixed numbers and ranges) and ws.def (web-service tables)."""
import re
import shlex
from dataclasses import dataclass, field
from typing import Dict, List, Optional, Tuple

from . import asn
from .errors import SourceError

_DATATYPE = re.compile(r"^(datatype|assigned)\s+(\d+)\s+(\S.*?)\s*$")
_CONSTRUCT = re.compile(r"^construct\s+(\d+)\s+(\S+)\s*$")
_RANGE = re.compile(r"^range\s+(\S+)\s+(\d+)\s+(\d+)\s*$")
_RESERVED = re.compile(r"^reserved\s+(\d+)\s*$")
_CLASS = re.compile(r"^class\s+([A-Z])\s+(\d+)\s*$")
_DEFAULT = re.compile(r"^default\s+(\S+)\s+(-?\d+)\s*$")


@dataclass
class Numbers:
    path: str
    # name -> (number, line); "datatype" lines are relied on by the library and must match a type
    fixed: Dict[str, Tuple[int, int]] = field(default_factory=dict)
    # name -> (number, line); "assigned" lines only keep numbers stable and may go stale
    assigned: Dict[str, Tuple[int, int]] = field(default_factory=dict)
    constructs: Dict[str, Tuple[int, int]] = field(default_factory=dict)
    ranges: Dict[str, Tuple[int, int]] = field(default_factory=dict)
    reserved: List[int] = field(default_factory=list)
    classes: Dict[str, int] = field(default_factory=dict)
    defaults: Dict[str, int] = field(default_factory=dict)
    productions: List[asn.Production] = field(default_factory=list)


def parse_numbers(text, path):
    numbers = Numbers(path)
    used_numbers = {}
    asn_lines = []
    for line_no, raw in enumerate(text.split("\n"), start=1):
        line = raw.split("--", 1)[0].strip()
        m = _DATATYPE.match(line)
        if m:
            kind, number, name = m.group(1), int(m.group(2)), m.group(3)
            if number in used_numbers:
                raise SourceError(path, line_no, f"data type number {number} is already given to "
                                                 f"{used_numbers[number]}")
            target = numbers.fixed if kind == "datatype" else numbers.assigned
            if name in numbers.fixed or name in numbers.assigned:
                raise SourceError(path, line_no, f"data type {name} is numbered twice")
            used_numbers[number] = name
            target[name] = (number, line_no)
            asn_lines.append("")
            continue
        handled = True
        if _CONSTRUCT.match(line):
            m = _CONSTRUCT.match(line)
            numbers.constructs[m.group(2)] = (int(m.group(1)), line_no)
        elif _RANGE.match(line):
            m = _RANGE.match(line)
            low, high = int(m.group(2)), int(m.group(3))
            if low > high:
                raise SourceError(path, line_no, f"range {m.group(1)} is empty")
            numbers.ranges[m.group(1)] = (low, high)
        elif _RESERVED.match(line):
            numbers.reserved.append(int(_RESERVED.match(line).group(1)))
        elif _CLASS.match(line):
            m = _CLASS.match(line)
            numbers.classes[m.group(1)] = int(m.group(2))
        elif _DEFAULT.match(line):
            m = _DEFAULT.match(line)
            numbers.defaults[m.group(1)] = int(m.group(2))
        else:
            handled = False
        # Everything that is not a directive is a production of the gateway's own types.
        asn_lines.append("" if handled else raw)
    numbers.productions = asn.parse("\n".join(asn_lines), path)
    for needed in ("constructed", "enumerated", "proprietary"):
        if needed not in numbers.ranges:
            raise SourceError(path, 1, f"missing 'range {needed} <low> <high>'")
    for code in ("R", "W", "O"):
        if code not in numbers.classes:
            raise SourceError(path, 1, f"missing 'class {code} <number>'")
    return numbers


@dataclass
class WsError:
    code: int
    name: str
    http_status: int
    text: str
    line: int


@dataclass
class WsDefs:
    path: str
    errors: List[WsError] = field(default_factory=list)
    categories: List[Tuple[int, str, int]] = field(default_factory=list)  # number, name, line
    metadata: List[Tuple[int, str, List[str], int]] = field(default_factory=list)
    markups: List[Tuple[int, str, int]] = field(default_factory=list)
    category_type: Optional[str] = None
    metadata_type: Optional[str] = None


def parse_ws(text, path):
    ws = WsDefs(path)
    for line_no, raw in enumerate(text.split("\n"), start=1):
        stripped = raw.strip()
        if not stripped or stripped.startswith("--"):
            continue
        try:
            words = shlex.split(stripped, comments=False)
        except ValueError as exc:
            raise SourceError(path, line_no, f"bad quoting: {exc}")
        if "--" in words:
            words = words[: words.index("--")]
        keyword = words[0]

        def number(text_value):
            if not re.fullmatch(r"\d+", text_value):
                raise SourceError(path, line_no, f"expected a number but found '{text_value}'")
            return int(text_value)

        if keyword == "error":
            if len(words) != 5:
                raise SourceError(path, line_no, "expected 'error <code> <NAME> <http-status> \"text\"'")
            ws.errors.append(WsError(number(words[1]), words[2], number(words[3]), words[4], line_no))
        elif keyword == "category":
            if len(words) != 3:
                raise SourceError(path, line_no, "expected 'category <number> <name>'")
            ws.categories.append((number(words[1]), words[2], line_no))
        elif keyword == "metadata":
            if len(words) < 3:
                raise SourceError(path, line_no, "expected 'metadata <number> <name> <category>...'")
            ws.metadata.append((number(words[1]), words[2], words[3:], line_no))
        elif keyword == "markup":
            if len(words) != 3:
                raise SourceError(path, line_no, "expected 'markup <number> <Name>'")
            ws.markups.append((number(words[1]), words[2], line_no))
        elif keyword == "category-type" and len(words) == 2:
            ws.category_type = words[1]
        elif keyword == "metadata-type" and len(words) == 2:
            ws.metadata_type = words[1]
        else:
            raise SourceError(path, line_no, f"unknown line '{stripped[:40]}'")
    if ws.category_type is None or ws.metadata_type is None:
        raise SourceError(path, 1, "ws.def needs 'category-type <Name>' and 'metadata-type <Name>'")
    return ws
