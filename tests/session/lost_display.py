#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""The display goes away under the program: what was typed is in a draft that the session names, before any tick.
Usage: lost_display.py PROGRAM [--pictures FOLDER]"""
import json

from desktop import TOOLS, Desktop, arguments_of, expect, need
from wayland_desktop import WAYLAND_TOOLS, WaylandDesktop


def kept(desktop):
    """The unsaved texts that the session names."""
    data = desktop.path / "data" / "Quillet"
    session = json.loads((data / "session.json").read_text())
    return [(data / "Drafts" / entry["draftFilename"]).read_text() for entry in session["documents"] if "draftFilename" in entry]


def lose(desktop, server):
    """Whatever the program draws on."""
    desktop.start_program()
    desktop.until_title("Untitled — Quillet")
    desktop.type("typed just now")
    expect(list((desktop.path / "data" / "Quillet" / "Drafts").iterdir()), [], "drafts before the end")
    server(desktop).kill()
    expect(desktop.exit_code() != 0, True, "whether the toolkit ended it")
    expect(kept(desktop), ["typed just now"], "kept texts")


def main():
    arguments = arguments_of(__doc__)
    need(TOOLS | WAYLAND_TOOLS)
    # No tick comes while this runs.
    settings = "session.autosaveInterval=3600\n"
    with Desktop(arguments.program, arguments.pictures, settings=settings) as desktop:
        lose(desktop, lambda desktop: desktop.processes[0])
    with WaylandDesktop(arguments.program, arguments.pictures, settings=settings) as desktop:
        lose(desktop, lambda desktop: next(process for process in desktop.processes if "sway" in process.args))


main()
