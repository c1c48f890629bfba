#!/usr/bin/env python3
"""proof-report REPORT.zip...            prints one page: what each report proves, refuses, and has different from Wine
proof-report --write REPORT.zip...    puts the columns of these reports into docs/PROOF.md
proof-report --check FOLDER [REPORT.zip]
                                      whether docs/PROOF.md has the rows of the tests that FOLDER lists, as
                                      <step>.xml of --gtest_list_tests for each step, or <step> for a command; and, for
                                      the steps of the report, what they say of Wine

A report is what proof.cmd has made on a machine. A step with one suite has a row for each of its tests, any other step
has one row. When a row is neither proved nor "not here", the page is printed, and proof-report ends with 1.
"""
import codecs
import difflib
import pathlib
import re
import sys
import xml.etree.ElementTree as xml
import zipfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
PAGE = ROOT / "docs" / "PROOF.md"
EMULATOR = "Wine"
SYSTEMS = {
    "5.2": "XP x64, 2003",
    "6.0": "Vista, 2008",
    "6.1": "7, 2008 R2",
    "6.2": "8, 2012",
    "6.3": "8.1, 2012 R2",
    "10": "10, 2016 to 2022",
    "11": "11, 2025",
    "ARM64": "11 on ARM64",
}
FIRST_BUILD_OF_11 = 22000
LONGEST_REASON = 160
WHOLE = "all of it"

HEAD = """\
# What was proved where

Each row is a step of the [bundle for real machines](REAL-MACHINES.md#the-bundle), or one test of it; each column is a system that sent
back a report. "proved" means that the row ran there and found what it should; "not here" that this machine cannot do it,
with the reason; a cell in bold differs from Wine; an empty cell means that nobody has run it there.

`scripts/proof-report --write report-COMPUTER.zip` fills a column. The column of Wine is compared with a run of the bundle
whenever `scripts/test` runs. Of the steps `windows_...`, that run has `windows_base` only: the programs of the others run as
tests of their own then, which fail when a test fails, and their cells here are compared by
`scripts/test --only proof_bundle --full-matrix`.

`InBoxDriver` binds a network card anew, one that is not connected if there is one. It is "not here" where that could cut the
line to the machine, over remote desktop or a remote shell, or with one connected card only, unless `proof.cmd` was started with
`/cut-network`.

"""


def fail(text):
    sys.exit(f"proof-report: {text}")


def lines_of(text):
    """The lines as Windows writes them. Python's splitlines also ends a line at characters that names may hold."""
    return [line for line in text.replace("\r\n", "\n").split("\n") if line]


class Report:
    """What one machine has sent back."""

    def __init__(self, path):
        try:
            with zipfile.ZipFile(path) as archive:
                self.facts = dict(line.split(": ", 1) for line in lines_of(self.text(archive, "facts.txt")))
                table = [line.split("\t") for line in lines_of(self.text(archive, "steps.tsv"))[1:]]
                self.cases = {}
                for name in sorted(archive.namelist()):
                    if name.startswith("results/") and name.endswith(".xml"):
                        self.add_cases(name[len("results/") :].split(".")[0], archive.read(name))
        except (OSError, KeyError, ValueError, zipfile.BadZipFile, xml.ParseError) as problem:
            fail(f"{path} is no report: {problem}")
        # A step that was restarted has two lines: the later one counts.
        self.outcomes = {row[0]: row[1] for row in table}
        self.column = self.system()

    @staticmethod
    def text(archive, name):
        return archive.read(name).decode("latin-1")

    def system(self):
        if self.facts["emulator"] != "none":
            return EMULATOR
        major, minor, build = map(int, re.match(r"(\d+)\.(\d+)\.(\d+)", self.facts["version"]).groups())
        if self.facts["processor"] == "ARM64":
            return SYSTEMS["ARM64"]
        if major >= 10:
            return SYSTEMS["11" if build >= FIRST_BUILD_OF_11 else "10"]
        return SYSTEMS.get(f"{major}.{minor}") or fail(f"no column for version {self.facts['version']}")

    def code_page(self):
        name = "cp" + self.facts.get("ANSI code page", "1252")
        try:
            return codecs.lookup(name).name
        except LookupError:
            return "latin-1"

    def has_failed(self):
        """Whether a row is neither proved nor "not here"; a step or a report without any has proved nothing."""
        outcomes = [kind(outcome) for cases in self.cases.values() for outcome in cases.values()]
        if not outcomes or any(not self.cases.get(step) for step in self.outcomes):
            return True
        return set(self.outcomes.values()) != {"ended"} or not set(outcomes) <= {"proved", "not here"}

    def add_cases(self, step, content):
        try:
            content.decode("utf-8")
        except UnicodeDecodeError:
            # GoogleTest writes texts of the system, such as a card's name, in the system's code page.
            content = content.decode(self.code_page(), "replace").encode("utf-8")
        for suite in xml.fromstring(content).iter("testsuite"):
            for case in suite.iter("testcase"):
                self.cases.setdefault(step, {})[suite.get("name"), case.get("name")] = outcome_of(case)

    def cell(self, step, row):
        """What a row of the page says of this machine; nothing when the step did not run."""
        if step not in self.outcomes:
            return ""
        cases = self.cases.get(step, {})
        if self.outcomes[step] != "ended":
            return shortened(next((text for text in reversed(cases.values()) if text != "proved"), self.outcomes[step]))
        if row != WHOLE:
            return shortened(next((text for (_, case), text in cases.items() if case == row), ""))
        if len(cases) == 1:
            return shortened(next(iter(cases.values())))
        return counted(list(cases.values()))


