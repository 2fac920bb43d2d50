#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""What a screen reader hears while a text is read and edited, over a real accessibility bus.
Usage: hear_text.py PROGRAM [--pictures FOLDER]"""
from desktop import TOOLS, arguments_of, expect, need
from screen_reader import Atspi, HeardDesktop, below

NAME = "two.txt"
# Letters of two units and of two characters, a tab, an empty line, none at the end.
TEXT = "first line\n\n\tse\u0301cond 😀 line, é\nlast"
BY_LETTER, BY_WORD, BY_LINE = Atspi.TextBoundaryType.CHAR, Atspi.TextBoundaryType.WORD_START, Atspi.TextBoundaryType.LINE_START
# By the keys: where the caret comes to, and what is there.
READING = (("Right", 1, BY_LETTER, "i"), ("Down", 11, BY_LINE, "\n"), ("Down", 12, BY_LINE, "\tse\u0301cond 😀 line, é\n"),
           ("Right", 13, BY_LETTER, "s"), ("Right", 14, BY_LETTER, "e\u0301"), ("ctrl+Left", 13, BY_WORD, "se\u0301cond"),
           ("ctrl+Right", 21, BY_LETTER, "😀"), ("Right", 22, BY_LETTER, " "),
           ("End", 30, BY_LETTER, "\n"), ("ctrl+End", 35, BY_LETTER, ""), ("ctrl+Home", 0, BY_LINE, "first line\n"))


def event(kind, place, data=""):
    """Of the text in front."""
    return kind, "text", NAME, place, data


def controls(window):
    """Those that are seen, as (role, name)."""
    return {(node.get_role_name(), node.get_name()): node for node in below(window)
            if node.get_state_set().contains(Atspi.StateType.SHOWING)}


def hear_reading(desktop, text):
    expect(text.get_text(0, -1), TEXT, "text")
    for key, place, boundary, what in READING:
        desktop.keys(key)
        desktop.until_heard(event("text-caret-moved", place))
        expect(text.get_text_at_offset(place, boundary).content, what, f"what is said after {key} leads to {place}")
    for offset in (0, 1, 21, 22, 24):
        place = text.get_character_extents(offset, Atspi.CoordType.SCREEN)
        expect(text.get_offset_at_point(place.x + 2, place.y + 2, Atspi.CoordType.SCREEN), offset, "letter at its own place")


def hear_typing(desktop, text):
    for act, *events in ((lambda: desktop.type("a"), event("text-changed:insert", 0, "a"), event("text-caret-moved", 1)),
                         (lambda: desktop.keys("BackSpace"), event("text-changed:delete", 0, "a"), event("text-caret-moved", 0)),
                         (lambda: desktop.keys("shift+Right"), event("text-selection-changed", 0), event("text-caret-moved", 1)),
                         (lambda: desktop.keys("ctrl+x"), event("text-changed:delete", 0, "f")),
                         (lambda: desktop.keys("ctrl+z"), event("text-changed:insert", 0, "f")),
                         (lambda: text.set_caret_offset(22), event("text-caret-moved", 22)),
                         (lambda: text.insert_text(22, "é", len("é".encode())), event("text-changed:insert", 22, "é")),
                         (lambda: text.delete_text(21, 22), event("text-changed:delete", 21, "😀"))):
        act()
        desktop.until_heard(*events)
    expect(text.get_text(0, -1), TEXT.replace("😀", "é"), "text after edits by the reader")


def run(desktop):
    (desktop.files / "one.txt").write_text("one\n")
    (desktop.files / NAME).write_text(TEXT)
    desktop.start_program("one.txt", NAME)
    desktop.until_title(f"{NAME} — Quillet")
    desktop.until_heard(event("focused", 1))
    found = controls(desktop.window())
    for button in ("Save", "Ln 1, Col 1", "Line Endings: LF"):
        expect(("push button", button) in found, True, f"“{button}” among the buttons")
    text = found["text", NAME]
    hear_reading(desktop, text)
    hear_typing(desktop, text)
    desktop.keys("ctrl+f")
    desktop.until_heard(("focused", "text", "Find", 1, ""))
    desktop.type("x")
    desktop.said("Not found")
    desktop.keys("Escape")
    desktop.until_heard(event("focused", 1))
    (desktop.files / NAME).write_text("changed\n")
    desktop.said(f"“{NAME}” changed on disk and has unsaved edits here.")
    desktop.keys("ctrl+1")
    desktop.until_heard(("selected", "page tab", "one.txt", 1, ""), ("selected", "page tab", NAME, 0, ""))
    expect(desktop.complaints(), "", "standard error")


def main():
    arguments = arguments_of(__doc__)
    need(TOOLS)
    with HeardDesktop(arguments.program, arguments.pictures) as desktop:
        run(desktop)


if __name__ == "__main__":
    main()
