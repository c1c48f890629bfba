"""Makes the catalog of an INF file and its driver, unsigned, for osslsigncode to sign.

catalog.py CATALOG FILE...: a file that begins like a program is listed by its program hash, which is given as <path>=<hash>.
The catalog holds for every x64 system. It lists SHA-256 hashes only: systems before Windows 8 need an update for these.
"""

import hashlib
import sys
from pathlib import Path


def element(tag, *contents):
    content = b"".join(contents)
    size = len(content)
    if size < 0x80:
        return bytes([tag, size]) + content
    octets = size.to_bytes((size.bit_length() + 7) // 8, "big")
    return bytes([tag, 0x80 | len(octets)]) + octets + content


def name(text):
    numbers = [int(number) for number in text.split(".")]
    octets = bytes([numbers[0] * 40 + numbers[1]])
    for number in numbers[2:]:
        part = [number & 0x7F]
        while number := number >> 7:
            part.insert(0, number & 0x7F | 0x80)
        octets += bytes(part)
    return element(0x06, octets)


# The systems as catalogs name them: the platform (2 is Windows NT) and the version.
SYSTEMS = "2:5.2,2:6.0,2:6.1,2:6.2,2:6.3,2:10.0"
# How a named value is kept: as text, which the signature covers.
SIGNED_TEXT = 0x10010001

SHA256 = element(0x30, name("2.16.840.1.101.3.4.2.1"), b"\x05\x00")


def subject(argument):
    path, _, digest = argument.partition("=")
    digest = bytes.fromhex(digest) if digest else hashlib.sha256(Path(path).read_bytes()).digest()
    if Path(path).read_bytes()[:2] == b"MZ":
        # A program: flags, and a link to the file that is obsolete.
        link = element(0xA0, element(0xA2, element(0x80, "<<<Obsolete>>>".encode("utf-16-be"))))
        kind = element(0x30, name("1.3.6.1.4.1.311.2.1.15"), element(0x30, element(0x03, b"\x05\xa0"), link))
    else:
        kind = element(0x30, name("1.3.6.1.4.1.311.2.1.25"), element(0xA2, element(0x80, "<<<Obsolete>>>".encode("utf-16-be"))))
    indirect = element(0x30, kind, element(0x30, SHA256, element(0x04, digest)))
    attribute = element(0x30, name("1.3.6.1.4.1.311.2.1.4"), element(0x31, indirect))
    return element(0x30, element(0x04, digest), element(0x31, attribute))


def named_value(key, text):
    value = element(
        0x30,
        element(0x1E, key.encode("utf-16-be")),
        element(0x02, SIGNED_TEXT.to_bytes(4, "big")),
        element(0x04, (text + "\0").encode("utf-16-le")),
    )
    return element(0x30, name("1.3.6.1.4.1.311.12.2.1"), element(0x04, value))


trust_list = element(
    0x30,
    element(0x30, name("1.3.6.1.4.1.311.12.1.1")),
    element(0x04, bytes(16)),
    element(0x17, b"120820000000Z"),
    element(0x30, name("1.3.6.1.4.1.311.12.1.3"), b"\x05\x00"),
    element(0x30, *[subject(argument) for argument in sys.argv[2:]]),
    element(0xA0, element(0x30, named_value("OSAttr", SYSTEMS))),
)
signed_data = element(
    0x30,
    element(0x02, b"\x01"),
    element(0x31),
    element(0x30, name("1.3.6.1.4.1.311.10.1"), element(0xA0, trust_list)),
    element(0x31),
)
Path(sys.argv[1]).write_bytes(element(0x30, name("1.2.840.113549.1.7.2"), element(0xA0, signed_data)))
