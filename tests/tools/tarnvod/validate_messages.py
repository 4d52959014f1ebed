#!/usr/bin/python3
# SPDX-FileCopyrightText: 2026 The tarnvod authors
# SPDX-License-Identifier: MIT
"""validate_messages.py FOLDER FILE: checks each line of FILE against the JSON Schema that it names, which is in FOLDER."""

import json
import pathlib
import sys

import jsonschema


def validator_for(folder, name):
    kind, version = name.split("/")
    schema = json.loads((folder / f"{kind.replace('.', '-')}.schema.json").read_text())
    if schema["title"] != name:
        sys.exit(f"the schema {schema['title']} is not {kind}/{version}")
    jsonschema.Draft202012Validator.check_schema(schema)
    return jsonschema.Draft202012Validator(schema)


def main():
    folder, file = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    validators = {}
    count = 0
    for line in file.read_text().splitlines():
        message = json.loads(line)
        name = message["schema"]
        if name not in validators:
            validators[name] = validator_for(folder, name)
        for error in validators[name].iter_errors(message):
            sys.exit(f"{error.message} in {line}")
        count += 1
    print(count)


main()
