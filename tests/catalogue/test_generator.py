"""Rules of catalogue/generate.py checked on small fixtures: numbering, row shapes and the
file:line errors a catalogue author gets for broken sources."""
import os
import shutil
import sqlite3
import subprocess
import sys
import tempfile
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))
GENERATOR = os.path.join(ROOT, "catalogue", "generate.py")
FIXTURE = os.path.join(HERE, "fixtures", "minimal")


class Workspace:
    """A copy of the fixture with some files replaced, generated into its own folder."""

    def __init__(self, **replace):
        self.dir = tempfile.mkdtemp(prefix="tq-catalogue-")
        self.source = os.path.join(self.dir, "source")
        self.output = os.path.join(self.dir, "generated")
        shutil.copytree(FIXTURE, self.source)
        for name, text in replace.items():
            with open(os.path.join(self.source, name.replace("_", ".", 1)), "w") as handle:
                handle.write(text)

    def run(self, *extra):
        return subprocess.run([sys.executable, GENERATOR, "--source", self.source, "--output", self.output, *extra],
                              capture_output=True, text=True)

    def database(self):
        db = sqlite3.connect(":memory:")
        for name in ("schema.sql", "content.sql"):
            with open(os.path.join(self.output, name)) as handle:
                db.executescript(handle.read())
        return db

    def read(self, name):
        with open(os.path.join(self.source, name)) as handle:
            return handle.read()

    def close(self):
        shutil.rmtree(self.dir)


def fixture_text(name):
    with open(os.path.join(FIXTURE, name)) as handle:
        return handle.read()


def type_number(db, name):
    row = db.execute("SELECT id_bn_datatype FROM bn_datatype WHERE name=?", (name,)).fetchone()
    return row[0] if row else None


