#!/usr/bin/env python3
"""Puts small faults into a copy of the sources, and runs the tests that must notice them.

mutate.py check                     every entry of the three lists finds its place in the sources
mutate.py list                      every fault with its number
mutate.py apply TREE                makes TREE a copy of the sources with all faults in it; MORVIX_MUTANT=N chooses one
mutate.py run BUILD RESULTS LANE [WORD...]
                                    runs the tests of this lane (pure, windows, e2e), with words only for faults whose
                                    description holds one of them
mutate.py suites                    the suites of the lane pure
mutate.py report RESULTS            prints the faults that no test noticed; fails when there are any, and when a test
                                    failed without a fault

The faults are those that operators.py makes in the files without platform calls, without equivalent.txt, and those of
chosen.txt. What shared.txt names has to be noticed by each of its tests.
"""
import concurrent.futures
import os
import pathlib
import re
import resource
import signal
import subprocess
import sys
import time

import operators

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent.parent
LANES = {"pure": "pure_", "windows": "windows_", "e2e": "morvix_e2e"}
MOST_CHOSEN = 60
# The suite of each folder's files without platform calls.
SUITES = {
    "Common/Src": "pure_common",
    "Common/Src/settings": "pure_settings",
    "config": "pure_config",
    "devices": "pure_devices",
    "installer": "pure_installer",
    "installer/base": "pure_base",
    "packaging/actions": "pure_actions",
}


class Mutation:
    def __init__(self, number, file, fault, tests):
        self.number = number
        self.file = file
        self.fault = fault
        self.tests = tests
        self.needed = []  # tests that have to notice it, whichever others do

    def describe(self):
        fault = self.fault
        return f"{self.number} {self.file}:{fault.line} {fault.function} {fault.operator}: {fault.change}"


class Sources:
    """The sources and their faults, each file read once."""

    def __init__(self):
        self.files = {}

    def __getitem__(self, file):
        if file not in self.files:
            self.files[file] = operators.Source((ROOT / file).read_text())
        return self.files[file]


def pure_files():
    """The files that the rooms build without platform calls, each with its header, and headers with their own tests."""
    for room, suite in SUITES.items():
        text = (ROOT / room / "CMakeLists.txt").read_text()
        names = re.search(r"PURE((?:\s+\w+\.cpp)+)", text).group(1).split()
        for name in names:
            yield f"{room}/{name}", suite
            header = f"{room}/{pathlib.Path(name).stem}.h"
            if (ROOT / header).exists():
                yield header, suite
        for header in sorted((ROOT / room).glob("*.h")):
            tested = any((HERE.parent / "pure").glob(f"*/{header.stem}Test.cpp"))
            if tested and not header.with_suffix(".cpp").exists():
                yield str(header.relative_to(ROOT)), suite


def entries(name):
    """The lines of a list: FILE FUNCTION OPERATOR /REGEX/ [NUMBER]: TEXT, where OPERATOR may be "any"."""
    for place, line in enumerate((HERE / name).read_text().splitlines(), 1):
        if not line or line.startswith("#"):
            continue
        match = re.fullmatch(r"(\S+) (\S+) (\w+) /(.+)/(?: (\d+))?: (.+)", line)
        if not match:
            sys.exit(f"{name}:{place}: cannot be read")
        yield f"{name}:{place}", match.groups()


def found(sources, place, entry):
    """The faults that an entry names."""
    file, function, operator, text, _, _ = entry
    if not (ROOT / file).exists():
        sys.exit(f"{place}: there is no {file}")
    faults = [
        fault
        for fault in sources[file].faults()
        if fault.function == function and operator in ("any", fault.operator) and re.search(text, fault.change)
    ]
    if not faults:
        sys.exit(f"{place}: {file} has no such place in {function}")
    return faults


def the_fault(sources, place, entry):
    """The one fault that an entry names."""
    faults = found(sources, place, entry)
    number = int(entry[4] or 0)
    if number > len(faults) or (not number and len(faults) > 1):
        sys.exit(f"{place}: {len(faults)} places: " + "; ".join(fault.change for fault in faults))
    return faults[number - 1]


