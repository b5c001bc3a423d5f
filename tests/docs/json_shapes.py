"""Shapes of JSON answers as documents write them, {"teams": [{"path", "name"}, …]}, held against the JSON Schemas."""
import json
import re

ROW = re.compile(r"\| (?P<commands>`[^|]*) \| (?P<rest>[^|]*`\{\".*) \|$")
MORE = "…"


def rows(document):
    """The rows of tables that name commands and the shapes of their answers."""
    for number, line in document.prose:
        found = ROW.match(line)
        if found:
            names = re.findall(r"`([^`]+)`", found["commands"])
            # `team create`, `add`: the noun is not said again.
            noun = names[0].split()[0]
            commands = [name if index == 0 or " " in name else f"{noun} {name}" for index, name in enumerate(names)]
            yield number, commands, re.findall(r"`(\{\".*?)`", found["rest"])


def parse(text):
    """Nested dictionaries and lists; 0 stands for anything, the key "…" for further keys."""
    text = re.sub(r'"(\w+)"(?=\s*[,}])', r'"\1": 0', text.replace("[…]", "[]").replace(", …]", "]"))
    return json.loads(text.replace(MORE, f'"{MORE}": 0'))


class Schemas:
    def __init__(self, folder):
        self.folder = folder
        self.files = {}

    def load(self, name):
        if name not in self.files:
            self.files[name] = json.loads((self.folder / name).read_text(encoding="utf-8"))
        return self.files[name]

    def answers(self, command, shape, part=False):
        """Whether a command may answer in this shape, or in one that has such a part."""
        name = command.replace(" ", "-") + ".json"
        schema = self.load(name)
        return any(self.fits(shape, one, file) for one, file in
                   (self._within(schema, name, set()) if part else [(schema, name)]))

    def _within(self, schema, file, seen):
        """A schema and all those for its parts."""
        if id(schema) in seen:
            return
        seen.add(id(schema))
        yield schema, file
        for one, where in self._alternatives(schema, file):
            for inner in (*one.get("properties", {}).values(), *([one["items"]] if "items" in one else [])):
                yield from self._within(inner, where, seen)

    def fits(self, shape, schema, file):
        if shape == 0:
            return True
        return any(self._fits_one(shape, one, where) for one, where in self._alternatives(schema, file))

    def _alternatives(self, schema, file):
        if "$ref" in schema:
            name, _, pointer = schema["$ref"].partition("#")
            target = self.load(name or file)
            for part in pointer.strip("/").split("/"):
                target = target[part] if part else target
            yield from self._alternatives(target, name or file)
        for kind in ("oneOf", "anyOf", "allOf"):
            for one in schema.get(kind, []):
                yield from self._alternatives(one, file)
        yield schema, file

    def _fits_one(self, shape, schema, file):
        if isinstance(shape, list):
            return "items" in schema and all(self.fits(one, schema["items"], file) for one in shape)
        properties = schema.get("properties", {})
        keys = [key for key in shape if key != MORE]
        right = list(properties)[:len(keys)] == keys if MORE in shape else list(properties) == keys
        return right and all(self.fits(shape[key], properties[key], file) for key in keys)
