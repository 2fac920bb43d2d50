#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""What quillet-inspect promises to every caller, shown by the commands about files. Usage: file_commands.py PROGRAM"""
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

PROGRAM = sys.argv.pop(1)


class FileCommands(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.path = pathlib.Path(self.folder.name)
        for name in ("user", "temporary"):
            (self.path / name).mkdir()

    def run_program(self, *arguments, stdin=b""):
        environment = dict(os.environ, TMPDIR=str(self.path / "temporary"), HOME=str(self.path / "user"))
        environment.pop("QT_QPA_PLATFORM", None)
        environment.pop("DISPLAY", None)
        for name in ("CONFIG", "DATA", "STATE", "CACHE"):
            environment[f"XDG_{name}_HOME"] = str(self.path / "user")
        return subprocess.run([PROGRAM, *map(str, arguments)], input=stdin, env=environment, capture_output=True, timeout=120)

    def ask(self, *arguments, status=0, stdin=b""):
        result = self.run_program(*arguments, stdin=stdin)
        self.assertEqual(result.returncode, status, result.stderr)
        pairs = []
        answer = json.loads(result.stdout.decode("utf-8"), object_pairs_hook=lambda p: pairs.append(p) or dict(p))
        keys = [key for key, _ in pairs[-1]]
        self.assertEqual(keys, sorted(keys))
        self.assertEqual("error" in answer, status == 1)
        return answer

    def test_wrong_arguments(self):
        for arguments in ((), ("unknown",), ("text",), ("text", "a", "b"), ("text", "a", "--encoding"), ("text", "a", "--encoding", "x"),
                          ("text", "a", "--line-ending", "lf"), ("write", "a", "--line-ending", "lfcr"), ("copy-name", "-x")):
            result = self.run_program(*arguments)
            self.assertEqual((result.returncode, result.stdout), (2, b""), arguments)
            self.assertIn(b"usage:", result.stderr)

    def test_write_and_read_back(self):
        file = self.path / "ä.txt"
        text = "é €\n日本\n"
        self.assertEqual(self.ask("write", file, "--line-ending", "crlf", stdin=text.encode()), {"bytes": 16})
        self.assertEqual(file.read_bytes(), text.replace("\n", "\r\n").encode())
        self.assertEqual(self.ask("text", file, "--line-starts"), {
            "text": text, "encoding": 4, "encodingName": "UTF-8", "lineEnding": "crlf", "isLossyDecode": False, "length": 7, "lineCount": 3,
            "lineStarts": [0, 4, 7]})
        self.assertEqual(self.ask("line-starts", file), {"lineStarts": [0, 5, 9], "length": 9})
        self.assertEqual(self.ask("copy-name", file), {"copy": str(self.path / "ä 2.txt")})
        self.assertEqual(self.ask("copy-name", self.path / " 12"), {"copy": None})
        self.assertEqual(self.ask("write", file, "--encoding", "0x94000100", stdin=b"a"), {"bytes": 2})
        self.assertEqual(self.ask("text", file, "--encoding", 2483028224)["encodingName"], "UTF-16 LE")

    def test_failures(self):
        missing = self.path / "missing"
        self.assertEqual(self.ask("text", missing, status=1), {
            "error": "notReadable", "description": "“missing” could not be read.", "recoverySuggestion": None})
        self.assertEqual(self.ask("line-starts", missing, status=1)["error"], "notReadable")
        self.assertEqual(self.ask("write", missing / "a", status=1)["error"], "notWritable")
        self.assertEqual(self.ask("write", missing, "--encoding", 77, status=1)["error"], "inapplicableEncoding")
        self.assertEqual(self.ask("write", missing, status=1, stdin=b"\xff")["error"], "undecodable")
        self.assertFalse(missing.exists())

    def test_leaves_nothing_behind(self):
        self.ask("copy-name", "a")
        self.assertEqual([str(p) for name in ("user", "temporary") for p in (self.path / name).iterdir()], [])


if __name__ == "__main__":
    unittest.main()
