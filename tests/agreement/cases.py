"""Random kits on random machines, made to hurt: cases.py FOLDER SEED FIRST COUNT DIST NETINST

Each case gets a folder: a kit with the shipped program in it, and case.txt for RunCases.cpp. The seed and its number make
a case, whatever else is made: the same two give the same files again. NETINST is the double of the installer library.
"""

import os
import random
import sys
from pathlib import Path

# Version, build, product, section of Morvix.ini, family. Not taken from the program: both sides are compared with it.
SYSTEMS = [
    ("5.1", "2600", "WinNT", "WinXP32", "Windows Whistler"),
    ("5.2", "3790", "WinNT", "WinXP32E", "Windows Whistler"),
    ("5.2", "3790", "ServerNT", "WinSrv2K332E", "Windows Whistler"),
    ("5.2", "3790", "LanmanNT", "WinSrv2K332E", "Windows Whistler"),
    ("6.0", "6002", "WinNT", "WinVista32E", "Windows Vista"),
    ("6.0", "6002", "ServerNT", "WinSrv2K832E", "Windows Vista"),
    ("6.0", "6002", "LanmanNT", "WinSrv2K832E", "Windows Vista"),
    ("6.1", "7601", "WinNT", "Win732E", "Windows Vista"),
    ("6.1", "7601", "ServerNT", "WinSrv2K8R232E", "Windows Vista"),
    ("6.1", "7601", "LanmanNT", "WinSrv2K8R232E", "Windows Vista"),
    ("6.2", "9200", "WinNT", "Win832E", "Windows Vista"),
    ("6.2", "9200", "ServerNT", "Win832E", "Windows Vista"),
    ("6.3", "9600", "WinNT", "Win832E", "Windows Vista"),
    ("5.0", "2195", "WinNT", "", "Windows 2000"),
]
SECTIONS = sorted({system[3] for system in SYSTEMS if system[3]})
MODELS = ["Norda.NTamd64", "Norda.NTamd64.6.1", "Norda", "norda.ntAMD64.6.0", "Models x64"]
ACCEPTED = ["PCI\\VEN_5D1A&CC_020000", "PCI\\VEN_5D1A&CC_070002", "PCI\\VEN_5D1A&CC_0C0701", "PCI\\VEN_5D1A&DEV_2A10",
            "PCI\\VEN_5D1A&DEV_4D09", "PCI\\VEN_1E2B&DEV_0C40"]
ALMOST = ["PCI\\VEN_5D1A&CC_0200", "PCI\\VEN_5D1A&CC_02000001", "PCI\\ven_5d1a&cc_020000", "PCI\\CC_020000",
          "PCI\\VEN_8086&CC_020000", " PCI\\VEN_5D1A&CC_020000", "PCI\\VEN_5D1A&DEV_2A12", "PCI\\VEN_1E2B&DEV_0C41"]
FAMILIES = ["ngea", "nxga", "nf6a", "ngp1", "ng1k", "ngpv", "NGEM", "nXgE", "qdatdma", "other", "ng1"]
SZ, EXPAND, BINARY, LIST = 1, 2, 3, 7


