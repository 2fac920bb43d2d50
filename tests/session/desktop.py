# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""A desktop of its own for one run of the program: display, window manager, folders, keys and mouse."""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time
import traceback

TOOLS = ("Xvfb", "openbox", "xdotool")
# Seconds for anything that is waited for: a sanitized program on a busy machine is slow, and only a failure takes that long.
PATIENCE = 30


def missing_tools(tools=TOOLS):
    return [tool for tool in tools if not shutil.which(tool)]


class Desktop:
    """A context; everything that it started ends with it."""

    def __init__(self, program, pictures=None, size="1200x800", settings=""):
        self.program = pathlib.Path(program).resolve()
        self.pictures = pathlib.Path(pictures) if pictures else None
        self.size = size
        self.settings = settings
        self.processes = []
        self.picture_count = 0

    def __enter__(self):
        self.folder = tempfile.TemporaryDirectory(prefix="quillet-session-")
        self.path = pathlib.Path(self.folder.name)
        self.files = self.path / "files"
        for name in ("files", "home", "config", "data", "state", "cache", "run"):
            (self.path / name).mkdir(mode=0o700)
        if self.settings:
            (self.path / "config" / "Quillet").mkdir()
            (self.path / "config" / "Quillet" / "Quillet.conf").write_text("[General]\n" + self.settings)
        self.environment = dict(os.environ, HOME=str(self.path / "home"), XDG_RUNTIME_DIR=str(self.path / "run"), LC_ALL="C.UTF-8",
                                XDG_CURRENT_DESKTOP="openbox")
        for name in ("CONFIG", "DATA", "STATE", "CACHE"):
            self.environment[f"XDG_{name}_HOME"] = str(self.path / name.lower())
        # Neither another desktop's screen nor its services.
        for name in ("QT_QPA_PLATFORM", "WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "SESSION_MANAGER", "QT_SCALE_FACTOR", "LANGUAGE"):
            self.environment.pop(name, None)
        self.log = open(self.path / "log", "w+b")
        try:
            self.start_display()
        except BaseException:
            self.__exit__(None, None, None)
            raise
        return self

    def __exit__(self, *failure):
        for process in reversed(self.processes):
            if process.poll() is None:
                process.terminate()
                try:
                    process.wait(timeout=10)
                except subprocess.TimeoutExpired:
                    process.kill()
                    process.wait()
        self.log.close()
        self.folder.cleanup()

    def start_x_server(self, size):
        reader, writer = os.pipe()
        self.start("Xvfb", "-displayfd", str(writer), "-screen", "0", f"{size}x24", "-nolisten", "tcp", pass_fds=(writer,))
        os.close(writer)
        with os.fdopen(reader) as answer:
            number = answer.readline().strip()
        if not number:
            raise RuntimeError("Xvfb did not start")
        self.environment["DISPLAY"] = f":{number}"

    def start_display(self):
        self.start_x_server(self.size)
        self.start("openbox", "--sm-disable")
        self.until("the window manager to be there", lambda: self.ask("get_num_desktops"))

    def start(self, *command, **options):
        process = subprocess.Popen(command, env=options.pop("environment", self.environment), stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                   stderr=options.pop("stderr", subprocess.DEVNULL), **options)
        self.processes.append(process)
        return process

    def start_program(self, *arguments):
        self.started = self.start(self.program, *map(str, arguments), stderr=self.log, cwd=self.files)

    def version(self):
        """As the program names itself."""
        return subprocess.run((self.program, "--version"), env=self.environment, capture_output=True, text=True, check=True).stdout.strip()

    def exit_code(self):
        """Waits for the program to end."""
        return self.started.wait(timeout=PATIENCE)

    def complaints(self):
        """What the program wrote to its standard error."""
        return (self.path / "log").read_text(errors="replace")

    def x_environment(self):
        """For what speaks to the X server."""
        return self.environment

    # Waiting

    def until(self, what, condition, patience=PATIENCE):
        """Waits until `condition()` is true, and answers with that."""
        deadline = time.monotonic() + patience
        while not (answer := condition()):
            if time.monotonic() > deadline:
                self.picture("failure")
                raise AssertionError(f"waited in vain for {what}; the window in front is “{self.title()}”\n{self.complaints()}")
            time.sleep(0.02)
        return answer

    def ask(self, *command):
        """What xdotool answers, empty when it fails."""
        done = subprocess.run(("xdotool", *map(str, command)), env=self.x_environment(), capture_output=True, text=True, timeout=PATIENCE)
        return done.stdout.strip() if done.returncode == 0 else ""

    # Windows

    def front(self):
        return self.ask("getactivewindow")

    def title(self):
        return self.ask("getactivewindow", "getwindowname")

    def until_title(self, title):
        self.until(f"a window called “{title}”", lambda: self.title() == title)
        return self.front()

    def until_other_window(self, *windows):
        """Waits for a window in front that is none of these."""
        return self.until("another window", lambda: (front := self.front()) not in ("", *windows) and front)

    def visible_windows(self):
        """How many the program has, open menus among them."""
        return len(self.ask("search", "--onlyvisible", "--pid", self.started.pid).split())

    def open_menu(self, *keys):
        closed = self.visible_windows()
        self.keys(*keys)
        self.until("the menu to be open", lambda: self.visible_windows() > closed)

    def close_menu(self, *keys):
        opened = self.visible_windows()
        self.keys(*keys)
        # The display gives the keyboard back to the window only then.
        self.until("the menu to be closed", lambda: self.visible_windows() < opened)

    # Keys and mouse, which go to the window in front

    def keys(self, *keys):
        self.xdotool("key", "--delay", "0", *keys)

    def type(self, text):
        self.xdotool("type", "--delay", "0", "--", text)

    def xdotool(self, *command):
        """Keys and mouse, which go to the window in front."""
        subprocess.run(("xdotool", *map(str, command)), env=self.x_environment(), check=True)

    def click(self, window, x, y, button=1):
        """At a place in the window, in pixels or as shares of its sides."""
        size = dict(line.split("=") for line in self.ask("getwindowgeometry", "--shell", window).splitlines())
        x, y = (int(int(size[side]) * share) if isinstance(share, float) else share
                for side, share in (("WIDTH", x), ("HEIGHT", y)))
        self.xdotool("mousemove", "--window", window, x, y, "click", button)

    def picture(self, name):
        if self.pictures:
            self.pictures.mkdir(parents=True, exist_ok=True)
            self.picture_count += 1
            file = self.pictures / f"{self.picture_count:02}-{name}.png"
            subprocess.run(("import", "-window", "root", str(file)), env=self.x_environment(), check=True)


def run_twice(make_desktop, run):
    """The exit code of a test. A busy X server loses a synthetic key now and then; what is broken fails twice."""
    for attempt in (1, 2):
        try:
            with make_desktop() as desktop:
                run(desktop)
            return 0
        except AssertionError:
            print(f"attempt {attempt}:", file=sys.stderr)
            traceback.print_exc()
    return 1
