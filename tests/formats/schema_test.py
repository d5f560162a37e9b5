"""Documents that were written against their schemas, and schemas against damaged documents.

schema_test.py FORMATS_TESTS SCHEMAS SEEDS: the program that writes documents into the folder named
by TARNEX_DOCUMENTS, the folder of the schemas, and one with documents that use every member.
"""
import json
import os
import pathlib
import subprocess
import sys
import tempfile

try:
    import jsonschema
except ImportError:
    print("skipped: install python3-jsonschema for", sys.executable)
    sys.exit(77)


def validators(folder):
    schemas = {file.name: json.loads(file.read_text()) for file in folder.glob("*.json")}
    result = {}
    for name, schema in schemas.items():
        jsonschema.Draft202012Validator.check_schema(schema)
        resolver = jsonschema.RefResolver(name, schema, store=schemas)
        result["tarnex-" + name.removesuffix(".json")] = jsonschema.Draft202012Validator(
            schema, resolver=resolver)
    return result


def members(value):
    """Every container in a document with the keys or indices in it."""
    if isinstance(value, (dict, list)):
        for key in value if isinstance(value, dict) else range(len(value)):
            yield value, key
            yield from members(value[key])


def damaged(document):
    """The document with one value after the other replaced by one of a kind that is not right."""
    for container, key in members(document):
        kept = container[key]
        container[key] = 0.5 if isinstance(kept, (dict, list, str, bool)) else "text"
        yield f"{key}: {json.dumps(kept)[:60]}"
        container[key] = kept


def main():
    program, schemas, seeds = sys.argv[1:]
    validator = validators(pathlib.Path(schemas))
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run([program, "--gtest_filter=Json.*ComeBackAsTheyWere", "--gtest_brief=1"],
                       env=os.environ | {"TARNEX_DOCUMENTS": folder}, check=True)
        written = [json.loads(file.read_text()) for file in pathlib.Path(folder).glob("*.json")]
    seeds = [json.loads(file.read_text()) for file in pathlib.Path(seeds).glob("*.json")]
    for kind in validator:
        assert any(document["schema"] == kind for document in written), kind
        assert any(document["schema"] == kind for document in seeds), kind
    for document in written + seeds:
        validator[document["schema"]].validate(document)
    accepted = []
    for document in seeds:
        judge = validator[document["schema"]]
        accepted += [what for what in damaged(document) if judge.is_valid(document)]
    assert not accepted, accepted
    print(len(written), "documents as their schemas say")


main()
