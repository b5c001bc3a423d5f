#!/usr/bin/env python3
"""What check_dmtf.py must find: each text below is wrong in one way, and would pass without its fault."""

import unittest

from check_dmtf import MofError, Reader

QUALIFIERS = """
Qualifier Abstract : boolean = false, Scope(class, association), Flavor(EnableOverride, Restricted);
Qualifier Association : boolean = false, Scope(association), Flavor(DisableOverride, ToSubclass);
Qualifier Description : string = null, Scope(any);
Qualifier In : boolean = true, Scope(parameter);
Qualifier Key : boolean = false, Scope(property, reference);
Qualifier Out : boolean = false, Scope(parameter);
Qualifier ValueMap : string[], Scope(property);
Qualifier Values : string[], Scope(property);
Qualifier Values_de_DE : string[], Scope(property), Flavor(Translatable);
"""
CLASSES = """
[Description("A port.")] class X_Port {
    [Key, Description("n")] string Name;
    [Description("s")] uint8 Small = 255;
    [Description("l")] sint32 List[];
    [Description("Texts."), ValueMap{"0", "1"}, Values{"a", "b"} : Translatable, Values_de_DE{"c", "d"}] uint16 State;
    [Description("m")] uint32 Run([In, Description("i")] string What, [In(false), Out, Description("o")] uint32 Code);
};
[Association, Description("A pair.")] class X_Pair {
    [Key, Description("l")] X_Port REF Left;
    [Key, Description("r")] X_Port REF Right;
};
"""
INSTANCES = """
instance of X_Port as $A { Name = "a"; Small = 0x10; List = {1, -2, 011, 101b}; };
instance of X_Port { Name = "b \\"\\\\ \\x41" " and more"; State = 1; };
instance of X_Pair { Left = $A; Right = "X_Port.Name=\\"a\\""; };
"""


def check(text):
    reader = Reader()
    reader.read_text(text)
    reader.finish()
    return reader


