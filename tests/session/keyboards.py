#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""What the keys of other keyboards do: text, shortcuts and modal editing, each case in a file of its own that is then looked at on the disk.
Usage: keyboards.py PROGRAM [--pictures FOLDER] [--only WORD]"""
import collections
import re
import sys

from desktop import TOOLS, Desktop, arguments_of, need
from keyboard import Keyboard

CODE = "one\n    two\n# three\n"
PANES = "<C-\\><C-End>3<C-A-\\>4<C-\\><C-End>5<C-A-]>6<C-A-]><C-A-\\>"

# Layout, the text before, the keys as a US keyboard has them, and the text after. Where a case begins, the caret is at the start.
TYPING = (
    # Letters, what needs AltGr, dead keys.
    ("de", "", ";'[-:\"{_", "öäüßÖÄÜ?"),
    ("de", "", "<G-7><G-8><G-9><G-0><G--><G-]><G-q><G-Extra><G-e>", "{[]}\\~@|€"),
    ("de", "", "=e+a`o= ", "éàô'"),
    ("de/nodeadkeys", "", "=e+a`o", "´e`a^o"),
    ("us/intl", "", "'e\"u~n^o`a' \" <G-s><G-e>'c", "éüñôà'\"ßéć"),
    ("ru", "", "Ghbdtn? vbh&", "Привет, мир?"),
    ("gr", "", ";a:iqQ kalhm;era", "άϊ;: καλημέρα"),
    ("us+compose:ralt", "", "<AltGr>\"o<AltGr>'e<AltGr>oc<AltGr>ss<AltGr>->", "öé©ß→"),
    # A sequence that leads nowhere takes no other key with it.
    ("de", "", "=<BS>x=<Left>y", "zx"),

    # Shortcuts, by the places that a user of the layout knows.
    ("de", CODE, "<C-\\><Down><C-&>", "# one\n    two\nthree\n"),
    ("de", CODE, "<C-'><C-'><Down><C-;>", "        one\ntwo\n# three\n"),
    ("de", CODE, "x<C-y>y<Del><C-y><C-S-y>", "zne\n    two\n# three\n"),
    ("us/intl", CODE, "<C-S-d><C-a><C-c><C-End><C-v>z<C-z>", ("one\n" + CODE) * 2),
    # Each pane has its caret: the keys split it, go to the next one and close it again.
    ("de", "12", "<C-Extra><C-End>3<C-A-Extra>4<C-Extra><C-End>5<C-A-'>6<C-A-'><C-A-Extra>", "461235"),
    *((layout, "12", PANES, "461235") for layout in ("us/intl", "us,ru", "gr")),
)
FOREIGN_SHORTCUTS = (
    (CODE, "<C-]><Down><C-[><C-/>", "    one\n# two\n# three\n"),
    (CODE, "<C-a><C-c><C-End><C-v>", CODE * 2),
    (CODE, "<C-S-d><C-S-d><C-z><C-z><C-S-z>", "one\n" + CODE),
    # Text that is looked for, and the keys of a field.
    ("12 34 12 34", "<C-f>34<CR><Esc><C-g><C-S-g><C-x>", "12 34 12 "),
    ("12", "<C-a><C-A-S-c><C-v>", "{path}"),
    ("12 12 34 34", "<C-f>12 <C-a><C-x><C-v>34<CR><Esc><C-x>", "12  34"),
)

# The same in modal editing, which begins in normal mode.
MODAL = (
    ("de", "é b\n", "$r=e0x", " é\n"),
    ("de", "  one\n", "$`ix<Esc>", "  xone\n"),
    ("de", "a {b} c\n", "fbdi<G-7>", "a {} c\n"),
    ("de", "a\n\nb\n", "<G-0>ix<Esc><G-7>ie<Esc>", "ea\nx\nb\n"),
    ("de", "e é\n", ">s&e&=e&<CR>", "é é\n"),
    ("de", "abc\n", "ix<C-G-8>ie<C-G-8>", "exabc\n"),
    ("us/intl", "a\n b\nc\n", "j$maggo<Esc>'aix<Esc>", "a\n\n xb\nc\n"),
    ("us/intl", "ab\n", "\"ayl\"ap~", "aAb\n"),
    ("us/intl", "a é' b\n", "f'ex0f' x", "a  b\n"),
    ("us/intl", "a é\n", ":s/'e/\"u/<CR>", "a ü\n"),
)
FOREIGN_MODAL = (
    ("ab cd\nef\n", "wxjx", "ab d\ne\n"),
    ("ab ab\n", "*#x", "b ab\n"),
    ("ab cd\n", "wgUiw0g~w", "AB CD\n"),
    ("a {b} [c]\n", "3lci{1<Esc>$ci[2<Esc>", "a {1} [2]\n"),
    ("a\nb\n", "majr1`ax", "\n1\n"),
    ("ab 1\n1\n", "G?1<CR>x/1<CR>x", "ab \n\n"),
    ("a\n" * 200, "<C-d>x<C-u>x<C-f>x<C-b>i1<Esc>", re.compile(r"1\n(a\n)+\n(a\n)+\n(a\n)+")),
    ("ab\n", "i1<C-[>i2<C-c>", "21ab\n"),
)
# With the other key map.
FOREIGN_MAPPED = (
    ("a\nb\n", "gcc<A-j>", "b\n# a\n"),
    ("a\nb\n", "Vjgc", "# a\n# b\n"),
)

# The guide has the keys that can be typed on the layout, also on one that is chosen while the program runs.
GUIDE = tuple((layout, "", "<F1><C-a><C-c><C-PgUp><C-v>", re.compile(rf"(?s)(?!.*{missing}).*{found}.*"))
              for layout, found, missing in (("de", r"\(Ctrl\+Ä\)", r"Ctrl\+\]"), ("us", r"\(Ctrl\+\]\)", r"Ctrl\+Ä")))


def title(name):
    return f"{name} — Quillet"


Case = collections.namedtuple("Case", "layout before keys after")


class Rounds:
    """One program, with a tab for each case."""

    def __init__(self, desktop, cases):
        self.desktop, self.cases = desktop, cases
        self.files = [desktop.files / f"{index:03}.py" for index in range(len(cases))]
        for file, case in zip(self.files, cases):
            file.write_text(case.before)

    def run(self):
        """How many cases failed."""
        desktop = self.desktop
        desktop.start_program(*(file.name for file in self.files))
        desktop.until_title(title(self.files[-1].name))
        self.keyboard = Keyboard(desktop)
        failures = 0
        for file, case in zip(self.files, self.cases):
            if len(self.files) > 1:
                self.keyboard.press("<C-PgDn>")
            desktop.until_title(title(file.name))
            failures += 0 if self.passes(file, case) else 1
        self.keyboard.use("us")
        self.keyboard.press("<C-q>")
        desktop.exit_code()
        if complaints := desktop.complaints():
            raise AssertionError(complaints)
        return failures

    def passes(self, file, case):
        after = case.after if isinstance(case.after, re.Pattern) else re.compile(re.escape(case.after.replace("{path}", str(file))))
        self.keyboard.use(case.layout)
        self.keyboard.press(case.keys)
        self.keyboard.press("<C-s>")
        if after.fullmatch(saved := file.read_text()):
            return True
        print(f"{case.layout}: {case.keys}\n  gave {saved!r}\n  not  {after.pattern!r}", file=sys.stderr)
        # The other cases are to have their turn.
        self.keyboard.use("us")
        self.keyboard.press("<Esc><Esc><C-s>")
        return False


def failures(arguments, cases, settings="", prepare=lambda desktop: None):
    """Of the cases that the user asked for, how many fail in a program with these settings."""
    cases = [case for case in cases if arguments.only in f"{case.layout}: {case.keys}"]
    if not cases:
        return 0
    with Desktop(arguments.program, arguments.pictures, settings=settings) as desktop:
        prepare(desktop)
        return Rounds(desktop, cases).run()


def main():
    arguments = arguments_of(__doc__, only="")
    need(TOOLS)
    failed = 0
    for settings, local, foreign in (("", TYPING, FOREIGN_SHORTCUTS), ("editor.vimMode=true\n", MODAL, FOREIGN_MODAL),
                                     ("editor.vimMode=true\neditor.vimKeymapPreset=lazyvim\n", (), FOREIGN_MAPPED)):
        cases = [Case(*case) for case in local] + [Case(layout, *case) for layout in ("ru", "us,gr") for case in foreign]
        failed += failures(arguments, cases, settings)
    failed += sum(failures(arguments, [Case(*case)]) for case in GUIDE)
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
