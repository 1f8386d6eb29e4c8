#!/usr/bin/env python3
"""Generate the catalogue's SQL from catalogue/source.

    python3 catalogue/generate.py            rewrite catalogue/generated/
    python3 catalogue/generate.py --check    exit 1 when generated/ differs from the sources
    python3 catalogue/generate.py --pin      also record automatically numbered types in
                                             numbers.def so their numbers stay put
    python3 catalogue/generate.py --stats    print row counts

Only the standard library is used; the output depends on nothing but the source files.
"""
import argparse
import os
import sys

# Running the generator leaves the source tree as it was: no bytecode caches beside the modules.
sys.dont_write_bytecode = True
sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

from gen import asn, cpp, defs, objects, sql  # noqa: E402
from gen.errors import SourceError  # noqa: E402
from gen.model import Builder, ws_productions  # noqa: E402

ASN_FILES = ("enumerations.asn", "types.asn")


def read(path):
    with open(path, encoding="utf-8") as handle:
        return handle.read()


def load(source_dir):
    """Parse every source file; returns the builder with all rows computed."""
    def path_of(name):
        return os.path.join(source_dir, name)

    productions = []
    for name in ASN_FILES:
        if os.path.exists(path_of(name)):
            productions += asn.parse(read(path_of(name)), path_of(name))
    numbers = defs.parse_numbers(read(path_of("numbers.def")), path_of("numbers.def"))
    ws = defs.parse_ws(read(path_of("ws.def")), path_of("ws.def"))
    productions += numbers.productions + ws_productions(ws)
    object_path = path_of("objects.def")
    object_blocks = objects.parse(read(object_path), object_path) if os.path.exists(object_path) else []

    builder = Builder(productions, numbers, ws)
    builder.build_types()
    builder.number_types()
    builder.tables["bn_datatype"] = sorted((td.number, td.name) for td in builder.cat.types.values())
    builder.tables["bn_datatype_construct"] = builder.construct_rows()
    builder.tables["bn_datatype_enum"] = builder.enum_rows()
    builder.tables["bn_adm_definition"] = builder.adm_rows()
    props, sorts = builder.property_rows(object_blocks, object_path)
    builder.tables["bn_properties_in_object"] = props
    builder.tables["bn_property_type"] = sorts
    errors, options, markups = builder.ws_rows()
    builder.tables["bn_ws_error"] = errors
    builder.tables["bn_ws_metadata_query_options"] = options
    builder.tables["bn_markup_type"] = markups
    builder.object_count = len(object_blocks)
    return builder


TABLE_ORDER = ("bn_datatype", "bn_datatype_construct", "bn_datatype_enum", "bn_adm_definition",
               "bn_property_type", "bn_properties_in_object", "bn_markup_type", "bn_ws_error",
               "bn_ws_metadata_query_options")


def render(builder):
    content = [sql.HEADER]
    for table in TABLE_ORDER:
        content.append(sql.inserts(table, builder.tables[table]))
    return {"schema.sql": sql.schema(), "content.sql": "".join(content), cpp.HEADER_NAME: cpp.header(builder)}


def pin(builder, numbers_path):
    if not builder.auto_numbered:
        return 0
    lines = ["", "-- Numbers given automatically and recorded by generate.py --pin."]
    for td in sorted(builder.auto_numbered, key=lambda t: t.number):
        lines.append(f"assigned {td.number} {td.name}")
    with open(numbers_path, "a", encoding="utf-8") as handle:
        handle.write("\n".join(lines) + "\n")
    return len(builder.auto_numbered)


def stats(builder):
    types = builder.cat.types.values()
    kinds = {}
    for td in types:
        kinds[td.kind] = kinds.get(td.kind, 0) + 1
    tables = builder.tables
    print(f"object types described:      {builder.object_count}")
    print(f"object type names:           {len(builder.enum_values('BACnetObjectType'))}")
    print(f"property identifiers:        {len(builder.enum_values('BACnetPropertyIdentifier'))}")
    print(f"properties-in-object rows:   {len(tables['bn_properties_in_object'])}")
    print(f"constructed types:           {kinds.get('seq', 0) + kinds.get('choice', 0) + kinds.get('list', 0)}")
    derived = sum(1 for td in types if td.synthesized)
    print(f"  of which derived from inline members: {derived}")
    print(f"enumerations / bit strings:  {kinds.get('enum', 0)} / {kinds.get('bits', 0)}")
    print(f"enumeration values and bits: {len(tables['bn_datatype_enum'])}")
    print(f"data types in total:         {len(tables['bn_datatype'])}")
    for table in TABLE_ORDER:
        print(f"  {table}: {len(tables[table])} rows")


def main(argv=None):
    here = os.path.dirname(os.path.abspath(__file__))
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--source", default=os.path.join(here, "source"))
    parser.add_argument("--output", default=os.path.join(here, "generated"))
    parser.add_argument("--check", action="store_true", help="compare instead of writing")
    parser.add_argument("--pin", action="store_true", help="record automatic numbers in numbers.def")
    parser.add_argument("--stats", action="store_true", help="print row counts")
    args = parser.parse_args(argv)
    try:
        builder = load(args.source)
        outputs = render(builder)
    except SourceError as exc:
        print(f"error: {exc}", file=sys.stderr)
        return 2
    except ValueError as exc:
        print(f"error: {exc}", file=sys.stderr)
        return 2
    for name in builder.stale:
        print(f"warning: numbers.def assigns a number to {name}, which no source defines", file=sys.stderr)
    if args.stats:
        stats(builder)
    if args.check:
        stale = []
        for name, text in outputs.items():
            path = os.path.join(args.output, name)
            if not os.path.exists(path) or read(path) != text:
                stale.append(path)
        for path in stale:
            print(f"out of date: {path} (run python3 catalogue/generate.py)", file=sys.stderr)
        return 1 if stale else 0
    os.makedirs(args.output, exist_ok=True)
    for name, text in outputs.items():
        os.makedirs(os.path.dirname(os.path.join(args.output, name)), exist_ok=True)
        with open(os.path.join(args.output, name), "w", encoding="utf-8", newline="\n") as handle:
            handle.write(text)
    if args.pin:
        count = pin(builder, os.path.join(args.source, "numbers.def"))
        print(f"recorded {count} automatic numbers in numbers.def")
    return 0


if __name__ == "__main__":
    sys.exit(main())
