#!/usr/bin/env python3
"""Puts the faults of mutations.txt into a copy of the sources, and runs the tests that must notice them.

mutate.py check                         every fault fits the sources
mutate.py apply TREE                    makes TREE a copy of the sources with all faults in it; MORVIX_MUTANT=N makes N live
mutate.py run BUILD RESULTS LANE [...]  runs the faults' tests of this lane (pure, windows, e2e); further arguments are
                                        words of which a fault's first line must contain one
mutate.py report RESULTS                tells which faults survived; fails when one did or a test was red without a fault
"""
import os
import pathlib
import re
import signal
import subprocess
import sys
import time

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent.parent
LANES = {"pure": "pure_", "windows": "windows_", "e2e": "morvix_e2e"}


class Mutation:
    def __init__(self, number, title, place):
        file, _, tests = title.partition(": ")
        name, _, occurrence = file.partition(" ")
        self.number = number
        self.place = place
        self.file = name
        self.occurrence = int(occurrence or 0)
        self.tests = tests.split()
        self.old = []
        self.new = []

    def finish(self):
        self.old = "\n".join(self.old)
        self.new = "\n".join(self.new)
        if not self.old or not self.tests or self.old == self.new:
            sys.exit(f"mutations.txt:{self.place}: not a fault")

    def describe(self):
        new = self.new or "(nothing)"
        return f"{self.number} {self.file}: {self.old}  ->  {new}".replace("\n", " ")

    def position(self, text):
        """Where the old text stands in `text`; exactly one place is meant."""
        places = [match.start() for match in re.finditer(re.escape(self.old), text)]
        if self.occurrence:
            if len(places) < self.occurrence:
                sys.exit(f"mutations.txt:{self.place}: {self.file} holds this {len(places)} times")
            return places[self.occurrence - 1]
        if len(places) != 1:
            sys.exit(f"mutations.txt:{self.place}: {self.file} holds this {len(places)} times")
        return places[0]

    def replacement(self):
        """Old and new text side by side, chosen while the program runs."""
        if not self.old.rstrip().endswith(";"):
            return f"(MutantIs({self.number}) ? ({self.new}) : ({self.old}))"
        if self.old.lstrip().startswith("constexpr"):
            head, old = self.old.rstrip(";").split(" = ", 1)
            new = self.new.rstrip(";").split(" = ", 1)[1]
            head = head.replace("constexpr", "const", 1)
            return f"{head} = MutantLives({self.number}) ? {new} : {old};"
        return f"if (MutantIs({self.number})) {{ {self.new} }} else {{ {self.old} }}"


def read_mutations():
    mutations = []
    current = None
    for place, line in enumerate((HERE / "mutations.txt").read_text().splitlines(), 1):
        if line.startswith("- ") and current:
            current.old.append(line[2:])
        elif line.startswith("+ ") and current:
            current.new.append(line[2:])
        elif not line or line.startswith("#"):
            if current:
                current.finish()
            current = None
        elif ": " in line and current is None:
            current = Mutation(len(mutations) + 1, line, place)
            mutations.append(current)
        else:
            sys.exit(f"mutations.txt:{place}: cannot be read")
    if current:
        current.finish()
    return mutations


def mutated_sources(tree):
    """The sources of `tree` with all faults in them, by file name."""
    files = {}
    for mutation in read_mutations():
        files.setdefault(mutation.file, []).append(mutation)
    sources = {}
    for file, mutations in files.items():
        text = (tree / file).read_text()
        end = len(text)
        for position, mutation in sorted(((m.position(text), m) for m in mutations), key=lambda p: -p[0]):
            behind = position + len(mutation.old)
            if behind > end:
                sys.exit(f"mutations.txt:{mutation.place}: two faults in one place")
            text = text[:position] + mutation.replacement() + text[behind:]
            end = position
        sources[file] = f'#include "{HERE / "Mutant.h"}"\n#line 1\n{text}'
    return sources


def apply(tree):
    """Makes `tree` a copy of the sources with the faults in it; what has not changed since the last time stays untouched."""
    mutated = mutated_sources(ROOT)
    wanted = set()
    for folder, folders, files in os.walk(ROOT):
        if pathlib.Path(folder) == ROOT:
            folders[:] = [name for name in folders if name not in ("build", ".git")]
        for name in files:
            source = pathlib.Path(folder) / name
            file = source.relative_to(ROOT)
            content = mutated[str(file)].encode() if str(file) in mutated else source.read_bytes()
            target = tree / file
            wanted.add(target)
            if not target.exists() or target.read_bytes() != content:
                target.parent.mkdir(parents=True, exist_ok=True)
                target.write_bytes(content)
    for folder, folders, files in os.walk(tree):
        if pathlib.Path(folder) == tree:
            folders[:] = [name for name in folders if name != "build"]
        for name in files:
            if pathlib.Path(folder) / name not in wanted:
                (pathlib.Path(folder) / name).unlink()
    print(f"{len(read_mutations())} faults in {len(mutated_sources(ROOT))} files")