class GeneratedRows(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.ws = Workspace()
        result = cls.ws.run()
        if result.returncode != 0:
            raise AssertionError(result.stderr)
        cls.db = cls.ws.database()

    @classmethod
    def tearDownClass(cls):
        cls.db.close()
        cls.ws.close()

    def test_numbering(self):
        db = self.db
        self.assertEqual(type_number(db, "BACnetDateTime"), 1026)
        self.assertEqual(type_number(db, "ABSTRACT-SYNTAX.&Type"), 1000)
        self.assertEqual(type_number(db, "REAL"), 4)
        # Automatic numbers follow name order and step over reserved numbers.
        self.assertEqual(type_number(db, "BACnetPriorityValue"), 1200)
        self.assertEqual(type_number(db, "BACnetSample"), 1202)
        enum_numbers = [type_number(db, n) for n in ("BACnetObjectTypesSupported", "BACnetSampleMode",
                                                      "BACnetStatusFlags")]
        self.assertTrue(all(5000 <= n <= 5099 for n in enum_numbers), enum_numbers)
        tops = dict(db.execute("SELECT name, id_bn_datatype_construct FROM bn_datatype_construct "
                               "WHERE id_parent=id_bn_datatype_construct"))
        self.assertEqual((tops["BACnetPropertyIdentifier"], tops["BACnetObjectType"],
                          tops["BACnetObjectTypesSupported"]), (51, 120, 121))

    def test_inline_members_become_rows_the_renderer_walks(self):
        sample = type_number(self.db, "BACnetSample")
        rows = self.db.execute("SELECT id_bn_datatype_construct, id_parent, id_bn_datatype_internal, context_nr, "
                               "id_bn_markup, name, optional FROM bn_datatype_construct WHERE id_bn_datatype=? "
                               "ORDER BY sort", (sample,)).fetchall()
        by_name = {row[5]: row for row in rows}
        top = rows[0]
        self.assertEqual((top[0], top[1], top[4]), (top[0], top[0], 22))
        period = by_name["period"]
        self.assertEqual((period[1], period[2], period[4]), (top[0], None, 25))
        # The inline choice's members follow its head row directly.
        self.assertEqual([r[5] for r in rows[2:4]], ["stamp", "count"])
        self.assertTrue(all(r[1] == period[0] for r in rows[2:4]))
        # A list of a bare primitive names a list type; a list of a named type names the element.
        readings = by_name["readings"]
        self.assertEqual(type_number(self.db, "SEQUENCE OF REAL"), readings[2])
        self.assertIsNone(readings[4])
        stamps = by_name["stamps"]
        self.assertEqual((stamps[2], stamps[4]), (type_number(self.db, "BACnetTimeStamp"), 24))
        # DEFAULT reads as optional; an inline ENUMERATED becomes a named enumeration.
        mode = by_name["mode"]
        self.assertEqual((mode[6], mode[4], mode[2]), (1, 9, type_number(self.db, "BACnetSampleMode")))
        # Inline groups nest one level; deeper ones become types of their own.
        nested = type_number(self.db, "BACnetSampleNestedElement")
        self.assertEqual(by_name["nested"][2], nested)
        self.assertIsNotNone(type_number(self.db, "BACnetSampleNestedElement"))
        self.assertIsNone(by_name["any"][4])
        # A tagged inline group has its own tag space, so it becomes a type of its own.
        window = by_name["window"]
        self.assertEqual((window[2], window[3], window[4], window[6]),
                         (type_number(self.db, "BACnetSampleWindow"), 7, 22, 1))
        self.assertNotIn("from", by_name)

    def test_properties(self):
        def prop(obj, pid):
            return self.db.execute("SELECT optional, empty_allowed, default_value, id_bn_datatype, tag, "
                                   "tag_structure, managed_internally, id_bn_properties_in_object "
                                   "FROM bn_properties_in_object WHERE id_bn_object_type=? AND id_bn_property_type=?",
                                   (obj, pid)).fetchone()
        self.assertEqual(prop(0, 85)[:7], (2, 0, None, 4, 4, 0, 0))
        self.assertEqual(prop(0, 28)[:3], (3, 1, "none"))
        self.assertEqual(prop(0, 111)[3:6], (type_number(self.db, "BACnetStatusFlags"), 8, 0))
        self.assertEqual(prop(0, 130)[3:6], (type_number(self.db, "BACnetTimeStamp"), 0, 1))
        self.assertEqual(prop(0, 87)[3:7], (1064, 0, 1, 4))
        self.assertEqual(prop(0, 371)[3:6], (1090, 9, 1))
        self.assertEqual(prop(8, 28)[3:6], (1085, 2, 2))
        self.assertEqual(prop(8, 75)[7], (8 << 22) | 75)
        sorts = dict(self.db.execute("SELECT id_bn_property_type, sort FROM bn_property_type"))
        # First use in objects.def gives the order; unused identifiers follow by number.
        self.assertEqual([sorts[p] for p in (75, 77, 79, 85, 28, 111, 130, 87, 371)], list(range(1, 10)))
        self.assertEqual(len(sorts), 9)

    def test_enumerations_and_adm(self):
        names = dict(self.db.execute("SELECT value, name FROM bn_datatype_enum WHERE id_bn_datatype_construct=120"))
        self.assertEqual(names, {0: "analog-input", 8: "device"})
        tree = type_number(self.db, "BACnetTree")
        own = self.db.execute("SELECT id_bn_adm_definition FROM bn_adm_definition WHERE parent=id_bn_adm_definition "
                              "AND id_bn_datatype=?", (tree,)).fetchall()
        self.assertEqual(len(own), 1)
        members = self.db.execute("SELECT name, context_tag FROM bn_adm_definition WHERE parent=? "
                                  "AND id_bn_adm_definition<>parent ORDER BY sort", (own[0][0],)).fetchall()
        self.assertEqual(members, [("label", None), ("children", 0)])
        text = self.db.execute("SELECT error_text FROM bn_ws_error WHERE id_bn_ws_error=3").fetchone()[0]
        self.assertEqual(text, "It's malformed")

    def test_output_is_deterministic_and_checked(self):
        with open(os.path.join(self.ws.output, "content.sql")) as handle:
            first = handle.read()
        self.assertEqual(self.ws.run().returncode, 0)
        with open(os.path.join(self.ws.output, "content.sql")) as handle:
            self.assertEqual(handle.read(), first)
        self.assertEqual(self.ws.run("--check").returncode, 0)
        with open(os.path.join(self.ws.output, "content.sql"), "a") as handle:
            handle.write("-- edited by hand\n")
        result = self.ws.run("--check")
        self.assertEqual(result.returncode, 1)
        self.assertIn("out of date", result.stderr)
        self.ws.run()


class PinnedNumbers(unittest.TestCase):
    def test_pinned_numbers_survive_new_types(self):
        ws = Workspace()
        try:
            self.assertEqual(ws.run("--pin").returncode, 0)
            before = dict(ws.database().execute("SELECT name, id_bn_datatype FROM bn_datatype"))
            # A new type that sorts first would take the lowest free number without the pins.
            with open(os.path.join(ws.source, "types.asn"), "a") as handle:
                handle.write("\nAAAFirst ::= SEQUENCE { a REAL }\n")
            with open(os.path.join(ws.source, "enumerations.asn"), "a") as handle:
                handle.write("\nAAAEnum ::= ENUMERATED { a (0) }\n")
            result = ws.run()
            self.assertEqual(result.returncode, 0, result.stderr)
            after = dict(ws.database().execute("SELECT name, id_bn_datatype FROM bn_datatype"))
            for name, number in before.items():
                self.assertEqual(after[name], number, name)
            self.assertGreater(after["AAAFirst"], max(n for n in before.values() if 1200 <= n <= 1299))
            self.assertTrue(5000 <= after["AAAEnum"] <= 5099)
            # A pinned name that no source defines any more is only a warning.
            with open(os.path.join(ws.source, "types.asn"), "w") as handle:
                handle.write(fixture_text("types.asn").replace("BACnetTree", "BACnetForest"))
            result = ws.run()
            self.assertEqual(result.returncode, 0, result.stderr)
            self.assertIn("BACnetTree, which no source defines", result.stderr)
        finally:
            ws.close()


class SourceErrors(unittest.TestCase):
    def expect_error(self, fragment, **replace):
        ws = Workspace(**replace)
        try:
            result = ws.run()
            self.assertNotEqual(result.returncode, 0, result.stdout)
            self.assertIn(fragment, result.stderr)
            return result.stderr
        finally:
            ws.close()

    def test_unknown_type_names_point_at_the_reference(self):
        base = fixture_text("types.asn")
        types = base + "\nBACnetBroken ::= SEQUENCE {\n    a [0] BACnetNoSuchType\n}\n"
        err = self.expect_error("unknown type name 'BACnetNoSuchType'", types_asn=types)
        self.assertIn(f"types.asn:{base.count(chr(10)) + 3}:", err)
        self.expect_error("objects.def:3: property 'object-type': unknown type name 'BACnetObjType'",
                          objects_def="OBJECT device\n  object-identifier R BACnetObjectIdentifier\n"
                                      "  object-type R BACnetObjType\nEND\n")

    def test_duplicates(self):
        base = fixture_text("enumerations.asn")
        self.expect_error("value 1 is used twice", enumerations_asn=base + "\nX ::= ENUMERATED { a (1), b (1) }\n")
        self.expect_error("name 'a' is used twice", enumerations_asn=base + "\nX ::= ENUMERATED { a (1), a (2) }\n")
        self.expect_error("type BACnetStatusFlags is already defined at",
                          enumerations_asn=base + "\nBACnetStatusFlags ::= BIT STRING { a (0) }\n")
        self.expect_error("context tag [0] is used by 'a' and 'b'",
                          types_asn="X ::= CHOICE { a [0] NULL, b [0] REAL }\n")
        self.expect_error("context tag [1] is used by 'b' and 'c'",
                          types_asn="X ::= SEQUENCE { a CHOICE { b [1] NULL, x [2] REAL }, c [1] REAL }\n")
        self.expect_error("property object-name is listed twice",
                          objects_def="OBJECT device\n  object-name R CharacterString\n"
                                      "  object-name O CharacterString\nEND\n")

    def test_types_without_a_finite_value(self):
        self.expect_error("BACnetLoop has no value of finite size",
                          types_asn="BACnetLoop ::= SEQUENCE { a REAL, next [0] BACnetLoop }\n")
        self.expect_error("BACnetPing has no value of finite size",
                          types_asn="BACnetPing ::= CHOICE { pong [0] BACnetPong }\n"
                                    "BACnetPong ::= SEQUENCE { ping [0] BACnetPing }\n")

    def test_syntax_and_names(self):
        self.expect_error("types.asn:2: expected '::=' but found 'SEQUENCE'",
                          types_asn="-- comment\nBACnetX SEQUENCE { a REAL }\n")
        self.expect_error("unexpected end of file", types_asn="BACnetX ::= SEQUENCE { a REAL,\n")
        self.expect_error("unknown conformance code 'X'", objects_def="OBJECT device\n  object-name X REAL\nEND\n")
        self.expect_error("unknown object type 'no-such-object'", objects_def="OBJECT no-such-object\nEND\n")
        self.expect_error("unknown property 'no-such-property'",
                          objects_def="OBJECT device\n  no-such-property R REAL\nEND\n")
        self.expect_error("is not closed by END", objects_def="OBJECT device\n  object-name R REAL\n")
        numbers = fixture_text("numbers.def") + "datatype 1070 BACnetRecipient\n"
        self.expect_error("numbers.def:21: data type BACnetRecipient is not defined", numbers_def=numbers)
        ws_text = fixture_text("ws.def") + "metadata 404 comment cat-nothing\n"
        self.expect_error("unknown category 'cat-nothing'", ws_def=ws_text)
        self.expect_error("contains ';'", ws_def=fixture_text("ws.def") + 'error 9 X 400 "a;b"\n')


class ReadyDatabaseScript(unittest.TestCase):
    SCRIPT = os.path.join(ROOT, "scripts", "make-catalogue-db.sh")

    @unittest.skipIf(shutil.which("sqlite3") is None, "the sqlite3 command-line tool is not installed")
    def test_creates_and_refuses_to_overwrite(self):
        folder = tempfile.mkdtemp(prefix="tq-catalogue-db-")
        try:
            target = os.path.join(folder, "catalogue.db")
            first = subprocess.run([self.SCRIPT, target], capture_output=True, text=True)
            self.assertEqual(first.returncode, 0, first.stderr)
            db = sqlite3.connect(target)
            self.assertEqual(db.execute("SELECT name FROM bn_datatype WHERE id_bn_datatype=1026").fetchone()[0],
                             "BACnetDateTime")
            db.close()
            with open(target, "ab") as handle:
                handle.write(b"marker")
            size = os.path.getsize(target)
            again = subprocess.run([self.SCRIPT, target], capture_output=True, text=True)
            self.assertNotEqual(again.returncode, 0)
            self.assertIn("--force", again.stderr)
            self.assertEqual(os.path.getsize(target), size)
            forced = subprocess.run([self.SCRIPT, "--force", target], capture_output=True, text=True)
            self.assertEqual(forced.returncode, 0, forced.stderr)
            self.assertNotEqual(os.path.getsize(target), size)
            self.assertEqual(sorted(os.listdir(folder)), ["catalogue.db"])
            usage = subprocess.run([self.SCRIPT], capture_output=True, text=True)
            self.assertEqual(usage.returncode, 2)
        finally:
            shutil.rmtree(folder)


if __name__ == "__main__":
    unittest.main()
