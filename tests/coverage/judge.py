#!/usr/bin/env python3
"""judge.py COUNTS: reads what gcovr has counted and judges it.

Fails when less than 95 % of the product's lines have run, when a line that has not run does not stand in not-run.txt, or
when not-run.txt names one that has run or is not there any more.
"""
import collections
import json
import pathlib
import sys

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent.parent
LEAST = 95.0


def read_accepted():
    """The lines of not-run.txt: (file, text) -> where it stands there, once for each line that it accounts for."""
    accepted = collections.defaultdict(list)
    file = None
    for place, line in enumerate((HERE / "not-run.txt").read_text().splitlines(), 1):
        if line.startswith("    ") and file:
            accepted[file, line.strip()].append(place)
        elif line and not line.startswith("#"):
            file, _, reason = line.partition(": ")
            if not reason:
                sys.exit(f"not-run.txt:{place}: no reason")
    return accepted


def main(counts):
    left = read_accepted()
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
            if left[entry["file"], text]:
                left[entry["file"], text].pop()
            else:
                unexplained.append(f"{entry['file']}:{line['line_number']}: {text}")
    share = 100.0 * run / lines if lines else 0.0
    for line in unexplained:
        print(f"not run: {line}")
    stale = [(place, file) for (file, _), places in left.items() for place in places]
    for place, file in sorted(stale):
        print(f"not-run.txt:{place}: this has run, or is not in {file} any more")
    print(f"{run} of {lines} lines have run ({share:.1f} %), {lines - run - len(unexplained)} are accounted for, "
          f"{len(unexplained)} are not")
    return 0 if share >= LEAST and not unexplained and not stale else 1


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1]))