class Runner:
    def __init__(self, build, lane):
        self.build = build
        self.lane = lane
        self.limits = {}

    def command(self, test):
        suite, _, names = test.partition(":")
        where = self.build / ("host" if self.lane == "pure" else "windows") / "tests"
        command = {
            "pure": [str(where / suite)],
            "windows": ["wine", str(where / f"{suite}.exe")],
            "e2e": ["wine", str(where / "e2e" / f"{suite}.exe")],
        }[self.lane]
        return command + ["--gtest_fail_fast", "--gtest_brief=1"] + ([f"--gtest_filter={names}"] if names else [])

    def run(self, test, number, limit):
        """@return 'passed', 'failed' or 'stopped', and the last lines that the program wrote."""
        environment = dict(os.environ, MORVIX_MUTANT=str(number))
        with subprocess.Popen(self.command(test), env=environment, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              start_new_session=True) as process:
            try:
                text = process.communicate(timeout=limit)[0].decode(errors="replace")
            except subprocess.TimeoutExpired:
                os.killpg(process.pid, signal.SIGKILL)
                process.communicate()
                self.clean_up()
                return "stopped", ""
        # A program that crashes in Wine may leave 0 all the same, but it does not come to its last lines.
        if process.returncode != 0 or "[  PASSED  ]" not in text:
            return "failed", text
        if re.search(r"\[  PASSED  \] 0 tests|Running 0 tests", text):
            return "nothing ran", text
        return "passed", text

    def clean_up(self):
        """What a stopped program has left running must not disturb the next one."""
        if self.lane != "pure":
            subprocess.run(["wineserver", "-k"], check=False)
            subprocess.run(["wineserver", "-w"], check=False, timeout=60)

    def limit(self, test, record):
        """Seconds that the test may take: many times what it takes without a fault, which it must pass."""
        if test not in self.limits:
            started = time.monotonic()
            verdict, text = self.run(test, 0, 900)
            record("baseline", verdict, test, text)
            self.limits[test] = 60 + 5 * (time.monotonic() - started) if verdict == "passed" else None
        return self.limits[test]


def first_failure(text):
    match = re.search(r"\[  FAILED  \] ([^ \r\n]+)", text)
    return match.group(1) if match else ""


def run(build, results, lane, words):
    runner = Runner(pathlib.Path(build), lane)
    with open(f"{results}/{lane}.tsv", "a", encoding="utf-8") as out:

        def record(kind, verdict, test, text):
            out.write(f"{kind}\t{verdict}\t{test}\t{first_failure(text)}\n")
            out.flush()
            if kind == "baseline" and verdict != "passed":
                pathlib.Path(f"{results}/baseline-{lane}.log").write_text(text)

        noticed = noticed_so_far(results)
        for mutation in read_mutations():
            tests = [test for test in mutation.tests if test.startswith(LANES[lane])]
            if mutation.number in noticed or words and not any(word in mutation.describe() for word in words):
                continue
            for test in tests:
                limit = runner.limit(test, record)
                if limit is None:
                    continue
                verdict, text = runner.run(test, mutation.number, limit)
                record(mutation.number, verdict, test, text)
                print(f"{verdict:8} {mutation.describe()} {first_failure(text)}", flush=True)
                if verdict != "passed":
                    break
        # A fault may leave something behind that makes every later test red: then nothing here means anything.
        for test in [test for test, limit in runner.limits.items() if limit is not None]:
            verdict, text = runner.run(test, 0, 900)
            record("baseline", verdict, test, text)


def rows(results):
    for file in pathlib.Path(results).glob("*.tsv"):
        for line in file.read_text(encoding="utf-8").splitlines():
            yield line.split("\t")


def noticed_so_far(results):
    return {int(kind) for kind, verdict, *_ in rows(results) if kind != "baseline" and verdict != "passed"}


def report(results):
    mutations = {mutation.number: mutation for mutation in read_mutations()}
    tried = {int(kind) for kind, *_ in rows(results) if kind != "baseline"}
    noticed = noticed_so_far(results)
    red = [(verdict, test, case) for kind, verdict, test, case in rows(results)
           if kind == "baseline" and verdict != "passed"]
    for number in sorted(tried - noticed):
        print(f"survived: {mutations[number].describe()} ({' '.join(mutations[number].tests)})")
    for verdict, test, case in red:
        print(f"{verdict} without a fault: {test} {case}")
    print(f"{len(noticed)} of {len(tried)} faults noticed, {len(tried - noticed)} survived, "
          f"{len(mutations) - len(tried)} not tried")
    return 0 if tried and tried == noticed and not red else 1


def main(arguments):
    if arguments == ["check"]:
        print(f"{len(read_mutations())} faults in {len(mutated_sources(ROOT))} files")
    elif len(arguments) == 2 and arguments[0] == "apply":
        apply(pathlib.Path(arguments[1]))
    elif len(arguments) >= 4 and arguments[0] == "run" and arguments[3] in LANES:
        run(arguments[1], arguments[2], arguments[3], arguments[4:])
    elif len(arguments) == 2 and arguments[0] == "report":
        return report(arguments[1])
    else:
        sys.exit(__doc__)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
