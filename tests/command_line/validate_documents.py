#!/usr/bin/env python3
"""Holds JSON documents against JSON schemas: validate_documents.py SCHEMA DOCUMENT [SCHEMA DOCUMENT]...

Prints a line for each document that does not fit, and ends with 1 when there is one."""
import json
import sys

import jsonschema

failed = False
for schema_path, document_path in zip(sys.argv[1::2], sys.argv[2::2]):
    with open(schema_path, encoding="utf-8") as schema_file, open(document_path, encoding="utf-8") as document_file:
        schema = json.load(schema_file)
        document = json.load(document_file)
    jsonschema.Draft202012Validator.check_schema(schema)
    for error in jsonschema.Draft202012Validator(schema).iter_errors(document):
        failed = True
        print(f"{document_path} does not fit {schema_path}: {error.json_path}: {error.message}")
sys.exit(1 if failed else 0)
