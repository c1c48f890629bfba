"""Whether each INF file of a kit is in a signed catalog, and with it the drivers that it installs.

kit_catalogs.py FOLDER: prints what is missing, one line each, and fails then. Who signed a catalog, and whether Windows trusts
the signer, is not examined here.
"""

import hashlib
import re
import struct
import sys
from pathlib import Path

SIGNED_DATA = "2a864886f70d010702"
TRUST_LIST = "2b0601040182370a01"
INDIRECT_DATA = "2b060104018237020104"
HASHES = {20: hashlib.sha1, 32: hashlib.sha256}
# What an INF file may call its catalog on x64 systems.
CATALOG_KEYS = ("catalogfile.ntamd64", "catalogfile.nt", "catalogfile")

SEQUENCE, SET, OCTETS, OBJECT = 0x30, 0x31, 0x04, 0x06


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


def covered_by_program_hash(data):
    """The bytes of a program, library or driver that its catalog hash covers: all but checksum and signature."""
    (header,) = struct.unpack_from("<I", data, 0x3C)
    optional = header + 24
    (magic,) = struct.unpack_from("<H", data, optional)
    directory = optional + (128 if magic == 0x10B else 144)
    signature, size = struct.unpack_from("<II", data, directory)
    end = signature if size else len(data)
    return data[: optional + 64] + data[optional + 68 : directory] + data[directory + 8 : end] + b"\0" * (-end % 8)


def is_listed(path, digests):
    data = path.read_bytes()
    if data[:2] == b"MZ":
        data = covered_by_program_hash(data)
    return any(size in HASHES and HASHES[size](data).digest() in digests for size in {len(digest) for digest in digests})


def text_of(path):
    data = path.read_bytes()
    return data.decode("utf-16") if data[:2] in (b"\xff\xfe", b"\xfe\xff") else data.decode("cp1252", "replace")


def catalog_of(text):
    """The name of the catalog in an INF file's [Version] section."""
    section, values, strings = "", {}, {}
    for line in text.splitlines():
        line = line.partition(";")[0].strip()
        if line.startswith("["):
            section = line.strip("[]").strip().lower()
        elif "=" in line and section in ("version", "strings"):
            key, _, value = line.partition("=")
            (values if section == "version" else strings)[key.strip().lower()] = value.strip().strip('"')
    for key in CATALOG_KEYS:
        if values.get(key):
            return re.sub("%(.*?)%", lambda name: strings.get(name[1].lower(), ""), values[key])
    return None


def problems_of(inf):
    text = text_of(inf)
    name = catalog_of(text)
    if name is None:
        yield "names no catalog"
        return
    there = {path.name.lower(): path for path in inf.parent.iterdir()}
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


def main():
    folder = Path(sys.argv[1])
    infs = sorted(path for path in folder.rglob("*") if path.suffix.lower() == ".inf")
    problems = [f"{inf.relative_to(folder)}: {problem}" for inf in infs for problem in problems_of(inf)]
    if not infs:
        problems.append("no INF file is there")
    if problems:
        sys.exit("\n".join(problems))


main()
