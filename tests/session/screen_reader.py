# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""A desktop with an accessibility bus, and a reader on it that keeps what it is told of the program."""
import os
import pathlib
import sys
import warnings

from desktop import Desktop

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
          "object:state-changed:showing", "object:state-changed:selected")


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
        Atspi.init()
        self.listener = Atspi.EventListener.new(self.hear)
        for event in EVENTS:
            self.listener.register(event)
        self.rest()

    def hear(self, event):
        try:
            name, role = event.source.get_name(), event.source.get_role_name()
        except GLib.Error:
            return  # Gone meanwhile.
        kind = event.type.removeprefix("object:").removeprefix("state-changed:")
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
            self.listen()
            events = iter(self.heard)
            is_heard = all(event in events for event in wanted)
            self.heard = list(events) if is_heard else self.heard
            return is_heard
        try:
            self.until(f"{wanted} among what was heard", heard)
        except AssertionError:
            print("heard:", *self.heard, sep="\n  ", file=sys.stderr)
            raise

    def said(self, notice):
        """Waits until a screen reader would say this by itself."""
        self.until_heard(("showing", "notification", notice, 1, ""))

    def window(self):
        """The first one of the program, which is on the bus by now."""
        desktop = Atspi.get_desktop(0)
        applications = [desktop.get_child_at_index(index) for index in range(desktop.get_child_count())]
        return next(each for each in applications if each and each.get_name() == "Quillet").get_child_at_index(0)


def below(node):
    for index in range(node.get_child_count()):
        child = node.get_child_at_index(index)
        if child:
            yield child
            yield from below(child)
