# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""The program without a display, told what to do line by line, in folders of its own that outlive it; and what lies in these."""
import json
import os
import pathlib
import select
import shutil
import signal
import subprocess
import tempfile
import time

from desktop import TIMEOUT, at_rest, make_world, until


class Home:
    """The user's folders."""

    def __init__(self, settings):
        self.path = pathlib.Path(tempfile.mkdtemp(prefix="quillet-crashes-"))
        self.files = self.path / "files"
        self.data = self.path / "data" / "Quillet"
        self.log = self.path / "log"
        self.environment = make_world(self.path, settings) | {"ASAN_OPTIONS": "detect_leaks=0", "QT_QPA_PLATFORM": "offscreen"}

    def remove(self, keep=False):
        if not keep:
            shutil.rmtree(self.path)

    def session(self):
        """None when there is none."""
        try:
            return json.loads((self.data / "session.json").read_bytes())
        except FileNotFoundError:
            return None

    def drafts(self):
        return {draft.name: draft.read_bytes().decode() for draft in (self.data / "Drafts").glob("*.draft")}

    def file_texts(self):
        return {str(file): file.read_bytes().decode() for file in self.files.iterdir() if not file.name.startswith(".")}

    def trace(self):
        """Differs when anything of the session was written since."""
        return sorted((entry.name, entry.inode()) for folder in (self.data, self.data / "Drafts") for entry in os.scandir(folder))

    def complaints(self):
        lines = self.log.read_text(errors="replace").splitlines() if self.log.exists() else []
        return [line for line in lines if "ERROR:" in line or "runtime error" in line or "ASSERT" in line]


class Driven:
    def __init__(self, program, home):
        self.log = open(home.log, "ab")
        self.process = subprocess.Popen([os.path.abspath(program)], env=home.environment, cwd=home.files, stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, stderr=self.log)
        self.unread = b""

    def send(self, command):
        self.process.stdin.write(command.encode() + b"\n")
        self.process.stdin.flush()

    def ask(self, command):
        """Sends the command and waits until it is done."""
        self.send(command)
        deadline = time.monotonic() + TIMEOUT
        while b"\n" not in self.unread:
            if not select.select([self.process.stdout], [], [], max(0, deadline - time.monotonic()))[0]:
                raise RuntimeError(f"no answer to “{command}”")
            bytes_read = os.read(self.process.stdout.fileno(), 1 << 16)
            if not bytes_read:
                raise RuntimeError(f"the program ended at “{command}” with {self.process.wait()}")
            self.unread += bytes_read
        line, self.unread = self.unread.split(b"\n", 1)
        return json.loads(line)

    def rest(self):
        """Waits until all that it was asked for has come to its end, on all threads, but for what waits for a clock."""
        until("the program to be at rest", at_rest(lambda: [self.process.pid]))

    def freeze(self):
        """Not another instruction; then the disk is at rest."""
        self.process.send_signal(signal.SIGSTOP)
        # It may have ended by itself, and then nothing was sent.
        if self.process.returncode is None:
            os.waitid(os.P_PID, self.process.pid, os.WSTOPPED | os.WEXITED | os.WNOWAIT)

    def kill(self):
        if self.process.poll() is None:
            self.process.kill()
        self.end()

    def terminate(self):
        """The exit code."""
        self.process.terminate()
        try:
            return self.process.wait(timeout=TIMEOUT)
        except subprocess.TimeoutExpired:
            return None
        finally:
            self.kill()

    def end(self):
        self.process.wait()
        self.process.stdin.close()
        self.process.stdout.close()
        self.log.close()
