#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""What the commands of quillet-inspect answer. Usage: commands.py PROGRAM"""
import json
import unittest

from inspection import FILES, PATH, ask, run


class Commands(unittest.TestCase):
    def test_wrong_arguments(self):
        for arguments in ((), ("unknown",), ("text",), ("text", "a", "b"), ("text", "a", "--encoding"), ("text", "a", "--encoding", "x"),
                          ("text", "a", "--line-ending", "lf"), ("write", "a", "--line-ending", "lfcr"), ("copy-name", "-x"), ("detect",),
                          ("key-reference", "--preset", "emacs"), ("highlight", "a", "--language", "C"),
                          ("highlight", "a", "--ensure", "5"), ("highlight", "a", "--ensure", "-1,5"), ("theme",),
                          ("keys", "/dev/null", "--keys", "<Nonsense>"), ("keys", "/dev/null", "--keys", "<Wait:soon>")):
            result = run(*arguments)
            self.assertEqual((result.returncode, result.stdout), (2, b""), arguments)

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
        for arguments, stdin, error in ((("line-starts", missing), b"", "notReadable"), (("write", missing / "a"), b"", "notWritable"),
                                        (("write", missing, "--encoding", 77), b"", "inapplicableEncoding"),
                                        (("write", missing), b"\xff", "undecodable"), (("highlight", missing), b"", "notReadable"),
                                        (("indentation", missing), b"", "notReadable")):
            self.assertEqual(ask(*arguments, status=1, stdin=stdin)["error"], error, arguments)
        self.assertFalse(missing.exists())

    def test_leaves_nothing_behind(self):
        ask("copy-name", "a")
        self.assertEqual([str(path) for name in ("home", "data", "state", "run") for path in (PATH / name).iterdir() if path.name != "hunspell"], [])

    def diff(self, old, new, *options, status=0):
        paths = (FILES / "old", FILES / "new")
        for path, contents in zip(paths, (old, new)):
            path.write_bytes(contents)
        return ask("diff", *paths, *options, status=status)

    def test_diff(self):
        old, new = "x y\né1\r\nz\n".encode(), "xy\né2\r\nz\nend".encode()
        answer = self.diff(old, new, "--ignore-whitespace")
        self.assertEqual(answer["rows"][1], {"kind": "modified", "leftNumber": 2, "rightNumber": 2, "leftText": "é1\r",
                                             "rightText": "é2\r", "leftEmphasis": [[1, 2]], "rightEmphasis": [[1, 2]]})
        self.assertEqual((answer["rows"][3]["kind"], answer["rows"][3]["leftNumber"]), ("inserted", None))
        self.assertEqual((answer["changeStarts"], answer["addedCount"], answer["removedCount"]), ([1, 3], 2, 1))
        self.assertEqual(self.diff(old, new)["changeStarts"], [0, 3])
        self.assertEqual(self.diff(b"\xff", b"a", status=1)["error"], "undecodable")

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

    def test_theme(self):
        self.assertEqual(ask("theme", "System")["name"], "Light")
        theme = ask("theme", "gone", "--dark")
        self.assertEqual((theme["name"], theme["isDark"], theme["bold"], theme["italic"]),
                         ("Dark", True, ["keyword", "heading"], ["comment", "emphasis"]))
        self.assertEqual((theme["background"], theme["colors"]["link"], len(theme["colors"])), ("#1E1F22", "#7DCFFF", 17))

    def test_languages(self):
        self.assertEqual(ask("detect", "/no/such/main.go"), {
            "id": "go", "name": "Go", "lineComment": "//", "blockComment": ["/*", "*/"], "indentWidth": 4, "insertSpaces": False})
        self.assertEqual(ask("detect", "-", "--first-line", "not a script"), {
            "id": "text", "name": "Plain Text", "lineComment": None, "blockComment": None, "indentWidth": None, "insertSpaces": None})
        languages = {language["id"]: language for language in ask("languages")["languages"]}
        self.assertEqual((languages["javascript"]["filenames"], languages["javascript"]["shebangPatterns"]),
                         ([], [r"\bnode\b", r"\bbun\b", r"\bdeno\b"]))

    def test_indentation(self):
        def indentation(name, text, *options):
            (FILES / name).write_text(text, encoding="utf-8")
            answer = ask("indentation", FILES / name, *options)
            return answer["unit"], answer["width"], answer["source"]

        for name, text, expected in (("i.txt", "a\n", ("spaces", 4, "preference")), ("i.go", "a\n", ("tab", 4, "language")),
                                     ("i.go", "a\n" + "  b\n" * 5, ("spaces", 2, "text")), ("i.json", "\ta\n" * 5, ("tab", 2, "text")),
                                     ("Makefile", "a:\n" + "  b\n" * 9, ("tab", 4, "language"))):
            self.assertEqual(indentation(name, text), expected, name)
        self.assertEqual(indentation("i.txt", "  a\n" * 5, "--pref", "editor.detectIndentation=false", "--pref", "editor.insertSpaces=false"),
                         ("tab", 4, "preference"))

    def test_key_reference(self):
        self.assertEqual(ask("key-reference"), ask("key-reference", "--preset", "plain", "--language", "en"))
        german = ask("key-reference", "--preset", "lazyvim", "--language", "de")["markdown"]
        self.assertTrue(german.startswith("# Vim-Tasten\n"))
        self.assertIn("Zurzeit aktiv.", german)


