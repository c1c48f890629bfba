"""Compares runs with plans: compare.py CASES MORVIX_KIT SEED | --changed

For each case of cases.py that RunCases.cpp has run: the trace of the device pass, the INF files that went to the driver
store in their order, the installs and the result values, against `morvix-kit plan` of the registry export. Prints each
difference with the command that repeats its case, and writes to CASES/../counts how many cases were of which kind. With
--changed, changes what the runs have left, each time in one place, and fails when that is not noticed.
"""

import json
import os
import re
import subprocess
import sys
from collections import Counter
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

PASS_BEGINS = b"Morvix: ************ enumerating registry for devices..."
PASS_ENDS = b"Morvix: ************ finished enumerating registry for devices"
FAULT = b"Morvix: unhandled fault: "

# The lines that may be in the place of a placeholder, whole lines in their order. No line that a plan has words for is in it.
LINE = rb"Morvix: [^\n]*\n"
ANSWERS = {
    b"<what the driver store answers>": rb"(Morvix: SetupCopyOEMInfA completed successfully - inf=[^\n]*\n)?"
    rb"Morvix: Entering - PrintGetLastErrorMessage\n" + LINE,
    b"<what the installation answers>": rb"Morvix:  2K/XP UpdateDriver\(\) returned: [^\n]*\n",
    b"<what the driver directory holds>": rb"Morvix: Driver sys file NOT found in [^\n]*\n"
    rb"Morvix: Enter -> PostResultToRegistry\nMorvix: Installation result is ->\nMorvix: FAILURE\n"
    rb"Morvix: The type of driver being installed is ->\n" + LINE
    + rb"Morvix: The driver version being installed is ->\n" + LINE
    + rb"(Morvix: First time calling PostResultToRegistry[^\n]*\n)?Morvix: Exit -> PostResultToRegistry\n"
    rb"Morvix: Entering -> UpdateTavunstRegistry\(\)\nMorvix: Exiting -> UpdateTavunstRegistry\(\)\n"
    rb"Morvix: Exit -> PostInstallRegResult\n",
    b"<what the adapter says about storage boot>": rb"(Morvix: Enter -> GetNetCfgInstanceId\(\)\n" + LINE
    + rb"Morvix: Exit -> GetNetCfgInstanceId\(\)\n)?",
}


class Disagreement(Exception):
    """What run and plan disagree about, in one case."""


def shown(line):
    """A line of trace as a plan shows it: without its line feed at the end; what could steer a terminal, and bytes that are
    no UTF-8, escaped."""
    line = line[:-1] if line.endswith(b"\n") else line
    steers = re.compile("[\x00-\x1f\x7f-\x9f\xad\u200b-\u200f\u2028-\u202e\u2060-\u206f\ufeff\udc80-\udcff]")
    text = line.decode(errors="surrogateescape")
    escape = lambda found: "".join(f"\\x{byte:02X}" for byte in found[0].encode(errors="surrogateescape"))
    return steers.sub(escape, text).encode()


def device_pass(trace):
    """The lines of a run's device pass, and whether a fault has ended it."""
    lines = [shown(line) for line in trace.split(b"\0")[:-1]]
    if PASS_BEGINS not in lines:
        return [], False
    lines = lines[lines.index(PASS_BEGINS) :]
    faults = [number for number, line in enumerate(lines) if line.startswith(FAULT)]
    if faults:
        return lines[: faults[0]], True
    if PASS_ENDS not in lines:
        raise Disagreement("the run's device pass has no end")
    return lines[: lines.index(PASS_ENDS) + 1], False


def compare_traces(planned, run):
    """Line by line; a placeholder takes the place of the lines that only the platform can have said."""
    rest = b"".join(line + b"\n" for line in run)
    for number, line in enumerate(planned, 1):
        found = re.match(ANSWERS.get(line, re.escape(line) + rb"\n"), rest)
        if not found:
            said = rest.partition(b"\n")[0]
            raise Disagreement(f"line {number} of the plan's trace is {line!r}, the run says {said!r}")
        rest = rest[found.end() :]
    if rest:
        raise Disagreement(f"the plan's trace ends, the run says {rest.partition(bytes([10]))[0]!r}")


