"""The catalogs of a kit's INF files.

kit_catalogs.py make INF...: makes the catalog that each INF file names, unsigned. It lists the INF file and the files of its
[SourceDisksFiles] by SHA-256 hashes only, for which systems before Windows 8 need an update, and holds for every x64 system.
The same files give the same bytes.
kit_catalogs.py check FOLDER: whether each INF file of a kit is in a signed catalog, and with it the drivers that it installs;
prints what is missing, one line each, and fails then. Who signed a catalog, and whether Windows trusts the signer, is not
examined here.
"""

import hashlib
import re
import struct
import sys
from pathlib import Path


# What an INF file may call its catalog on x64 systems.
CATALOG_KEYS = ("catalogfile.ntamd64", "catalogfile.nt", "catalogfile")


def text_of(path):
    data = path.read_bytes()
    return data.decode("utf-16") if data[:2] in (b"\xff\xfe", b"\xfe\xff") else data.decode("cp1252", "replace")


def values_of(text, wanted):
    """The keys of an INF file's section, in lower case, and their values."""
    section, values = "", {}
    for line in text.splitlines():
        line = line.partition(";")[0].strip()
        if line.startswith("["):
            section = line.strip("[]").strip().lower()
        elif "=" in line and section == wanted:
            key, _, value = line.partition("=")
            values[key.strip().lower()] = value.strip().strip('"')
    return values


def catalog_of(text):
    """The name of the catalog in an INF file's [Version] section."""
    values, strings = values_of(text, "version"), values_of(text, "strings")
    for key in CATALOG_KEYS:
        if values.get(key):
            return re.sub("%(.*?)%", lambda name: strings.get(name[1].lower(), ""), values[key])
    return None


def files_beside(inf):
    """The files of the INF file's folder, by their names in lower case."""
    return {path.name.lower(): path for path in inf.parent.iterdir()}


def is_program(data):
    return data[:2] == b"MZ"


def covered_by_hash(data):
    """The bytes of a file that its hash in a catalog covers: of a program, library or driver all but checksum and signature."""
    if not is_program(data):
        return data
    (header,) = struct.unpack_from("<I", data, 0x3C)
    optional = header + 24
    (magic,) = struct.unpack_from("<H", data, optional)
    directory = optional + (128 if magic == 0x10B else 144)
    signature, size = struct.unpack_from("<II", data, directory)
    end = signature if size else len(data)
    return data[: optional + 64] + data[optional + 68 : directory] + data[directory + 8 : end] + b"\0" * (-end % 8)


# The systems as catalogs name them: the platform (2 is Windows NT) and the version.
SYSTEMS = "2:5.2,2:6.0,2:6.1,2:6.2,2:6.3,2:10.0"
# How a named value is kept: as text, which the signature covers.
SIGNED_TEXT = 0x10010001
# The date of the sample kit; a time of the day that it is made would give other bytes each time.
MADE = b"120820000000Z"


