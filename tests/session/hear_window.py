#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""What a screen reader hears of a window, over a real accessibility bus.
Usage: hear_window.py PROGRAM [--pictures FOLDER]"""
import argparse
import os
import pathlib
import shutil
import sys
import traceback

from desktop import Desktop, missing_tools

SKIPPED = 77
BUS_SERVICE = pathlib.Path("/usr/share/dbus-1/services/org.a11y.Bus.service")


class HeardDesktop(Desktop):
    """With buses of its own and a reader that keeps what it is told."""

    def start_display(self):
        super().start_display()
        reader, writer = os.pipe()
        self.start("dbus-daemon", "--session", "--nofork", f"--print-address={writer}", pass_fds=(writer,))
        os.close(writer)
        with os.fdopen(reader) as answer:
            self.environment["DBUS_SESSION_BUS_ADDRESS"] = answer.readline().strip()
        # The reader's library looks for the same buses.
        for name in ("DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR"):
            os.environ[name] = self.environment[name]
        bus = Gio.DBusConnection.new_for_address_sync(
            self.environment["DBUS_SESSION_BUS_ADDRESS"],
            Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION, None, None)
        value = GLib.Variant("(ssv)", ("org.a11y.Status", "IsEnabled", GLib.Variant("b", True)))
        bus.call_sync("org.a11y.Bus", "/org/a11y/bus", "org.freedesktop.DBus.Properties", "Set", value, None,
                      Gio.DBusCallFlags.NONE, 30000, None)
        self.heard = []
        Atspi.init()
        self.listener = Atspi.EventListener.new(self.hear)
        for event in ("object:text-changed", "object:text-caret-moved", "object:text-selection-changed", "object:state-changed:focused",
                      "object:state-changed:showing", "object:state-changed:selected"):
            self.listener.register(event)

    def hear(self, event):
        try:
            name = event.source.get_name()
            role = event.source.get_role_name()
        except GLib.Error:
            return  # Gone meanwhile.
        data = event.any_data if isinstance(event.any_data, str) else ""
        self.heard.append((event.type.removeprefix("object:").removeprefix("state-changed:"), role, name, event.detail1, data))

    def listen(self):
        context = GLib.MainContext.default()
        while context.iteration(False):
            pass

    def until_heard(self, *wanted):
        """Waits for the events in this order, whatever else there is between them, and forgets them."""
        self.until_listening(f"{wanted} among {self.heard}", lambda: in_order(wanted, self.heard))
        self.heard.clear()

    def until_listening(self, what, condition):
        def listened():
            self.listen()
            return condition()
        return self.until(what, listened)

    def window(self):
        desktop = Atspi.get_desktop(0)
        for index in range(desktop.get_child_count()):
            application = desktop.get_child_at_index(index)
            if application and application.get_name() == "Quillet" and application.get_child_count():
                return application.get_child_at_index(0)
        return None


def in_order(wanted, heard):
    rest = iter(heard)
    return all(event in rest for event in wanted)


def below(node):
    for index in range(node.get_child_count()):
        child = node.get_child_at_index(index)
        if child:
            yield child
            yield from below(child)


def expect(got, wanted, what):
    if got != wanted:
        raise AssertionError(f"{what}: {got!r} instead of {wanted!r}")


def hear_tree(window):
    """The controls of the window; answers with those that show."""
    seen = {}
    for node in below(window):
        role, name = node.get_role_name(), node.get_name()
        shows = node.get_state_set().contains(Atspi.StateType.SHOWING)
        if shows and role in ("push button", "check box", "text", "page tab", "page tab list", "tool bar") or role == "menu item":
            expect(bool(name) and "\t" not in name, True, f"the name “{name}” of a {role}")
        if shows:
            seen.setdefault(role, []).append(name)
    expect(seen["page tab"], ["one.txt", "two.txt"], "tabs")
    expect(seen["page tab list"], ["Tabs"], "tab lists")
    expect(seen["tool bar"], ["Toolbar"], "toolbars")
    expect(seen["text"], ["two.txt"], "texts")
    for name in ("Save", "Ln 1, Col 1", "Line Endings: LF", "Text Encoding: UTF-8", "Syntax: Plain Text"):
        expect(name in seen["push button"], True, f"“{name}” among the buttons")


def hear_typing(desktop, window):
    name = "two.txt"
    desktop.type("a")
    desktop.until_heard(("text-changed:insert", "text", name, 0, "a"), ("text-caret-moved", "text", name, 1, ""))
    desktop.keys("BackSpace")
    desktop.until_heard(("text-changed:delete", "text", name, 0, "a"), ("text-caret-moved", "text", name, 0, ""))
    desktop.keys("shift+Right")
    desktop.until_heard(("text-selection-changed", "text", name, 0, ""), ("text-caret-moved", "text", name, 1, ""))
    text = next(node for node in below(window) if node.get_role_name() == "text")
    expect(text.get_selection(0).end_offset, 1, "end of the selection")
    line = text.get_text_at_offset(7, Atspi.TextBoundaryType.LINE_START)
    expect((line.start_offset, line.content), (4, "second\n"), "line")
    text.set_caret_offset(4)
    desktop.until_heard(("text-caret-moved", "text", name, 4, ""))
    text.insert_text(0, "é", 2)
    desktop.until_heard(("text-changed:insert", "text", name, 0, "é"))
    place = text.get_character_extents(1, Atspi.CoordType.SCREEN)
    expect(text.get_offset_at_point(place.x + 2, place.y + 2, Atspi.CoordType.SCREEN), 1, "letter at its own place")


def hear_notices(desktop):
    desktop.keys("ctrl+f")
    desktop.until_heard(("focused", "text", "Find", 1, ""))
    desktop.type("w")
    desktop.until_heard(("showing", "notification", "1 of 1", 1, ""))
    desktop.keys("Escape")
    desktop.until_heard(("focused", "text", "two.txt", 1, ""))
    desktop.keys("ctrl+s")
    desktop.until_heard(("showing", "notification", "Saved", 1, ""))
    desktop.keys("ctrl+1")
    desktop.until_heard(("selected", "page tab", "one.txt", 1, ""), ("selected", "page tab", "two.txt", 0, ""))


def run(desktop):
    (desktop.files / "one.txt").write_text("one\n")
    (desktop.files / "two.txt").write_text("two\nsecond\n")
    desktop.start_program("one.txt", "two.txt")
    desktop.until_title("two.txt — Quillet")
    desktop.until_heard(("focused", "text", "two.txt", 1, ""))
    window = desktop.until_listening("the window on the bus", desktop.window)
    hear_tree(window)
    hear_typing(desktop, window)
    hear_notices(desktop)
    expect(desktop.complaints(), "", "standard error")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("program")
    parser.add_argument("--pictures", help="takes pictures of the screen into this folder")
    parser.add_argument("--last-attempt", action="store_true", help="fails at the first failure")
    arguments = parser.parse_args()
    missing = missing_tools()
    missing += [name for name, is_there in (("dbus-daemon", shutil.which("dbus-daemon")), ("at-spi2-core", BUS_SERVICE.exists()),
                                           ("python3-gi or gir1.2-atspi-2.0", Atspi)) if not is_there]
    if missing:
        print(f"not run: {', '.join(missing)} not installed")
        return SKIPPED
    try:
        with HeardDesktop(arguments.program, arguments.pictures) as desktop:
            run(desktop)
    except AssertionError:
        traceback.print_exc()
        if arguments.last_attempt:
            return 1
        # A busy X server loses a synthetic key now and then; what is broken fails twice. The library knows one bus a process.
        sys.stderr.flush()
        os.execv(sys.executable, [sys.executable, "-B", *sys.argv, "--last-attempt"])
    return 0


try:
    import gi
    gi.require_version("Atspi", "2.0")
    from gi.repository import Atspi, Gio, GLib
except (ImportError, ValueError):
    Atspi = None

if __name__ == "__main__":
    sys.exit(main())
