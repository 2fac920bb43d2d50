#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""What a wrong figure could come from, without starting anything: when a picture counts, what a cell says, the made files."""
import io
import json
import unittest

import compare
import compare_use
import frames
import make_files
import screen

AREA = screen.WIDTH * len(screen.ROWS)
COLUMN = {column[1]: column for column in compare.COLUMNS}


def picture(*marks, background=255):
    """A screen of `background` with marks of (first pixel, pixels, brightness)."""
    pixels = bytearray([background]) * AREA
    for first, count, value in marks:
        pixels[first:first + count] = bytes([value]) * count
    return bytes(pixels)


class FirstPicture(unittest.TestCase):
    def film(self, *scenes, least=0.0):
        film = screen.Film()
        for moment, shown in enumerate(scenes):
            film.add(float(moment), shown)
        return film.painted(least)

    def test_when_it_counts(self):
        text, caret = (5000, 4000, 0), (20000, 20, 0)
        black, blank = picture(background=0), picture()
        for name, expected, scenes in [
                ('empty window first', 2.0, [black, blank, picture(text), picture(text)]),
                ('a caret that blinks', 1.0, [black, picture(text), picture(text, caret), picture(text)]),
                ('colours that come later', 1.0, [black, picture((5000, 4000, 60)), picture(text)]),
                ('another text before', 2.0, [black, picture((90000, 4000, 0)), picture(text)]),
                ('shown, gone and shown again', 3.0, [black, picture(text), blank, picture(text)]),
                ('nothing ever', None, [black, black])]:
            with self.subTest(name):
                self.assertEqual(self.film(*scenes), expected)
        self.assertIsNone(self.film(black, picture((5000, 400, 0)), least=0.02), 'a window without text at the limit')

    def test_when_the_text_became_another(self):
        text, result, panel, marks = (5000, 4000, 0), (9000, 4000, 0), (60000, 9000, 90), (80000, 900, 90)
        film, before = screen.Film(), picture(text, panel)
        for moment, shown in enumerate([before, picture(text), picture(result), picture(result, marks)]):
            film.add(float(moment), shown)
        self.assertEqual(film.became(picture(text), before), 2.0)
        self.assertIsNone(film.became(picture(result, marks)))

    def test_keys_without_effect(self):
        self.assertFalse(screen.changed(picture(), picture((20000, 20, 0)), 24))
        self.assertTrue(screen.changed(picture(), picture((20000, 400, 0)), 160))


class Cell(unittest.TestCase):
    def cell(self, key, *results):
        return compare.cell(list(results), COLUMN[key], 90)

    def test_says_what_was_measured(self):
        done = {'open_cpu_s': 1.0, 'rss_mb': 10, 'type_cpu_ms': 2.0, 'type_taken': True}
        late = {'open_cpu_s': 1.0, 'rss_mb': 10, 'late': 'type'}
        self.assertEqual(self.cell('open_cpu_s', done, {'open_cpu_s': 3.0}, {'open_cpu_s': 9.0}), ('3.00 s', 3.0))
        self.assertEqual(self.cell('open_cpu_s', late), ('1.00 s', 1.0))
        self.assertEqual(self.cell('type_cpu_ms', done, late), ('over 90 s', None))
        self.assertEqual(self.cell('page_cpu_ms', done, late), ('–', None))
        self.assertEqual(self.cell('type_cpu_ms', done, {**done, 'type_taken': False}), ('no effect', None))
        self.assertEqual(self.cell('rss_mb', {'rss_mb': 10, 'late': 'open'}), ('10 MB', 10))
        self.assertEqual(self.cell('rss_mb', done, {'failed': 'it ended'}), ('failed', None))


class Frames(unittest.TestCase):
    def test_pairs_inputs_with_pictures(self):
        for name, expected, times in [
                ('one each', [5.0, 7.0], 'input 0 drawn 5 input 60 drawn 67'),
                ('drawn in pieces', [5.0, 7.0], 'input 0 drawn 5 drawn 5.5 drawn 6 input 60 drawn 67 drawn 67.9'),
                ('a second picture', [5.0, 7.0], 'input 0 drawn 5 drawn 30 input 60 drawn 67'),
                ('what was drawn before', [None, 3.0], 'drawn -1 input 0 input 60 drawn 63'),
                ('the rest of a picture before', [59.7, 5.0], 'input 0 drawn 59.7 input 60 drawn 60.2 drawn 65')]:
            words = times.split()
            with self.subTest(name):
                got = frames.waits([(what, float(when)) for what, when in zip(words[::2], words[1::2])])
                self.assertEqual([time and round(time, 3) for time in got], expected)

    def test_reckons_with_them(self):
        keys = [event for key in range(200) for event in (('input', 60.0 * key), ('drawn', 60.0 * key + (50 if key == 7 else 2 + key % 2)))]
        self.assertEqual(frames.keys(keys), {'unseen': 0, 'p50_ms': 2.0, 'p99_ms': 3.0, 'longest_ms': 50.0})
        self.assertEqual(frames.keys([('input', 0.0)]), {'unseen': 1})
        turns = [event for turn in range(6) for event in [('input', 16.0 * turn)] + ([('drawn', 16.0 * turn + 4)] if turn not in (2, 3) else [])]
        self.assertEqual(frames.scrolling(turns), {'missed': 2, 'gap_ms': 48.0, 'wait_ms': 4.0})


class Row(unittest.TestCase):
    def test_says_what_was_measured(self):
        table = compare_use.Table('', [], None, [('CPU', 'cpu_s', 's', 1), ('peak', 'peak_mb', 'MB', 0)], {})
        figures = {'cpu_s': 2.0, 'peak_mb': 50}
        results = {'quillet': [figures, {'cpu_s': 9.0, 'peak_mb': 60}, figures], 'gvim': [{'cpu_s': 3.0}], 'kate': 'kate is',
                   'slow': [figures, {'late': True}], 'deaf': [{**figures, 'act_taken': False}]}
        self.assertEqual(compare_use.rows(table, results, 90)[2:], [
            '| quillet | 2.0 s | 50 MB |', '| gvim | 3.0 s (1.5×) | – |', '| kate | kate is not installed | |',
            '| slow | over 90 s | over 90 s |', '| deaf | no effect | no effect |'])


class Files(unittest.TestCase):
    def test_same_bytes_of_the_size_asked_for(self):
        for write in (make_files.write_c, make_files.write_json):
            first, second = io.StringIO(), io.StringIO()
            write(first, 20480)
            write(second, 20480)
            self.assertEqual(len(first.getvalue()), 20480)
            self.assertEqual(first.getvalue(), second.getvalue())
        self.assertNotIn('\n', second.getvalue())
        self.assertGreater(len(json.loads(second.getvalue())), 100)


if __name__ == '__main__':
    unittest.main()