def read_mutations(sources):
    chosen = list(entries("chosen.txt"))
    if len(chosen) > MOST_CHOSEN:
        sys.exit(f"chosen.txt: {len(chosen)} faults, {MOST_CHOSEN} at most")
    mutations = [Mutation(number, entry[0], the_fault(sources, place, entry), entry[5].split())
                 for number, (place, entry) in enumerate(chosen, 1)]
    same = {id(fault) for place, entry in entries("equivalent.txt") for fault in found(sources, place, entry)}
    for file, suite in pure_files():
        for fault in sources[file].faults():
            if id(fault) not in same:
                mutations.append(Mutation(len(mutations) + 1, file, fault, [suite]))
    by_fault = {id(mutation.fault): mutation for mutation in mutations}
    for place, entry in entries("shared.txt"):
        mutation = by_fault.get(id(the_fault(sources, place, entry)))
        if not mutation:
            sys.exit(f"{place}: {entry[0]} is not shared, or the fault changes nothing")
        mutation.needed = entry[5].split()
        mutation.tests = mutation.tests + mutation.needed
    return mutations


def apply(tree):
    """Makes `tree` a copy of the sources with the faults in it; what has not changed since the last time stays untouched."""
    sources = Sources()
    mutations = read_mutations(sources)
    numbers = {id(mutation.fault): mutation.number for mutation in mutations}
    mutated = {mutation.file for mutation in mutations}
    wanted = set()
    for folder, folders, files in os.walk(ROOT):
        if pathlib.Path(folder) == ROOT:
            folders[:] = [name for name in folders if name not in ("build", ".git")]
        for name in files:
            source = pathlib.Path(folder) / name
            file = str(source.relative_to(ROOT))
            content = source.read_bytes()
            if file in mutated:
                text = sources[file].with_faults(numbers)
                content = f'#include "{HERE / "Mutant.h"}"\n#line 1\n{text}'.encode()
            target = tree / file
            wanted.add(target)
            if not target.exists() or target.read_bytes() != content:
                target.parent.mkdir(parents=True, exist_ok=True)
                target.write_bytes(content)
                target.chmod(source.stat().st_mode)
    for folder, folders, files in os.walk(tree):
        if pathlib.Path(folder) == tree:
            folders[:] = [name for name in folders if name != "build"]
        for name in files:
            if pathlib.Path(folder) / name not in wanted:
                (pathlib.Path(folder) / name).unlink()
    print(f"{len(mutations)} faults in {len(mutated)} files")


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
        environment = dict(os.environ, MORVIX_MUTANT=str(number), ASAN_OPTIONS="hard_rss_limit_mb=1500")

        def limit_processor_time():
            # A loaded machine does not use it up. What waits in Wine uses none.
            if self.lane == "pure":
                resource.setrlimit(resource.RLIMIT_CPU, (limit, limit))

        with subprocess.Popen(self.command(test), env=environment, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              start_new_session=True, preexec_fn=limit_processor_time) as process:
            try:
                text = process.communicate(timeout=None if self.lane == "pure" else limit)[0].decode(errors="replace")
            except subprocess.TimeoutExpired:
                os.killpg(process.pid, signal.SIGKILL)
                process.communicate()
                self.clean_up()
                return "stopped", ""
        if process.returncode in (-signal.SIGXCPU, -signal.SIGKILL):
            return "stopped", text
        # A program that crashes in Wine may leave 0 all the same, but it does not come to its last lines.
        if process.returncode != 0 or "[  PASSED  ]" not in text:
            return "failed", text
        if re.search(r"\[  PASSED  \] 0 tests|Running 0 tests", text):
            return "nothing ran", text
        return "passed", text

    def clean_up(self):
        """What a stopped program has left running must not disturb the next one."""
        subprocess.run(["wineserver", "-k"], check=False)
        subprocess.run(["wineserver", "-w"], check=False, timeout=60)

    def limit(self, test, record):
        """Seconds that the test may take: many times what it takes without a fault, which it must pass."""
        if test not in self.limits:
            started, used = time.monotonic(), processor_seconds()
            verdict, text = self.run(test, 0, 900)
            record("baseline", verdict, test, text)
            if self.lane == "pure":
                longest = 5 + 10 * (processor_seconds() - used)
            else:
                longest = 60 + 5 * (time.monotonic() - started)
            self.limits[test] = int(longest) if verdict == "passed" else None
        return self.limits[test]


