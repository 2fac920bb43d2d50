#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""Every window with nothing but the keyboard, and what a screen reader calls what it comes to.
Usage: hear_tour.py PROGRAM [--pictures FOLDER]"""
from screen_reader import expect, main

NAME = "tour.txt"
STATUS = ["Indentation: Spaces: 4", "Line Endings: LF", "Text Encoding: UTF-8", "Syntax: Plain Text"]
TOOLS = ["New", "Open", "Save", "Backup", "Terminal", "Move to Trash"]
PAGES = {
    "Appearance": ["Choose…", "Theme:", "Language:", "Show line numbers", "Wrap long lines", "Show invisible characters",
                   "Highlight the current line"],
    "Editing": ["Indent width:", "Insert spaces instead of tabs", "Keep indentation on new lines", "Vim key bindings", "Keymap:",
                "Show Key Reference…", "Share yanks with the system clipboard"],
    "Saving": ["Trim trailing whitespace on save", "Ensure the file ends with a newline", "Keep local drafts of unsaved buffers",
               "Also write changes straight to the file", "Every:", "Reopen tabs and splits on launch",
               "Even when launched by opening a file", "Reload unmodified files when they change on disk"],
    "Toolbar": ["Toolbar:", "Show the file name in the toolbar", "Show labels next to icons", "New", "Move Down", "Restore Defaults"],
}


class Tour:
    def __init__(self, desktop):
        self.desktop = desktop
        self.dialog = 0

    def press(self, *keys):
        """Answers with what a reader says has the focus then."""
        self.desktop.heard.clear()
        self.desktop.keys(*keys)
        return self.desktop.until_listening(f"the focus to move by {keys}", self.focus)

    def focus(self):
        return next((name for kind, _, name, is_on, _ in self.desktop.heard if kind == "focused" and is_on), None)

    def goes_to(self, *names, key="Tab"):
        """The key goes from one of these to the next; the last one is where the focus is now, or where the key is of other use."""
        expect([self.press(key) for _ in names], list(names), f"stops by {key}")

    def opens(self, title, *keys, focus, role="dialog"):
        self.desktop.heard.clear()
        self.desktop.keys(*keys)
        self.desktop.until_heard(("window:activate", role, title, 0, title))
        self.desktop.until_listening(f"the focus on “{focus}”", lambda: self.desktop.focused_name == focus)
        self.desktop.picture("".join(letter if letter.isalnum() else "-" for letter in title))

    def leaves(self, to=NAME):
        self.desktop.heard.clear()
        self.desktop.keys("Escape")
        self.desktop.until_listening(f"Escape to lead back to “{to}”", lambda: self.focus() and self.desktop.focused_name == to)


def tour_of_editor(desktop, tour):
    tour.goes_to(NAME, "Ln 1, Col 1", "New", NAME, key="F6")
    expect(tour.press("ctrl+alt+f"), "Find", "focus in the find bar")
    desktop.type("a")
    desktop.said("1 of 1")
    tour.goes_to("Replace with", "Find Previous", "Find Next", "Match Case", "Whole Words", "Regular Expression", "Replace", "Replace All",
                 "Done", "Ln 1, Col 1  (1 selected)", *STATUS, *TOOLS, NAME, "New Tab", NAME)
    tour.press("ctrl+f")
    tour.leaves()
    expect(tour.press("F10"), "Quillet", "first menu")
    tour.press("Escape")
    tour.leaves()


def tour_of_files(tour):
    """The toolkit's own questions, as on a desktop that has none."""
    tour.opens("Open", "ctrl+o", focus="File name:")
    tour.goes_to("Files of type:", "Cancel", "Look in:", "Parent Directory", "Create New Folder", "List View", "Detail View", "Sidebar")
    tour.leaves()
    tour.opens("Save As", "ctrl+shift+s", focus="File name:")
    tour.goes_to("Files of type:", "Save", "Cancel", "Look in:")
    tour.leaves()


def tour_of_settings(desktop, tour):
    tour.opens("Settings", "ctrl+comma", focus="Appearance")
    for title, controls in PAGES.items():
        if title != "Appearance":
            expect(tour.press("ctrl+Tab"), title, "page")
        tour.goes_to(*controls, title)
        desktop.picture(title)
    tour.press("ctrl+Tab")
    tour.opens("Font", "alt+c", focus="Font")
    tour.goes_to("Show only fixed-width fonts", "Size:", "OK", "Cancel", "Font")
    tour.leaves(to="Appearance")
    # Modal editing is said where it begins, and its modes from then on.
    tour.press("ctrl+Tab")
    tour.press("alt+v")
    desktop.said("NORMAL")
    tour.leaves()
    for key, mode in (("i", "INSERT"), ("Escape", "NORMAL"), ("v", "VISUAL"), ("Escape", "NORMAL")):
        desktop.keys(key)
        desktop.said(mode)
    tour.opens("Settings", "ctrl+comma", focus="Vim key bindings")
    expect(tour.press("alt+k"), "Keymap:", "focus by its letter")
    tour.press("Tab")
    desktop.keys("space")
    desktop.until_listening("the key reference", lambda: desktop.focused_name == "Vim Keys.md")
    tour.press("ctrl+F4")
    tour.opens("Settings", "ctrl+comma", focus="Show Key Reference…")
    tour.press("shift+Tab", "shift+Tab")
    desktop.keys("space")
    desktop.until_heard(("checked", "check box", "Vim key bindings", 0, ""))
    tour.leaves()


def tour_of_questions(desktop, tour):
    tour.opens(desktop.version(), "F10", "Down", "Return", focus="OK", role="alert")
    tour.leaves()
    tour.opens("Keyboard Shortcuts", "F10", "Left", "Down", "Return", focus="OK")
    tour.leaves()
    tour.opens("Go to Line", "ctrl+l", focus="Line number", role="alert")
    tour.goes_to("Go", "Cancel", "Line number")
    tour.leaves()
    desktop.type("a ")
    question = f"Do you want to save the changes made to “{NAME}”?"
    tour.opens(question, "ctrl+w", focus="Save", role="alert")
    tour.goes_to("Don’t Save", "Cancel", "Save")
    tour.leaves()


def tour_of_comparison(desktop, tour):
    right = f"{NAME}  ·  in the editor (unsaved)"
    desktop.heard.clear()
    tour.opens(f"{NAME} ↔ {NAME}", "ctrl+alt+d", focus=right, role="frame")
    tour.goes_to("Ignore whitespace", "Previous", "Next", f"{NAME}  ·  on disk", right)
    desktop.keys("F7")
    desktop.said("1 of 1 changes   +1  −1")
    tour.leaves()


def tour_of_spelling(desktop, tour):
    tour.opens("Spelling and Grammar", "ctrl+colon", focus="Replace with")
    notices = [event for event in desktop.heard if event[0] == "showing" and event[1] == "notification" and event[3]]
    expect(len(notices) <= 1, True, f"each said once, not {notices}")
    tour.goes_to("Suggestions", "Find Next", "Replace with")
    tour.leaves()


def run(desktop):
    (desktop.files / NAME).write_text("a text\n")
    desktop.start_program(NAME)
    desktop.until_title(f"{NAME} — Quillet")
    desktop.until_heard(("focused", "text", NAME, 1, ""))
    tour = Tour(desktop)
    tour_of_editor(desktop, tour)
    tour_of_files(tour)
    tour_of_settings(desktop, tour)
    tour_of_questions(desktop, tour)
    tour_of_comparison(desktop, tour)
    tour_of_spelling(desktop, tour)


if __name__ == "__main__":
    main(__doc__, run)
