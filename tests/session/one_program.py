#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""Starts the program more than once on a session bus of its own: files go to the one that runs. Usage: one_program.py PROGRAM"""
import contextlib
import json
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

PROGRAM = os.path.abspath(sys.argv.pop(1))
PATIENCE = 60


def wait_for(condition, what):
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        found = condition()
        if found:
            return found
        time.sleep(0.05)
    raise AssertionError(f"{what} did not come within {PATIENCE} s")


@contextlib.contextmanager
def session_bus():
    """The address of a bus that nobody else uses."""
    with subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--print-address"], stdout=subprocess.PIPE, text=True) as daemon:
        try:
            yield daemon.stdout.readline().strip()
        finally:
            daemon.terminate()


class OneProgram(unittest.TestCase):
    def setUp(self):
        self.home = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.environment = {key: value for key, value in os.environ.items() if not key.startswith(("XDG_", "DBUS_"))}
        self.environment |= {"HOME": str(self.home), "QT_QPA_PLATFORM": "offscreen", "XDG_RUNTIME_DIR": str(self.home),
                             "DBUS_SESSION_BUS_ADDRESS": self.enterContext(session_bus())}
        settings = self.home / ".config/Quillet/Quillet.conf"
        settings.parent.mkdir(parents=True)
        settings.write_text("[General]\nsession.autosaveInterval=0.5\n")

    def write(self, name, text):
        (self.home / name).write_text(text)
        return name

    def start(self, *arguments, **options):
        program = subprocess.Popen([PROGRAM, *arguments], cwd=self.home, env=self.environment, text=True, stderr=subprocess.PIPE, **options)
        self.addCleanup(program.stderr.close)
        self.addCleanup(program.wait)
        self.addCleanup(program.kill)
        return program

    def session(self):
        """Of the program that runs: name → where its selection begins; texts without a file by what they hold."""
        data = self.home / ".local/share/Quillet"
        try:
            documents = json.loads((data / "session.json").read_text())["documents"]
        except (OSError, ValueError):
            return {}
        found = {}
        for document in documents:
            if document.get("filePath"):
                found[os.path.basename(document["filePath"])] = document
            elif document.get("draftFilename"):
                with contextlib.suppress(OSError):
                    found[(data / "Drafts" / document["draftFilename"]).read_text()] = document
        return found

    def test_later_starts_hand_over(self):
        first = self.start(self.write("a.txt", "one\ntwo\n"))
        wait_for(lambda: "a.txt" in self.session(), "the first file")
        self.assertEqual(self.start(self.write("b.txt", "one\ntwo three\n") + ":2:5").wait(PATIENCE), 0)
        self.assertTrue(wait_for(lambda: "b.txt" in self.session(), "the second file"))
        piped = self.start("-", stdin=subprocess.PIPE)
        self.assertEqual(piped.wait(PATIENCE), 0, "the other one reads it")
        piped.stdin.write("piped text")
        piped.stdin.close()
        wait_for(lambda: "piped text" in self.session(), "what was piped")
        self.assertEqual(self.start().wait(PATIENCE), 0)
        self.assertIsNone(first.poll())
        # As the desktop opens files.
        call = ["gdbus", "call", "--session", "--dest", "org.quillet.Quillet", "--object-path", "/org/quillet/Quillet", "--method",
                "org.freedesktop.Application.Open", f"['{(self.home / self.write('c d.txt', 'c')).as_uri()}']", "{}"]
        if shutil.which("gdbus"):
            subprocess.run(call, env=self.environment, check=True, capture_output=True)
            wait_for(lambda: "c d.txt" in self.session(), "the desktop's file")
        first.terminate()
        self.assertEqual(first.wait(PATIENCE), 0)

    def test_one_that_hangs_is_left_alone(self):
        first = self.start(self.write("a.txt", "one\n"))
        wait_for(lambda: "a.txt" in self.session(), "the first file")
        first.send_signal(signal.SIGSTOP)
        second = self.start(self.write("b.txt", "two\n"))
        self.assertIn("does not answer", second.stderr.readline())
        second.terminate()
        self.assertEqual(second.wait(PATIENCE), 0)
        first.send_signal(signal.SIGCONT)
        first.terminate()
        self.assertEqual(first.wait(PATIENCE), 0)

    def test_it_waits_until_files_are_closed(self):
        first = self.start(self.write("a.txt", "one\n"))
        wait_for(lambda: "a.txt" in self.session(), "the first file")
        waiting = self.start("--wait", self.write("b.txt", "two\n"))
        wait_for(lambda: "b.txt" in self.session(), "the second file")
        self.assertIsNone(waiting.poll())
        gone = self.start("--wait", "b.txt")
        gone.kill()
        gone.wait()
        self.assertEqual(self.start("--wait", "missing").wait(PATIENCE), 1)
        first.terminate()
        self.assertEqual(waiting.wait(PATIENCE), 0, "nothing was edited")

    def test_it_starts_one_to_wait_for(self):
        waiting = self.start("--wait", self.write("a.txt", "one\n"))
        wait_for(lambda: "a.txt" in self.session(), "the file")
        self.assertIsNone(waiting.poll())
        others = []
        for process in pathlib.Path("/proc").glob("[0-9]*"):
            with contextlib.suppress(OSError):
                if str(self.home).encode() in (process / "environ").read_bytes() and int(process.name) != waiting.pid \
                        and os.readlink(process / "exe") == os.path.realpath(PROGRAM):
                    others.append(int(process.name))
        self.assertEqual(len(others), 1)
        os.kill(others[0], signal.SIGTERM)
        self.assertEqual(waiting.wait(PATIENCE), 0)

    def test_without_a_bus_it_works_alone(self):
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + str(self.home / "nothing")
        alone = self.start(self.write("a.txt", "one\n"))
        wait_for(lambda: "a.txt" in self.session(), "the file")
        alone.terminate()
        self.assertEqual(alone.wait(PATIENCE), 0)
        self.assertEqual(alone.stderr.read(), "")
        self.assertEqual(self.start("--wait", "missing").wait(PATIENCE), 1, "nothing to wait for")


if __name__ == "__main__":
    if not shutil.which("dbus-daemon"):
        sys.exit(77)
    unittest.main()
