#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""What a screen reader hears while a text is read and edited, over a real accessibility bus.
Usage: hear_text.py PROGRAM [--pictures FOLDER]"""
from screen_reader import Atspi, below, expect, has, main

NAME = "two.txt"
# Letters of two units and of two characters, a tab, an empty line, none at the end.
TEXT = "first line\n\n\tse\u0301cond 😀 line, é\nlast"


def hear_tree(window):
    """The controls of the window; answers with the text."""
    seen = {}
    for node in below(window):
        role, name = node.get_role_name(), node.get_name()
        shows = has(node, Atspi.StateType.SHOWING)
        if shows and role in ("push button", "check box", "text", "page tab", "page tab list", "tool bar") or role == "menu item":
            expect(bool(name) and "\t" not in name, True, f"the name “{name}” of a {role}")
        if shows:
            seen.setdefault(role, []).append(node)
    names = {role: [node.get_name() for node in nodes] for role, nodes in seen.items()}
    expect(names["page tab"], ["one.txt", NAME], "tabs")
    expect(names["page tab list"], ["Tabs"], "tab lists")
    expect(names["tool bar"], ["Toolbar"], "toolbars")
    expect(names["text"], [NAME], "texts")
    for name in ("Save", "Ln 1, Col 1", "Line Endings: LF", "Text Encoding: UTF-8", "Syntax: Plain Text"):
        expect(name in names["push button"], True, f"“{name}” among the buttons")
    return seen["text"][0]


def pieces(text, boundary):
    """All of the text, as a reader gets it that goes on from the end of each piece."""
    found = []
    offset = 0
    while offset < text.get_character_count():
        piece = text.get_text_at_offset(offset, boundary)
        expect((piece.start_offset, piece.end_offset - piece.start_offset), (offset, len(piece.content)), f"place of {piece.content!r}")
        expect(text.get_text(piece.start_offset, piece.end_offset), piece.content, "text at the place of the piece")
        found.append(piece.content)
        offset = piece.end_offset
    return found


def hear_reading(desktop, text):
    expect(text.get_character_count(), len(TEXT), "length")
    expect(text.get_text(0, -1), TEXT, "text")
    expect(pieces(text, Atspi.TextBoundaryType.LINE_START), TEXT.splitlines(keepends=True), "lines")
    expect(pieces(text, Atspi.TextBoundaryType.CHAR)[12:16], ["\t", "s", "e\u0301", "c"], "letters")
    # By the keys: where the caret comes to, and what is there.
    at = 0
    for key, place, boundary, what in (
            ("Right", 1, Atspi.TextBoundaryType.CHAR, "i"), ("Down", 11, Atspi.TextBoundaryType.LINE_START, "\n"),
            ("Down", 12, Atspi.TextBoundaryType.LINE_START, "\tse\u0301cond 😀 line, é\n"),
            ("ctrl+Right", 13, Atspi.TextBoundaryType.WORD_START, "se\u0301cond"), ("ctrl+Right", 21, Atspi.TextBoundaryType.CHAR, "😀"),
            ("Right", 22, Atspi.TextBoundaryType.CHAR, " "), ("End", 30, Atspi.TextBoundaryType.CHAR, "\n"),
            ("ctrl+End", 35, Atspi.TextBoundaryType.CHAR, ""), ("ctrl+Home", 0, Atspi.TextBoundaryType.LINE_START, "first line\n")):
        desktop.keys(key)
        desktop.until_heard(("text-caret-moved", "text", NAME, place, ""))
        expect(text.get_caret_offset(), place, f"caret after {key} from {at}")
        expect(text.get_text_at_offset(place, boundary).content, what, f"what is said after {key} from {at}")
        at = place
    for offset in (0, 1, 21, 22, 24):
        place = text.get_character_extents(offset, Atspi.CoordType.SCREEN)
        expect(text.get_offset_at_point(place.x + 2, place.y + 2, Atspi.CoordType.SCREEN), offset, "letter at its own place")


def hear_typing(desktop, text):
    desktop.type("a")
    desktop.until_heard(("text-changed:insert", "text", NAME, 0, "a"), ("text-caret-moved", "text", NAME, 1, ""))
    desktop.keys("BackSpace")
    desktop.until_heard(("text-changed:delete", "text", NAME, 0, "a"), ("text-caret-moved", "text", NAME, 0, ""))
    desktop.keys("shift+Right")
    desktop.until_heard(("text-selection-changed", "text", NAME, 0, ""), ("text-caret-moved", "text", NAME, 1, ""))
    expect((text.get_selection(0).start_offset, text.get_selection(0).end_offset), (0, 1), "selection")
    desktop.keys("ctrl+x")
    desktop.until_heard(("text-changed:delete", "text", NAME, 0, "f"))
    desktop.keys("ctrl+z")
    desktop.until_heard(("text-changed:insert", "text", NAME, 0, "f"))
    text.set_caret_offset(22)
    desktop.until_heard(("text-caret-moved", "text", NAME, 22, ""))
    text.insert_text(22, "é", len("é".encode()))
    desktop.until_heard(("text-changed:insert", "text", NAME, 22, "é"))
    text.delete_text(21, 22)
    desktop.until_heard(("text-changed:delete", "text", NAME, 21, "😀"))
    expect(text.get_text(0, -1), TEXT.replace("😀", "é"), "text after edits by the reader")
    text.set_selection(0, 23, 27) if text.get_n_selections() else text.add_selection(23, 27)
    desktop.until_heard(("text-selection-changed", "text", NAME, 0, ""))
    expect(text.get_text(23, 27), "line", "selected word")


def hear_notices(desktop):
    desktop.keys("ctrl+Home", "ctrl+f")
    desktop.until_heard(("focused", "text", "Find", 1, ""))
    desktop.keys("ctrl+a")
    desktop.type("last")
    desktop.said("1 of 1")
    desktop.type("x")
    desktop.said("Not found")
    desktop.keys("Escape")
    desktop.until_heard(("focused", "text", NAME, 1, ""))
    desktop.keys("ctrl+s")
    desktop.said("Saved")


def hear_banner(desktop):
    """A file that another program writes to, while it is unedited and while it is edited."""
    file = desktop.files / NAME
    file.write_text("other\n")
    desktop.until_heard(("text-changed:insert", "text", NAME, 0, "other\n"))
    desktop.keys("ctrl+Home")
    desktop.type("x")
    desktop.until_heard(("text-changed:insert", "text", NAME, 0, "x"))
    file.write_text("another\n")
    desktop.said(f"“{NAME}” changed on disk and has unsaved edits here.")
    desktop.keys("F6")
    desktop.until_heard(("focused", "push button", "Reload from Disk", 1, ""))
    desktop.picture("banner")
    desktop.keys("Tab")
    desktop.until_heard(("focused", "push button", "Keep Mine", 1, ""))
    desktop.keys("Escape")
    desktop.until_heard(("focused", "text", NAME, 1, ""))
    desktop.keys("F6", "space")
    desktop.until_heard(("text-changed:insert", "text", NAME, 0, "an"))


def run(desktop):
    (desktop.files / "one.txt").write_text("one\n")
    (desktop.files / NAME).write_text(TEXT)
    desktop.start_program("one.txt", NAME)
    desktop.until_title(f"{NAME} — Quillet")
    desktop.until_heard(("focused", "text", NAME, 1, ""))
    text = hear_tree(desktop.window())
    hear_reading(desktop, text)
    hear_typing(desktop, text)
    hear_notices(desktop)
    hear_banner(desktop)
    desktop.keys("ctrl+1")
    desktop.until_heard(("selected", "page tab", "one.txt", 1, ""), ("selected", "page tab", NAME, 0, ""))


if __name__ == "__main__":
    main(__doc__, run)
