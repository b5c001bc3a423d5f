#!/usr/bin/env python3
"""A strict reader of DMTF MOF: the second opinion on the simulator's schema and machines.

It shares nothing with the simulator's own compiler and knows nothing of its conveniences: the grammar is that
of the CIM infrastructure's MOF syntax, a vendor extension is an error. Beyond the grammar it checks what a CIM
server checks: qualifiers declared, in scope and of the declared type, superclasses before subclasses, values
that fit their type, keys given once and only once, references that lead somewhere.

    check_dmtf.py FILE.mof ...        reads the files in order, as one text
"""

import os
import re
import sys

INTEGERS = {
    "uint8": (0, 2**8 - 1),
    "sint8": (-(2**7), 2**7 - 1),
    "uint16": (0, 2**16 - 1),
    "sint16": (-(2**15), 2**15 - 1),
    "uint32": (0, 2**32 - 1),
    "sint32": (-(2**31), 2**31 - 1),
    "uint64": (0, 2**64 - 1),
    "sint64": (-(2**63), 2**63 - 1),
}
TYPES = set(INTEGERS) | {"real32", "real64", "char16", "string", "boolean", "datetime"}
FLAVORS = {"enableoverride", "disableoverride", "restricted", "tosubclass", "translatable"}
SCOPES = {
    "any",
    "association",
    "class",
    "indication",
    "method",
    "parameter",
    "property",
    "qualifier",
    "reference",
    "schema",
}
RESERVED = (
    TYPES
    | FLAVORS
    | SCOPES
    | {"as", "false", "flavor", "instance", "null", "of", "pragma", "ref", "scope", "true"}
)
PRAGMAS = {"include", "instancelocale", "locale", "namespace", "nonlocal", "nonlocaltype", "source", "sourcetype"}

TOKEN = re.compile(
    r"""(?P<space>[ \t\r\n\f]+|//[^\n]*|/\*.*?\*/)
      | (?P<real>[+-]?[0-9]*\.[0-9]+(?:[eE][+-]?[0-9]+)?)
      | (?P<hex>[+-]?0[xX][0-9A-Fa-f]+)
      | (?P<binary>[+-]?[01]+[bB](?![0-9A-Za-z_]))
      | (?P<decimal>[+-]?[0-9]+(?![0-9A-Za-z_]))
      | (?P<string>"(?:[^"\\\n]|\\.)*")
      | (?P<char>'(?:[^'\\\n]|\\(?:[bfnrt"'\\]|[xX][0-9A-Fa-f]{1,4}))')
      | (?P<word>[A-Za-z_\u0080-\uffef][0-9A-Za-z_\u0080-\uffef]*)
      | (?P<mark>[\[\](){},;:=$#])""",
    re.VERBOSE | re.DOTALL,
)
ESCAPE = re.compile(r'\\(?:([bfnrt"\'\\])|[xX]([0-9A-Fa-f]{1,4})|(.))')
SIMPLE = {"b": "\b", "f": "\f", "n": "\n", "r": "\r", "t": "\t", '"': '"', "'": "'", "\\": "\\"}
DATETIME = re.compile(r"[0-9*]{14}\.[0-9*]{6}(?:[+-][0-9]{3}|:000)")
KEY_BINDING = re.compile(r'([A-Za-z_]\w*)=("(?:[^"\\]|\\.)*"|[^",]+)')


class MofError(Exception):
    """What is wrong, behind the place it is wrong at."""


class Token:
    __slots__ = ("kind", "text", "file", "source", "start")

    def __init__(self, kind, text, file, source, start):
        self.kind, self.text, self.file, self.source, self.start = kind, text, file, source, start

    def fail(self, message):
        line = self.source.count("\n", 0, self.start) + 1
        column = self.start - (self.source.rfind("\n", 0, self.start) + 1) + 1
        raise MofError(f"{self.file}:{line}:{column}: {message}")


