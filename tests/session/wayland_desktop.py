# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""The same desktop under Wayland: a compositor whose screens are windows of the X display, so keys and mouse are xdotool's here too."""
import json
import os
import pathlib
import subprocess
import tempfile

from desktop import TIMEOUT, Desktop

WAYLAND_TOOLS = {"sway": "sway"}
NOBODY = 65534

CONFIGURATION = """\
output * resolution {width}x{height} scale {scale}
default_border none
xwayland disable
for_window [app_id=".*"] floating enable
focus_on_window_activation focus
"""


class WaylandDesktop(Desktop):
    """`scale` may be a fraction."""

    def __init__(self, program, pictures=None, size="1200x800", scale=1, settings=""):
        super().__init__(program, pictures, size, settings)
        self.scale = scale

    def start_display(self):
        self.start_x_server(self.size)
        self.display = self.environment["DISPLAY"]
        # The compositor refuses to be the superuser's, and nobody else's programs may use another's runtime folder.
        self.run = tempfile.TemporaryDirectory(prefix="quillet-wayland-")
        run = pathlib.Path(self.run.name)
        width, height = self.size.split("x")
        configuration = run / "configuration"
        configuration.write_text(CONFIGURATION.format(width=width, height=height, scale=self.scale))
        as_user = ()
        if os.geteuid() == 0:
            os.chown(run, NOBODY, NOBODY)
            os.chown(configuration, NOBODY, NOBODY)
            as_user = ("setpriv", f"--reuid={NOBODY}", f"--regid={NOBODY}", "--clear-groups")
        environment = dict(self.environment, XDG_RUNTIME_DIR=str(run), HOME=str(run), WLR_BACKENDS="x11", WLR_RENDERER="pixman")
        for name in ("CONFIG", "DATA", "STATE", "CACHE"):
            environment.pop(f"XDG_{name}_HOME")
        self.start(*as_user, "sway", "-c", str(configuration), environment=environment)
        self.environment["SWAYSOCK"] = str(self.until("the compositor's socket", lambda: next(run.glob("sway-ipc.*.sock"), None)))
        self.until("the compositor to answer", lambda: self.sway("-t", "get_outputs"))
        socket = self.until("the display's socket", lambda: next(run.glob("wayland-?"), None))
        del self.environment["DISPLAY"]
        self.environment |= {"WAYLAND_DISPLAY": str(socket), "QT_QPA_PLATFORM": "wayland"}
        # No window manager of the X display gives the keyboard to the compositor's window, which comes after the root.
        search = "search", "--onlyvisible", "--maxdepth", 1, "--name", ".*"
        self.xdotool("windowfocus", "--sync", self.until("the screen's window", lambda: self.ask(*search).split()[1:])[0])

    def __exit__(self, *failure):
        super().__exit__(*failure)
        if hasattr(self, "run"):
            self.run.cleanup()

    def x_environment(self):
        return dict(self.environment, DISPLAY=self.display)

    def sway(self, *command):
        done = subprocess.run(("swaymsg", *map(str, command)), env=self.environment, capture_output=True, text=True, timeout=TIMEOUT)
        return done.stdout if done.returncode == 0 else ""

    def windows(self):
        def below(node):
            if node.get("pid"):
                yield node
            for child in node.get("nodes", []) + node.get("floating_nodes", []):
                yield from below(child)

        return list(below(json.loads(self.sway("-r", "-t", "get_tree") or "{}")))

    def focused(self):
        return next((window for window in self.windows() if window["focused"]), {})

    def front(self):
        return str(self.focused().get("id", ""))

    def title(self):
        return self.focused().get("name") or ""

    def click(self, window, x, y, button=1):
        self.xdotool("mousemove", *self.on_display(window, x, y), "click", button)

    def drag(self, window, start, end):
        """From one place in the window to another, each as for click()."""
        (x, y), (end_x, end_y) = self.on_display(window, *start), self.on_display(window, *end)
        self.xdotool("mousemove", x, y)
        self.xdotool("mousedown", 1)
        for step in range(1, 11):
            self.xdotool("mousemove", x + (end_x - x) * step // 10, y + (end_y - y) * step // 10)
        self.xdotool("mouseup", 1)

    def on_display(self, window, x, y):
        """Of a place in a window, in pixels or as shares of its sides."""
        place = next(found["rect"] for found in self.windows() if str(found["id"]) == str(window))
        x, y = (int(place[side] * share) if isinstance(share, float) else share for side, share in (("width", x), ("height", y)))
        return int((place["x"] + x) * self.scale), int((place["y"] + y) * self.scale)