class CheckDmtf(unittest.TestCase):
    def test_a_text_without_fault_passes(self):
        reader = check("// all\n#pragma locale (\"en_US\")\n/* is\nwell */" + QUALIFIERS + CLASSES + INSTANCES)
        self.assertEqual((9, 2, 3), (len(reader.declarations), len(reader.classes), len(reader.instances)))

    def expect(self, fault, text, before=QUALIFIERS + CLASSES):
        with self.assertRaisesRegex(MofError, r"^text:\d+:\d+: .*" + fault):
            check(before + text)

    def expect_changed(self, fault, old, new):
        text = QUALIFIERS + CLASSES + INSTANCES
        self.assertIn(old, text)
        with self.assertRaisesRegex(MofError, r"^text:\d+:\d+: .*" + fault):
            check(text.replace(old, new, 1))

    def test_vendor_extensions(self):
        self.expect_changed("is no flavor", ": Translatable", ": Amended")
        self.expect_changed("is no flavor", ": Translatable", ": ToInstance")
        self.expect_changed("is no flavor", "Flavor(Translatable)", "Flavor(Amended)")
        self.expect("is no pragma", '#pragma autorecover ("x")')
        self.expect("is no pragma", '#pragma classflags ("forceupdate")')
        self.expect("expected a value", "instance of X_Port { Name = \"c\"; List = {}; };")
        self.expect("is no type", "[Description(\"c\")] class X_C { [Key, Description(\"c\")] object Name; };")

    def test_qualifiers(self):
        self.expect_changed("not declared", "[Key, Description(\"n\")]", "[Key, Cimtype(\"x\"), Description(\"n\")]")
        self.expect_changed("may not stand on this method", '[Description("m")]', '[Key, Description("m")]')
        self.expect_changed("may not stand on this property", '[Description("s")]', '[Out, Description("s")]')
        self.expect_changed("given twice", '[Description("s")]', '[Description("s"), Description("t")]')
        self.expect_changed("needs a value", '[Description("s")]', "[Description]")
        self.expect_changed("is no boolean", "[Key, Description", '[Key("yes"), Description')
        self.expect_changed("a list for a single value", 'Description("s")', 'Description{"s"}')
        self.expect_changed("a single value for a list", 'ValueMap{"0", "1"}', 'ValueMap("0")')
        self.expect_changed("1 texts for 2", 'Values{"a", "b"} : Translatable, Values_de_DE{"c", "d"}', 'Values{"a"}')
        self.expect_changed("has 1 texts for 2", 'Values_de_DE{"c", "d"}', 'Values_de_DE{"c"}')
        self.expect_changed("translates nothing", ': Translatable, Values_de_DE', ', Values_de_DE')
        self.expect("declared twice", "Qualifier Key : boolean = false, Scope(property);")
        self.expect("contradict", "Qualifier A : boolean, Scope(any), Flavor(EnableOverride, DisableOverride);")
        self.expect("is no scope", "Qualifier A : boolean, Scope(everything);")
        self.expect("expected 'scope'", "Qualifier A : boolean, Flavor(Restricted);")

    def test_classes(self):
        key = '[Key, Description("k")] string Name;'
        self.expect("superclass X_None is not declared", f'[Description("c")] class X_C : X_None {{ {key} }};')
        self.expect("has Name already", f'[Description("c")] class X_C : X_Port {{ {key} }};')
        self.expect("adds a key", '[Description("c")] class X_C : X_Port { [Key, Description("k")] string More; };')
        self.expect("has no key", '[Description("c")] class X_C { [Description("k")] string Name; };')
        self.expect("declared twice", f'[Description("c")] class X_Port {{ {key} }};')
        self.expect("no schema name", f'[Description("c")] class Port {{ {key} }};')
        self.expect("reserved word", '[Description("c")] class X_C { [Key, Description("k")] string Scope; };')
        self.expect("is not described", f"class X_C {{ {key} }};")
        self.expect("is not described", '[Description("c")] class X_C { [Key] string Name; };')
        self.expect("only associations", '[Description("c")] class X_C { [Key, Description("k")] X_Port REF Name; };')
        self.expect("fewer than two", '[Association, Description("c")] class X_C { [Key, Description("k")] X_Port REF A; };')
        self.expect("comes first", '[Description("c"), Association] class X_C { [Key, Description("k")] X_Port REF A; };')
        self.expect("is an association and X_Port is not", '[Association, Description("c")] class X_C : X_Port { };')
        self.expect("expected ';'", f'[Description("c")] class X_C {{ {key} }}')
        self.expect_changed("does not say whether it goes in", "[In(false), Out,", "[Out,")
        self.expect_changed("neither in nor out", "[In(false), Out,", "[In(false),")
        self.expect_changed("has What already", "uint32 Code)", "uint32 What)")
        self.expect_changed("is no uint8", "= 255", "= 256")

    def test_instances(self):
        self.expect("is not declared", 'instance of X_None { Name = "c"; };')
        self.expect("is abstract", '[Abstract, Description("c")] class X_C { }; instance of X_C { Name = "c"; };')
        self.expect("has no property Colour", 'instance of X_Port { Name = "c"; Colour = "red"; };')
        self.expect("has no property Run", 'instance of X_Port { Name = "c"; Run = 1; };')
        self.expect("given twice", 'instance of X_Port { Name = "c"; name = "d"; };')
        self.expect("key Name of X_Port is missing", "instance of X_Port { Small = 1; };")
        self.expect("without values", "instance of X_Port { };")
        self.expect("exists already", 'instance of X_Port { Name = "c"; }; instance of x_port { Name = "C"; };')
        self.expect("is no uint8", 'instance of X_Port { Name = "c"; Small = -1; };')
        self.expect("is no uint8", 'instance of X_Port { Name = "c"; Small = "1"; };')
        self.expect("is no string", "instance of X_Port { Name = 5; };")
        self.expect("a single value for a list", 'instance of X_Port { Name = "c"; List = 1; };')
        self.expect("is no number", 'instance of X_Port { Name = "c"; Small = 09; };')
        self.expect("unknown escape", 'instance of X_Port { Name = "\\q"; };')
        self.expect("unexpected character", 'instance of X_Port { Name = "c; };')
        self.expect("expected ';'", 'instance of X_Port { Name = "c" };')

    def test_references(self):
        self.expect_changed("no instance bears the alias", "Left = $A", "Left = $B")
        self.expect_changed("no instance has the path", 'X_Port.Name=\\"a\\"', 'X_Port.Name=\\"z\\"')
        self.expect_changed("names a server", '"X_Port.Name=\\"a\\""', '"\\\\\\\\pc\\\\root:X_Port.Name=\\"a\\""')
        self.expect("given twice", 'instance of X_Port as $A { Name = "c"; }; instance of X_Port as $a { Name = "d"; };')
        pair = '[Association, Description("c")] class X_C { [Key, Description("k")] X_Pair REF A;'
        self.expect("is a X_Port and no X_Pair", pair + ' [Key, Description("k")] X_Pair REF B; };'
                    'instance of X_Port as $A { Name = "c"; }; instance of X_C { A = $A; B = $A; };')

    def test_faults_are_placed(self):
        with self.assertRaisesRegex(MofError, r"^text:2:5: "):
            check("// one\n    nothing")


if __name__ == "__main__":
    unittest.main()
