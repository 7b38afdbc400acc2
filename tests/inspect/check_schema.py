#!/usr/bin/env python3
"""Checks a list of reports, on standard input, against a JSON schema."""

import json
import sys

import jsonschema


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        schema = json.load(file)
    jsonschema.Draft7Validator.check_schema(schema)
    validator = jsonschema.Draft7Validator(schema)
    failures = 0
    for report in json.load(sys.stdin):
        for error in validator.iter_errors(report):
            failures += 1
            print(f"{report.get('file')}: {list(error.path)}: {error.message[:500]}")
    sys.exit(1 if failures else 0)


if __name__ == "__main__":
    main()
