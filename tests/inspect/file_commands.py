#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""What quillet-inspect promises to every caller, shown by the commands about files. Usage: file_commands.py PROGRAM"""
import json
import unittest

from inspection import FILES, PATH, ask, run


class FileCommands(unittest.TestCase):
    def test_wrong_arguments(self):
        for arguments in ((), ("unknown",), ("text",), ("text", "a", "b"), ("text", "a", "--encoding"), ("text", "a", "--encoding", "x"),
                          ("text", "a", "--line-ending", "lf"), ("write", "a", "--line-ending", "lfcr"), ("copy-name", "-x")):
            result = run(*arguments)
            self.assertEqual((result.returncode, result.stdout), (2, b""), arguments)
            self.assertIn(b"usage:", result.stderr)

    def test_write_and_read_back(self):
        file = FILES / "ä.txt"
        text = "é €\n日本\n"
        self.assertEqual(ask("write", file, "--line-ending", "crlf", stdin=text.encode()), {"bytes": 16})
        self.assertEqual(file.read_bytes(), text.replace("\n", "\r\n").encode())
        pairs = []
        json.loads(run("text", file).stdout.decode("utf-8"), object_pairs_hook=pairs.extend)
        self.assertEqual(pairs, sorted(pairs), "sorted keys")
        self.assertEqual(ask("text", file, "--line-starts"), {
            "text": text, "encoding": 4, "encodingName": "UTF-8", "lineEnding": "crlf", "isLossyDecode": False, "length": 7, "lineCount": 3,
            "lineStarts": [0, 4, 7]})
        self.assertEqual(ask("line-starts", file), {"lineStarts": [0, 5, 9], "length": 9})
        self.assertEqual(ask("copy-name", file), {"copy": str(FILES / "ä 2.txt")})
        self.assertEqual(ask("copy-name", FILES / " 12"), {"copy": None})
        self.assertEqual(ask("write", file, "--encoding", "0x94000100", stdin=b"a"), {"bytes": 2})
        self.assertEqual(ask("text", file, "--encoding", 2483028224)["encodingName"], "UTF-16 LE")

    def test_failures(self):
        missing = FILES / "missing"
        self.assertEqual(ask("text", missing, status=1), {
            "error": "notReadable", "description": "“missing” could not be read.", "recoverySuggestion": None})
        self.assertEqual(ask("line-starts", missing, status=1)["error"], "notReadable")
        self.assertEqual(ask("write", missing / "a", status=1)["error"], "notWritable")
        self.assertEqual(ask("write", missing, "--encoding", 77, status=1)["error"], "inapplicableEncoding")
        self.assertEqual(ask("write", missing, status=1, stdin=b"\xff")["error"], "undecodable")
        self.assertFalse(missing.exists())

    def test_leaves_nothing_behind(self):
        ask("copy-name", "a")
        self.assertEqual([str(path) for name in ("home", "data", "state", "run") for path in (PATH / name).iterdir() if path.name != "hunspell"], [])


if __name__ == "__main__":
    unittest.main()