def outcome_of(case):
    failures = [failure.get("message", "") for failure in case.iter("failure")]
    if failures:
        return failures[0] if case.get("name") == "Ends" else "failed: " + " ".join(failures[0].split())
    skipped = case.find("skipped")
    if skipped is None and case.get("result", "completed") == "completed":
        return "proved"
    message = " ".join((skipped.get("message") or "" if skipped is not None else "").split())
    # Before the reason, GoogleTest names the line of the source.
    return message[message.find("not here") :] if "not here" in message else "skipped: " + message


def kind(cell):
    """The cell without its reason and its numbers."""
    return re.sub(r"\d+", "", cell.strip("*").split(":")[0]).strip()


def counted(outcomes):
    kinds = [kind(outcome) for outcome in outcomes]
    counts = [f"{kinds.count(each)} {each}" for each in ("proved", "failed", "not here", "skipped") if each in kinds]
    return "proved" if set(kinds) == {"proved"} else ", ".join(counts)


def shortened(text):
    text = text.replace("|", "/")
    return text if len(text) <= LONGEST_REASON else text[: LONGEST_REASON - 3] + "..."


def rows_of(step, names):
    """The rows of a step that has these (suite, case)."""
    one_suite = len({suite for suite, _ in names}) == 1
    return [(step, case) for _, case in names] if one_suite and len(names) > 1 else [(step, WHOLE)]


def kept_page():
    """The columns of the kept page, and its rows with their cells."""
    lines = [line for line in lines_of(PAGE.read_text(encoding="utf-8")) if line.startswith("| ")] if PAGE.exists() else []
    if not lines:
        return {}
    table = [[cell.strip() for cell in line.strip("|").split("|")] for line in lines]
    columns = table[0][2:]
    return {(row[0].strip("`"), row[1].strip("`")): dict(zip(columns, row[2:])) for row in table[1:]}


def marked(cell, emulator):
    return f"**{cell}**" if cell and emulator and kind(cell) != kind(emulator) else cell


def table_of(columns, rows):
    lines = ["| step | test | " + " | ".join(columns) + " |", "|---" * (len(columns) + 2) + "|"]
    for (step, name), cells in rows.items():
        emulator = cells.get(EMULATOR, "")
        shown = [marked(cells.get(column, "").strip("*"), emulator) for column in columns]
        # Two blanks would make a cell that is not empty.
        lines.append(f"| `{step}` | {name if name == WHOLE else f'`{name}`'} | " + " | ".join(shown) + " |")
    return "\n".join(line.replace("|  |", "| |").replace("|  |", "| |") for line in lines) + "\n"


