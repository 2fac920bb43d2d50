#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""What keys do in a real window, as quillet-inspect tells. Usage: keys_command.py PROGRAM"""
import json
import os
import subprocess
import sys
import tempfile
import unittest

PROGRAM = sys.argv.pop(1)


def run(text, keys, *options, name="a.c"):
    """(answer, what the file holds afterwards)"""
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, name)
        with open(path, "w", encoding="utf-8", newline="") as file:
            file.write(text)
        done = subprocess.run([PROGRAM, "keys", path, "--keys", keys, *options], capture_output=True, timeout=120)
        with open(path, encoding="utf-8", newline="") as file:
            return json.loads(done.stdout.decode("utf-8")), file.read()


class KeysCommand(unittest.TestCase):
    def expect(self, given, keys, *options, name="a.c", **wanted):
        answer, _ = run(given, keys, *options, name=name)
        self.assertEqual({key: answer[key] for key in wanted}, wanted, f"{keys} on {given!r}")

    def test_keys_reach_the_text(self):
        self.expect("one\n", "a<lt>ü<CR>b<BS><Left>", text="a<ü\none\n", selection=[3, 0], isDirty=True, tabs=["a.c"], panes=1)
        self.expect("one two\n", "<C-Right><S-End>x", text="one x\n")
        self.expect("😀b\n", "<Del>A<Home>😀", text="😀Ab\n", selection=[2, 0])
        self.expect("  a\n", "<Tab><S-Tab>", "--select", "3,0", text="a \n")

    def test_options(self):
        self.expect("abc\n", "<C-v>", "--select", "1,9", "--clipboard", "é", text="aé", clipboard="é")
        self.expect("a\n", "<Tab>", "--pref", "editor.tabWidth=3", "--language", "text", text="   a\n")

    def test_shortcuts_and_actions(self):
        answer, saved = run("a\n", "x<C-s><Cmd:toggleComment:><C-S-D><Cmd:noSuchThing:>")
        self.assertEqual(saved, "xa\n")
        self.assertEqual(answer["actions"], ["saveDocument:", "toggleComment:", "duplicateLine:", "noSuchThing:"])
        self.assertEqual(answer["beeps"], 1)
        self.assertEqual(answer["text"], "// xa\n// xa\n")
        self.assertTrue(answer["enabled"]["undo:"])
        self.assertFalse(answer["enabled"]["redo:"])
        self.assertTrue(answer["checked"]["toggleLineNumbers:"])
        self.expect("a\n", "<Cmd:toggleComment:>", name="a.txt", text="a\n", beeps=1)

    def test_time_passes_only_as_asked(self):
        self.expect("a\n", "x<BS>", isDirty=True)
        self.expect("a\n", "x<BS><Wait:600>", isDirty=False)

    def test_wrong_arguments(self):
        for keys in ("<Nonsense>", "<C-", "<Wait:soon>"):
            done = subprocess.run([PROGRAM, "keys", "/dev/null", "--keys", keys], capture_output=True)
            self.assertEqual((done.returncode, done.stdout), (2, b""), keys)


if __name__ == "__main__":
    unittest.main()
