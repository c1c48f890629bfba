#!/usr/bin/env python3
"""keep.py FOLDER: writes FoundProfiles.inc anew from a folder of inputs that the fuzz target "profiles" has
learnt and its option -set_cover_merge=1 has reduced.

Files with a mark of UTF-16 and an odd size are left out: there the platform reads one byte too many, whatever it is."""
import pathlib
import sys

MOST_BYTES = 110


def literal(content):
    # A digit after an octal escape of three digits is a character of its own.
    return "".join(
        chr(byte) if 0x20 <= byte < 0x7F and chr(byte) not in '"\\?' else f"\\{byte:03o}" for byte in content
    )


def is_predictable(content):
    return not (content[:2] in (b"\xff\xfe", b"\xfe\xff") and len(content) % 2)


def main():
    contents = {file.read_bytes() for file in pathlib.Path(sys.argv[1]).iterdir()}
    kept = sorted((c for c in contents if len(c) <= MOST_BYTES and is_predictable(c)), key=lambda c: (len(c), c))
    lines = [f'"{literal(content)}"sv,\n' for content in kept]
    (pathlib.Path(__file__).parent / "FoundProfiles.inc").write_text("".join(lines))


if __name__ == "__main__":
    main()
