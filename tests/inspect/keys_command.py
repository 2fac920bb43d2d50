#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""What keys do in a real window, as quillet-inspect tells. Usage: keys_command.py PROGRAM"""
import unittest

from inspection import FILES, ask, run


def press(text, keys, *options, name="a.c"):
    """(answer, what the file holds afterwards)"""
    path = FILES / name
    path.write_bytes(text.encode())
    return ask("keys", path, "--keys", keys, *options), path.read_bytes().decode()


class KeysCommand(unittest.TestCase):
    def expect(self, given, keys, *options, name="a.c", **wanted):
        answer, _ = press(given, keys, *options, name=name)
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
        answer, saved = press("a\n", "x<C-s><Cmd:toggleComment:><C-S-D><Cmd:noSuchThing:>")
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
            done = run("keys", "/dev/null", "--keys", keys)
            self.assertEqual((done.returncode, done.stdout), (2, b""), keys)


if __name__ == "__main__":
    unittest.main()
