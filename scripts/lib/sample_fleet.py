#!/usr/bin/env python3
"""sample_fleet.py FOLDER COUNT: writes that many registry exports of machines as an office has them, the same each time.

Kinds of machines differ in system and adapters; one kind has an adapter that no kit of ours serves, and one export in a
hundred is cut off, as after a full disk.
"""

import pathlib
import sys

GIGABIT = "VEN_5D1A&DEV_1A2B&SUBSYS_00015D1A&REV_01"
TEN_GIGABIT = "VEN_5D1A&DEV_1B3C&SUBSYS_00015D1A&REV_02"
OLD = "VEN_5D1A&DEV_1C4D&SUBSYS_00035D1A&REV_03"
UNKNOWN = "VEN_5D1A&DEV_1FFF&SUBSYS_00015D1A&REV_01"
SERVED_ID = r"PCI\VEN_5D1A&CC_020000"

# name, share of a hundred, version, product, adapters
KINDS = [
    ("OFFICE", 44, "6.1", "WinNT", [GIGABIT]),
    ("LAPTOP", 20, "6.2", "WinNT", [GIGABIT]),
    ("BUILD", 14, "6.2", "ServerNT", [GIGABIT, TEN_GIGABIT]),
    ("STORE", 10, "6.1", "ServerNT", [TEN_GIGABIT]),
    ("LAB", 6, "5.2", "WinNT", [GIGABIT, OLD]),
    ("EDGE", 3, "6.2", "ServerNT", [TEN_GIGABIT, UNKNOWN]),
    ("KIOSK", 3, "6.1", "WinNT", []),
]
CUT_EVERY = 100
CUT_AT = 400

CONTROL = r"HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Control"
PCI = r"HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet\Enum\PCI"


def text_list(text):
    data = (text + "\0\0").encode("utf-16-le")
    return "hex(7):" + ",".join(f"{byte:02x}" for byte in data)


def export(version, product, cards):
    """The text of an export, as reg.exe writes it on an x64 machine."""
    keys = [
        (r"HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows NT\CurrentVersion",
         [f'"CurrentVersion"="{version}"', '"CurrentBuildNumber"="9200"']),
        (rf"{CONTROL}\ProductOptions", [f'"ProductType"="{product}"']),
        (rf"{CONTROL}\Session Manager\Environment", ['"PROCESSOR_ARCHITECTURE"="AMD64"']),
        (rf"{CONTROL}\Nls\CodePage", ['"ACP"="1252"']),
        (PCI, []),
    ]
    for card in cards:
        keys.append((rf"{PCI}\{card}", []))
        keys.append((rf"{PCI}\{card}\3&11583659&0&18", [f'"CompatibleIDs"={text_list(SERVED_ID)}']))
    lines = ["Windows Registry Editor Version 5.00", ""]
    for key, values in keys:
        lines += [f"[{key}]", *values, ""]
    return ("\r\n".join(lines) + "\r\n").encode("utf-16")


def main():
    folder = pathlib.Path(sys.argv[1])
    count = int(sys.argv[2])
    folder.mkdir(parents=True, exist_ok=True)
    kinds = [(name, export(version, product, cards))
             for name, share, version, product, cards in KINDS for _ in range(share)]
    for number in range(count):
        # Neighbours are of different kinds; 37 and the hundred shares have no common factor.
        name, data = kinds[number * 37 % len(kinds)]
        if number % CUT_EVERY == CUT_EVERY - 1:
            data = data[:CUT_AT]
        (folder / f"{name}-{number + 1:05}.reg").write_bytes(data)


main()
