#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""What quillet-inspect says about languages. Usage: language_commands.py PROGRAM"""
import json
import subprocess
import sys
import unittest

PROGRAM = sys.argv.pop(1)


def ask(*arguments):
    return json.loads(subprocess.run([PROGRAM, *arguments], capture_output=True, check=True, timeout=120).stdout.decode("utf-8"))


class LanguageCommands(unittest.TestCase):
    def test_detect(self):
        self.assertEqual(ask("detect", "/no/such/main.go"), {
            "id": "go", "name": "Go", "lineComment": "//", "blockComment": ["/*", "*/"], "indentWidth": 4, "insertSpaces": False})
        self.assertEqual(ask("detect", "-", "--first-line", "not a script"), {
            "id": "text", "name": "Plain Text", "lineComment": None, "blockComment": None, "indentWidth": None, "insertSpaces": None})
        self.assertEqual(ask("detect", "-", "--first-line", "#!/bin/sh")["id"], "shell")
        self.assertEqual(subprocess.run([PROGRAM, "detect"], capture_output=True).returncode, 2)

    def test_languages(self):
        languages = ask("languages")["languages"]
        self.assertEqual(len(languages), 27)
        self.assertEqual(languages[5], {
            "id": "javascript", "name": "JavaScript", "extensions": ["js", "mjs", "cjs", "jsx"], "filenames": [],
            "shebangPatterns": [r"\bnode\b", r"\bbun\b", r"\bdeno\b"], "lineComment": "//", "blockComment": ["/*", "*/"],
            "indentWidth": 2, "insertSpaces": True, "spans": 2, "rules": 9})

    def test_key_reference(self):
        plain = ask("key-reference")["markdown"]
        self.assertEqual(plain, ask("key-reference", "--preset", "plain", "--language", "en")["markdown"])
        self.assertTrue(plain.startswith("# Vim keys\n"))
        self.assertIn("Not active", plain)
        german = ask("key-reference", "--preset", "lazyvim", "--language", "de")["markdown"]
        self.assertTrue(german.startswith("# Vim-Tasten\n"))
        self.assertIn("Zurzeit aktiv.", german)
        self.assertEqual(subprocess.run([PROGRAM, "key-reference", "--preset", "emacs"], capture_output=True).returncode, 2)


if __name__ == "__main__":
    unittest.main()
