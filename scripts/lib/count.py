#!/usr/bin/env python3
"""count.py REPORT

Prints what failed in a run of CTest, from its JUnit report, and as the last line how much passed and failed. CTest counts
programs: here each case counts that a test has reported in <its name>.xml beside REPORT, and a test without such a report
counts as one. Fails when anything failed or nothing ran. (No viewer of JUnit files among the distribution's packages joins
the two levels and tells a crash after the last case.)
"""
import pathlib
import re
import sys
import xml.etree.ElementTree as ET


def cases_of(report):
    """The name and the failures of each case in the report of a test; nothing of a report that was cut short."""
    try:
        cases = list(ET.parse(report).iter("testcase"))
    except (FileNotFoundError, ET.ParseError):
        return
    for case in cases:
        # prove puts a number before each promise.
        name = re.sub(r"^\d+ - ", "", case.get("name"))
        if case.get("status") == "run":
            name = f"{case.get('classname')}.{name}"
        failures = [found.get("message") or found.text or "" for kind in ("failure", "error") for found in case.iter(kind)]
        if case.get("status") == "notrun" or case.find("skipped") is not None:
            failures.append("did not run")
        yield name, failures


def results_of(test, folder):
    """The name and the failures of everything that a test of CTest has tried."""
    name = test.get("name")
    results = list(cases_of(folder / f"{name}.xml"))
    passed = test.get("status") == "run"
    if not passed and not any(failures for _, failures in results):
        output = (test.findtext("system-out") or "").rstrip().splitlines()
        results.append((name, ["\n".join([f"failed after {test.get('time')} s", *output[-15:]])]))
    if passed and not (folder / f"{name}.xml").exists():
        results.append((name, []))
    return results


def main():
    report = pathlib.Path(sys.argv[1])
    passed = failed = 0
    for test in ET.parse(report).iter("testcase"):
        for name, failures in results_of(test, report.parent):
            if not failures:
                passed += 1
                continue
            failed += 1
            print(f"failed: {test.get('name')}: {name}")
            for line in "\n".join(failures).splitlines()[:30]:
                print(f"    {line}")
    if passed + failed == 0:
        print("nothing ran")
    print(f"{passed} passed, {failed} failed")
    return 0 if passed and not failed else 1


if __name__ == "__main__":
    sys.exit(main())
