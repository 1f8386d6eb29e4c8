"""Turns the parsed sources into the rows of the catalogue tables.

Every number the library relies on comes from numbers.def; everything else is numbered here,
deterministically, so that generating twice from the same sources gives the same bytes.
"""
from dataclasses import dataclass, field
from typing import Dict, List, Optional

from . import asn
from .errors import SourceError

# Markup kinds (bn_markup_type) that the catalogue rows use.
MARKUP_BIT_STRING = 8
MARKUP_ENUMERATED = 9
MARKUP_SEQUENCE = 22
MARKUP_SEQUENCE_OF = 24
MARKUP_CHOICE = 25

STRUCTURE_SINGLE = 0
STRUCTURE_ARRAY = 1
STRUCTURE_LIST = 2

ANY_NUMBER = 1000
RESERVED_TAGS = (13, 14, 15)


def camel(member_name):
    return "".join(part[:1].upper() + part[1:] for part in member_name.split("-") if part)


# Standard property identifiers live in two ranges: below 512 and from 4194304 on (the numbers
# between are the vendors'). Folding
# the second range onto bit 21 keeps a row's key a stable, positive 32-bit number that is
# unique per object type and property, so stored rows keep pointing at the same entry when
# the catalogue is regenerated.
SECOND_PROPERTY_RANGE = 4194304


def properties_in_object_key(object_number, property_number):
    low = property_number
    if property_number >= SECOND_PROPERTY_RANGE:
        low = (property_number - SECOND_PROPERTY_RANGE) | 0x200000
    if low >= 0x200000 and property_number < SECOND_PROPERTY_RANGE or low > 0x3FFFFF:
        raise ValueError(f"property {property_number} has no catalogue key")
    return (object_number << 22) | low


@dataclass
class MemberRow:
    name: Optional[str]
    context: Optional[int]
    internal: Optional[str]  # data type name, None for the head of an inline group
    markup: Optional[int]  # fixed markup for inline groups and inline lists
    optional: bool
    parent: int  # index into TypeDef.members, -1 for the type's own top row
    line: int
    path: str
    list_of: bool = False  # member is an inline list of `internal`


@dataclass
class TypeDef:
    name: str
    kind: str  # prim, any, reserved, enum, bits, seq, choice, list
    path: str
    line: int
    tag: Optional[int] = None  # application tag of a primitive or derived primitive
    list_kind: Optional[str] = None
    items: List[tuple] = field(default_factory=list)
    members: List[MemberRow] = field(default_factory=list)
    number: Optional[int] = None
    synthesized: bool = False


class Catalogue:
    """All data types with their numbers, members and names; filled by build()."""

    def __init__(self):
        self.types: Dict[str, TypeDef] = {}
        self.by_number: Dict[int, TypeDef] = {}

    def add(self, typedef):
        existing = self.types.get(typedef.name)
        if existing is not None:
            raise SourceError(typedef.path, typedef.line,
                              f"type {typedef.name} is already defined at {existing.path}:{existing.line}")
        self.types[typedef.name] = typedef
        return typedef


