# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""A desktop of its own for one run of the program: display, window manager, folders, keys and mouse."""
import argparse
import os
import pathlib
import subprocess
import sys
import tempfile

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1]))
from world import TIMEOUT, make_world, need, start_bus, until  # noqa: E402, F401

# The programs that a desktop is made of, and the packages that bring them.
TOOLS = {"Xvfb": "xvfb", "openbox": "openbox", "xdotool": "xdotool", "setxkbmap": "x11-xkb-utils", "dbus-daemon": "dbus-daemon"}


def expect(got, wanted, what):
    if got != wanted:
        raise AssertionError(f"{what}: {got!r} instead of {wanted!r}")


def arguments_of(description, **options):
    """The command line of a test: the program, a folder for pictures and these options, each with its default."""
    parser = argparse.ArgumentParser(description=description)
    parser.add_argument("program")
    parser.add_argument("--pictures", help="takes pictures of the screen into this folder")
    for name, default in options.items():
        parser.add_argument(f"--{name}", type=type(default), default=default)
    return parser.parse_args()


def activity(processes):
    """How often each thread of these processes, and of those they started, has run until now; None while one of them is at work."""
    counts = {}
    waiting = list(processes)
    while waiting:
        tasks = f"/proc/{waiting.pop()}/task"
        try:
            for task in os.listdir(tasks):
                with open(f"{tasks}/{task}/status") as file:
                    status = dict(line.split(":\t", 1) for line in file if ":\t" in line)
                if status["State"][0] in "RDW":
                    return None
                counts[task] = status["voluntary_ctxt_switches"], status["nonvoluntary_ctxt_switches"]
                with open(f"{tasks}/{task}/children") as file:
                    waiting += file.read().split()
        except (FileNotFoundError, ProcessLookupError):
            pass  # Ended meanwhile.
    return counts


def at_rest(processes):
    """A condition for until(): all of `processes()` sleep, and nothing of them ran since it was asked for the last time."""
    before = None

    def has_rested():
        nonlocal before
        before, last = activity(processes()), before
        return before is not None and before == last
    return has_rested


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
        self.environment = make_world(self.path, self.settings)
        self.log = open(self.path / "log", "w+b")
        self.desktop_log = open(self.path / "desktop-log", "w+b")
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
        self.desktop_log.close()
        self.folder.cleanup()

    def start_x_server(self, size):
        reader, writer = os.pipe()
        # Keys do not repeat, since on a busy machine the end of a press may come late; nor does it begin anew when a first client has gone.
        self.start("Xvfb", "-displayfd", str(writer), "-screen", "0", f"{size}x24", "-nolisten", "tcp", "-noreset", "-r", pass_fds=(writer,))
        os.close(writer)
        with os.fdopen(reader) as answer:
            number = answer.readline().strip()
        if not number:
            raise RuntimeError("Xvfb did not start")
        self.environment["DISPLAY"] = f":{number}"

    def start_display(self):
        self.start_x_server(self.size)
        # Its theme is among the machine's.
        self.start("openbox", "--sm-disable", environment=self.environment | {"XDG_DATA_DIRS": "/usr/share"})
        self.until("the window manager to be there", lambda: self.ask("get_num_desktops"))
        self.rest()

    def start_bus(self):
        self.processes.append(start_bus(self.path, self.environment))

    def start(self, *command, **options):
        process = subprocess.Popen(command, env=options.pop("environment", self.environment), stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                   stderr=options.pop("stderr", self.desktop_log), **options)
        self.processes.append(process)
        return process

    def start_program(self, *arguments):
        self.started = self.start(self.program, *map(str, arguments), stderr=self.log, cwd=self.files)

    def exit_code(self):
        """Waits for the program to end."""
        return self.started.wait(timeout=TIMEOUT)

    def complaints(self):
        """What the program wrote to its standard error."""
        return (self.path / "log").read_text(errors="replace")

    def x_environment(self):
        """For what speaks to the X server."""
        return self.environment

    # Waiting

    def until(self, what, condition):
        """Waits until `condition()` is true, and answers with that."""
        return until(what, condition, self.explain)

    def explain(self):
        self.picture("failure")
        return (f"; the window in front is “{self.title()}”\n{self.complaints()}\n"
                f"The desktop says:\n{(self.path / 'desktop-log').read_text(errors='replace')}")

    def rest(self):
        """Waits until everything that was started sleeps and nothing ran meanwhile: what was sent before has had its effect, but for what
        waits for a clock."""
        self.until("everything to be at rest", at_rest(lambda: [process.pid for process in self.processes]))

    def ask(self, *command):
        """What xdotool answers, empty when it fails."""
        done = subprocess.run(("xdotool", *map(str, command)), env=self.x_environment(), capture_output=True, text=True, timeout=TIMEOUT)
        return done.stdout.strip() if done.returncode == 0 else ""

    # Windows

    def front(self):
        return self.ask("getactivewindow")

    def title(self):
        return self.ask("getactivewindow", "getwindowname")

    def until_title(self, title):
        """Waits for a window of this title in front, which nothing is about to cover."""
        return self.until_front(f"a window called “{title}”", lambda: self.title() == title)

    def until_other_window(self, *windows):
        """Waits for a window in front that is none of these."""
        return self.until_front("another window", lambda: self.front() not in ("", *windows))

    def until_front(self, what, is_wanted):
        def stays():
            if is_wanted():
                self.rest()
                return is_wanted()
            return False
        self.until(what, stays)
        return self.front()

    # Keys and mouse, which go to the window in front

    def keys(self, *keys):
        """One after the other, each when the one before has had its effect."""
        for key in keys:
            self.xdotool("key", "--delay", "0", key)

    def type(self, text):
        self.xdotool("type", "--delay", "0", "--", text)

    def xdotool(self, *command):
        subprocess.run(("xdotool", *map(str, command)), env=self.x_environment(), check=True)
        self.rest()

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
