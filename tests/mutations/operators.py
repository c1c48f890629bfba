"""Finds the places of a C++ source at which one of these operators makes a small fault:

  negate    a condition is inverted, also a name before "?"; a "!" is left out
  equality  == and != are swapped
  boundary  < and <=, > and >= are swapped
  logic     && and || are swapped
  mask      & becomes |
  constant  a number is one more, or one less
  flag      true and false are swapped
  remove    a statement is left out
  default   the result is the default value of its type

It reads the text as clang-format lays it out and is no parser: what it does not understand, it leaves alone. Debian has
no tool that mutates C++.
"""
import dataclasses
import re

SWAPS = {
    "==": ("equality", "!="),
    "!=": ("equality", "=="),
    "<": ("boundary", "<="),
    "<=": ("boundary", "<"),
    ">": ("boundary", ">="),
    ">=": ("boundary", ">"),
    "&&": ("logic", "||"),
    "||": ("logic", "&&"),
    "&": ("mask", "|"),
}
BINARY = re.compile(r"(?<=\s)(==|!=|<=|>=|<|>|&&|\|\||&)(?=\s)")
NOT = re.compile(r"(?<![\w)\]])!(?!=)")
CHOICE = re.compile(r"(?:(?<=[(\[{])|(?<=return )|(?<= = )|(?<=[,:?] )|^)[A-Za-z_][\w.]*(?= \? )")
FLAG = re.compile(r"\b(true|false)\b")
NUMBER = re.compile(r"(?<![\w.'<])(0[xX][0-9A-Fa-f]+|\d+)([uUlL]*)(?![\w.'>])")
# What holds no code: literals, comments, directives.
NO_CODE = re.compile(
    r'R"(\w*)\((?:.|\n)*?\)\1"|"(?:[^"\\\n]|\\.)*"|(?<!\w)\'(?:[^\'\\\n]|\\.)+\'|//[^\n]*|/\*(?:.|\n)*?\*/|^#[^\n]*', re.MULTILINE
)
BEFORE_CODE = re.compile(
    r"(?:\)\s*(?:(?:const|noexcept|override|final|mutable)\b\s*)*(?:->\s*[\w:<>,&*\s]+?)?|\b(?:else|do|try)|\])\s*$"
)
DECLARATION = re.compile(
    r"(?:(?:static|const|unsigned|thread_local)\s+)*[A-Za-z_][\w:]*(?:<[^;=]*>)?(?:\s+[*&]*|[*&]+\s*(?:const\s+)?)"
    r"(?:\w+|\[[\w,\s]+\])\s*(?:[=;({\[]|$)"
)
LEFT_ALONE = re.compile(r"(?:using|struct|class|enum|static_assert|template|typedef|constexpr|static constexpr|break|goto)\b")
# Without these, nothing that a test could see is different.
WITHOUT_EFFECT = re.compile(r"\.(?:reserve|shrink_to_fit)\(")
DEFAULTS = {"", "{}", "0", "0U", "nullptr", "{nullptr}", "false", "std::nullopt"}


@dataclasses.dataclass
class Fault:
    function: str
    operator: str
    line: int
    change: str  # what becomes of the text, in one line
    mutated: str  # what the site holds instead


@dataclasses.dataclass
class Site:
    """A stretch of the source that is replaced by a choice of its faults and itself."""

    start: int
    end: int
    kind: str  # condition, value or statement
    text: str
    faults: list

    def choice(self, numbered):
        """The text that chooses between the faults, given as (number, fault), and the original."""
        if self.kind == "statement":
            branches = [f"if (MutantIs({number})) {{ {fault.mutated} }} else " for number, fault in numbered]
            return "".join(branches) + f"{{ {self.text} }}"
        cast = "static_cast<bool>" if self.kind == "condition" else ""
        branches = [f"MutantIs({number}) ? {cast}({fault.mutated}) : " for number, fault in numbered]
        return f"({''.join(branches)}{cast}({self.text}))"


def closing(text, at):
    """The position of the bracket that closes the one at `at`."""
    depth = 0
    for position in range(at, len(text)):
        depth += (text[position] in "([{") - (text[position] in ")]}")
        if depth == 0:
            return position
    raise ValueError("a bracket is not closed")


def opening(text, at):
    """The position of the bracket that the one at `at` closes."""
    depth = 0
    for position in range(at, -1, -1):
        depth += (text[position] in ")]}") - (text[position] in "([{")
        if depth == 0:
            return position
    raise ValueError("a bracket is not opened")


def split(code, start, end, separator):
    """The stretches of code[start:end] between the separators that lie in no bracket."""
    parts = []
    depth = 0
    begin = start
    for position in range(start, end):
        depth += (code[position] in "([{") - (code[position] in ")]}")
        if code[position] == separator and depth == 0:
            parts.append((begin, position))
            begin = position + 1
    return [*parts, (begin, end)]


