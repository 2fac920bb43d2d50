#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""What an input method composes, in text and in modal editing, each case in a file of its own that is then looked at on the disk.
Usage: input_method.py PROGRAM [--pictures FOLDER]"""
import pathlib
import subprocess
import sys

from desktop import TOOLS, arguments_of, need
from keyboards import Case, failures

# The desktop's own interpreter has the library that the engine needs.
PYTHON = "/usr/bin/python3"
ENGINE = pathlib.Path(__file__).with_name("composing_engine.py")

# The text before, the keys, and the text after; the engine makes "日本" of "nihon ".
TYPING = (
    ("", "nihon 1a ", "日本1a"),
    ("ab", "<C-a>nihon <C-z><C-z>", "ab"),
    ("", "nihon<Esc>a ", "a"),
    ("ab", "<Right>nihon<Right>1", "anihonb1"),
    ("ab\n", "a <C-f>b <CR><Esc><Del>1", "aa1\n"),
)
MODAL = (
    ("abc\n", "xinihon <Esc>x", "日bc\n"),
    ("abc\n", "inihon<Esc>a <Esc>", "aabc\n"),
    ("abc\n", "iw<C-c>x", "abc\n"),
    ("abc\n", "inihon <Esc>u", "abc\n"),
    ("abc\n", "a1<Esc>.nihon", "a11bc\n"),
    ("a日b\n", "fnihon x", "ab\n"),
    ("abc\n", "rnihon lx", "日c\n"),
    ("abc\n", "rnihon<Esc>a lx", "ac\n"),
    ("a日本\n", "/nihon <CR>x", "a本\n"),
    ("a\n", ":s /a /nihon /<CR>", "日本\n"),
    ("a\nb\n", ":1nihon<Esc><BS>2<CR>x", "a\n\n"),
    ("ab\n", "ia <Esc>:w <Esc>x", "ab\n"),
)


def start_input_method(desktop, *options):
    desktop.environment.update(QT_IM_MODULE="ibus")
    desktop.start_bus()
    desktop.start("ibus-daemon", "--panel=disable", "--config=disable", "--emoji-extension=disable")
    desktop.until("the input method's daemon", lambda: list(desktop.path.glob("config/ibus/bus/*")))
    engine = subprocess.Popen((PYTHON, ENGINE, *options), env=desktop.environment, stdout=subprocess.PIPE, text=True)
    desktop.processes.append(engine)
    if engine.stdout.readline().strip() != "ready":
        raise RuntimeError("the input method does not start; are python3-gi and gir1.2-ibus-1.0 installed?")
    desktop.rest()


def main():
    arguments = arguments_of(__doc__, only="")
    need(TOOLS | {"ibus-daemon": "ibus", PYTHON: "python3"})
    failed = 0
    for settings, table in (("", TYPING), ("editor.vimMode=true\n", MODAL)):
        for options in ((), ("--ignores-escape",)):
            cases = [Case("us", *case) for case in table if not options or "<Esc>" in case[1]]
            failed += failures(arguments, cases, settings, lambda desktop: start_input_method(desktop, *options))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
