#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""Starts the program more than once on a session bus of its own: files go to the one that runs. Usage: one_program.py PROGRAM"""
import contextlib
import json
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import unittest

from desktop import TIMEOUT, make_world, need, start_bus, until

PROGRAM = os.path.abspath(sys.argv.pop(1))


class OneProgram(unittest.TestCase):
    def setUp(self):
        self.path = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.files = self.path / "files"
        self.environment = make_world(self.path, "session.autosaveInterval=0.5\n") | {"QT_QPA_PLATFORM": "offscreen"}
        bus = self.enterContext(start_bus(self.path, self.environment))
        self.addCleanup(bus.terminate)

    def write(self, name, text):
        (self.files / name).write_text(text)
        return name

    def start(self, *arguments, **options):
        program = subprocess.Popen([PROGRAM, *arguments], cwd=self.files, env=self.environment, text=True, stderr=subprocess.PIPE, **options)
        self.addCleanup(program.stderr.close)
        self.addCleanup(program.wait)
        self.addCleanup(program.kill)
        return program

    def session(self):
        """Of the program that runs: name → where its selection begins; texts without a file by what they hold."""
        data = self.path / "data" / "Quillet"
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
        until("the first file", lambda: "a.txt" in self.session())
        self.assertEqual(self.start(self.write("b.txt", "one\ntwo three\n") + ":2:5").wait(TIMEOUT), 0)
        self.assertTrue(until("the second file", lambda: "b.txt" in self.session()))
        piped = self.start("-", stdin=subprocess.PIPE)
        self.assertEqual(piped.wait(TIMEOUT), 0, "the other one reads it")
        piped.stdin.write("piped text")
        piped.stdin.close()
        until("what was piped", lambda: "piped text" in self.session())
        self.assertEqual(self.start().wait(TIMEOUT), 0)
        self.assertIsNone(first.poll())
        # As the desktop opens files.
        call = ["gdbus", "call", "--session", "--dest", "org.quillet.Quillet", "--object-path", "/org/quillet/Quillet", "--method",
                "org.freedesktop.Application.Open", f"['{(self.files / self.write('c d.txt', 'c')).as_uri()}']", "{}"]
        subprocess.run(call, env=self.environment, check=True, capture_output=True)
        until("the desktop's file", lambda: "c d.txt" in self.session())
        first.terminate()
        self.assertEqual(first.wait(TIMEOUT), 0)

    def test_one_that_hangs_is_left_alone(self):
        first = self.start(self.write("a.txt", "one\n"))
        until("the first file", lambda: "a.txt" in self.session())
        first.send_signal(signal.SIGSTOP)
        second = self.start(self.write("b.txt", "two\n"))
        self.assertIn("does not answer", second.stderr.readline())
        second.terminate()
        self.assertEqual(second.wait(TIMEOUT), 0)
        first.send_signal(signal.SIGCONT)
        first.terminate()
        self.assertEqual(first.wait(TIMEOUT), 0)

    def test_it_waits_until_files_are_closed(self):
        first = self.start(self.write("a.txt", "one\n"))
        until("the first file", lambda: "a.txt" in self.session())
        waiting = self.start("--wait", self.write("b.txt", "two\n"))
        until("the second file", lambda: "b.txt" in self.session())
        self.assertIsNone(waiting.poll())
        gone = self.start("--wait", "b.txt")
        gone.kill()
        gone.wait()
        self.assertEqual(self.start("--wait", "missing").wait(TIMEOUT), 1)
        first.terminate()
        self.assertEqual(waiting.wait(TIMEOUT), 0, "nothing was edited")

    def test_it_starts_one_to_wait_for(self):
        waiting = self.start("--wait", self.write("a.txt", "one\n"))
        until("the file", lambda: "a.txt" in self.session())
        self.assertIsNone(waiting.poll())
        others = []
        for process in pathlib.Path("/proc").glob("[0-9]*"):
            with contextlib.suppress(OSError):
                if str(self.path).encode() in (process / "environ").read_bytes() and int(process.name) != waiting.pid \
                        and os.readlink(process / "exe") == os.path.realpath(PROGRAM):
                    others.append(int(process.name))
        self.assertEqual(len(others), 1)
        os.kill(others[0], signal.SIGTERM)
        self.assertEqual(waiting.wait(TIMEOUT), 0)

    def test_without_a_bus_it_works_alone(self):
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + str(self.path / "nothing")
        alone = self.start(self.write("a.txt", "one\n"))
        until("the file", lambda: "a.txt" in self.session())
        alone.terminate()
        self.assertEqual(alone.wait(TIMEOUT), 0)
        self.assertEqual(alone.stderr.read(), "")
        self.assertEqual(self.start("--wait", "missing").wait(TIMEOUT), 1, "nothing to wait for")


if __name__ == "__main__":
    need({"dbus-daemon": "dbus-daemon", "gdbus": "libglib2.0-bin"})
    unittest.main()
