"""Holds the cells of a package's tables against the rules of its own _Validation table.

validation.py FOLDER: the folder has a file <table>.idt for each table. Prints what does not fit, and fails then.
"""

import re
import sys
from pathlib import Path

GUID = r"\{[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\}"
NAME = r'[^\\/:*?"<>|\x00-\x1f]+'
# What a text of each category looks like. A condition is parsed by the engine only; here it must not be cut off.
CATEGORIES = {
    "Identifier": r"[A-Za-z_][A-Za-z0-9_.]*",
    "UpperCase": r"[A-Z_][A-Z0-9_.]*",
    "Property": r"%?[A-Za-z_][A-Za-z0-9_.]*",
    "Guid": GUID,
    "Version": r"\d{1,5}(\.\d{1,5}){0,3}",
    "Language": r"\d{1,5}(,\d{1,5})*",
    "RegPath": r"[^\\].*[^\\]",
    "Filename": rf"{NAME}(\|{NAME})?",
    "WildCardFilename": r'[^\\/:"<>]+',
    "DefaultDir": rf"\.|{NAME}(\|{NAME})?(:{NAME})?",
    "Cabinet": r"#?[A-Za-z0-9_.]+",
    "CustomSource": r"[A-Za-z_][A-Za-z0-9_.]*",
    "Shortcut": r".+",
    "Binary": r".+",
    "Condition": r"[^ ].*[^ ]|[^ ]",
    "Formatted": r"([^][]|\[[^][]+\])*",
    "Template": r"([^][]|\[[^][]+\])*",
    "Text": r".*",
}


def read(path):
    lines = path.read_bytes().decode("cp1252").split("\r\n")
    columns = lines[0].split("\t")
    rows = [dict(zip(columns, line.split("\t"))) for line in lines[3:] if line]
    return columns, rows


def problems_of(value, rule, keys):
    if value == "":
        return [] if rule["Nullable"] == "Y" else ["is empty"]
    found = []
    if rule["MinValue"] and not int(rule["MinValue"]) <= int(value) <= int(rule["MaxValue"]):
        found.append("is out of range")
    if rule["Set"] and value not in rule["Set"].split(";"):
        found.append("is not in the set")
    tables = [table for table in rule["KeyTable"].split(";") if table]
    names_row = any(value in keys.get(table, ()) for table in tables)
    # A file's version may name another file instead of being one.
    if tables and not names_row and rule["Category"] != "Version":
        found.append("names no row of " + rule["KeyTable"])
    category = rule["Category"]
    parts = value.split(";") if rule["Column"] == "KeyTable" else [value]
    if category and not names_row and not all(re.fullmatch(CATEGORIES[category], part, re.DOTALL) for part in parts):
        found.append("is no " + category)
    return found


def main():
    tables = {path.stem: read(path) for path in Path(sys.argv[1]).glob("*.idt") if path.stem not in ("_SummaryInformation", "_ForceCodepage")}
    if "_Validation" not in tables:
        sys.exit("  there is no table _Validation")
    rules = {(rule["Table"], rule["Column"]): rule for rule in tables["_Validation"][1]}
    keys = {table: {row[columns[0]] for row in rows} for table, (columns, rows) in tables.items()}
    there = {(table, column) for table, (columns, rows) in tables.items() for column in columns}
    problems = [f"{table}.{column} has no rule" for table, column in sorted(there - set(rules))]
    problems += [f"the rule for {table}.{column} has no column" for table, column in sorted(set(rules) - there)]
    for table, (columns, rows) in sorted(tables.items()):
        for row in rows:
            for column in columns:
                rule = rules.get((table, column))
                for problem in problems_of(row.get(column, ""), rule, keys) if rule else ():
                    problems.append(f"{table}.{column} of {row[columns[0]]} {problem}: {row.get(column, '')}")
    if not rules or problems:
        sys.exit("\n".join("  " + problem for problem in problems) or "  no rules")


main()