def compare_effects(planned, run, journal, windows):
    """What the run did, as its trace and the installer library's journal tell, against the JSON of the plan."""
    stored = [line.rpartition(b"\\")[2].decode() for line in run if line.startswith(b"Morvix: Calling SetupCopyOEMInfA for ")]
    expected = [name for device in planned["devices"] for name in device["stored"]]
    if stored != expected:
        raise Disagreement(f"driver store: planned {expected}, run {stored}")
    asked = re.findall(r"^InstallForRecord family=\[(.*?)\] inf=\[(.*)\] id=\[(.*?)\] flags=0 source", journal, re.M)
    installs = [(planned["system"]["family"], on_machine(device["match"]["inf"], windows), "PCI\\" + device["key"])
                for device in planned["devices"] if device["match"]]
    if asked != installs:
        raise Disagreement(f"installs: planned {installs}, run {asked}")
    before = b"Morvix: The type of driver being installed is ->"
    written = [run[number + 1][len(b"Morvix: ") :].decode() for number, line in enumerate(run) if line == before]
    values = [device["report"]["value"] for device in planned["devices"] if device["report"]]
    if written != values:
        raise Disagreement(f"result values: planned {values}, run {written}")


def on_machine(inf, setup):
    """The path of a planned INF as an install record holds it: in upper case, and empty when it does not fit."""
    path = inf if ":" in inf else setup + "\\" + inf.replace("/", "\\")
    return "" if len(path) > 255 else re.sub("[a-z\xe0-\xf6\xf8-\xfe]", lambda letter: letter[0].upper(), path)


class Comparison:
    """One case, with the program that plans."""

    def __init__(self, folder, program):
        self.folder, self.program = folder, program
        case = dict(line.split("\t", 1) for line in (folder / "case.txt").read_text("latin-1").splitlines() if "\t" in line)
        self.kit = folder / case["setup"].replace("\\", "/")
        self.setup = "Z:" + str(self.kit).replace("/", "\\")
        self.is_planned_live = "live" in case
        self.options = (folder / "plan.txt").read_text().split()
        self.machine = (folder / "machine.reg").read_bytes() + (folder / "devices.reg").read_bytes()

    def plan(self, *options):
        answer = subprocess.run([self.program, "plan", str(self.kit), "-", "--setup-dir", self.setup, *options],
                                input=self.machine, capture_output=True, timeout=120, check=False)
        if answer.returncode != 0:
            raise Disagreement(f"morvix-kit ended with {answer.returncode}: {answer.stderr.decode(errors='replace')}")
        return answer.stdout

    def run(self, change=lambda text: text):
        """Compares what the run has left, changed by `change`. Returns the kinds of this case."""
        trace = self.plan(*self.options)
        document = json.loads(self.plan(*(option for option in self.options if option != "--trace"), "--json"))["machines"][0]
        section, family = (self.folder / "expected.txt").read_text().splitlines()
        if (document["system"]["section"], document["system"]["family"]) != (section, family):
            raise Disagreement(f"system: planned {document['system']}, it is {section} of {family}")
        lines, fault = device_pass(change((self.folder / "run.trace").read_bytes()))
        if fault != (document["outcome"] == "fault"):
            raise Disagreement(f"planned {document['outcome']}, the run ended {'with a fault' if fault else 'by itself'}")
        compare_traces(trace.split(b"\n")[:-1], lines)
        compare_effects(document, lines, change((self.kit / "journal.txt").read_bytes()).decode("cp1252"), self.setup)
        kinds = set(kinds_of(document, lines))
        if self.is_planned_live:
            live = self.folder / "live.txt"
            if not live.exists() or live.read_bytes().replace(b"\r\n", b"\n") != trace:
                raise Disagreement("the plan on the machine itself is another one than that of its export")
            kinds.add("planned live")
        return kinds


