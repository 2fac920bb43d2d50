#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""What differs under Wayland: both clipboards, drags, a huge selection.
Usage: wayland_session.py PROGRAM [--pictures FOLDER] [--megabytes N]"""
import subprocess

from desktop import TIMEOUT, TOOLS, arguments_of, expect, need
from wayland_desktop import WAYLAND_TOOLS, WaylandDesktop
from working_session import Session

# Where the text begins in a window without decoration, and what a row of it is high, in pixels of a screen at scale 1.
TEXT_LEFT, FIRST_ROW, ROW_HEIGHT = 56, 73, 19


class WaylandSession(Session):
    def __init__(self, desktop, megabytes):
        super().__init__(desktop)
        self.megabytes = megabytes

    def run(self):
        desktop = self.desktop
        desktop.start_program("one.txt")
        self.window = self.until_title("one.txt")
        self.exchange_with_other_programs()
        self.paste_what_is_selected()
        self.drag_text()
        self.select_everything()
        self.quit()

    def pasted(self, *options):
        done = subprocess.run(("wl-paste", "--no-newline", *options), env=self.desktop.environment, capture_output=True, timeout=TIMEOUT)
        return done.stdout.decode()

    def exchange_with_other_programs(self):
        desktop = self.desktop
        desktop.keys("ctrl+Home", "shift+End", "ctrl+c")
        desktop.until("the copy", lambda: self.pasted() == "Größe one")
        subprocess.run(("wl-copy", "Ängström 🎈"), env=desktop.environment, check=True, timeout=TIMEOUT)
        desktop.until("the other program's copy", lambda: self.pasted() == "Ängström 🎈")
        desktop.keys("Right", "ctrl+v")
        self.save("one.txt", "Größe oneÄngström 🎈\nsecond\nthird\n".encode())

    def paste_what_is_selected(self):
        desktop = self.desktop
        desktop.keys("ctrl+Home", "Down", "shift+End")
        desktop.until("the selection", lambda: self.pasted("--primary") == "second")
        desktop.click(self.window, 0.5, 0.5, button=2)
        self.save("one.txt", "Größe oneÄngström 🎈\nsecond\nthird\nsecond".encode())
        expect(self.pasted(), "Ängström 🎈", "clipboard")

    def drag_text(self):
        desktop = self.desktop
        # The last line by its middle to the end of the first.
        desktop.keys("ctrl+End", "shift+Home")
        desktop.picture("before-drag")
        desktop.drag(self.window, (TEXT_LEFT + 20, self.row(4)), (0.6, self.row(1)))
        desktop.picture("after-drag")
        self.save("one.txt", "Größe oneÄngström 🎈second\nsecond\nthird\n".encode())

    def row(self, line):
        return FIRST_ROW + (line - 1) * ROW_HEIGHT

    def select_everything(self):
        desktop = self.desktop
        line = "All work and no play makes a dull text of many, many lines.\n"
        text = line * (self.megabytes * 1_000_000 // len(line))
        (desktop.files / "huge.txt").write_text(text)
        self.fill_in("ctrl+o", "huge.txt")
        self.until_title("huge.txt")
        desktop.keys("ctrl+a")
        desktop.until("the selection", lambda: len(self.pasted("--primary")) == len(text))
        desktop.keys("ctrl+c")
        desktop.until("the copy", lambda: len(self.pasted()) == len(text))
        desktop.keys("Right")
        desktop.type("end")
        self.until_title("huge.txt*")
        self.save("huge.txt", (text + "end").encode())


def main():
    arguments = arguments_of(__doc__, megabytes=5)
    need(TOOLS | WAYLAND_TOOLS | {"wl-copy": "wl-clipboard"})
    with WaylandDesktop(arguments.program, arguments.pictures) as desktop:
        WaylandSession(desktop, arguments.megabytes).run()


if __name__ == "__main__":
    main()