def element(tag, *contents):
    content = b"".join(contents)
    size = len(content)
    if size < 0x80:
        return bytes([tag, size]) + content
    octets = size.to_bytes((size.bit_length() + 7) // 8, "big")
    return bytes([tag, 0x80 | len(octets)]) + octets + content


def object_id(text):
    numbers = [int(number) for number in text.split(".")]
    octets = bytes([numbers[0] * 40 + numbers[1]])
    for number in numbers[2:]:
        part = [number & 0x7F]
        while number := number >> 7:
            part.insert(0, number & 0x7F | 0x80)
        octets += bytes(part)
    return element(0x06, octets)


SHA256 = element(0x30, object_id("2.16.840.1.101.3.4.2.1"), b"\x05\x00")


def listed_file(path):
    data = path.read_bytes()
    digest = hashlib.sha256(covered_by_hash(data)).digest()
    if is_program(data):
        # Flags, and a link to the file that is obsolete.
        link = element(0xA0, element(0xA2, element(0x80, "<<<Obsolete>>>".encode("utf-16-be"))))
        kind = element(0x30, object_id("1.3.6.1.4.1.311.2.1.15"), element(0x30, element(0x03, b"\x05\xa0"), link))
    else:
        kind = element(0x30, object_id("1.3.6.1.4.1.311.2.1.25"), element(0xA2, element(0x80, "<<<Obsolete>>>".encode("utf-16-be"))))
    indirect = element(0x30, kind, element(0x30, SHA256, element(0x04, digest)))
    attribute = element(0x30, object_id("1.3.6.1.4.1.311.2.1.4"), element(0x31, indirect))
    return element(0x30, element(0x04, digest), element(0x31, attribute))


def named_value(key, text):
    value = element(
        0x30,
        element(0x1E, key.encode("utf-16-be")),
        element(0x02, SIGNED_TEXT.to_bytes(4, "big")),
        element(0x04, (text + "\0").encode("utf-16-le")),
    )
    return element(0x30, object_id("1.3.6.1.4.1.311.12.2.1"), element(0x04, value))


def catalog_listing(paths):
    """A catalog of these files: signed data that nobody has signed."""
    trust_list = element(
        0x30,
        element(0x30, object_id("1.3.6.1.4.1.311.12.1.1")),
        element(0x04, bytes(16)),
        element(0x17, MADE),
        element(0x30, object_id("1.3.6.1.4.1.311.12.1.3"), b"\x05\x00"),
        element(0x30, *[listed_file(path) for path in paths]),
        element(0xA0, element(0x30, named_value("OSAttr", SYSTEMS))),
    )
    signed_data = element(
        0x30,
        element(0x02, b"\x01"),
        element(0x31),
        element(0x30, object_id("1.3.6.1.4.1.311.10.1"), element(0xA0, trust_list)),
        element(0x31),
    )
    return element(0x30, object_id("1.2.840.113549.1.7.2"), element(0xA0, signed_data))


def make_catalog(inf):
    text, there = text_of(inf), files_beside(inf)
    catalog = catalog_of(text)
    if catalog is None:
        sys.exit(f"{inf} names no catalog")
    names = values_of(text, "sourcedisksfiles")
    if not names:
        sys.exit(f"{inf} names no file in [SourceDisksFiles]")
    missing = [file for file in names if file not in there]
    if missing:
        sys.exit(f"{inf}: there is no {missing[0]}")
    files = [there[file] for file in names]
    (inf.parent / catalog).write_bytes(catalog_listing([inf, *files]))


SIGNED_DATA = "2a864886f70d010702"
TRUST_LIST = "2b0601040182370a01"
INDIRECT_DATA = "2b060104018237020104"
HASHES = {20: hashlib.sha1, 32: hashlib.sha256}

SEQUENCE, SET = 0x30, 0x31


def elements(data):
    """The tags and contents of the DER elements that follow each other in data."""
    at = 0
    while at < len(data):
        tag, size = data[at], data[at + 1]
        at += 2
        if size & 0x80:
            count = size & 0x7F
            size = int.from_bytes(data[at : at + count], "big")
            at += count
        if at + size > len(data):
            raise ValueError("cut off")
        yield tag, data[at : at + size]
        at += size


def digests_of_catalog(data):
    """The digests that a signed catalog lists. Raises ValueError when it is none."""
    try:
        ((_, content_info),) = elements(data)
        (_, kind), (_, wrapped) = elements(content_info)
        ((_, signed_data),) = elements(wrapped)
        parts = list(elements(signed_data))
        (_, list_kind), (_, list_wrapped) = elements(parts[2][1])
        ((_, trust_list),) = elements(list_wrapped)
        signers = list(elements(parts[-1][1])) if parts[-1][0] == SET and len(parts) > 3 else []
        subjects = [content for tag, content in list(elements(trust_list))[1:] if tag == SEQUENCE][1]
    except (ValueError, IndexError):
        raise ValueError("is no catalog") from None
    if kind.hex() != SIGNED_DATA or list_kind.hex() != TRUST_LIST:
        raise ValueError("is no catalog")
    if not signers:
        raise ValueError("is not signed")
    digests = set()
    for _, subject in elements(subjects):
        for _, attribute in elements(list(elements(subject))[1][1]):
            (_, name), (_, values) = elements(attribute)
            if name.hex() == INDIRECT_DATA:
                ((_, indirect),) = elements(values)
                (_, _), (_, digest_info) = elements(indirect)
                digests.add(list(elements(digest_info))[1][1])
    return digests


def is_listed(path, digests):
    data = covered_by_hash(path.read_bytes())
    return any(size in HASHES and HASHES[size](data).digest() in digests for size in {len(digest) for digest in digests})


def problems_of(inf):
    text, there = text_of(inf), files_beside(inf)
    name = catalog_of(text)
    if name is None:
        yield "names no catalog"
        return
    catalog = there.get(name.lower())
    if catalog is None:
        yield f"its catalog {name} is not there"
        return
    try:
        digests = digests_of_catalog(catalog.read_bytes())
    except ValueError as reason:
        yield f"its catalog {name} {reason}"
        return
    drivers = [path for path in there.values() if path.suffix.lower() == ".sys" and path.name.lower() in text.lower()]
    for path in [inf, *sorted(drivers)]:
        if not is_listed(path, digests):
            yield f"its catalog {name} does not list {path.name} as it is"


def check_kit(folder):
    infs = sorted(path for path in folder.rglob("*") if path.suffix.lower() == ".inf")
    problems = [f"{inf.relative_to(folder)}: {problem}" for inf in infs for problem in problems_of(inf)]
    if not infs:
        problems.append("no INF file is there")
    if problems:
        sys.exit("\n".join(problems))


if sys.argv[1] == "make":
    for argument in sys.argv[2:]:
        make_catalog(Path(argument))
else:
    check_kit(Path(sys.argv[2]))
