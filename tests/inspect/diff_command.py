#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""What quillet-inspect says about two files. Usage: diff_command.py PROGRAM"""
import unittest

from inspection import FILES, ask


class DiffCommand(unittest.TestCase):
    def diff(self, old, new, *options, status=0):
        paths = [FILES / name for name in ("old", "new")]
        for path, contents in zip(paths, (old, new)):
            path.unlink(missing_ok=True)
            if contents is not None:
                path.write_bytes(contents)
        return ask("diff", *paths, *options, status=status)

    def test_rows(self):
        old, new = "x y\né1\r\nz\n".encode(), "xy\né2\r\nz\nend".encode()
        answer = self.diff(old, new, "--ignore-whitespace")
        self.assertEqual(answer["rows"][0], {"kind": "equal", "leftNumber": 1, "rightNumber": 1, "leftText": "x y", "rightText": "xy",
                                             "leftEmphasis": [], "rightEmphasis": []})
        self.assertEqual(answer["rows"][1], {"kind": "modified", "leftNumber": 2, "rightNumber": 2, "leftText": "é1\r",
                                             "rightText": "é2\r", "leftEmphasis": [[1, 2]], "rightEmphasis": [[1, 2]]})
        self.assertEqual((answer["rows"][3]["kind"], answer["rows"][3]["leftNumber"]), ("inserted", None))
        self.assertEqual((answer["changeStarts"], answer["addedCount"], answer["removedCount"]), ([1, 3], 2, 1))
        self.assertEqual(self.diff(old, new)["changeStarts"], [0, 3])

    def test_failures(self):
        self.assertEqual(self.diff(b"a", None, status=1)["error"], "notReadable")
        self.assertEqual(self.diff(b"\xff", b"a", status=1)["error"], "undecodable")


if __name__ == "__main__":
    unittest.main()