def kinds_of(document, lines):
    """What happens in a case: names for the counts."""
    yield document["outcome"]
    yield "system " + (document["system"]["section"] or "without section")
    for device in document["devices"]:
        match = device["match"]
        yield f"match in pass {match['pass']}" if match else "no INF for a device"
        yield from (f"passed over: {over['reason']}" for over in device["passedOver"])
        if match and len(device["stored"]) > 1:
            yield "several files stored"
        if match:
            yield "result value" if device["report"] else "no driver family"
    yield from (f"rejected: {device['reason']}" for device in document["rejected"] if "5D1A" in device["key"].upper())
    if sum(1 for device in document["devices"] if device["match"]) > 1:
        yield "several devices installed"
    searched = [line.partition(b", section name=")[2] for line in lines if line.startswith(b"Morvix: ParseINFFile(): ")]
    if len(searched) > len(set(searched)) and b"Morvix: Entering - SetupCopyInf" in lines:
        yield "a file met again is not stored again"
    for kind, line in (("UTF-16 INF", b"Morvix: file is Unicode"), ("DMA engine", b"Morvix: QDATINSTALLED"),
                       ("section without lines", b"Morvix: GetPrivateProfileSection() failed"),
                       ("long section", b"Morvix: GetPrivateProfileSection() increasing size of section buffer")):
        if line in lines:
            yield kind


# What may go wrong in a run: what is there, and what is there instead.
CHANGES = [
    (rb"Morvix: processing: [^\0]*\0", rb""),
    (rb"(Morvix: Calling SetupCopyOEMInfA for [^\0]*)(\.inf\0)", rb"\1x\2"),
    (rb"(Morvix: Adding INF [^\0]*\0)", rb"\1\1"),
    (rb"Morvix: matched:[^\0]*\0", rb""),
    (rb"(InstallForRecord family=\[Windows )\w+", rb"\1NT"),
    (rb"(InstallForRecord [^\n]*)(\.INF\] id)", rb"\1X\2"),
    (rb"(InstallForRecord [^\n]*id=\[PCI.VEN_)", rb"\1X"),
    (rb"InstallForRecord [^\n]*\n", rb""),
    (rb"(Morvix: TAV[A-Z_]+)Install\0", rb"\1Other\0"),
    (rb"Morvix: \*+ finished enumerating registry for devices\n\0", rb"Morvix: unhandled fault: x\0"),
]


def notice_changes(comparisons):
    """Whether each change is noticed in the first case that has the place for it."""
    missed = 0
    for pattern, instead in CHANGES:
        for comparison in comparisons:
            made = []

            def change(text):
                changed = re.sub(pattern, instead, text, count=1)
                made.append(changed != text)
                return changed

            try:
                comparison.run(change)
            except Disagreement:
                if any(made):
                    break
                raise
            if any(made):
                print(f"# not noticed in {comparison.folder.name}: {pattern!r} -> {instead!r}")
                missed += 1
                break
        else:
            print(f"# no run has {pattern!r}")
            missed += 1
    return missed


def main():
    cases, program, seed = Path(sys.argv[1]), sys.argv[2], sys.argv[3]
    if seed == "--changed":
        return 1 if notice_changes([Comparison(folder, program) for folder in sorted(cases.iterdir())[:50]]) else 0
    counts = Counter()

    def attempt(folder):
        try:
            return folder, Comparison(folder, program).run(), None
        except Disagreement as difference:
            return folder, set(), difference

    with ThreadPoolExecutor(os.cpu_count()) as pool:
        for folder, kinds, difference in pool.map(attempt, sorted(cases.iterdir())):
            counts["cases"] += 1
            counts.update(kinds)
            if difference:
                counts["disagreements"] += 1
                print(f"# case {folder.name}: {difference}")
                print(f"#   again: tests/agreement/plan_and_run.sh {seed} {int(folder.name)}")
    (cases.parent / "counts").write_text("".join(f"{kind}\t{count}\n" for kind, count in sorted(counts.items())))
    return 1 if counts["disagreements"] or not counts["cases"] else 0


if __name__ == "__main__":
    sys.exit(main())