def tokens_of(source, file):
    position = 0
    while position < len(source):
        match = TOKEN.match(source, position)
        if not match:
            Token("", "", file, source, position).fail(f"unexpected character {source[position]!r}")
        if match.lastgroup != "space":
            yield Token(match.lastgroup, match.group(), file, source, position)
        position = match.end()
    yield Token("end", "end of file", file, source, position)


class Class:
    def __init__(self, name, superclass):
        self.name, self.superclass = name, superclass
        self.qualifiers, self.features = {}, {}
        self.association = bool(superclass and superclass.association)

    def feature(self, name):
        if name.lower() in self.features:
            return self.features[name.lower()]
        return self.superclass.feature(name) if self.superclass else None

    def all_features(self):
        inherited = self.superclass.all_features() if self.superclass else {}
        return {**inherited, **self.features}

    def keys(self):
        return [f for f in self.all_features().values() if f.kind != "method" and flag(f.qualifiers, "key")]

    def is_a(self, name):
        return self.name.lower() == name.lower() or bool(self.superclass and self.superclass.is_a(name))


class Feature:
    def __init__(self, kind, name, type_name, array, qualifiers):
        self.kind, self.name, self.type, self.array, self.qualifiers = kind, name, type_name, array, qualifiers
        self.parameters = []


class Declaration:
    def __init__(self, type_name, array, scopes, flavors):
        self.type, self.array, self.scopes, self.flavors = type_name, array, scopes, flavors


def flag(qualifiers, name):
    return name in qualifiers and qualifiers[name] is not False