class Keys(unittest.TestCase):
    """What keys do in a real window."""

    def expect(self, given, keys, *options, name="a.c", **wanted):
        path = FILES / name
        path.write_bytes(given.encode())
        answer = ask("keys", path, "--keys", keys, *options)
        self.assertEqual({key: answer[key] for key in wanted}, wanted, f"{keys} on {given!r}")
        return answer

    def test_keys_reach_the_text(self):
        self.expect("one\n", "a<lt>ü<CR>b<BS><Left>", text="a<ü\none\n", selection=[3, 0], isDirty=True, tabs=["a.c"], panes=1)
        self.expect("one two\n", "<C-Right><S-End>x", text="one x\n")
        self.expect("😀b\n", "<Del>A<Home>😀", text="😀Ab\n", selection=[2, 0])
        self.expect("  a\n", "<Tab><S-Tab>", "--select", "3,0", text="a \n")
        self.expect("abc\n", "<C-v>", "--select", "1,9", "--clipboard", "é", text="aé", clipboard="é")
        self.expect("a\n", "<Tab>", "--pref", "editor.tabWidth=3", "--language", "text", text="   a\n")

    def test_shortcuts_and_actions(self):
        answer = self.expect("a\n", "x<C-s><Cmd:toggleComment:><C-S-D><Cmd:noSuchThing:>", beeps=1, text="// xa\n// xa\n",
                             actions=["saveDocument:", "toggleComment:", "duplicateLine:", "noSuchThing:"])
        self.assertEqual((FILES / "a.c").read_text(), "xa\n")
        self.assertEqual((answer["enabled"]["undo:"], answer["enabled"]["redo:"], answer["checked"]["toggleLineNumbers:"]),
                         (True, False, True))
        self.expect("a\n", "<Cmd:toggleComment:>", name="a.txt", text="a\n", beeps=1)

    def test_several_carets(self):
        below = "<Cmd:addCaretBelow:>"
        self.expect("a\nb\n", below + "x<S-Right>", text="xa\nxb\n", selections=[[1, 1], [4, 1]], selection=[4, 1])
        self.expect("one b one\none\n", "<C-d><C-d><Cmd:skipOccurrence:>two", text="two b one\ntwo\n", selections=[[3, 0], [13, 0]])
        modal = ["--pref", "editor.vimMode=true"]
        self.expect("a\nb\n", "i" + below + "x", *modal, text="xa\nxb\n", mode="insert", selections=[[1, 0], [4, 0]])
        self.expect("a\nb\n", "i" + below + "x<Esc>", *modal, text="xa\nxb\n", mode="normal", selections=[[3, 0]])
        self.expect("a\nb\n", below, *modal, mode="normal", selections=[[2, 0]])

    def test_time_passes_only_as_asked(self):
        self.expect("a\n", "x<BS>", isDirty=True)
        self.expect("a\n", "x<BS><Wait:600>", isDirty=False)


if __name__ == "__main__":
    unittest.main()
