# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""A desktop with an accessibility bus, and a reader on it that keeps what it is told of the program."""
import os
import pathlib
import sys
import warnings

from desktop import TOOLS, Desktop, arguments_of, expect, need

BUS_SERVICE = pathlib.Path("/usr/share/dbus-1/services/org.a11y.Bus.service")

try:
    import gi
    gi.require_version("Atspi", "2.0")
    from gi.repository import Atspi, Gio, GLib
except (ImportError, ValueError):
    sys.exit("not installed: gir1.2-atspi-2.0 or python3-gi")
if not BUS_SERVICE.exists():
    sys.exit("not installed: at-spi2-core")

# What replaces some of these calls the program's toolkit does not know.
warnings.simplefilter("ignore", DeprecationWarning)

EVENTS = ("object:text-changed", "object:text-caret-moved", "object:text-selection-changed", "object:state-changed:focused",
          "object:state-changed:showing", "object:state-changed:selected", "object:state-changed:checked", "window:activate")


class HeardDesktop(Desktop):
    def start_display(self):
        super().start_display()
        (self.path / "services" / BUS_SERVICE.name).write_text(BUS_SERVICE.read_text())
        self.start_bus()
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
        self.focused_name = None
        Atspi.init()
        self.listener = Atspi.EventListener.new(self.hear)
        for event in EVENTS:
            self.listener.register(event)
        self.rest()

    def hear(self, event):
        try:
            name = label_of(event.source)
            role = event.source.get_role_name()
        except GLib.Error:
            return  # Gone meanwhile.
        kind = event.type.removeprefix("object:").removeprefix("state-changed:")
        if kind == "focused" and event.detail1:
            self.focused_name = name
        data = event.any_data if isinstance(event.any_data, str) else ""
        self.heard.append((kind, role, name, event.detail1, data))

    def listen(self):
        """Whether there was anything to hear."""
        context = GLib.MainContext.default()
        has_heard = False
        while context.iteration(False):
            has_heard = True
        return has_heard

    def rest(self):
        super().rest()
        # Whoever is asked about what was heard wakes once more.
        while self.listen():
            super().rest()

    def until_heard(self, *wanted):
        """Waits for the events in this order, whatever else there is between them, and forgets all until then."""
        def heard():
            end = end_in_order(wanted, self.heard)
            if end:
                del self.heard[:end]
            return end
        self.until_listening(f"{wanted} among what was heard", heard)

    def until_listening(self, what, condition):
        def listened():
            self.listen()
            return condition()
        try:
            return self.until(what, listened)
        except AssertionError:
            print("heard:", *self.heard, sep="\n  ", file=sys.stderr)
            raise

    def said(self, notice):
        """Waits until a screen reader would say this by itself."""
        self.until_heard(("showing", "notification", notice, 1, ""))

    def windows(self):
        desktop = Atspi.get_desktop(0)
        for index in range(desktop.get_child_count()):
            application = desktop.get_child_at_index(index)
            if application and application.get_name() == "Quillet":
                return [application.get_child_at_index(place) for place in range(application.get_child_count())]
        return []

    def window(self, title=None):
        """The first one, or the one with this title; waits for it."""
        def found():
            return next((window for window in self.windows() if window and title in (None, window.get_name())), None)
        return self.until_listening(f"the window {title or ''} on the bus", found)


def end_in_order(wanted, heard):
    """Behind the last of the wanted events; 0 when they were not heard in this order."""
    place = 0
    for event in wanted:
        try:
            place = heard.index(event, place) + 1
        except ValueError:
            return 0
    return place


def label_of(node):
    """As a reader calls it: by what labels it, else by its own name, which is what is chosen for those with a choice."""
    if node.get_role() == Atspi.Role.COMBO_BOX:
        for relation in node.get_relation_set():
            if relation.get_relation_type() == Atspi.RelationType.LABELLED_BY:
                return relation.get_target(0).get_name()
    return node.get_name()


def below(node):
    for index in range(node.get_child_count()):
        child = node.get_child_at_index(index)
        if child:
            yield child
            yield from below(child)


def has(node, state):
    return node.get_state_set().contains(state)


def main(description, run):
    arguments = arguments_of(description)
    need(TOOLS)
    with HeardDesktop(arguments.program, arguments.pictures) as desktop:
        run(desktop)
        expect(desktop.complaints(), "", "standard error")
