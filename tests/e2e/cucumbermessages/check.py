"""Checks Cucumber Messages, one a line of a file, against messages.schema.json and against each other."""

import json
import pathlib
import sys

import jsonschema

SCHEMA = json.loads((pathlib.Path(__file__).parent / "messages.schema.json").read_text())


def flattened(value, owner):
    """A part of the schema with references to "#/$defs/NAME", whatever they were relative to."""
    if isinstance(value, list):
        return [flattened(each, owner) for each in value]
    if not isinstance(value, dict):
        return value
    result = {key: flattened(each, owner) for key, each in value.items()
              if key not in ("$id", "$schema", "$defs", "definitions")}
    if isinstance(value.get("$ref"), str):
        target = value["$ref"]
        name = (owner + "." if target.startswith("#") else "") + target.split("/")[-1]
        result["$ref"] = "#/$defs/" + name.replace(".schema.json", "")
    return result


def validator():
    """The schema's parts are files in one, with definitions of their own."""
    parts = {}
    for identifier, part in SCHEMA["$defs"].items():
        owner = identifier.split("/")[-1].replace(".schema.json", "")
        parts[owner] = flattened(part, owner)
        for name, inner in part.get("definitions", {}).items():
            parts[f"{owner}.{name}"] = flattened(inner, owner)
    schema = flattened(SCHEMA, "")
    schema["$defs"] = parts
    return jsonschema.Draft202012Validator(schema)


def ids(value, found):
    """All values of "id" in a message."""
    if isinstance(value, dict):
        if isinstance(value.get("id"), str):
            found.append(value["id"])
        for each in value.values():
            ids(each, found)
    elif isinstance(value, list):
        for each in value:
            ids(each, found)


def references(value, key="", found=None):
    """All texts that name the id of something else."""
    found = [] if found is None else found
    if isinstance(value, dict):
        for name, each in value.items():
            references(each, name, found)
    elif isinstance(value, list):
        for each in value:
            references(each, key, found)
    elif key.endswith("Id") or key.endswith("Ids"):
        found.append((key, value))
    return found


def main(path):
    check = validator()
    known = []
    problems = 0
    lines = pathlib.Path(path).read_text().splitlines()
    for number, line in enumerate(lines, 1):
        message = json.loads(line)
        if len(message) != 1:
            print(f"{number}: {len(message)} kinds in one message")
            problems += 1
        for error in check.iter_errors(message):
            print(f"{number}: {error.message} at {list(error.absolute_path)}")
            problems += 1
        ids(message, known)
        for key, value in references(message):
            if value not in known:
                print(f"{number}: {key} {value} refers to nothing before it")
                problems += 1
    if len(set(known)) != len(known):
        print("an id stands for several things")
        problems += 1
    if not lines:
        print("no messages")
        problems += 1
    return 1 if problems else 0


sys.exit(main(sys.argv[1]))
