#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""What quillet-inspect says about two files. Usage: diff_command.py PROGRAM"""
import json
import os
import subprocess
import sys
import tempfile
import unittest

PROGRAM = sys.argv.pop(1)


class DiffCommand(unittest.TestCase):
    def run_diff(self, old, new, *options):
        with tempfile.TemporaryDirectory() as folder:
            paths = [os.path.join(folder, name) for name in ("old", "new")]
            for path, contents in zip(paths, (old, new)):
                if contents is not None:
                    with open(path, "wb") as file:
                        file.write(contents)
            done = subprocess.run([PROGRAM, "diff", *paths, *options], capture_output=True, timeout=120)
        return done.returncode, json.loads(done.stdout.decode("utf-8"))

    def test_rows(self):
        old, new = "x y\né1\r\nz\n".encode(), "xy\né2\r\nz\nend".encode()
        status, answer = self.run_diff(old, new, "--ignore-whitespace")
        self.assertEqual(status, 0)
        self.assertEqual(answer["rows"][0], {"kind": "equal", "leftNumber": 1, "rightNumber": 1, "leftText": "x y", "rightText": "xy",
                                             "leftEmphasis": [], "rightEmphasis": []})
        self.assertEqual(answer["rows"][1], {"kind": "modified", "leftNumber": 2, "rightNumber": 2, "leftText": "é1\r",
                                             "rightText": "é2\r", "leftEmphasis": [[1, 2]], "rightEmphasis": [[1, 2]]})
        self.assertEqual((answer["rows"][3]["kind"], answer["rows"][3]["leftNumber"]), ("inserted", None))
        self.assertEqual((answer["changeStarts"], answer["addedCount"], answer["removedCount"]), ([1, 3], 2, 1))
        self.assertEqual(self.run_diff(old, new)[1]["changeStarts"], [0, 3])

    def test_failures(self):
        self.assertEqual(self.run_diff(b"a", None)[0], 1)
        self.assertEqual(self.run_diff(b"a", None)[1]["error"], "notReadable")
        self.assertEqual(self.run_diff(b"\xff", b"a")[1]["error"], "undecodable")


if __name__ == "__main__":
    unittest.main()
