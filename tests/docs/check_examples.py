#!/usr/bin/env python3
"""Runs every example of the reference through zelhost and compares it with its stated result.

A page holds examples in fenced ```zelhost blocks, one per line:

    call NAME ARG... => EXPECTED
    rtf-write [--skip-paragraphs] FILE => file:FILE
    rtf-read --json FILE => file:FILE

ARGs are zelhost arguments, quoted as in a shell. EXPECTED is `nil`, a JSON string (the result's
text), `hex:HEX` (the result's bytes), `mem:HEX` (a MemoryBlock's bytes), a JSON number, boolean
or array, or `raises CLASS`; a string result may add `as ENCODING` (a number). Paths are relative
to the docs folder. Every registered global declaration must be called by at least one example.
"""
import argparse
import json
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile

SEPARATOR = " => "
BLOCK = re.compile(r"^```zelhost\n(.*?)^```", re.MULTILINE | re.DOTALL)


class Example:
    def __init__(self, page, line_number, command, expected):
        self.page = page
        self.line_number = line_number
        self.command = command
        self.expected = expected

    def where(self):
        return f"{self.page.name}:{self.line_number}"


def read_examples(docs):
    examples = []
    for page in sorted(docs.rglob("*.md")):
        text = page.read_text(encoding="utf-8")
        for block in BLOCK.finditer(text):
            first_line = text.count("\n", 0, block.start(1)) + 1
            for offset, line in enumerate(block.group(1).splitlines()):
                if not line.strip():
                    continue
                if SEPARATOR not in line:
                    raise SystemExit(f"{page.name}:{first_line + offset}: no '{SEPARATOR.strip()}'")
                command, expected = line.split(SEPARATOR, 1)
                examples.append(Example(page, first_line + offset, shlex.split(command),
                                        expected.strip()))
    return examples


def string_matches(expected, actual):
    """`expected` is the EXPECTED text of a string result, without its `as` suffix."""
    if expected.startswith("hex:"):
        return actual["hex"] == expected[4:].lower()
    return actual.get("text") == json.loads(expected)


def value_matches(expected, actual):
    if expected == "nil":
        return actual is None
    if expected.startswith("mem:"):
        return actual == {"hex": expected[4:].lower()}
    encoding = None
    if re.search(r" as (0x[0-9A-Fa-f]+|\d+)$", expected):
        expected, _, encoding = expected.rpartition(" as ")
    if expected.startswith("hex:") or expected.startswith('"'):
        if not isinstance(actual, dict) or "hex" not in actual:
            return False
        return string_matches(expected, actual) and (
            encoding is None or actual["encoding"] == int(encoding, 0))
    wanted = json.loads(expected)
    if isinstance(wanted, list):
        return isinstance(actual, list) and len(actual) == len(wanted) and all(
            value_matches(json.dumps(item) if item is not None else "nil", got)
            for item, got in zip(wanted, actual))
    if isinstance(wanted, bool) or isinstance(actual, bool):
        return wanted is actual
    return wanted == actual


def call_matches(example, reply):
    if "error" in reply or reply["leaked"] != {"strings": 0, "objects": 0}:
        return False
    if example.expected.startswith("raises "):
        return (reply["exception"] or {}).get("class") == example.expected[len("raises "):]
    return reply["exception"] is None and value_matches(example.expected, reply["result"])


def run_calls(zelhost, calls):
    requests = "".join(json.dumps({"name": e.command[1], "args": e.command[2:]}) + "\n"
                       for e in calls)
    # One reply per line; splitlines() would also cut at U+2028 inside a reply's text.
    output = subprocess.run([*zelhost, "batch"], input=requests, capture_output=True, text=True,
                            check=False).stdout.split("\n")[:-1]
    if len(output) != len(calls):
        raise SystemExit(f"zelhost batch answered {len(output)} of {len(calls)} calls")
    return [json.loads(line) for line in output]


