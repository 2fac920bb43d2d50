#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""What quillet-inspect says about languages. Usage: language_commands.py PROGRAM"""
import unittest

from inspection import ask, run


class LanguageCommands(unittest.TestCase):
    def test_detect(self):
        self.assertEqual(ask("detect", "/no/such/main.go"), {
            "id": "go", "name": "Go", "lineComment": "//", "blockComment": ["/*", "*/"], "indentWidth": 4, "insertSpaces": False})
        self.assertEqual(ask("detect", "-", "--first-line", "not a script"), {
            "id": "text", "name": "Plain Text", "lineComment": None, "blockComment": None, "indentWidth": None, "insertSpaces": None})
        self.assertEqual(ask("detect", "-", "--first-line", "#!/bin/sh")["id"], "shell")
        self.assertEqual(run("detect").returncode, 2)

    def test_languages(self):
        languages = {language["id"]: language for language in ask("languages")["languages"]}
        self.assertEqual((languages["javascript"]["filenames"], languages["javascript"]["shebangPatterns"]),
                         ([], [r"\bnode\b", r"\bbun\b", r"\bdeno\b"]))

    def test_key_reference(self):
        plain = ask("key-reference")["markdown"]
        self.assertEqual(plain, ask("key-reference", "--preset", "plain", "--language", "en")["markdown"])
        self.assertTrue(plain.startswith("# Vim keys\n"))
        self.assertIn("Not active", plain)
        german = ask("key-reference", "--preset", "lazyvim", "--language", "de")["markdown"]
        self.assertTrue(german.startswith("# Vim-Tasten\n"))
        self.assertIn("Zurzeit aktiv.", german)
        self.assertEqual(run("key-reference", "--preset", "emacs").returncode, 2)


if __name__ == "__main__":
    unittest.main()