def merged(kept, reports):
    """The kept rows and those of the reports, with the cells of the reports."""
    rows = {}
    for report in reports:
        for step in report.outcomes:
            # What a step that did not end has left says nothing of its rows.
            known = [row for row in kept if row[0] == step]
            ended = report.outcomes[step] == "ended"
            for row in rows_of(step, list(report.cases.get(step, {}))) if ended or not known else known:
                rows.setdefault(row, dict(kept.get(row, {})))
    for row, cells in kept.items():
        if row[0] not in {step for step, _ in rows}:
            rows[row] = dict(cells)
    for report in reports:
        for row, cells in rows.items():
            cell = report.cell(*row)
            # What a machine cannot do takes nothing from what another one of the same system has shown.
            if cell and not (kind(cell) == "not here" and cells.get(report.column)):
                cells[report.column] = cell
    return rows


def summary(report, rows):
    kinds = [kind(cells.get(report.column, "")) for cells in rows.values() if cells.get(report.column)]
    other = sum(bool(cells.get(report.column) and cells.get(EMULATOR)) and
                kind(cells[report.column]) != kind(cells[EMULATOR]) for cells in rows.values())
    counts = f"rows {len(kinds)}, proved {kinds.count('proved')}, refused {kinds.count('refused to run on this machine')}, different from Wine {other}"
    return f"- {report.column} ({report.facts['version']}, {report.facts['processor']}): {counts}\n"


def details(report):
    lines = [f"- `{step}` {suite}.{case}: {outcome}\n" for step, cases in report.cases.items()
             for (suite, case), outcome in cases.items() if outcome != "proved"]
    return f"\n## Not proved on {report.column}\n\n" + "".join(lines) if lines else ""


def printed(reports):
    rows = merged(kept_page(), reports)
    columns = [EMULATOR, *dict.fromkeys(report.column for report in reports if report.column != EMULATOR)]
    return ("# Proof of Morvix\n\n" + "".join(summary(report, rows) for report in reports) + "\n" + table_of(columns, rows) +
            "".join(details(report) for report in reports))


def check_rows(folder):
    """Whether the page has the rows of these tests; where it differs is printed."""
    wanted = []
    for file in sorted(pathlib.Path(folder).iterdir()):
        names = []
        if file.suffix == ".xml":
            suites = xml.parse(file).getroot().iter("testsuite")
            names = [(suite.get("name"), case.get("name")) for suite in suites for case in suite.iter("testcase")]
        wanted += rows_of(file.stem, names)
    page = sorted(kept_page())
    if page == sorted(wanted):
        return True
    lines = [[f"{step}: {name}\n" for step, name in rows] for rows in (page, sorted(wanted))]
    sys.stdout.writelines(difflib.unified_diff(*lines, "docs/PROOF.md", "the tests", n=0))
    print("docs/PROOF.md has other rows: scripts/test --only proof_bundle --full-matrix, then "
          "scripts/proof-report --write build/package-proof/report-*.zip")
    return False


def check_outcomes(report):
    """Whether the page says of Wine what the report does; where it differs, and what the report lacks, is printed."""
    if report.column != EMULATOR:
        fail(f"the report is from {report.column}: the page is checked with one from {EMULATOR}")
    page = kept_page()
    left_out = dict.fromkeys(step for step, _ in page if step not in report.outcomes)
    for step in left_out:
        print(f"left out: {step}")
    same = True
    for (step, name), cells in page.items():
        kept, now = cells.get(EMULATOR, ""), report.cell(step, name)
        if step not in left_out and kept != now:
            print(f"{step}, {name}: docs/PROOF.md says [{kept}], and the run [{now}]")
            same = False
    return same


def check(folder, report=None):
    same = check_rows(folder)
    return 0 if (report is None or check_outcomes(Report(report))) and same else 1


def main(arguments):
    if len(arguments) in (2, 3) and arguments[0] == "--check":
        return check(*arguments[1:])
    write = arguments[:1] == ["--write"]
    files = arguments[1:] if write else arguments
    if not files or any(file.startswith("-") for file in files):
        sys.exit(__doc__)
    reports = [Report(file) for file in files]
    if write:
        rows = merged(kept_page(), reports)
        PAGE.write_text(HEAD + table_of([EMULATOR, *SYSTEMS.values()], rows), encoding="utf-8")
    else:
        print(printed(reports), end="")
        return int(any(report.has_failed() for report in reports))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
