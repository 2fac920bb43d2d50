#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""The man page and the completions that are installed say what the program's options are. Usage: command_line.py PROGRAM [--write]

With --write they are made anew."""
import subprocess
import sys
import unittest

from inspection import ROOT, ask, need

FOLDER = ROOT / "packaging"
# The answer's part, its language, the file.
DOCUMENTS = (("man", "en", "man/quillet.1"), ("man", "de", "man/quillet.de.1"), ("bash", "en", "completions/quillet.bash"),
             ("zsh", "en", "completions/quillet.zsh"), ("fish", "en", "completions/quillet.fish"))


def part_of(part, language):
    return ask("command-line", "--language", language)[part]


class CommandLine(unittest.TestCase):
    def test_what_is_installed_is_what_the_program_says(self):
        for part, language, name in DOCUMENTS:
            with self.subTest(name):
                text = (FOLDER / name).read_text(encoding="utf-8")
                self.assertEqual(text, part_of(part, language), "command_line.py PROGRAM --write makes it anew")
                for option in ("--diff", "--language", "--new-window"):
                    self.assertIn(option.removeprefix("--") if part == "fish" else option, text.replace("\\-", "-"))

    def test_shells_take_it(self):
        for shell, name in (("bash", "quillet.bash"), ("zsh", "quillet.zsh"), ("fish", "quillet.fish")):
            subprocess.run([shell, "-n", FOLDER / "completions" / name], check=True, capture_output=True)
        script = f"source {FOLDER}/completions/quillet.bash; COMP_WORDS=(quillet {{}}); COMP_CWORD={{}}; _quillet; echo ${{{{COMPREPLY[*]}}}}"

        def complete(words, index):
            return subprocess.run(["bash", "-c", script.format(words, index)], capture_output=True, check=True, text=True).stdout.split()

        self.assertEqual(complete("--la", 1), ["--language"])
        self.assertEqual(complete("--language d", 2), ["de"])

    def test_man_takes_it(self):
        for name in ("quillet.1", "quillet.de.1"):
            done = subprocess.run(["groff", "-man", "-Tutf8", "-Kutf8", "-ww", "-z", FOLDER / "man" / name], capture_output=True, text=True, check=True)
            self.assertEqual(done.stderr, "")


if __name__ == "__main__":
    if "--write" in sys.argv:
        for part, language, name in DOCUMENTS:
            (FOLDER / name).parent.mkdir(parents=True, exist_ok=True)
            (FOLDER / name).write_text(part_of(part, language), encoding="utf-8")
    else:
        need({"fish": "fish", "groff": "groff-base", "zsh": "zsh"})
        unittest.main()
