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

from desktop import TIMEOUT, activity, make_world, need, start_bus, until

PROGRAM = os.path.abspath(sys.argv.pop(1))


class OneProgram(unittest.TestCase):
    def setUp(self):
        self.path = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.files = self.path / "files"
        self.environment = make_world(self.path, "session.autosaveInterval=0.5\n") | {"QT_QPA_PLATFORM": "offscreen"}
        bus = self.enterContext(start_bus(self.path, self.environment))
        self.addCleanup(bus.terminate)

    def write(self, name):
        (self.files / name).write_text("one\ntwo three\n")
        return name

    def start(self, *arguments, **options):
        program = subprocess.Popen([PROGRAM, *arguments], cwd=self.files, env=self.environment, text=True, stderr=subprocess.PIPE, **options)
        for clean_up in (program.stderr.close, program.wait, program.kill):
            self.addCleanup(clean_up)
        return program

    def start_with(self, name, *options):
        """With a file, which is open then."""
        program = self.start(*options, self.write(name))
        until(name, lambda: name in self.session())
        return program

    def code(self, program):
        return program.wait(TIMEOUT)

    def end(self, program):
        program.terminate()
        self.assertEqual(self.code(program), 0)

    def others(self, known):
        """The numbers of programs of this test beside one."""
        found = []
        for process in pathlib.Path("/proc").glob("[0-9]*"):
            with contextlib.suppress(OSError):
                if str(self.path).encode() in (process / "environ").read_bytes() and int(process.name) != known.pid \
                        and os.readlink(process / "exe") == os.path.realpath(PROGRAM):
                    found.append(int(process.name))
        return found

    def session(self):
        """Of the program that runs: the names of files, and what texts without a file hold."""
        data = self.path / "data" / "Quillet"
        found = set()
        with contextlib.suppress(OSError, ValueError):
            for document in json.loads((data / "session.json").read_text())["documents"]:
                path = document.get("filePath")
                found.add(os.path.basename(path) if path else (data / "Drafts" / document["draftFilename"]).read_text())
        return found

    def test_later_starts_hand_over(self):
        first = self.start_with("a.txt")
        self.assertEqual(self.code(self.start(self.write("b.txt") + ":2:5")), 0)
        until("the second file", lambda: "b.txt" in self.session())
        piped = self.start("-", stdin=subprocess.PIPE)
        self.assertEqual(self.code(piped), 0, "the other one reads it")
        piped.stdin.write("piped text")
        piped.stdin.close()
        until("what was piped", lambda: "piped text" in self.session())
        self.assertEqual(self.code(self.start()), 0)
        self.assertIsNone(first.poll())
        # As the desktop opens files.
        call = ["gdbus", "call", "--session", "--dest", "org.quillet.Quillet", "--object-path", "/org/quillet/Quillet", "--method",
                "org.freedesktop.Application.Open", f"['{(self.files / self.write('c d.txt')).as_uri()}']", "{}"]
        subprocess.run(call, env=self.environment, check=True, capture_output=True)
        until("the desktop's file", lambda: "c d.txt" in self.session())
        self.end(first)

    def test_a_comparison_leaves_the_session_alone(self):
        self.end(self.start_with("a.txt"))
        comparison = self.start("--diff", self.write("b.txt"), self.write("c.txt"), "--wait")
        seen = []

        def rests():
            seen.append(activity([comparison.pid]))
            return len(seen) > 1 and seen[-1] is not None and seen[-1] == seen[-2]
        until("the comparison to be shown", rests)
        program = self.start_with("d.txt")
        until("the session of before", lambda: self.session() == {"a.txt", "d.txt"})
        self.end(comparison)
        self.end(program)
        self.assertEqual(self.session(), {"a.txt", "d.txt"})

    def test_a_comparison_does_not_hold_up_the_shell(self):
        asked = self.start("--diff", self.write("a.txt"), self.write("b.txt"), stdout=subprocess.PIPE)
        # A shell that collects the output waits for whoever can write to it.
        self.assertEqual(asked.communicate(timeout=TIMEOUT)[0], "")
        self.assertEqual(asked.returncode, 0)
        behind = self.others(asked)
        self.assertEqual(len(behind), 1)
        self.assertNotEqual(os.getsid(behind[0]), os.getsid(0), "it stays when the terminal goes")
        os.kill(behind[0], signal.SIGTERM)
        until("its end", lambda: not self.others(asked))
        refused = self.start("--language", "de", "--diff", "a.txt", "missing")
        self.assertEqual(self.code(refused), 2)
        self.assertIn("existiert nicht", refused.stderr.read())

    def test_one_that_hangs_is_left_alone(self):
        first = self.start_with("a.txt")
        first.send_signal(signal.SIGSTOP)
        second = self.start(self.write("b.txt"))
        self.assertIn("does not answer", second.stderr.readline())
        self.end(second)
        first.send_signal(signal.SIGCONT)
        self.end(first)

    def test_it_waits_until_files_are_closed(self):
        first = self.start_with("a.txt")
        waiting = self.start_with("b.txt", "--wait")
        self.assertIsNone(waiting.poll())
        gone = self.start("--wait", "b.txt")
        gone.kill()
        gone.wait()
        self.assertEqual(self.code(self.start("--wait", "missing:7")), 1)
        first.terminate()
        self.assertEqual(self.code(waiting), 0, "nothing was edited")

    def test_nothing_came_of_what_a_killed_one_had(self):
        first = self.start_with("a.txt")
        waiting = self.start_with("b.txt", "--wait")
        first.kill()
        self.assertEqual(self.code(waiting), 1)

    def test_it_starts_one_to_wait_for(self):
        waiting = self.start_with("a.txt", "--wait")
        self.assertIsNone(waiting.poll())
        others = self.others(waiting)
        self.assertEqual(len(others), 1)
        os.kill(others[0], signal.SIGTERM)
        self.assertEqual(self.code(waiting), 0)

    def test_without_a_bus_it_works_alone(self):
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + str(self.path / "nothing")
        alone = self.start_with("a.txt")
        self.end(alone)
        self.assertEqual(alone.stderr.read(), "")
        self.assertEqual(self.code(self.start("--wait", "missing:7")), 1, "nothing to wait for")


if __name__ == "__main__":
    need({"dbus-daemon": "dbus-daemon", "gdbus": "libglib2.0-bin"})
    unittest.main()
