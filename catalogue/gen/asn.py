"""Reader for the catalogue's productions, written in the standard's ASN.1 notation.

Only the subset described in catalogue/source/FORMAT.md is understood; anything else is
reported with its file and line rather than guessed at, because a misread production would
silently mis-decode values on the wire.
"""
import re
from dataclasses import dataclass, field
from typing import List, Optional

from .errors import SourceError

# Application tags of the primitive type names as the standard writes them.
PRIMITIVE_TAGS = {
    "NULL": 0,
    "BOOLEAN": 1,
    "Unsigned": 2,
    "INTEGER": 3,
    "REAL": 4,
    "Double": 5,
    "OCTET STRING": 6,
    "CharacterString": 7,
    "BIT STRING": 8,
    "ENUMERATED": 9,
    "Date": 10,
    "Time": 11,
    "BACnetObjectIdentifier": 12,
}
ANY_NAME = "ABSTRACT-SYNTAX.&Type"

_TOKEN = re.compile(
    r"\s*(?:(?P<assign>::=)|(?P<ellipsis>\.\.\.)|(?P<range>\.\.)"
    r"|(?P<number>-?\d+(?:\.\d+)?(?:[eE]-?\d+)?)"
    r"|(?P<name>[A-Za-z][A-Za-z0-9\-]*(?:\.&[A-Za-z][A-Za-z0-9\-]*)?)"
    r"|(?P<punct>[{}()\[\],|]))"
)


@dataclass
class Token:
    kind: str
    text: str
    line: int


def tokenize(text, path, first_line=1):
    tokens = []
    for offset, raw in enumerate(text.split("\n")):
        line_no = first_line + offset
        line = raw.split("--", 1)[0]
        pos = 0
        while pos < len(line):
            if line[pos:].strip() == "":
                break
            m = _TOKEN.match(line, pos)
            if not m or m.end() == pos:
                bad = line[pos:].strip()[:20]
                raise SourceError(path, line_no, f"unexpected text '{bad}'")
            kind = m.lastgroup
            tokens.append(Token(kind, m.group(kind), line_no))
            pos = m.end()
    return tokens


# ---- syntax tree -----------------------------------------------------------------------


@dataclass
class TypeNode:
    line: int


@dataclass
class Ref(TypeNode):
    name: str  # a primitive name, ANY_NAME or a production name


@dataclass
class Member:
    name: str
    context: Optional[int]
    type: TypeNode
    optional: bool
    line: int


@dataclass
class Constructed(TypeNode):
    kind: str  # "SEQUENCE" or "CHOICE"
    members: List[Member] = field(default_factory=list)


@dataclass
class ListOf(TypeNode):
    kind: str  # "SEQUENCE OF", "BACnetARRAY" or "BACnetLIST"
    element: TypeNode = None
    size: Optional[str] = None


@dataclass
class Named(TypeNode):
    kind: str  # "ENUMERATED" or "BIT STRING"
    items: List[tuple] = field(default_factory=list)  # (name, number, line)


@dataclass
class Production:
    name: str
    type: TypeNode
    path: str
    line: int


