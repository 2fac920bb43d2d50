#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""An hour's work in a minute, with the real keys in real windows; what counts is what lies on the disk and what the windows are called.
Usage: working_session.py PROGRAM [--display x11|wayland] [--scale S] [--pictures FOLDER]"""
from desktop import TOOLS, Desktop, arguments_of, expect, need
from wayland_desktop import WAYLAND_TOOLS, WaylandDesktop

# The stops of the status bar after its first one, the position.
INDENTATION, LINE_ENDING, ENCODING, LANGUAGE = range(2, 6)


class Session:
    def __init__(self, desktop):
        self.desktop = desktop
        self.names = {"one.txt": "Größe one\nsecond\nthird\n", "two.txt": "two two\n", "three.txt": "three\n"}
        for name, text in self.names.items():
            (desktop.files / name).write_text(text)

    def on_disk(self, name):
        file = self.desktop.files / name
        return file.read_bytes() if file.exists() else None

    def until_on_disk(self, name, content):
        self.desktop.until(f"{name} to hold {content[:100]}", lambda: self.on_disk(name) == content)

    def until_title(self, name):
        return self.desktop.until_title(f"{name} — Quillet")

    def save(self, name, content):
        """Ctrl+S, until the file `name` has the content and the mark is gone from the title."""
        self.desktop.keys("ctrl+s")
        self.until_on_disk(name, content)
        self.until_title(name)

    def dialog(self, keys, *answer):
        """Presses keys, waits for the dialog that they bring up in front of the window, and goes on in that by these."""
        self.desktop.keys(keys)
        self.desktop.until_other_window(self.window)
        self.desktop.picture(f"dialog-{keys}")
        self.desktop.keys(*answer)

    def fill_in(self, keys, text):
        """The line of the dialog that keys bring up."""
        self.dialog(keys)
        self.desktop.type(text)
        self.desktop.keys("Return")

    def quit(self):
        """Nothing is asked."""
        self.desktop.keys("ctrl+q")
        expect((self.desktop.exit_code(), self.desktop.complaints()), (0, ""), "exit code")

    def choose(self, stop, title):
        """Chooses an entry of one of the status bar's menus by the keyboard alone and goes back to the text."""
        desktop = self.desktop
        desktop.keys("F6", "F6", *["Tab"] * stop, "space")
        desktop.type(title)
        desktop.picture(f"status-{title}")
        # From there the toolbar is next, then the text.
        desktop.keys("Return", "F6", "F6")

    def run(self):
        self.open_and_edit_two_panes()
        self.save_as_and_go_to_line()
        self.choose_line_ends_and_encoding()
        self.replace_all()
        self.close_tabs()
        self.move_tab_quit_and_start_again()

    def open_and_edit_two_panes(self):
        desktop = self.desktop
        desktop.start_program(*self.names)
        self.window = self.until_title("three.txt")
        desktop.keys("ctrl+1")
        self.until_title("one.txt")
        desktop.keys("ctrl+backslash")
        desktop.type("right ")
        self.until_title("one.txt*")
        desktop.click(self.window, 0.25, 0.5)
        desktop.keys("ctrl+2")
        self.until_title("two.txt")
        desktop.type("left ")
        desktop.picture("two-panes")
        desktop.keys("ctrl+End")
        desktop.type("end")
        self.save("two.txt", b"left two two\nend")
        desktop.keys("ctrl+alt+bracketright")
        self.until_title("one.txt*")
        expect(self.on_disk("one.txt"), self.names["one.txt"].encode(), "the file that was not saved yet")
        self.save("one.txt", "right Größe one\nsecond\nthird\n".encode())

    def save_as_and_go_to_line(self):
        desktop = self.desktop
        self.fill_in("ctrl+shift+s", "renamed.txt")
        self.until_title("renamed.txt")
        self.until_on_disk("renamed.txt", self.on_disk("one.txt"))
        self.fill_in("ctrl+l", "3")
        self.until_title("renamed.txt")
        desktop.type("the ")
        self.until_title("renamed.txt*")
        desktop.keys("ctrl+alt+b")
        changed = "right Größe one\nsecond\nthe third\n".encode()
        self.until_on_disk("renamed 2.txt", changed)
        self.until_title("renamed.txt*")
        self.save("renamed.txt", changed)

    def choose_line_ends_and_encoding(self):
        self.choose(LINE_ENDING, "CRLF")
        self.until_title("renamed.txt*")
        self.choose(ENCODING, "ISO-8859-1")
        self.desktop.type("new ")
        text = "right Größe one\r\nsecond\r\nthe new third\r\n"
        self.save("renamed.txt", text.encode("latin-1"))

    def replace_all(self):
        desktop = self.desktop
        self.desktop.keys("ctrl+alt+f")
        desktop.type("e")
        desktop.keys("Tab")
        desktop.type("E")
        desktop.picture("find-bar")
        # Past the button that replaces once.
        desktop.keys("Tab", "Tab", "space", "Escape")
        self.until_title("renamed.txt*")
        self.save("renamed.txt", "right GrößE onE\r\nsEcond\r\nthE nEw third\r\n".encode("latin-1"))
        desktop.keys("ctrl+z")
        self.save("renamed.txt", "right Größe one\r\nsecond\r\nthe new third\r\n".encode("latin-1"))

    def close_tabs(self):
        desktop = self.desktop
        # Its only tab is shown on the left too, so the pane goes, and nothing is asked.
        desktop.keys("ctrl+w")
        self.until_title("two.txt")
        desktop.type("+")
        self.until_title("two.txt*")
        self.dialog("ctrl+w", "Escape")
        self.until_title("two.txt*")
        self.dialog("ctrl+w", "Return")
        self.until_title("three.txt")
        self.until_on_disk("two.txt", b"left two two\nend+")
        desktop.type("lost ")
        self.until_title("three.txt*")
        self.dialog("ctrl+w", "Tab", "space")
        self.until_title("renamed.txt")
        expect(self.on_disk("three.txt"), b"three\n", "the file that was not to be saved")

    def move_tab_quit_and_start_again(self):
        desktop = self.desktop
        desktop.keys("ctrl+n")
        self.until_title("Untitled")
        desktop.type("draft")
        self.until_title("Untitled*")
        desktop.keys("alt+w", "m")
        desktop.until_other_window(self.window)
        self.until_title("Untitled*")
        desktop.picture("second-window")
        # What was not saved comes back, from whichever window.
        self.quit()
        desktop.start_program()
        self.window = self.until_title("Untitled*")
        desktop.picture("started-again")
        self.dialog("ctrl+w", "Escape")
        self.until_title("Untitled*")
        self.fill_in("ctrl+s", "draft.txt")
        self.until_title("draft.txt")
        self.until_on_disk("draft.txt", b"draft")
        self.quit()


def main():
    arguments = arguments_of(__doc__, display="x11", scale=1.0)
    need(TOOLS)
    desktop = Desktop(arguments.program, arguments.pictures)
    if arguments.display == "wayland":
        need(WAYLAND_TOOLS)
        desktop = WaylandDesktop(arguments.program, arguments.pictures, scale=arguments.scale)
    with desktop:
        Session(desktop).run()


if __name__ == "__main__":
    main()