def processor_seconds():
    """What the programs that have ended have used."""
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


def first_failure(text):
    match = re.search(r"\[  FAILED  \] ([^ \r\n]+)", text)
    return match.group(1) if match else ""


def run(build, results, lane, words):
    runner = Runner(pathlib.Path(build), lane)
    noticed = noticed_so_far(results)
    mutations = [
        (mutation, test)
        for mutation in read_mutations(Sources())
        for test in mutation.tests
        if test.startswith(LANES[lane]) and (mutation.number not in noticed or test in mutation.needed)
        and (not words or any(word in mutation.describe() for word in words))
    ]
    with open(f"{results}/{lane}.tsv", "a", encoding="utf-8") as out:

        def record(kind, verdict, test, text):
            out.write(f"{kind}\t{verdict}\t{test}\t{first_failure(text)}\n")
            out.flush()
            if kind == "baseline" and verdict != "passed":
                pathlib.Path(f"{results}/baseline-{lane}.log").write_text(text)

        def attempt(mutation, test):
            verdict, text = runner.run(test, mutation.number, runner.limits[test])
            record(mutation.number, verdict, test, text)
            print(f"{verdict:8} {mutation.describe()} {first_failure(text)}", flush=True)

        tests = {test: runner.limit(test, record) for test in dict.fromkeys(test for _, test in mutations)}
        # Programs of Windows share a machine; the others share nothing.
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count() if lane == "pure" else 1) as pool:
            attempts = [pool.submit(attempt, *pair) for pair in mutations if tests[pair[1]] is not None]
            for done in attempts:
                done.result()
        # A fault may leave something that makes every later test fail: then nothing here means anything.
        for test in [test for test, limit in tests.items() if limit is not None]:
            verdict, text = runner.run(test, 0, 900)
            record("baseline", verdict, test, text)


def rows(results):
    for file in pathlib.Path(results).glob("*.tsv"):
        for line in file.read_text(encoding="utf-8").splitlines():
            yield line.split("\t")


def noticed_so_far(results):
    return {int(kind) for kind, verdict, *_ in rows(results) if kind != "baseline" and verdict in ("failed", "stopped")}


def report(results):
    mutations = {mutation.number: mutation for mutation in read_mutations(Sources())}
    tried = {int(kind) for kind, *_ in rows(results) if kind != "baseline"}
    noticed = noticed_so_far(results)
    asleep = [(number, test) for number, verdict, test in {tuple(row[:3]) for row in rows(results) if row[0] != "baseline"}
              if verdict not in ("failed", "stopped") and test in mutations[int(number)].needed]
    red = [(verdict, test, case) for kind, verdict, test, case in rows(results)
           if kind == "baseline" and verdict != "passed"]
    for number in sorted(tried - noticed):
        print(f"survived: {mutations[number].describe()} ({' '.join(mutations[number].tests)})")
    for number, test in sorted(asleep):
        print(f"not noticed by each: {mutations[int(number)].describe()} ({test})")
    for verdict, test, case in red:
        print(f"{verdict} without a fault: {test} {case}")
    print(f"{len(noticed)} of {len(tried)} faults noticed, {len(tried - noticed)} survived, "
          f"{len(mutations) - len(tried)} not tried")
    return 0 if tried and tried == noticed and not asleep and not red else 1


def main(arguments):
    if arguments == ["check"]:
        sources = Sources()
        mutations = read_mutations(sources)
        numbers = {id(mutation.fault): mutation.number for mutation in mutations}
        for file in {mutation.file for mutation in mutations}:
            sources[file].with_faults(numbers)
        print(f"{len(mutations)} faults, {sum(1 for _ in entries('chosen.txt'))} of them chosen, "
              f"{sum(1 for _ in entries('equivalent.txt'))} entries of faults without effect")
    elif arguments == ["list"]:
        for mutation in read_mutations(Sources()):
            print(mutation.describe())
    elif arguments == ["suites"]:
        tests = {test for mutation in read_mutations(Sources()) for test in mutation.tests}
        print(*sorted({test.partition(":")[0] for test in tests if test.startswith(LANES["pure"])}))
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