class Source:
    def __init__(self, text):
        self.text = text
        self.code = NO_CODE.sub(lambda match: re.sub(r"[^\n]", "~", match.group(0)), text)
        self.sites = []
        # What the compiler alone evaluates.
        evaluated = re.findall(r"static_assert\((?:\w+::)*(\w+)\(", self.code)
        position = 0
        while (position := self.code.find("{", position)) != -1:
            if BEFORE_CODE.search(self.code, max(0, position - 300), position):
                end = closing(self.code, position)
                function, may_default = self.head(position)
                if function not in evaluated:
                    self.block(position + 1, end, function, may_default)
                position = end
            position += 1
        self.sites.sort(key=lambda site: site.start)

    def head(self, brace):
        """The name of the function whose body begins at `brace`, and whether its result may be a default value."""
        bracket = self.code.rfind(")", 0, brace)
        before = self.code[: opening(self.code, bracket)].rstrip() if bracket != -1 else ""
        if initializers := re.search(r"\)\s*:\s*\w+(?:[({].*)?$", before[before.rfind("}") + 1 :], re.DOTALL):
            start = before.rfind("}") + 1 + initializers.start()
            before = before[: opening(before, start)].rstrip()
        name = re.search(r"operator\W+$|[\w~]+$", before)
        line = before[before.rfind("\n") + 1 :]
        return (name.group(0) if name else "", not re.search(r"&\s+[\w:]+$|\bauto\s+[\w:]+$", line))

    def block(self, position, end, function, may_default):
        """The statements between two braces."""
        code = self.code
        while True:
            position += len(code[position:end]) - len(code[position:end].lstrip(" \n~;"))
            if position >= end:
                return
            if code[position] == "{":
                close = closing(code, position)
                self.block(position + 1, close, function, may_default)
                position = close + 1
            elif label := re.compile(r"case\b(?:[^:]|::)*:(?!:)|default\s*:|(?:else|do|try)\b").match(code, position, end):
                position = label.end()
            elif header := re.compile(r"(if|while|for|switch|catch)\s*(constexpr\s*)?\(").match(code, position, end):
                close = closing(code, header.end() - 1)
                if not header.group(2):
                    self.header(header.group(1), header.end(), close, function)
                position = close + 1
            else:
                finish = split(code, position, end, ";")[0][1]
                self.statement(position, finish, function, may_default)
                position = finish + 1

    def header(self, keyword, start, end, function):
        parts = split(self.code, start, end, ";")
        if keyword == "for" and len(parts) == 3:
            condition = parts[1]
        elif keyword in ("if", "while"):
            condition = parts[-1]
        else:
            return
        if not re.match(r"\s*$|\s*(?:const\s+)?(?:auto\b|[\w:<>]+[\s&*]+\w+\s+=\s)", self.code[slice(*condition)]):
            self.site("condition", *condition, function)

    def statement(self, start, end, function, may_default):
        code = self.code[start:end]
        inner = [
            start + match.start() for match in re.finditer(r"\{", code) if BEFORE_CODE.search(code, 0, match.start())
        ]
        if inner:
            while inner:
                close = closing(self.code, inner[0])
                self.block(inner[0] + 1, close, function, "->" in self.code[inner[0] - 30 : inner[0]])
                inner = [brace for brace in inner if brace > close]
            return
        if LEFT_ALONE.match(code):
            return
        result = re.match(r"return\b\s*", code)
        if not result and DECLARATION.match(code):
            parts = split(self.code, start, end, "=")
            if len(parts) == 2 and not self.code[parts[1][0] : end].lstrip().startswith("{"):
                self.site("value", parts[1][0], end, function)
            return
        self.site("statement", start, end + 1, function)
        faults = self.sites[-1].faults
        line = self.text.count("\n", 0, start) + 1
        shown = " ".join(self.text[start : end + 1].split())
        if result:
            if may_default and code[result.end() :].strip() not in DEFAULTS:
                faults.append(Fault(function, "default", line, f"{shown} -> return {{}};", "return {};"))
        elif not WITHOUT_EFFECT.search(code):
            faults.append(Fault(function, "remove", line, f"{shown} -> (nothing)", ""))

    def site(self, kind, start, end, function):
        """A site with the faults that lie within it."""
        while self.code[start].isspace():
            start += 1
        text = self.text[start:end]
        code = self.code[start:end]
        shown = " ".join(text.split())
        faults = []

        def add(operator, begin, finish, new):
            line = self.text.count("\n", 0, start + begin) + 1
            mutated = text[:begin] + new + text[finish:]
            around = " ".join(text[max(0, begin - 30) : finish + 30].split())
            faults.append(Fault(function, operator, line, f"{around}: {text[begin:finish]} -> {new or '(nothing)'}", mutated))

        # A single comparison is inverted by its own operator.
        if kind == "condition" and not (re.match(r"!?[^!=<>&|]*(?:[!=]= [^!=<>&|]*)?$", code) and re.search(r"^!|[!=]= ", code)):
            line = self.text.count("\n", 0, start) + 1
            faults.append(Fault(function, "negate", line, f"{shown}: negated", f"!({text})"))
        for match in BINARY.finditer(code):
            add(SWAPS[match.group(0)][0], match.start(), match.end(), SWAPS[match.group(0)][1])
        for match in NOT.finditer(code):
            add("negate", match.start(), match.end(), "")
        for match in CHOICE.finditer(code):
            add("negate", match.start(), match.end(), "!" + match.group(0))
        for match in FLAG.finditer(code):
            add("flag", match.start(), match.end(), "false" if match.group(0) == "true" else "true")
        for match in NUMBER.finditer(code):
            number = int(match.group(1), 0)
            for other in (number + 1, number - 1) if number else (1,):
                add("constant", match.start(), match.end(), f"{other}{match.group(2)}")
        self.sites.append(Site(start, end, kind, text, faults))

    def faults(self):
        return [fault for site in self.sites for fault in site.faults]

    def with_faults(self, number_of):
        """The text with the faults for which `number_of` has a number."""
        parts = []
        position = 0
        for site in self.sites:
            numbered = [(number_of[id(fault)], fault) for fault in site.faults if id(fault) in number_of]
            if numbered:
                parts += [self.text[position : site.start], site.choice(numbered)]
                position = site.end
        return "".join(parts) + self.text[position:]
