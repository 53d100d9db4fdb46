"""Checks messages of the Debug Adapter Protocol, one a line of a file, against schema.json."""

import json
import pathlib
import sys

import jsonschema


def definition_of(message):
    """The name of the definition that a message is to fit."""
    kind = message.get("type")
    if kind == "event":
        name = message.get("event", "") + "Event"
    elif kind == "request":
        name = message.get("command", "") + "Request"
    elif message.get("success") is False:
        name = "ErrorResponse"
    else:
        name = message.get("command", "") + "Response"
    return name[:1].upper() + name[1:]


def main(path):
    schema = json.loads((pathlib.Path(__file__).parent / "schema.json").read_text())
    validators = {}
    problems = 0
    count = 0
    for line in pathlib.Path(path).read_text().splitlines():
        message = json.loads(line)
        count += 1
        name = definition_of(message)
        if name not in schema["definitions"]:
            print(f"there is no message {name}: {line}")
            problems += 1
            continue
        if name not in validators:
            validators[name] = jsonschema.Draft7Validator(
                {"$ref": "#/definitions/" + name, "definitions": schema["definitions"]})
        for error in validators[name].iter_errors(message):
            print(f"{name} at {list(error.absolute_path)}: {error.message}\n  {line}")
            problems += 1
    print(f"{count} messages, {problems} problems")
    return 1 if problems or not count else 0


sys.exit(main(sys.argv[1]))