class Reader:
    """Recursive descent over the grammar; what was declared so far is kept in tables."""

    def __init__(self):
        self.declarations, self.classes, self.aliases, self.instances = {}, {}, {}, {}
        self.references = []  # references given as object paths: (token, path, class)
        self.open_files = []
        self.tokens, self.at = [], 0

    # ------------------------------------------------------------------ tokens

    def read(self, path):
        path = os.path.abspath(path)
        if path in self.open_files:
            raise MofError(f"{path}: includes itself")
        with open(path, encoding="utf-8") as file:
            self.read_text(file.read(), path)

    def read_text(self, source, path="text"):
        outer = (self.tokens, self.at)
        self.open_files.append(path)
        self.tokens, self.at = list(tokens_of(source, os.path.relpath(path))), 0
        while self.peek().kind != "end":
            self.production()
        self.open_files.pop()
        self.tokens, self.at = outer

    def peek(self, ahead=0):
        return self.tokens[min(self.at + ahead, len(self.tokens) - 1)]

    def next(self):
        token = self.peek()
        self.at += 1
        return token

    def is_word(self, word, ahead=0):
        token = self.peek(ahead)
        return token.kind == "word" and token.text.lower() == word

    def is_mark(self, mark):
        token = self.peek()
        return token.kind == "mark" and token.text == mark

    def take_mark(self, mark):
        if self.is_mark(mark):
            self.next()
            return True
        return False

    def mark(self, mark):
        if not self.take_mark(mark):
            self.peek().fail(f"expected {mark!r} before {self.peek().text!r}")

    def word(self, word):
        if not self.is_word(word):
            self.peek().fail(f"expected {word!r} before {self.peek().text!r}")
        return self.next()

    def identifier(self, what):
        token = self.next()
        if token.kind != "word":
            token.fail(f"expected the name of {what} before {token.text!r}")
        if token.text.lower() in RESERVED:
            token.fail(f"{token.text!r} is a reserved word and no name of {what}")
        return token

    # ------------------------------------------------------------------ values

    def string(self):
        token = self.next()
        if token.kind != "string":
            token.fail(f"expected a string before {token.text!r}")
        text = token.text
        while self.peek().kind == "string":
            text = text[:-1] + self.next().text[1:]

        def replace(match):
            simple, code, bad = match.groups()
            if bad is not None:
                token.fail(f"unknown escape \\{bad}")
            return SIMPLE[simple] if simple else chr(int(code, 16))

        return ESCAPE.sub(replace, text[1:-1])

    def constant(self):
        """One constant: (token, kind of constant, value)."""
        token = self.peek()
        if token.kind == "string":
            return token, "string", self.string()
        self.next()
        if token.kind == "decimal":
            digits = token.text.lstrip("+-")
            if len(digits) > 1 and digits[0] == "0":
                if not set(digits) <= set("01234567"):
                    token.fail(f"{token.text!r} is no number")
                return token, "integer", int(token.text, 8)
            return token, "integer", int(token.text)
        if token.kind == "hex":
            return token, "integer", int(token.text, 16)
        if token.kind == "binary":
            return token, "integer", int(token.text[:-1], 2)
        if token.kind == "real":
            return token, "real", float(token.text)
        if token.kind == "char":
            return token, "char", token.text
        if token.kind == "word" and token.text.lower() in ("true", "false"):
            return token, "boolean", token.text.lower() == "true"
        if token.kind == "word" and token.text.lower() == "null":
            return token, "null", None
        token.fail(f"expected a value before {token.text!r}")

    def array(self):
        self.mark("{")
        values = [self.constant()]
        while self.take_mark(","):
            values.append(self.constant())
        self.mark("}")
        return values

    @staticmethod
    def fit(constant, type_name):
        token, kind, value = constant
        if kind == "null":
            return value
        if type_name in INTEGERS:
            low, high = INTEGERS[type_name]
            good = kind == "integer" and low <= value <= high
        elif type_name in ("real32", "real64"):
            good = kind in ("real", "integer")
        elif type_name == "char16":
            good = kind in ("char", "integer")
        elif type_name == "datetime":
            good = kind == "string" and DATETIME.fullmatch(value) is not None
        else:
            good = kind == type_name
        if not good:
            token.fail(f"{token.text} is no {type_name}")
        return value

    def initializer(self, type_name, array):
        """A value for a property or qualifier of this type."""
        if self.is_mark("{"):
            start = self.peek()
            values = [self.fit(constant, type_name) for constant in self.array()]
            if not array:
                start.fail("a list for a single value")
            return values
        constant = self.constant()
        if array and constant[1] != "null":
            constant[0].fail("a single value for a list")
        return self.fit(constant, type_name)

    def reference(self, class_name):
        token = self.peek()
        if self.take_mark("$"):
            alias = self.identifier("an alias")
            target = self.aliases.get(alias.text.lower())
            if target is None:
                alias.fail(f"no instance bears the alias ${alias.text}")
            if not target[0].is_a(class_name):
                alias.fail(f"${alias.text} is a {target[0].name} and no {class_name}")
            return target
        if self.is_word("null"):
            self.next()
            return None
        path = self.string()
        self.references.append((token, path, class_name))
        return path

    # ------------------------------------------------------------------ productions

    def production(self):
        if self.is_mark("#"):
            return self.directive()
        if self.is_word("qualifier"):
            return self.qualifier_declaration()
        start = self.peek()
        qualifiers = self.qualifier_list()
        if self.is_word("class"):
            return self.class_declaration(qualifiers)
        if self.is_word("instance"):
            return self.instance_declaration(qualifiers)
        start.fail(f"expected a declaration before {self.peek().text!r}")

    def directive(self):
        self.mark("#")
        self.word("pragma")
        name = self.next()
        if name.kind != "word" or name.text.lower() not in PRAGMAS:
            name.fail(f"{name.text!r} is no pragma of the DMTF's")
        self.mark("(")
        place = self.peek()
        argument = self.string()
        self.mark(")")
        if name.text.lower() == "include":
            file = os.path.join(os.path.dirname(self.open_files[-1]), argument)
            if not os.path.isfile(file):
                place.fail(f"no file {argument!r}")
            self.read(file)

    def qualifier_declaration(self):
        self.word("qualifier")
        name = self.next()
        if name.kind != "word" or (name.text.lower() in RESERVED and name.text.lower() not in SCOPES):
            name.fail(f"expected the name of a qualifier before {name.text!r}")
        self.mark(":")
        type_name = self.data_type()
        array = self.array_mark()
        if self.take_mark("="):
            self.initializer(type_name, array)
        self.mark(",")
        self.word("scope")
        scopes = self.word_list(SCOPES, "scope")
        flavors = set()
        if self.take_mark(","):
            self.word("flavor")
            flavors = self.word_list(FLAVORS, "flavor")
        self.mark(";")
        if name.text.lower() in self.declarations:
            name.fail(f"qualifier {name.text} is declared twice")
        if {"enableoverride", "disableoverride"} <= flavors or {"restricted", "tosubclass"} <= flavors:
            name.fail(f"the flavors of {name.text} contradict each other")
        self.declarations[name.text.lower()] = Declaration(type_name, array, scopes, flavors)

    def word_list(self, allowed, what):
        self.mark("(")
        words = set()
        while True:
            token = self.next()
            if token.kind != "word" or token.text.lower() not in allowed:
                token.fail(f"{token.text!r} is no {what}")
            words.add(token.text.lower())
            if not self.take_mark(","):
                break
        self.mark(")")
        return words

    def data_type(self):
        token = self.next()
        if token.kind != "word" or token.text.lower() not in TYPES:
            token.fail(f"{token.text!r} is no type")
        return token.text.lower()

    def array_mark(self):
        if not self.take_mark("["):
            return False
        if not self.is_mark("]"):
            size = self.constant()
            if size[1] != "integer" or size[2] <= 0:
                size[0].fail("the size of a list is a positive number")
        self.mark("]")
        return True

    def qualifier_list(self):
        """The qualifiers in brackets: name -> (token, value, flavors), not yet checked against a scope."""
        if not self.take_mark("["):
            return {}
        found = {}
        while True:
            token = self.next()
            name = token.text.lower()
            if token.kind != "word":
                token.fail(f"expected the name of a qualifier before {token.text!r}")
            declaration = self.declarations.get(name)
            if declaration is None:
                token.fail(f"qualifier {token.text} is not declared")
            if name in found:
                token.fail(f"qualifier {token.text} is given twice")
            if self.is_mark("{"):
                value = self.initializer(declaration.type, declaration.array)
            elif self.take_mark("("):
                value = self.initializer(declaration.type, declaration.array)
                self.mark(")")
            elif declaration.type == "boolean" and not declaration.array:
                value = True
            else:
                token.fail(f"qualifier {token.text} needs a value")
            flavors = set(declaration.flavors)
            if self.take_mark(":"):
                count = 0
                while self.peek().kind == "word":
                    flavor = self.next()
                    if flavor.text.lower() not in FLAVORS:
                        flavor.fail(f"{flavor.text!r} is no flavor of the DMTF's")
                    flavors.add(flavor.text.lower())
                    count += 1
                if not count:
                    self.peek().fail("expected a flavor")
            found[name] = (token, value, flavors)
            if not self.take_mark(","):
                break
        self.mark("]")
        return found

    def accept_qualifiers(self, found, scope):
        """Checks scope and the rules between qualifiers of one element; gives name -> value."""
        for name, (token, value, flavors) in found.items():
            scopes = self.declarations[name].scopes
            if scope not in scopes and "any" not in scopes:
                token.fail(f"qualifier {token.text} may not stand on this {scope}")
            localised = re.fullmatch(r"(.+)_[a-z]{2,3}_[a-z]{2}", name)
            if localised:
                base = found.get(localised.group(1))
                if base is None or "translatable" not in base[2]:
                    token.fail(f"{token.text} translates nothing that is translatable on this element")
                if isinstance(value, list) and len(value) != len(base[1]):
                    token.fail(f"{token.text} has {len(value)} texts for {len(base[1])}")
        for codes, texts in (("valuemap", "values"), ("bitmap", "bitvalues")):
            if codes in found and texts in found and len(found[codes][1]) != len(found[texts][1]):
                found[texts][0].fail(f"{len(found[texts][1])} texts for {len(found[codes][1])} codes")
        return {name: value for name, (_, value, _) in found.items()}

    def class_name(self, what):
        token = self.identifier(what)
        if not re.fullmatch(r"[A-Za-z][0-9A-Za-z]*_\w+", token.text):
            token.fail(f"{token.text!r} has no schema name before an underscore")
        return token

    def class_declaration(self, found):
        self.word("class")
        token = self.class_name("a class")
        superclass = None
        if self.take_mark(":"):
            parent = self.class_name("a superclass")
            superclass = self.classes.get(parent.text.lower())
            if superclass is None:
                parent.fail(f"superclass {parent.text} is not declared")
        if token.text.lower() in self.classes:
            token.fail(f"class {token.text} is declared twice")
        cls = Class(token.text, superclass)
        if "association" in found:
            if next(iter(found)) != "association":
                token.fail("Association comes first in the list of qualifiers")
            if superclass and not superclass.association:
                token.fail(f"{token.text} is an association and {superclass.name} is not")
            cls.association = True
        if "description" not in found:
            token.fail(f"class {token.text} is not described")
        cls.qualifiers = self.accept_qualifiers(found, "association" if cls.association else "class")
        self.mark("{")
        while not self.take_mark("}"):
            self.feature(cls)
        self.mark(";")
        ends = [f for f in cls.all_features().values() if f.kind == "reference"]
        if cls.association and len(ends) < 2:
            token.fail(f"association {token.text} has fewer than two references")
        if superclass and superclass.keys() and any(flag(f.qualifiers, "key") for f in cls.features.values()):
            token.fail(f"{token.text} adds a key to those it inherits")
        if not cls.keys() and not flag(cls.qualifiers, "abstract"):
            token.fail(f"{token.text} can have instances and has no key")
        self.classes[token.text.lower()] = cls

    def feature(self, cls):
        found = self.qualifier_list()
        if self.is_word("ref", 1):
            target = self.class_name("a class")
            self.word("ref")
            name = self.identifier("a reference")
            if not cls.association:
                name.fail("only associations have references")
            if target.text.lower() not in self.classes:
                target.fail(f"class {target.text} is not declared")
            feature = Feature("reference", name.text, target.text, False, self.accept_qualifiers(found, "reference"))
            if self.take_mark("="):
                self.reference(target.text)
        else:
            type_name = self.data_type()
            name = self.identifier("a property or method")
            if self.take_mark("("):
                feature = Feature("method", name.text, type_name, False, self.accept_qualifiers(found, "method"))
                if not self.is_mark(")"):
                    self.parameter(feature)
                    while self.take_mark(","):
                        self.parameter(feature)
                self.mark(")")
            else:
                array = self.array_mark()
                feature = Feature("property", name.text, type_name, array, self.accept_qualifiers(found, "property"))
                if self.take_mark("="):
                    self.initializer(type_name, array)
                if flag(feature.qualifiers, "key") and array:
                    name.fail("a list is no key")
        self.mark(";")
        if cls.feature(name.text):
            name.fail(f"{cls.name} has {name.text} already")
        if "description" not in found:
            name.fail(f"{cls.name}.{name.text} is not described")
        cls.features[name.text.lower()] = feature

    def parameter(self, method):
        found = self.qualifier_list()
        if self.is_word("ref", 1):
            type_name = self.class_name("a class").text
            self.word("ref")
        else:
            type_name = self.data_type()
        name = self.identifier("a parameter")
        array = self.array_mark()
        parameter = Feature("parameter", name.text, type_name, array, self.accept_qualifiers(found, "parameter"))
        if any(p.name.lower() == name.text.lower() for p in method.parameters):
            name.fail(f"{method.name} has {name.text} already")
        if "description" not in found:
            name.fail(f"{method.name}({name.text}) is not described")
        if not flag(parameter.qualifiers, "in") and not flag(parameter.qualifiers, "out"):
            name.fail(f"{method.name}({name.text}) goes neither in nor out")
        if "in" not in found:
            name.fail(f"{method.name}({name.text}) does not say whether it goes in, and In is true by default")
        method.parameters.append(parameter)

    def instance_declaration(self, found):
        self.word("instance")
        self.word("of")
        token = self.class_name("a class")
        cls = self.classes.get(token.text.lower())
        if cls is None:
            token.fail(f"class {token.text} is not declared")
        if flag(cls.qualifiers, "abstract"):
            token.fail(f"class {token.text} is abstract")
        self.accept_qualifiers(found, "association" if cls.association else "class")
        alias = None
        if self.is_word("as"):
            self.next()
            self.mark("$")
            alias = self.identifier("an alias")
            if alias.text.lower() in self.aliases:
                alias.fail(f"alias ${alias.text} is given twice")
        self.mark("{")
        values = {}
        while not self.take_mark("}"):
            qualifiers = self.qualifier_list()
            name = self.identifier("a property")
            feature = cls.feature(name.text)
            if feature is None or feature.kind == "method":
                name.fail(f"{cls.name} has no property {name.text}")
            if name.text.lower() in values:
                name.fail(f"{name.text} is given twice")
            self.accept_qualifiers(qualifiers, feature.kind)
            self.mark("=")
            if feature.kind == "reference":
                value = self.reference(feature.type)
            else:
                value = self.initializer(feature.type, feature.array)
            values[name.text.lower()] = value
            self.mark(";")
        if not values:
            token.fail("an instance without values")
        self.mark(";")
        key = []
        for feature in cls.keys():
            value = values.get(feature.name.lower())
            if value is None:
                token.fail(f"key {feature.name} of {cls.name} is missing")
            key.append(self.identity(value) if feature.kind == "reference" else str(value).lower())
        identity = (cls.name.lower(), tuple(key))
        if identity in self.instances:
            token.fail(f"{cls.name} with the key {', '.join(map(str, key))} exists already")
        self.instances[identity] = values
        if alias:
            self.aliases[alias.text.lower()] = (cls, identity)

    def identity(self, reference):
        """The identity of what a reference names, whether it is an alias or a path."""
        if isinstance(reference, tuple):
            return reference[1]
        return self.path_identity(reference)

    def path_identity(self, path):
        class_name, _, bindings = path.partition(".")
        cls = self.classes.get(class_name.lower())
        if cls is None:
            return None
        found = {n.lower(): ESCAPE.sub(r"\1", v[1:-1]) if v[0] == '"' else v for n, v in KEY_BINDING.findall(bindings)}
        return (class_name.lower(), tuple(found.get(f.name.lower(), "").lower() for f in cls.keys()))

    def finish(self):
        """What can only be checked when everything has been read."""
        for token, path, class_name in self.references:
            if path.startswith(("\\\\", "//")):
                token.fail("a reference names a server")
            identity = self.path_identity(path)
            if identity is None or identity not in self.instances:
                token.fail(f"no instance has the path {path}")
            if not self.classes[identity[0]].is_a(class_name):
                token.fail(f"{path} is no {class_name}")


def main(arguments):
    if not arguments or arguments[0] in ("-h", "--help"):
        print(__doc__)
        return 0 if arguments else 2
    reader = Reader()
    try:
        for argument in arguments:
            if argument == "-":
                reader.read_text(sys.stdin.read(), os.path.abspath("standard input"))
            else:
                reader.read(argument)
        reader.finish()
    except (MofError, OSError, UnicodeDecodeError) as error:
        print(error, file=sys.stderr)
        return 1
    print(
        f"{len(reader.declarations)} qualifiers, {len(reader.classes)} classes, "
        f"{len(reader.instances)} instances: plain DMTF MOF"
    )
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
