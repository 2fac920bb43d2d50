#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""What quillet-inspect says about colours. Usage: highlight_commands.py PROGRAM"""
import unittest

from inspection import FILES, ask, run


class HighlightCommands(unittest.TestCase):
    def test_highlight(self):
        script = FILES / "script"
        script.write_text("#!/bin/sh\necho ü 1 # no\n", encoding="utf-8")
        runs = [[0, 9, "preprocessor"], [10, 4, "builtin"], [17, 1, "number"], [19, 4, "comment"]]
        self.assertEqual(ask("highlight", script), {"language": "shell", "runs": runs})
        self.assertEqual(ask("highlight", script, "--language", "text"), {"language": "text", "runs": []})
        script.write_text("if\n" * 20000, encoding="utf-8")
        part = ask("highlight", script, "--language", "c", "--ensure", "16384,1")["runs"]
        # The line that begins in the first chunk belongs to it, and the one that the second chunk ends in is done as a whole.
        self.assertEqual([part[0], part[-1]], [[16383, 2, "keyword"], [32766, 2, "keyword"]])
        self.assertEqual(ask("highlight", FILES / "none", status=1)["error"], "notReadable")

    def test_theme(self):
        self.assertEqual(ask("theme", "System")["name"], "Light")
        theme = ask("theme", "gone", "--dark")
        self.assertEqual((theme["name"], theme["isDark"], theme["bold"], theme["italic"]),
                         ("Dark", True, ["keyword", "heading"], ["comment", "emphasis"]))
        self.assertEqual((theme["background"], theme["colors"]["link"]), ("#1E1F22", "#7DCFFF"))
        self.assertEqual(len(theme["colors"]), 17)

    def test_wrong_arguments(self):
        for arguments in (("highlight",), ("highlight", "a", "--language", "C"), ("highlight", "a", "--ensure", "5"),
                          ("highlight", "a", "--ensure", "-1,5"), ("highlight", "a", "--ensure", "1,2,3"), ("theme",)):
            self.assertEqual(run(*arguments).returncode, 2, arguments)


if __name__ == "__main__":
    unittest.main()