class Case:
    """One kit and one machine, out of one source of chance."""

    def __init__(self, seed, number):
        self.chance = random.Random(f"{seed}:{number}")
        self.system = self.chance.choice(SYSTEMS)
        self.section = self.system[3] or "Win732E"
        self.files = {}
        self.models = self.chance.sample(MODELS, self.chance.choice([1, 1, 2, 2, 3]))
        self.devices = []
        self.entries = []
        self.make_devices()
        self.setup = "/".join(["Kit", "Setup", "bin"][: self.chance.choice([1, 1, 2, 3])])
        self.levels = self.chance.choice(["0", "", "1", "2", " 1", "1x", "-1", "999", "two", None])
        self.make_kit()

    def rarely(self, share=0.1):
        return self.chance.random() < share

    def one(self, *choices):
        return self.chance.choice(choices)

    # --- the machine -----------------------------------------------------------------------------------------------
    def make_devices(self):
        for _ in range(self.one(1, 1, 2, 2, 3)):
            name = self.device_name()
            if name.upper() in (known.upper() for known in self.devices):
                continue
            self.devices.append(name)
            for instance in self.chance.sample(["3&11583659&0&C8", "3&11583659&0&18", "0a", "0B"], self.one(1, 1, 1, 1, 2, 3)):
                self.add_instance(name, instance)
            if self.rarely(0.04):
                self.entries = [entry for entry in self.entries if entry[0] != name]

    def device_name(self):
        vendor = self.one("VEN_5D1A", "VEN_5D1A", "VEN_5D1A", "VEN_5D1A", "VEN_1E2B", "VEN_8086", "ven_5d1a", "VEN_5d1A")
        device = "&DEV_" + self.one("1A2B", "1A2B", "1B3C", "1C4D", "2A10", "0C40", "1a2b")
        subsystem = "&SUBSYS_" + self.one("00015D1A", "00015D1A", "00025D1A", "A0011734")
        revision = "&REV_" + self.one("01", "01", "02", "A0")
        shape = self.chance.random()
        if shape < 0.72:
            return vendor + device + subsystem + revision
        return self.one(vendor + device, vendor + device + revision, vendor + device + subsystem,
                        vendor + device + subsystem, vendor + device + revision + subsystem,
                        vendor + device + subsystem.lower() + revision, vendor + device + subsystem + revision.lower(),
                        "&REV_01" + vendor + device + subsystem, "&SUBSYS_1&" + vendor + device + revision, "&REV_01",
                        vendor + device + subsystem + revision + revision, vendor + device + subsystem + subsystem + revision,
                        vendor + device + subsystem + revision + "X" * 150, vendor + "&DEV_(1), [2]" + revision)

    def add_instance(self, device, instance):
        self.entries.append((device, instance, None, 0, b""))
        if self.rarely(0.04):
            return
        ids = self.chance.sample(ALMOST, self.one(0, 1, 2))
        if not self.rarely(0.15):
            ids.insert(self.chance.randrange(len(ids) + 1), self.one(ACCEPTED[0], ACCEPTED[0], *ACCEPTED))
        kind, text = LIST, "\0".join(ids) + "\0\0"
        if self.rarely(0.15):
            # A single text has its end: Wine's reg.exe leaves out the last letter of one that has none.
            single, several = "".join(ids[:1]) + "\0", "\0".join(ids)
            kind, text = self.one((LIST, several), (LIST, "\0" + several + "\0\0"), (LIST, ""), (SZ, single), (EXPAND, single),
                                  (BINARY, several + "\0\0"))
        # Of other types than text, the program sees the bytes as they are.
        data = text.encode("latin-1" if kind == BINARY else "utf-16le")
        self.entries.append((device, instance, self.one("CompatibleIDs", "CompatibleIDs", "compatibleids"), kind, data))
        hardware = [f"PCI\\{device}", f"PCI\\{device.split('&SUBSYS')[0]}"]
        self.entries.append((device, instance, "HardwareID", LIST, ("\0".join(hardware) + "\0\0").encode("utf-16le")))

    # --- the kit ---------------------------------------------------------------------------------------------------
    def make_kit(self):
        shown = [self.one("Drv\\Net", "Drv\\Net", "drv\\NET", "Drv"), self.one("More", "Inf Files", "Drv\\Net\\Deep"), "Last"]
        directories = shown[: self.one(1, 1, 2, 2, 3)]
        for directory in directories:
            base = self.base()
            for _ in range(self.one(0, 1, 2, 3, 3, 4, 5) if self.rarely(0.9) else 9):
                self.add_inf(f"{base}/{directory.replace(chr(92), '/')}".replace("drv/NET", "Drv/Net"))
        self.exclusions = [Path(path).name for path in self.files if self.rarely(0.12)]
        # Every section but the right one leads to an INF that would match at once.
        self.files["Kit/Decoy/aaa.inf"] = self.inf([(model, list(self.devices)) for model in MODELS], "$Windows NT$").encode()
        self.files[self.setup + "/Morvix.ini"] = self.encoded(self.setup_ini(directories))

    def base(self):
        folders = self.setup.split("/")
        try:
            levels = int(self.levels) if self.levels and self.levels != "1x" else {"1x": 1}.get(self.levels, 0)
        except ValueError:
            levels = 0
        if not 1 <= levels <= 260:
            levels = 0
        return "/".join(folders[: len(folders) - levels]) if levels < len(folders) else "."

    def setup_ini(self, directories):
        lines = []
        if self.levels is not None:
            lines.append(self.one("[Config]", "[CONFIG]", " [Config] "))
            lines.append(self.one("LevelsToRoot=", "levelstoroot = ") + self.levels)
        own = [f"[{self.one(self.section, self.section, self.section.upper())}]"] + self.section_lines(directories)
        others = [line for section in SECTIONS if section != self.section
                  for line in (f"[{section}]", f"InfSectionName={MODELS[0]}", "InfDir=Decoy")]
        lines += own + others if self.rarely(0.5) else others + own
        if self.rarely():
            # The first of two sections with one name counts.
            lines += [f"[{self.section}]", "InfDir=Decoy", f"InfSectionName={MODELS[0]}"]
        if self.rarely(0.03):
            lines = lines[len(lines) // 2 :]
        return self.one("\r\n", "\r\n", "\r\n", "\n").join(lines) + self.one("\r\n", "")

    def section_lines(self, directories):
        names = self.one(",", ",", ",", " , ").join(self.models)
        if self.rarely(0.05):
            names = self.one("X" * 240 + "," + names, names + ",", "," + names, "", f'"{names}"', f"'{names}'",
                             names + " ; why")
        lines = [self.one("InfSectionName=", "InfSectionName=", "infsectionname = ") + names]
        if self.rarely(0.03):
            lines = []
        for directory in directories:
            lines += [self.chance.choice(self.noise()) for _ in range(self.one(0, 0, 1))]
            lines.append(self.directory_line(directory))
        lines += ["InfExclude=" + self.one(name, name, name.upper(), name + " ", "*.inf") for name in self.exclusions]
        if self.rarely(0.05):
            lines.insert(1, self.one("Comment=" + "long " * 60, "InfDir=" + "A" * 300, "InfExclude=" + "x" * 1100))
        return lines

    def noise(self):
        return ["; InfDir=Decoy", "InfDir", "InfDir=", "infdir=Decoy", "  ", "Other=1", "InfDir=Missing", "InfExclude=",
                "InfExclude", "Infdir=x", "=", "InfDir=" + "\xe4\xf6", "InfSectionName=Second", ";", "x=y=InfDir="]

    def directory_line(self, directory):
        absolute = f"{{case}}\\{self.base()}\\{directory}".replace("/", "\\")
        unusual = [f"InfDir={directory}\\", f"InfDir={absolute}", f"InfDir={absolute}\\", f"InfDir={absolute[2:]}",
                   "InfDir=.\\x", "InfDir=..", f'InfDir="{directory}"', f"InfDir={directory} ; here", f"  InfDir={directory}",
                   f"InfDir = {directory}", f"Was InfDir=Decoy InfDir={directory}", f"InfDir={directory.upper()}",
                   f"InfDir=\t{directory}", f"InfDir={directory}   "]
        return self.chance.choice(unusual) if self.rarely(0.25) else f"InfDir={directory}"

    # --- INF files -------------------------------------------------------------------------------------------------
    def add_inf(self, folder):
        name = self.chance.choice(FAMILIES) + self.one("", "1", "62x64", "_" + "n" * 20, " two")
        name += self.one(".inf", ".inf", ".inf", ".INF")
        if self.rarely(0.08):
            name = self.one("qdatdma.inf", "QDatDMA.INF")
        elif self.rarely(0.06):
            name = self.one("ngea.infx", "ngea.inf~", "nxga.txt", ".inf", "ngea.inf.bak", "n.a.inf")
        path = f"{folder}/{name}"
        if path.upper() in (known.upper() for known in self.files):
            return
        sections = []
        for model in self.models + ([] if self.rarely(0.8) else [self.chance.choice(MODELS)]):
            if not self.rarely(0.15):
                sections.append((model, [self.listed_id() for _ in range(self.one(0, 1, 1, 2, 3))]))
        signature = self.one("$Windows NT$", '"$Windows NT$"', "$WINDOWS NT$", "$windows nt$")
        if self.rarely(0.12):
            signature = self.one("$Chicago$", "", None, "$Windows NT", '"$Windows NT$', " $Windows NT$ ; here", "$Windows NT$x")
        self.files[path] = self.encoded(self.inf(sections, signature))

    def listed_id(self):
        device = self.chance.choice(self.devices)
        if self.rarely(0.2):
            device = "VEN_5D1A&DEV_7FFF&SUBSYS_00015D1A&REV_01"
        parts = device.split("&")
        if len(parts) == 4:
            device = self.one(device, "&".join(parts[:3]), "&".join([*parts[:2], parts[3]]), "&".join(parts[:2]),
                              "&".join(parts[:2]), "&".join(parts[:2]) + "&SUBSYS_FFFFFFFF")
        return device

    def inf(self, sections, signature):
        lines = ["; a driver", self.one("[Version]", "[Version]", "[version]", "[ Version ]" if self.rarely() else "[Version]")]
        if signature is not None:
            lines.append(self.one("Signature=", "Signature   = ", "signature=") + signature)
        lines += ["Class=Net", "Provider=%Mfg%", "DriverVer=03/01/2012,1.2.3.4", "", *self.manufacturer(), ""]
        for name, ids in sections:
            lines.append(f"[{self.one(name, name, name.upper())}]")
            lines += [self.model_line(device) for device in ids]
            if self.rarely(0.04):
                lines += [f"%Filler.{number}% = Nic.ndi, PCI\\VEN_5D1A&DEV_{number:04X}" for number in range(self.one(30, 700))]
        if self.rarely(0.08) and sections:
            lines += [f"[{sections[0][0]}]", self.model_line(self.chance.choice(self.devices))]
        lines += ["[Nic.ndi]", "Characteristics=0x84", "[Strings]", "Mfg=" + self.one("Norda", '"Norda"')]
        lines.append('Nic.DeviceDesc="Norda \xe9 Adapter"')
        return self.one("\r\n", "\r\n", "\n").join(lines) + "\r\n"

    def manufacturer(self):
        value = self.one("Norda,NTamd64", "NORDA", "Lumarc, NTamd64.6.0", "Norda Networks", "Other,Norda")
        if self.rarely(0.15):
            value = self.one("norda,NTamd64", "NordaX", "Other", "LUMARC", '"Norda"', "Norda\tNetworks", "Norda;x", "",
                             "%Norda%", "x" * 495 + " Norda")
        lines = ["[Manufacturer]", self.one("%Mfg%=", "%Mfg% = ", '"Norda"=', "Norda=") + value]
        if self.rarely(0.15):
            lines.insert(1, self.one("%Other%=Nobody", "%" + "K" * 60 + "%=Nobody", "%" + "K" * 98 + "%=Nobody", "NoValue",
                                     "%Mfg%=Nobody"))
        return [] if self.rarely(0.03) else lines

    def model_line(self, device):
        line = self.one("%Nic.DeviceDesc%", "%Nic.DeviceDesc%", "%Unknown%", "Plain Name", "%nic.devicedesc%")
        line += self.one("=", " = ", "=   ")
        line += f"Nic.ndi, PCI\\{self.one(device, device, device, device.lower())}"
        if self.rarely(0.3):
            line = self.one(line + ", PCI\\VEN_5D1A&DEV_1A2B", line + "&CC_0200", line + " ; the usual", line + ";glued",
                            line + "\t", line.replace("PCI\\", ""), line.replace("PCI\\", "PCI\\\\"), line + '"',
                            line.replace("Nic.ndi, ", "Nic.ndi,"), line.replace("Nic.ndi, ", "Nic.ndi, PCI\\VEN_5D1A&DEV_0000, "),
                            line.replace("Nic.ndi", "a\\b"), line + ",",
                            line.replace("PCI\\", '"PCI\\') + '"', line + " \\", line.replace("%", "%" + "L" * 300, 1),
                            line + "," + "x" * 2100, ";" + line, line.replace("=", " ", 1), line.replace("&", "& ", 1),
                            "=" + line)
        return line

    def encoded(self, text):
        """The bytes of a file; {case} is left for the folder, which only its writer knows."""
        kind = self.chance.random()
        if kind < 0.72:
            return text.encode("cp1252")
        if kind < 0.9:
            return b"\xff\xfe" + text.encode("utf-16le")
        # Never UTF-16 of an odd size: there the platform reads one byte too many, whatever it is.
        return {0: b"\xef\xbb\xbf" + text.encode(), 1: b"\xfe\xff" + text.encode("utf-16be"), 2: text.encode("utf-16le"),
                3: text.encode("cp1252")}[self.chance.randrange(4)]

    # --- writing ---------------------------------------------------------------------------------------------------
    def write(self, folder, dist, netinst, live):
        windows = "Z:" + str(folder).replace("/", "\\")
        for path, content in self.files.items():
            for encoding in ("cp1252", "utf-16le", "utf-16be"):
                content = content.replace("{case}".encode(encoding), windows.encode(encoding))
            file = folder / path
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_bytes(content)
        setup = folder / self.setup
        for name in ("Morvix.exe", "MorvixRes.dll"):
            os.link(dist / name, setup / name)
        os.link(netinst, setup / "NetInst.dll")
        (setup / "NetInst.answers.ini").write_text(f"[Answers]\nFamily={self.system[4]}\n")
        scan_all = self.rarely(0.15)
        lines = ["\t".join(["system", *self.system[:3]]), "setup\t" + self.setup.replace("/", "\\"),
                 "options\t/s /nr" + (" /n" if scan_all else "")]
        if live:
            lines.append("live\t" + self.plan_options(windows, "Z:\\", scan_all))
        lines += [f"device\t{name}" for name in self.devices]
        lines += [f"value\t{device}\t{instance}\t{name or ''}\t{kind}\t{data.hex()}"
                  for device, instance, name, kind, data in self.entries]
        (folder / "case.txt").write_text("\n".join(lines) + "\n", encoding="latin-1")
        (folder / "plan.txt").write_text(self.plan_options(windows, "/", scan_all) + "\n")
        (folder / "expected.txt").write_text(f"{self.system[3]}\n{self.system[4]}\n")

    @staticmethod
    def plan_options(windows, root, scan_all):
        return f"--reader wine --map Z:\\={root} --trace" + (" --scan-all" if scan_all else "")


def main():
    root, seed, first, count = Path(sys.argv[1]), sys.argv[2], int(sys.argv[3]), int(sys.argv[4])
    dist, netinst = Path(sys.argv[5]), Path(sys.argv[6])
    for number in range(first, first + count):
        folder = root / f"{number:05d}"
        folder.mkdir(parents=True)
        Case(seed, number).write(folder, dist, netinst, number % 10 == 0 or count == 1)


if __name__ == "__main__":
    main()