def file_command_matches(zelhost, docs, example):
    words = [str(docs / word) if (docs / word).is_file() else word for word in example.command]
    completed = subprocess.run([*zelhost, *words], capture_output=True, check=False)
    expected_file = docs / example.expected[len("file:"):]
    if completed.returncode != 0 or not expected_file.is_file():
        return False
    if "--json" in example.command:
        return json.loads(completed.stdout) == json.loads(expected_file.read_bytes())
    return completed.stdout == expected_file.read_bytes()


def registered_functions(zelhost):
    """The global functions, whether the host takes them loose or in the module."""
    members = json.loads(subprocess.run([*zelhost, "list", "--json"], capture_output=True,
                                        text=True, check=True).stdout)
    return {m["declaration"] for m in members
            if m["kind"] in ("method", "module-method") and "extends " not in m["declaration"]}


def check(zelhost, docs):
    """Returns the list of failure messages and the number of examples run."""
    examples = read_examples(docs)
    calls = [e for e in examples if e.command[:1] == ["call"]]
    failures = []
    called = set()
    for example, reply in zip(calls, run_calls(zelhost, calls)):
        called.add(reply.get("function"))
        if not call_matches(example, reply):
            failures.append(f"{example.where()}: {' '.join(example.command)} gave {json.dumps(reply)}, "
                            f"expected {example.expected}")
    for example in examples:
        if example.command[:1] in (["rtf-read"], ["rtf-write"]) and not file_command_matches(
                zelhost, docs, example):
            failures.append(f"{example.where()}: {' '.join(example.command)} differs from "
                            f"{example.expected}")
        elif example.command[:1] not in (["call"], ["rtf-read"], ["rtf-write"]):
            failures.append(f"{example.where()}: unknown command {example.command[:1]}")
    for declaration in sorted(registered_functions(zelhost) - called):
        failures.append(f"no example calls {declaration}")
    for command in ("rtf-read", "rtf-write"):
        if not any(e.command[:1] == [command] for e in examples):
            failures.append(f"no example runs {command} (StyledText.RTFDataZEL)")
    return failures, len(examples)


def altered(expected):
    """An expected result that no correct call can give alongside the original one."""
    if expected.startswith('"'):
        return json.dumps(json.loads(expected.split(" as ")[0]) + "~")
    if expected == "nil":
        return '"~"'
    return "nil"


def alter_expected_file(path):
    """Changes an expected rtf-write or rtf-read result so that it no longer matches."""
    if path.suffix == ".json":
        document = json.loads(path.read_bytes())
        document["runs"][0]["text"] += "~"
        path.write_text(json.dumps(document), encoding="utf-8")
    else:
        path.write_bytes(path.read_bytes() + b"~")


def self_test(zelhost, docs):
    """Alters, in a copy of the docs, the first call of each page and every expected file; each
    alteration must be reported as one failure."""
    with tempfile.TemporaryDirectory() as scratch:
        copy = pathlib.Path(scratch) / "docs"
        shutil.copytree(docs, copy)
        alterations = 0
        for page in sorted(copy.rglob("*.md")):
            text = page.read_text(encoding="utf-8")
            lines = [line for block in BLOCK.finditer(text) for line in block.group(1).splitlines()]
            for line in lines:
                command, _, expected = line.partition(SEPARATOR)
                if expected.startswith("file:"):
                    alter_expected_file(copy / expected[len("file:"):])
                    alterations += 1
            calls = [line for line in lines if line.startswith("call ")]
            if calls:
                command, _, expected = calls[0].partition(SEPARATOR)
                page.write_text(text.replace(calls[0], command + SEPARATOR + altered(expected), 1),
                                encoding="utf-8")
                alterations += 1
        failures, _ = check(zelhost, copy)
    print(f"{len(failures)} failures reported for {alterations} alterations")
    return alterations > 0 and len(failures) == alterations


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("docs", type=pathlib.Path)
    parser.add_argument("zelhost", nargs="+", help="zelhost, after its emulator when cross-built")
    parser.add_argument("--self-test", action="store_true",
                        help="expect a failure for each deliberately altered example")
    arguments = parser.parse_args()
    if arguments.self_test:
        return 0 if self_test(arguments.zelhost, arguments.docs) else 1
    failures, count = check(arguments.zelhost, arguments.docs)
    for failure in failures:
        print(failure)
    print(f"{count} examples, {len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