class Builder:
    def __init__(self, productions, numbers, ws):
        self.productions = {}
        for prod in productions:
            first = self.productions.get(prod.name)
            if first is not None:
                raise SourceError(prod.path, prod.line,
                                  f"type {prod.name} is already defined at {first.path}:{first.line}")
            if prod.name in asn.PRIMITIVE_TAGS or prod.name == asn.ANY_NAME:
                raise SourceError(prod.path, prod.line, f"{prod.name} is a primitive type and cannot be redefined")
            self.productions[prod.name] = prod
        self.numbers = numbers
        self.ws = ws
        self.cat = Catalogue()
        self.stale = []  # names numbers.def assigns a number to that no source defines
        self.auto_numbered = []  # types numbered from their range in this run
        self.tables = {}  # table name -> rows, filled by generate.py
        self.object_count = 0

    # ---- type definitions ---------------------------------------------------------------

    def resolve_alias(self, prod):
        """A production that only names another production takes over that one's shape."""
        seen = [prod.name]
        node = prod.type
        while isinstance(node, asn.Ref) and node.name in self.productions:
            if node.name in seen:
                raise SourceError(prod.path, prod.line, "circular alias " + " -> ".join(seen + [node.name]))
            seen.append(node.name)
            node = self.productions[node.name].type
        return node

    def define(self, name, node, path, line, synthesized=False):
        if isinstance(node, asn.Ref):
            if node.name in asn.PRIMITIVE_TAGS:
                td = TypeDef(name, "prim", path, line, tag=asn.PRIMITIVE_TAGS[node.name])
            elif node.name == asn.ANY_NAME:
                td = TypeDef(name, "any", path, line)
            else:
                raise SourceError(path, node.line, f"unknown type name '{node.name}'")
        elif isinstance(node, asn.Named):
            kind = "enum" if node.kind == "ENUMERATED" else "bits"
            td = TypeDef(name, kind, path, line, tag=MARKUP_ENUMERATED if kind == "enum" else MARKUP_BIT_STRING)
            self.check_items(name, node.items, path)
            td.items = sorted(node.items, key=lambda item: item[1])
        elif isinstance(node, asn.Constructed):
            td = TypeDef(name, "seq" if node.kind == "SEQUENCE" else "choice", path, line)
            self.add_members(td, node.members, -1, 1, name)
        elif isinstance(node, asn.ListOf):
            td = TypeDef(name, "list", path, line, list_kind=node.kind)
            element = self.element_type(node.element, name, path)
            td.members.append(MemberRow(None, None, element, None, False, -1, node.line, path))
        else:
            raise SourceError(path, line, f"unsupported type for {name}")
        td.synthesized = synthesized
        return self.cat.add(td)

    def check_items(self, owner, items, path):
        names, values = {}, {}
        for item_name, value, line in items:
            if item_name in names:
                raise SourceError(path, line, f"{owner}: name '{item_name}' is used twice "
                                              f"(first at line {names[item_name]})")
            if value in values:
                raise SourceError(path, line, f"{owner}: value {value} is used twice "
                                              f"(by '{values[value]}' and '{item_name}')")
            if value < 0:
                raise SourceError(path, line, f"{owner}: negative value {value} for '{item_name}'")
            names[item_name] = line
            values[value] = item_name

    def element_type(self, node, owner, path):
        """Name of the element type of a list; an inline element becomes a type of its own."""
        if isinstance(node, asn.Ref):
            return node.name
        return self.synthesize(owner + "Element", node, path)

    def synthesize(self, name, node, path):
        if name in self.productions or name in self.cat.types:
            raise SourceError(path, node.line, f"the derived type name {name} is already taken; "
                                               "rename the member or the production")
        return self.define(name, node, path, node.line, synthesized=True).name

    def raw_list(self, node, path):
        """Lists of bare primitives need a named list type: a member row can only name one type."""
        kind = node.kind[: -len(" OF")] if node.kind.endswith(" OF") else node.kind
        name = f"{kind} OF {node.element.name}"
        if name not in self.cat.types:
            td = TypeDef(name, "list", path, node.line, list_kind=node.kind, synthesized=True)
            td.members.append(MemberRow(None, None, node.element.name, None, False, -1, node.line, path))
            self.cat.add(td)
        return name

    def add_members(self, td, members, parent, depth, prefix, contexts=None):
        # Untagged inline groups share the context tags of the type they sit in.
        contexts = {} if contexts is None else contexts
        names = {}
        for member in members:
            if member.name in names:
                raise SourceError(td.path, member.line, f"{td.name}: member '{member.name}' is used twice")
            names[member.name] = member.line
            if member.context is not None:
                if member.context in contexts:
                    raise SourceError(td.path, member.line,
                                      f"{td.name}: context tag [{member.context}] is used by "
                                      f"'{contexts[member.context]}' and '{member.name}'")
                contexts[member.context] = member.name
            node = member.type
            derived = prefix + camel(member.name)
            row = MemberRow(member.name, member.context, None, None, member.optional, parent, member.line, td.path)
            if isinstance(node, asn.Ref):
                row.internal = node.name
            elif isinstance(node, asn.Named):
                row.internal = self.synthesize(derived, node, td.path)
            elif isinstance(node, asn.Constructed):
                if depth == 1 and member.context is None:
                    # An untagged inline SEQUENCE/CHOICE shares its enclosing type's tag space, so
                    # it stays as nested rows: the renderer gathers the rows that follow a head
                    # row without a type into one group. A tagged one is enclosed in its own
                    # opening and closing tags and becomes a type of its own, so the decoder's
                    # lookup by context tag never mistakes one of its members for a sibling.
                    row.markup = MARKUP_SEQUENCE if node.kind == "SEQUENCE" else MARKUP_CHOICE
                    td.members.append(row)
                    self.add_members(td, node.members, len(td.members) - 1, depth + 1, derived, contexts)
                    continue
                row.internal = self.synthesize(derived, node, td.path)
            elif isinstance(node, asn.ListOf):
                element = node.element
                if isinstance(element, asn.Ref) and element.name in asn.PRIMITIVE_TAGS:
                    row.internal = self.raw_list(node, td.path)
                elif isinstance(element, asn.Ref):
                    row.internal = element.name
                    row.list_of = True
                else:
                    row.internal = self.synthesize(derived + "Element", element, td.path)
                    row.list_of = True
            td.members.append(row)

    def build_types(self):
        for tag, name in sorted((tag, name) for name, tag in asn.PRIMITIVE_TAGS.items()):
            td = self.cat.add(TypeDef(name, "prim", "<builtin>", 0, tag=tag))
            td.number = tag
        for tag in RESERVED_TAGS:
            td = self.cat.add(TypeDef(f"ReservedTag{tag}", "reserved", "<builtin>", 0))
            td.number = tag
        any_type = self.cat.add(TypeDef(asn.ANY_NAME, "any", "<builtin>", 0))
        any_type.number = ANY_NUMBER
        for name in sorted(self.productions):
            prod = self.productions[name]
            self.define(name, self.resolve_alias(prod), prod.path, prod.line)
        self.check_references()
        self.check_finite()

    def check_finite(self):
        """Every type needs a value of finite size: a type that can only contain itself (directly
        or through others) would send every walker of the catalogue round in circles."""
        finite = {name for name, td in self.cat.types.items() if td.kind not in ("seq", "choice")}

        def member_ok(td, index):
            row = td.members[index]
            if row.internal is None:  # head of an inline group
                children = [i for i, r in enumerate(td.members) if r.parent == index]
                return group_ok(td, row.markup == MARKUP_CHOICE, children)
            return row.list_of or row.internal in finite  # a list may be empty

        def group_ok(td, is_choice, indexes):
            if is_choice:
                return not indexes or any(member_ok(td, i) for i in indexes)
            return all(td.members[i].optional or member_ok(td, i) for i in indexes)

        changed = True
        while changed:
            changed = False
            for name, td in self.cat.types.items():
                if name in finite:
                    continue
                top = [i for i, r in enumerate(td.members) if r.parent < 0]
                if group_ok(td, td.kind == "choice", top):
                    finite.add(name)
                    changed = True
        for name in sorted(set(self.cat.types) - finite):
            td = self.cat.types[name]
            raise SourceError(td.path, td.line, f"{name} has no value of finite size: every alternative or "
                                                "required member leads back to itself")

    def check_references(self):
        for td in self.cat.types.values():
            for row in td.members:
                if row.internal is not None and row.internal not in self.cat.types:
                    raise SourceError(row.path, row.line, f"{td.name}: unknown type name '{row.internal}'")

    # ---- numbering ----------------------------------------------------------------------

    def range_of(self, td):
        if td.name.startswith("Proprietary"):
            return "proprietary"
        return "enumerated" if td.kind in ("enum", "bits") else "constructed"

    def number_types(self):
        nums = self.numbers
        taken = {td.number: td.name for td in self.cat.types.values() if td.number is not None}
        blocked = set(nums.reserved)
        for name, (number, line) in sorted(nums.fixed.items(), key=lambda kv: kv[1][0]):
            td = self.cat.types.get(name)
            if td is None:
                raise SourceError(nums.path, line, f"data type {name} is not defined in any source file")
            if number in taken or number in blocked:
                raise SourceError(nums.path, line, f"number {number} is reserved or already used")
            td.number = number
            taken[number] = name
        for name, (number, line) in sorted(nums.assigned.items(), key=lambda kv: kv[1][0]):
            td = self.cat.types.get(name)
            if td is None or td.number is not None:
                self.stale.append(name)
                continue
            low, high = nums.ranges[self.range_of(td)]
            if not low <= number <= high or number in taken or number in blocked:
                raise SourceError(nums.path, line, f"assigned number {number} of {name} is outside its "
                                                   f"range [{low}, {high}] or already used")
            td.number = number
            taken[number] = name
        for name in sorted(self.cat.types):
            td = self.cat.types[name]
            if td.number is not None:
                continue
            low, high = nums.ranges[self.range_of(td)]
            number = low
            while number <= high and (number in taken or number in blocked):
                number += 1
            if number > high:
                raise SourceError(td.path, td.line, f"no free number left in range [{low}, {high}] for {name}")
            td.number = number
            taken[number] = name
            self.auto_numbered.append(td)
        self.cat.by_number = {td.number: td for td in self.cat.types.values()}

    # ---- rows ---------------------------------------------------------------------------

    def top_markup(self, td):
        return {
            "prim": td.tag,
            "enum": MARKUP_ENUMERATED,
            "bits": MARKUP_BIT_STRING,
            "seq": MARKUP_SEQUENCE,
            "choice": MARKUP_CHOICE,
            "list": MARKUP_SEQUENCE_OF,
        }.get(td.kind)

    def member_markup(self, row):
        if row.markup is not None:
            return row.markup
        if row.list_of:
            return MARKUP_SEQUENCE_OF
        target = self.cat.types[row.internal]
        # A row marked SequenceOf names its element type; a named list type is left unmarked so
        # the renderer takes the list shape from the type's own top row.
        return None if target.kind == "list" else self.top_markup(target)

    def primitive_tag(self, td):
        return td.tag if td.kind in ("prim", "enum", "bits") else 0

    def construct_rows(self):
        pinned = {}
        for name, (number, line) in self.numbers.constructs.items():
            if name not in self.cat.types:
                raise SourceError(self.numbers.path, line, f"construct {number}: unknown type {name}")
            pinned[name] = number
        used = set(pinned.values())
        ordered = [self.cat.by_number[n] for n in sorted(self.cat.by_number)]
        top_ids = {}
        next_id = 1
        for td in ordered:
            if td.name in pinned:
                top_ids[td.name] = pinned[td.name]
                continue
            while next_id in used:
                next_id += 1
            top_ids[td.name] = next_id
            used.add(next_id)
        next_id = max(used) + 1
        rows = []  # (id, parent, datatype, internal, context, markup, name, optional, sort)
        self.member_ids = {}
        for td in ordered:
            top = top_ids[td.name]
            internal = td.tag if td.kind == "prim" and td.number != td.tag else None
            rows.append((top, top, td.number, internal, None, self.top_markup(td), td.name, False, 0))
            ids = []
            for sort, row in enumerate(td.members, start=1):
                member_id = next_id
                next_id += 1
                ids.append(member_id)
                parent = top if row.parent < 0 else ids[row.parent]
                internal = None if row.internal is None else self.cat.types[row.internal].number
                rows.append((member_id, parent, td.number, internal, row.context,
                             self.member_markup(row), row.name, row.optional, sort))
            self.member_ids[td.name] = ids
        self.top_ids = top_ids
        return sorted(rows)

    def enum_rows(self):
        rows = []
        next_id = 1
        for number in sorted(self.cat.by_number):
            td = self.cat.by_number[number]
            for item_name, value, _ in td.items:
                rows.append((next_id, self.top_ids[td.name], value, item_name))
                next_id += 1
        return rows

    def adm_rows(self):
        """Names for the renderer: a type's own row is its own parent, its children name values,
        bits and members (with their context tags), inline groups nest one level deeper."""
        rows = []  # (id, parent, datatype, name, context_tag, value, sort)
        next_id = 1
        for number in sorted(self.cat.by_number):
            td = self.cat.by_number[number]
            top = next_id
            next_id += 1
            rows.append((top, top, number, td.name, None, None, 0))
            for sort, (item_name, value, _) in enumerate(td.items, start=1):
                rows.append((next_id, top, None, item_name, None, value, sort))
                next_id += 1
            ids = []
            for sort, row in enumerate(td.members, start=1):
                ids.append(next_id)
                parent = top if row.parent < 0 else ids[row.parent]
                internal = None if row.internal is None else self.cat.types[row.internal].number
                rows.append((next_id, parent, internal, row.name, row.context, None, sort))
                next_id += 1
        return rows

    def enum_values(self, type_name):
        td = self.cat.types.get(type_name)
        if td is None or td.kind not in ("enum", "bits"):
            raise SourceError(self.numbers.path, 1, f"{type_name} must be an ENUMERATED type")
        return {name: (value, line) for name, value, line in td.items}

    def property_shape(self, prop, path):
        """(datatype, tag, structure) of a property written as a member type."""
        node = prop.type
        structure = STRUCTURE_SINGLE
        if isinstance(node, asn.ListOf):
            structure = STRUCTURE_ARRAY if node.kind == "BACnetARRAY" else STRUCTURE_LIST
            element = node.element
            if isinstance(element, asn.ListOf):
                name = self.raw_list(element, path) if isinstance(element.element, asn.Ref) else None
                if name is None:
                    raise SourceError(path, prop.line, "nested inline lists must name their element type")
                node = asn.Ref(element.line, name)
            elif isinstance(element, asn.Ref):
                node = element
            else:
                raise SourceError(path, prop.line, "inline SEQUENCE/CHOICE is not allowed here; name it in types.asn")
        td = self.cat.types.get(node.name)
        if td is None:
            raise SourceError(path, prop.line, f"property '{prop.name}': unknown type name '{node.name}'")
        if structure == STRUCTURE_SINGLE and td.kind == "list":
            structure = STRUCTURE_ARRAY if td.list_kind == "BACnetARRAY" else STRUCTURE_LIST
        return td.number, self.primitive_tag(td), structure

    def property_rows(self, objects, path):
        object_types = self.enum_values("BACnetObjectType")
        properties = self.enum_values("BACnetPropertyIdentifier")
        classes = self.numbers.classes
        managed_default = self.numbers.defaults.get("managed-internally", 0)
        rows = []
        first_seen = []
        seen_objects = {}
        for block in objects:
            if block.name not in object_types:
                raise SourceError(path, block.line, f"unknown object type '{block.name}' (not in BACnetObjectType)")
            if block.name in seen_objects:
                raise SourceError(path, block.line, f"object type {block.name} is already described at "
                                                    f"line {seen_objects[block.name]}")
            seen_objects[block.name] = block.line
            object_number = object_types[block.name][0]
            seen_props = {}
            for prop in block.properties:
                if prop.name not in properties:
                    raise SourceError(path, prop.line, f"unknown property '{prop.name}' "
                                                       "(not in BACnetPropertyIdentifier)")
                if prop.name in seen_props:
                    raise SourceError(path, prop.line, f"{block.name}: property {prop.name} is listed twice "
                                                       f"(first at line {seen_props[prop.name]})")
                seen_props[prop.name] = prop.line
                property_number = properties[prop.name][0]
                if property_number not in first_seen:
                    first_seen.append(property_number)
                datatype, tag, structure = self.property_shape(prop, path)
                key = properties_in_object_key(object_number, property_number)
                rows.append((key, object_number, property_number, classes[prop.conformance], prop.empty,
                             prop.default, datatype, tag, structure, None, prop.type_text,
                             managed_default if prop.internal is None else prop.internal))
        rows.sort()
        sort_rows = []
        for sort, number in enumerate(first_seen, start=1):
            sort_rows.append((number, sort))
        rest = sorted(v for v, _ in properties.values() if v not in first_seen)
        for sort, number in enumerate(rest, start=len(first_seen) + 1):
            sort_rows.append((number, sort))
        sort_rows.sort()
        return rows, sort_rows

    def ws_rows(self):
        ws = self.ws
        errors, codes = [], {}
        for err in ws.errors:
            if err.code in codes:
                raise SourceError(ws.path, err.line, f"web-service error {err.code} is defined twice")
            codes[err.code] = err.name
            errors.append((err.code, err.name, err.http_status, err.text))
        categories = {name: number for number, name, _ in ws.categories}
        options = []
        for number, name, cats, line in ws.metadata:
            for cat in cats:
                if cat not in categories:
                    raise SourceError(ws.path, line, f"metadata {name}: unknown category '{cat}'")
                options.append((categories[cat], number))
        options = [(i, c, m) for i, (c, m) in enumerate(sorted(options), start=1)]
        markups = sorted((number, name) for number, name, _ in ws.markups)
        return sorted(errors), options, markups


def ws_productions(ws):
    """The metadata categories and items are enumerations of the catalogue like any other."""
    categories = asn.Named(1, "ENUMERATED", [(name, number, line) for number, name, line in ws.categories])
    items = asn.Named(1, "ENUMERATED", [(name, number, line) for number, name, _, line in ws.metadata])
    return [asn.Production(ws.category_type, categories, ws.path, 1),
            asn.Production(ws.metadata_type, items, ws.path, 1)]
