#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""The texts of the program, their German ones, and how they are collected. Usage: strings_command.py PROGRAM"""
import json
import pathlib
import re
import subprocess
import tempfile
import unittest

from inspection import ROOT, ask

FOLDER_IN_KEYS = "~/Library/Application Support/Quillet"


def collect(folder):
    return json.loads(subprocess.run([ROOT / "tools/collect-strings", folder], capture_output=True, check=True).stdout.decode("utf-8"))


def read_table(language):
    """The table as one dictionary, and the texts that it has twice."""
    twice = []

    def once(entries):
        names = [name for name, _ in entries]
        twice.extend({name for name in names if names.count(name) > 1})
        return dict(entries)

    groups = json.loads((ROOT / f"resources/strings/{language}.json").read_text(encoding="utf-8"), object_pairs_hook=once)
    names = [name for group in groups.values() for name in group]
    twice.extend({name for name in names if names.count(name) > 1})
    return {name: text for group in groups.values() for name, text in group.items()}, twice


def placeholders(text):
    """Kind by number, with how many per cent signs of their own there are."""
    found = re.findall(r"%(?:(\d)\$)?([@d%])", text)
    kinds = [(number, kind) for number, kind in found if kind != "%"]
    return {int(number) if number else place: kind for place, (number, kind) in enumerate(kinds, 1)}, len(found) - len(kinds)


class Strings(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.answer = ask("strings")
        cls.german, cls.twice_in_german = read_table("de")
        cls.english, cls.twice_in_english = read_table("en")

    def test_nothing_is_missing(self):
        in_code = collect(ROOT / "src")
        missing = {text: in_code.get(text, ["resources/strings/en.json"]) for text in self.answer["missing"]}
        self.assertFalse(missing, "Without a German text; resources/strings/de.json is the place for it (or, when nobody sees it: "
                                  "u\"…\"_s in the code, or the comment \"not shown\" at the end of its line)")
        self.assertEqual(self.answer["keys"], sorted(set(self.german) | set(in_code), key=lambda text: text.encode("utf-16-be")))
        self.assertEqual(self.answer["de"], self.german)
        self.assertEqual(self.twice_in_german + self.twice_in_english, [], "texts that stand twice")

    def test_placeholders_agree(self):
        for key, text in self.english.items():
            self.assertEqual(placeholders(text), placeholders(key.replace(FOLDER_IN_KEYS, "%@")), key)
        for key, text in self.german.items():
            self.assertEqual(placeholders(text), placeholders(self.english.get(key, key)), key)

    def test_the_german_is_written_as_german_is(self):
        for key, text in self.german.items():
            with self.subTest(key):
                self.assertTrue(text)
                self.assertNotRegex(re.sub(r'„[^„“]*“|"\+', "", text), '[„“”"]', "quotation marks")
                self.assertNotIn("...", text)
                self.assertNotRegex(text, r"\b(Sie|Ihnen|Ihre?[mnrs]?|[Dd]u|[Dd]ein\w*)\b", "addresses somebody")
                self.assertNotRegex(text, r"\b([Ss]ichern|[Gg]esichert|Reiter|Ctrl|Shift)\b", "decided otherwise")
                self.assertEqual(re.match(r"\s*", text).group(), re.match(r"\s*", key).group())
                self.assertEqual(key.endswith("…"), text.endswith(" …"))
                self.assertEqual(re.search(r"[.:?]?$", key).group(), re.search(r"[.:?]?$", text).group())

    def test_no_text_names_what_is_not_here(self):
        for key in self.answer["keys"]:
            for text in (self.german[key], self.english.get(key, key)):
                # The reference of keys writes them short, and says how.
                short = "[⌘⇧⇥]" if "⌃ st" in text or "(⌃V)" in text else "[⌘⌥⌃⇧⇥]"
                self.assertNotRegex(text, short + r"|(?<!-)Finder|macOS|~/Library|System Settings", key)


class Collecting(unittest.TestCase):
    def test_what_is_a_text(self):
        source = r'''
            // localized(u"In a comment")
            /* u"In a block" */
            localized(u"one"); localized( u"two lines, "
                "of one "
                u"text \"quoted\" \u201cso\u201d\n");
            formatted(localized(isMany ? u"many" : u"few"), u"word");
            {u"Save As…", "saveDocumentAs:", u"save", u"two words", u"open…", u"“%@” is full."},
            u"Not a Text"_s + u"Nor This"_L1 + "Plain Bytes" + R"(u"Raw Text")" + u'"' + L"Wide Text"
            {u"Hidden Name"}, // not shown
            u"[a-z] \\d+ of it", u"https://a.b/c d", u"UTF-8", u"nowrap", u"", 1'000'000, u"After All"
        '''
        with tempfile.TemporaryDirectory() as folder:
            (pathlib.Path(folder) / "A.cpp").write_text(source, encoding="utf-8")
            (pathlib.Path(folder) / "Highlighting/Languages").mkdir(parents=True)
            (pathlib.Path(folder) / "Highlighting/Languages/B.cpp").write_text('{u"Plain Rust"}; localized(u"one");', encoding="utf-8")
            found = collect(folder)
        self.assertEqual(set(found), {"one", 'two lines, of one text "quoted" “so”\n', "many", "few", "Save As…", "two words", "open…",
                                      "“%@” is full.", "After All"})
        self.assertEqual([place.split("/", 1)[1] for place in found["one"]], ["A.cpp:4", "Highlighting/Languages/B.cpp:1"])


if __name__ == "__main__":
    unittest.main()