class _Parser:
    def __init__(self, tokens, path):
        self.tokens = tokens
        self.pos = 0
        self.path = path

    def peek(self, ahead=0):
        i = self.pos + ahead
        return self.tokens[i] if i < len(self.tokens) else None

    def line(self):
        tok = self.peek()
        if tok is not None:
            return tok.line
        return self.tokens[-1].line if self.tokens else 1

    def fail(self, message, tok=None):
        line = tok.line if tok is not None else self.line()
        raise SourceError(self.path, line, message)

    def next(self, what="more text"):
        tok = self.peek()
        if tok is None:
            self.fail(f"unexpected end of file, expected {what}")
        self.pos += 1
        return tok

    def expect(self, text):
        tok = self.next(f"'{text}'")
        if tok.text != text:
            self.fail(f"expected '{text}' but found '{tok.text}'", tok)
        return tok

    def accept(self, text):
        tok = self.peek()
        if tok is not None and tok.text == text:
            self.pos += 1
            return True
        return False

    def productions(self):
        result = []
        while self.peek() is not None:
            name_tok = self.next()
            if name_tok.kind != "name":
                self.fail(f"expected a production name but found '{name_tok.text}'", name_tok)
            self.expect("::=")
            result.append(Production(name_tok.text, self.type(), self.path, name_tok.line))
        return result

    def skip_parens(self):
        """Ranges and sizes document the value space only; they are read and dropped."""
        open_tok = self.expect("(")
        depth = 1
        while depth:
            tok = self.peek()
            if tok is None:
                self.fail("unclosed '('", open_tok)
            self.pos += 1
            if tok.text == "(":
                depth += 1
            elif tok.text == ")":
                depth -= 1

    def constraints(self):
        while self.peek() is not None and self.peek().text == "(":
            self.skip_parens()

    def type(self):
        tok = self.next("a type")
        line = tok.line
        text = tok.text
        if tok.kind != "name":
            self.fail(f"expected a type but found '{text}'", tok)
        if text == "SEQUENCE":
            nxt = self.peek()
            if nxt is not None and nxt.text == "{":
                return Constructed(line, "SEQUENCE", self.members())
            if self.accept("SIZE"):
                self.skip_parens()
            elif nxt is not None and nxt.text == "(":
                self.skip_parens()
            self.expect("OF")
            return ListOf(line, "SEQUENCE OF", self.type())
        if text == "CHOICE":
            return Constructed(line, "CHOICE", self.members())
        if text == "BACnetARRAY":
            self.expect("[")
            size = self.next("an array size").text
            self.expect("]")
            self.expect("OF")
            return ListOf(line, "BACnetARRAY", self.type(), size)
        if text == "BACnetLIST":
            self.constraints()
            self.expect("OF")
            return ListOf(line, "BACnetLIST", self.type())
        if text in ("BIT", "OCTET"):
            self.expect("STRING")
            text = text + " STRING"
        if text in ("ENUMERATED", "BIT STRING") and self.peek() is not None and self.peek().text == "{":
            node = Named(line, text, self.items())
            self.constraints()
            return node
        self.constraints()
        return Ref(line, text)

    def items(self):
        self.expect("{")
        items = []
        while True:
            if self.accept("..."):
                pass
            else:
                name = self.next("a value name")
                if name.kind != "name":
                    self.fail(f"expected a value name but found '{name.text}'", name)
                self.expect("(")
                number = self.next("a number")
                if number.kind != "number" or not re.fullmatch(r"-?\d+", number.text):
                    self.fail(f"expected a number for '{name.text}' but found '{number.text}'", number)
                self.expect(")")
                items.append((name.text, int(number.text), name.line))
            if self.accept(","):
                continue
            self.expect("}")
            return items

    def members(self):
        self.expect("{")
        members = []
        if self.accept("}"):
            return members
        while True:
            if not self.accept("..."):
                members.append(self.member())
            if self.accept(","):
                continue
            self.expect("}")
            return members

    def member(self):
        name = self.next("a member name")
        if name.kind != "name":
            self.fail(f"expected a member name but found '{name.text}'", name)
        context = None
        if self.accept("["):
            number = self.next("a context tag number")
            if number.kind != "number" or not number.text.isdigit():
                self.fail(f"expected a context tag number but found '{number.text}'", number)
            context = int(number.text)
            self.expect("]")
        member_type = self.type()
        optional = False
        if self.accept("OPTIONAL"):
            optional = True
        elif self.accept("DEFAULT"):
            optional = True
            self.skip_default()
        return Member(name.text, context, member_type, optional, name.line)

    def skip_default(self):
        depth = 0
        while True:
            tok = self.peek()
            if tok is None:
                self.fail("unexpected end of file in DEFAULT value")
            if depth == 0 and tok.text in (",", "}"):
                return
            if tok.text in ("{", "("):
                depth += 1
            elif tok.text in ("}", ")"):
                depth -= 1
            self.pos += 1


def parse(text, path, first_line=1):
    """All productions of one text, in the order written."""
    tokens = tokenize(text, path, first_line)
    return _Parser(tokens, path).productions()


def parse_type(text, path, line):
    """One type written on its own, as objects.def writes a property's type."""
    tokens = tokenize(text, path, line)
    parser = _Parser(tokens, path)
    node = parser.type()
    if parser.peek() is not None:
        parser.fail(f"unexpected '{parser.peek().text}' after the type")
    return node
