#!/usr/bin/env python3
"""promises.py [--check]

Writes tests/PROMISES.md: what the system promises, as the names of its tests state it. With --check, writes nothing and
fails when the kept table is not the one that the tests make now.
"""
import difflib
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
TABLE = ROOT / "tests" / "PROMISES.md"
HEAD = """\
# Promises

What the system promises, as the names of its tests state it, folder by folder. `scripts/promises` makes this file: to
change a row, rename its test. A test that runs for many parameters is one row. The first column is the suite, or the
script.
"""

CASES = re.compile(r"^TEST(?:_F|_P)?\(\s*(\w+)\s*,\s*(\w+)\s*\)", re.MULTILINE)
SCRIPTED = re.compile(r'^\s*(?:\w+\) )?promise "((?:[^"\\$]|\\.|\$\([^)]*\)|\$\{[^}]*\}|\$\w+)+)"', re.MULTILINE)

# Words that are written in their own way inside a sentence.
SPELLINGS = {
    word.lower(): word
    for word in "iSCSI FCoE INF INFs INI DLL COM DMA HBA IA ID IDs IP LUN MSI NDIS NT OEM OS PCI SCSI WMI English Unicode "
    "Vista Windows Wine".split()
}


def words_of(name):
    """"FCoEAdapterIsFound20Times" as ["FCoE", "Adapter", "Is", "Found", "20", "Times"]."""
    return re.findall(r"FCoE|I?SCSI|IScsi|[A-Z]+(?![a-z])|[A-Z][a-z]*|[a-z]+|\d+(?:(?:st|nd|rd|th)(?![a-z]))?", name)


def sentence(name):
    text = " ".join(SPELLINGS.get(word.lower(), word.lower()) for word in words_of(name))
    return text[0].upper() + text[1:] if text.split()[0].islower() else text


def without_values(text):
    """The promise of a script, with an ellipsis for what the script puts in."""
    return re.sub(r"\\(.)", r"\1", re.sub(r"(?<!\\)\$(\([^)]*\)|\{[^}]*\}|\w+)", "…", text))


def promises_of(file):
    """Each (suite, promise) of a test file, in its order."""
    text = file.read_text(encoding="utf-8")
    if file.suffix == ".sh":
        return [(file.stem, without_values(promise)) for promise in SCRIPTED.findall(text)]
    return [(suite, sentence(name)) for suite, name in CASES.findall(text)]


def table():
    rooms = {}
    for file in sorted([*ROOT.glob("tests/**/*.cpp"), *ROOT.glob("tests/**/*.sh")]):
        for promise in promises_of(file):
            rooms.setdefault(file.parent.relative_to(ROOT), {})[promise] = None
    lines = [HEAD]
    for room, promises in rooms.items():
        lines.append(f"\n## {room}\n\n| suite | promise |\n|---|---|\n")
        lines.extend(f"| {suite} | {promise} |\n" for suite, promise in promises)
    return "".join(lines)


def main(arguments):
    if arguments not in ([], ["--check"]):
        sys.exit(__doc__)
    made = table()
    if not arguments:
        TABLE.write_text(made, encoding="utf-8")
        return 0
    kept = TABLE.read_text(encoding="utf-8") if TABLE.exists() else ""
    if kept == made:
        return 0
    sys.stdout.writelines(difflib.unified_diff(kept.splitlines(True), made.splitlines(True), "kept", "made from the tests", n=0))
    print(f"{TABLE.relative_to(ROOT)} is not current: run scripts/promises")
    return 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
