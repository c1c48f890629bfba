#!/usr/bin/env python3
"""judge.py COUNTS: reads what gcovr has counted and judges it.

Fails when less than 95 % of the product's lines have run, when a line that has not run does not stand in not-run.txt, or
when not-run.txt names one that has run or is not there any more.
"""
import json
import pathlib
import sys

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent.parent
LEAST = 95.0


def read_accepted():
    """The lines of not-run.txt: (file, text) -> where it stands there."""
    accepted = {}
    file = None
    for place, line in enumerate((HERE / "not-run.txt").read_text().splitlines(), 1):
        if line.startswith("    ") and file:
            accepted[file, line.strip()] = place
        elif line and not line.startswith("#"):
            file, _, reason = line.partition(": ")
            if not reason:
                sys.exit(f"not-run.txt:{place}: no reason")
    return accepted


def main(counts):
    accepted = read_accepted()
    used = set()
    lines = run = 0
    unexplained = []
    for entry in json.loads(pathlib.Path(counts).read_text())["files"]:
        source = (ROOT / entry["file"]).read_text().splitlines()
        for line in entry["lines"]:
            if line.get("gcovr/noncode"):
                continue
            lines += 1
            if line["count"] > 0:
                run += 1
                continue
            text = source[line["line_number"] - 1].strip()
            if (entry["file"], text) in accepted:
                used.add((entry["file"], text))
            else:
                unexplained.append(f"{entry['file']}:{line['line_number']}: {text}")
    share = 100.0 * run / lines if lines else 0.0
    for line in unexplained:
        print(f"not run: {line}")
    stale = sorted(set(accepted) - used)
    for file, text in stale:
        print(f"not-run.txt:{accepted[file, text]}: this has run, or is not in {file} any more")
    print(f"{run} of {lines} lines have run ({share:.1f} %), {lines - run - len(unexplained)} are accounted for, "
          f"{len(unexplained)} are not")
    return 0 if share >= LEAST and not unexplained and not stale else 1


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1]))
