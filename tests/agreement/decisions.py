"""Each decision is defined once, and the installer and morvix-kit link that definition: decisions.py HOST_BUILD WINDOWS_BUILD

What the rooms without platform calls define is looked up in their libraries, and where a program has it from in the map that
the linker leaves of it.
"""

import re
import subprocess
import sys
from collections import defaultdict
from pathlib import Path

DECIDING = ["Common/Src/orv", "installer/base/base", "config/config", "devices/devices", "installer/installer",
            "netinst/netinst"]
# The decisions of a device pass, in its order, and those around it. Each has to be in both programs.
IN_BOTH = ["DecideOSCode", "FamilyForVersion", "AcceptDevice", "FindAcceptedId", "ReadInfLists", "ReadInfDirs",
           "ReadInfExcludes", "ReadSectionNames", "ResolveRelativePath", "PlanPass", "SearchForDevice", "FindInf", "JudgeInf",
           "WhyNotQualified", "ExpectedSignature",
           "NamesOurBrand", "StoreInfOnce", "ListsDevice", "ParseModelLine", "FamilyOfInf", "ClassifyInf",
           "RestartReasons"]


def run(*command, text=None):
    return subprocess.run(command, input=text, capture_output=True, text=True, check=True).stdout


def names_of(symbols):
    """What each function goes by: a decision of the device pass by its name, whatever it takes, so that a rewritten one is
    seen; another by its types too, because short names mean different things in different rooms. Those of lambdas and
    templates are left out."""
    shown = run("c++filt", text="\n".join(symbols)).splitlines()
    names = {}
    for symbol, text in zip(symbols, shown):
        text = re.sub(r"\(anonymous namespace\)::|\[abi:\w+\]|\[clone .*", "", text)
        # The same type is "unsigned long" here and "unsigned long long" on Windows.
        text = re.sub(r"\b(?:unsigned|long|int)\b(?: \b(?:unsigned|long|int)\b)*", "number", text)
        if found := re.fullmatch(r"([\w:~]+)(\(.*)?", text):
            names[symbol] = found[1] if found[1] in IN_BOTH else text
    return names


def definitions(build, room):
    """The functions that a room's files define for others, other than inline ones: name -> the objects that do."""
    folder, _, name = room.rpartition("/")
    library = f"{name}_pure"
    member, listed = None, []
    for line in run("nm", "--defined-only", str(build / folder / f"lib{library}.a")).splitlines():
        if line.endswith(".o:"):
            member = line[: -len(".o:")]
        elif symbol := re.fullmatch(r"[0-9a-f]+ T (_Z\w+)", line):
            listed.append((symbol[1], f"{library}({member})"))
    names = names_of([symbol for symbol, _ in listed])
    found = defaultdict(set)
    for symbol, place in listed:
        if symbol in names and not names[symbol].startswith("std::"):
            found[names[symbol]].add(place)
    return found


def linked(path):
    """The functions that a map names: name -> the objects that define it, those with local definitions too, and the names
    of those that are in the program."""
    sections = re.findall(r"^ \.text[.$](_Z\w+)\s+0x([0-9a-f]+)\s+0x[0-9a-f]+ (\S+)$", path.read_text(), re.M)
    names = names_of([symbol for symbol, *_ in sections])
    found, kept = defaultdict(set), set()
    for symbol, address, place in sections:
        if symbol in names:
            found[names[symbol]].add(re.sub(r"^(?:\S*/)?lib(\w+)\.a\((\S+)\.o(?:bj)?\)$", r"\1(\2)", place))
            if int(address, 16):
                kept.add(names[symbol])
    return found, kept


def main():
    host, windows = Path(sys.argv[1]), Path(sys.argv[2])
    problems = []
    decisions = defaultdict(set)
    for room in DECIDING:
        for name, files in definitions(host, room).items():
            decisions[name] |= files
    problems += [f"{name} is defined in {' '.join(places)}" for name, places in decisions.items() if len(places) > 1]
    maps = {name: linked(path) for name, path in {
        "Morvix.exe": windows / "link-maps/Morvix.map", "NetInst.dll": windows / "link-maps/NetInst.map",
        "morvix-kit.exe": windows / "link-maps/morvix-kit.map", "morvix-kit": host / "link-maps/morvix-kit.map"}.items()}
    for program, (places, _) in maps.items():
        for name in places.keys() & decisions.keys():
            if not places[name] <= decisions[name]:
                problems.append(f"{program} has {name} from {' '.join(places[name])}, not from {' '.join(decisions[name])}")
    kept = {program: names for program, (_, names) in maps.items()}
    for name in IN_BOTH:
        if name not in decisions:
            problems.append(f"no room defines {name}")
        if name not in kept["Morvix.exe"] | kept["NetInst.dll"]:
            problems.append(f"the installer lacks {name}")
        problems += [f"{program} lacks {name}" for program in ("morvix-kit.exe", "morvix-kit") if name not in kept[program]]
    shared = decisions.keys() & kept["morvix-kit"]
    print(f"# {len(decisions)} functions decide, {len(shared)} of them in morvix-kit")
    for problem in problems:
        print(f"# {problem}")
    return 1 if problems or len(shared) < len(IN_BOTH) else 0


if __name__ == "__main__":
    sys.exit(main())
