#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""What an input method composes, in text and in modal editing, each case in a file of its own that is then looked at on the disk.
Usage: input_method.py PROGRAM [--pictures FOLDER]"""
import argparse
import pathlib
import shutil
import subprocess
import sys

from desktop import missing_tools
from keyboards import SKIPPED, Case, failed_cases

# The desktop's own interpreter has the library that the engine needs.
PYTHON = "/usr/bin/python3"
ENGINE = pathlib.Path(__file__).with_name("composing_engine.py")
# Seconds after each key: the answers of the input method come later than its keys.
PAUSE = 0.06

# The text before, the keys, and the text after; the engine makes "日本" of "nihon ".
TYPING = (
    ("", "nihon 1a ", "日本1a"),
    ("ab", "<C-a>nihon <C-z>", "ab"),
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
    bus = subprocess.Popen(("dbus-daemon", "--session", "--nofork", "--print-address"), env=desktop.environment, stdout=subprocess.PIPE,
                           stderr=subprocess.DEVNULL, text=True)
    desktop.processes.append(bus)
    desktop.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().strip()
    desktop.start("ibus-daemon", "--panel=disable", "--config=disable", "--emoji-extension=disable")
    desktop.until("the input method's daemon", lambda: list(desktop.path.glob("config/ibus/bus/*")))
    engine = subprocess.Popen((PYTHON, ENGINE, *options), env=desktop.environment, stdout=subprocess.PIPE, text=True)
    desktop.processes.append(engine)
    if engine.stdout.readline().strip() != "ready":
        raise RuntimeError("the input method does not start")


def missing():
    tools = missing_tools() + [tool for tool in ("setxkbmap", "dbus-daemon", "ibus-daemon", PYTHON) if not shutil.which(tool)]
    if not tools and subprocess.run((PYTHON, "-c", "import gi; gi.require_version('IBus', '1.0')"), capture_output=True).returncode != 0:
        tools.append("the library of ibus for Python")
    return tools


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("program")
    parser.add_argument("--pictures", help="takes pictures of the screen into this folder")
    parser.add_argument("--only", default="", help="only cases that have this in their keys")
    arguments = parser.parse_args()
    if tools := missing():
        print(f"not run: {', '.join(tools)} not installed")
        return SKIPPED
    has_failed = False
    for settings, table in (("", TYPING), ("editor.vimMode=true\n", MODAL)):
        for options in ((), ("--ignores-escape",)):
            cases = [Case("us", *case) for case in table if arguments.only in case[1] and (not options or "<Esc>" in case[1])]
            has_failed |= bool(failed_cases(arguments.program, cases, arguments.pictures, settings,
                                            lambda desktop: start_input_method(desktop, *options), PAUSE))
    return 1 if has_failed else 0


if __name__ == "__main__":
    sys.exit(main())
