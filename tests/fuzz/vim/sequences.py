# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""Random texts and random keys that make sense in them.

Commands are rows of tables, in Vim users' notation with "{name}" for something of the list of that name, and "{n}" for a count that is
mostly none. A table has a weight: how often one of its rows is chosen beside those of the others."""
import re

from oracle import units

PARTS = {
    "char": list("abeotx .,()\"'") + ["é", "😀", "1"],
    "plain": list("xyzQ") + ["é", "😀", "-"],
    "word": ["x", "foo", "ab cd", "Z", "é", "😀", "(a)", "7", "end.", "a-b"],
    "mark": list("abc"),
    "register": list("aabc\"") + ["A", "B", "0", "1", "2", "-", "_"],
    "paragraph": list("{}"),
    "motion": ["h", "l", "j", "k", "w", "b", "e", "W", "B", "E", "0", "^", "$", "ge", "gE", "g_", "gg", "G", "{paragraph}", "%", "(", ")", "f{char}",
               "t{char}", "F{char}", "T{char}", ";", ",", "+", "-", "_", "|", "[(", "])", "[{paragraph}", "]{paragraph}", "<CR>", "<BS>", " "],
    "object": [i + o for i in "ia" for o in ["w", "w", "W", "s", "p", "(", ")", "b", "{", "B", "[", "]", "<lt>", ">", "\"", "'", "`", "t"]],
    "operator": ["d", "d", "d", "y", "y", ">", "<lt>", "gu", "gU", "g~"],
    "line": ["dd", "yy", ">>", "<lt><lt>", "guu", "gUU", "g~~", "D", "Y"],
    "pattern": ["a", "o", "an", "the", "\\<lt>t", "e\\>", "^", "$", "[aeiou]", "o*", ".", "b\\|x", "\\d\\+", "x\\zsy", "\\cA", "\\s", "foo", "t.e", "😀"],
    "offset": ["", "", "", "", "/e", "/e-1", "/s+1", "/b+1", "/+1", "/-1", "/0"],
    "typed": ["{word}", "{word}", "{word}", "{word}<BS>{word}", "{word} {word}<C-w>", "{word}<C-u>", "{word}<CR>{word}", "<CR>", "{word}<C-h>",
              "<C-r>{register}", "{word}<C-r>\"", "{word}<Left>{word}", "{word}<C-o>{motion}{word}", "<C-t>{word}", "<C-d>{word}", "<C-e>", "<C-y>",
              "<C-a>", "<C-v>{word}", "{word}<Up>{word}", "<BS><BS>{word}", "<Del>{word}", "{word}<Home>{word}", "{word}<End>{word}", ""],
    "chosen": ["d", "x", "y", "c{typed}<Esc>", "s{typed}<Esc>", "X", "D", "Y", "C{typed}<Esc>", "S{typed}<Esc>", "R{typed}<Esc>", "r{plain}", "J", "gJ",
               "p", "P", "u", "U", "~", "gu", "gU", "g~", ">", "<lt>", "{n}>", "<Esc>", "o{motion}d", "O{motion}y", "\"{register}y", "\"{register}d",
               "\"{register}p", "<C-a>", "{n}<C-x>", "g<C-a>", "I{typed}<Esc>", "A{typed}<Esc>", "v", "V", "<C-v>", "ma", "*", "{object}d", "gv"],
    "column": ["d", "x", "y", "c{word}<Esc>", "s{word}<Esc>", "I{word}<Esc>", "A{word}<Esc>", "r{plain}", "o", "O", "~", "u", "U", "J", "D", "C{word}<Esc>",
               "X", "Y", "p", "P", "\"{register}y", "\"{register}p", "$A{word}<Esc>", "$d", ">", "<lt>", "<C-a>", "g<C-a>", "o{motion}d", "O{motion}d", "gJ",
               "S{word}<Esc>", "R{word}<Esc>", "<Esc>gvd", "$y", "0d", "gu"],
    "range": ["", "", "", "", ".", "$", "%", "1", "2", "1,2", ".,+1", ".,$", "2,$", "/a/", "?a?", "'a", "-", "1;+1", "'a,.", "1,/e/"],
    "address": ["0", "1", "$", ".", "+1", "-2", "2"],
    "substitution": ["s/{pattern}/x/", "s/{pattern}/&&/g", "s/{pattern}/\\U&/", "s/a/\\r/", "s/{pattern}//gn", "s/{pattern}/x/e", "s/{pattern}/[&]/i",
                     "s/\\(.\\)\\(.\\)/\\2\\1/", "s/{pattern}/~y/", "s", "&&", "s/{pattern}/x", "~", "s/\\v(a|o)+/<lt>\\1>/g", "s/{pattern}/\\u&/g"],
    "ex": ["d", "d 2", "d a", "y", "y b", "m{address}", "t{address}", "co{address}", "{substitution}", "{substitution}", "{substitution}", "j", "j!",
           ">", "<lt>", ">>", "norm x", "norm! A{word}", "norm dwj", "k a", "ma b", "pu", "pu!", "pu a", "g/{pattern}/d", "v/{pattern}/d",
           "g/{pattern}/s/a/b/", "g/{pattern}/norm Ax", "g/{pattern}/m0", "g!/{pattern}/j", "sort", "sort!", "sort n", "sort u", "retab", "u", "red",
           "{address}", "noh", "normal .", "copy{address}|d", "d|pu", "undo", "k b|d", "'a,'bd", "retab!"],
}

COUNTS = ["", "", "", "", "2", "3", "4", "1", "12"]
PART = re.compile("{(n|" + "|".join(PARTS) + ")}")

# Name, weight, rows.
TABLES = [
    ("motions", 16, ["{n}{motion}"]),
    ("operators", 16, ["{n}{operator}{n}{motion}", "{operator}{object}", "{n}{line}", "{n}{operator}{motion}", "{operator}v{motion}", "{operator}V{motion}",
                       "\"{register}{operator}{motion}"]),
    ("changes", 10, ["c{n}{motion}{typed}<Esc>", "c{object}{typed}<Esc>", "{n}cc{typed}<Esc>", "{n}C{typed}<Esc>", "{n}s{typed}<Esc>", "{n}S{typed}<Esc>",
                     "cw{word}<Esc>", "{n}cw{word}<Esc>", "cW{word}<Esc>"]),
    ("characters", 8, ["{n}x", "{n}X", "{n}r{plain}", "r<CR>", "{n}~", "{n}x", "<Del>"]),
    ("inserts", 12, ["{n}i{typed}<Esc>", "{n}a{typed}<Esc>", "{n}I{typed}<Esc>", "{n}A{typed}<Esc>", "{n}o{typed}<Esc>", "{n}O{typed}<Esc>",
                     "gi{typed}<Esc>", "gI{typed}<Esc>", "{n}R{typed}<Esc>", "i<Esc>", "a{typed}<C-[>"]),
    ("open", 1, ["i{word}", "R{word}", "a", "o{word}", "v", "V{motion}", "v{motion}", "<C-v>{motion}"]),
    ("visual", 12, ["v{n}{motion}{n}{chosen}", "v{motion}{motion}{chosen}", "V{n}{chosen}", "V{n}{motion}{chosen}", "v{object}{chosen}",
                    "v{object}{object}{chosen}", "gv{chosen}", "{n}v{chosen}"]),
    ("block", 6, ["<C-v>{n}{motion}{column}", "<C-v>j{motion}{column}", "<C-v>{motion}{motion}{column}", "<C-v>jl{column}", "<C-v>k{motion}{column}"]),
    ("puts", 8, ["{n}p", "{n}P", "\"{register}p", "\"{register}P", "{n}gp", "{n}gP", "]p", "[p"]),
    ("joins", 4, ["{n}J", "{n}gJ"]),
    ("marks", 5, ["m{mark}", "`{mark}", "'{mark}", "{operator}`{mark}", "{operator}'{mark}", "``", "''", "`[", "`]", "'[", "']", "`<lt>", "`>", "`.", "`^", "d`]",
                  "v`{mark}d", "`[v`]d"]),
    ("macros", 4, ["q{mark}{n}xjq{n}@{mark}", "qa{motion}x{motion}q@a", "qaA{word}<Esc>{motion}q{n}@a@@", "@@", "{n}@{mark}", "qbdwq.@b", "qA{motion}q@a",
                   "qcj~q9@c", "qaq", "yl@\"", "qacw{word}<Esc>wq{n}@a"]),
    ("dot", 8, ["{n}."]),
    ("undo", 7, ["{n}u", "{n}<C-r>", "U", "u<C-r>", "uu"]),
    ("formatting", 1, ["gq{motion}", "gqq", "gqip", "gwip", "gw{motion}", "Vjgq"]),
    ("numbers", 4, ["{n}<C-a>", "{n}<C-x>", "Vj{n}<C-a>", "VGg<C-a>", "vG<C-x>", "VG{n}g<C-x>"]),
    ("searches", 7, ["/{pattern}<CR>", "?{pattern}<CR>", "{n}n", "{n}N", "{n}*", "#", "g*", "g#", "/{pattern}{offset}<CR>", "d/{pattern}<CR>",
                     "d/{pattern}{offset}<CR>", "y?{pattern}<CR>", "dn", "gn{chosen}", "dgn", "cgn{word}<Esc>", "gN<Esc>", "v/{pattern}<CR>{chosen}", "//<CR>"]),
    ("jumps", 2, ["<C-o>", "<Tab>", "g;", "g,", "{n}<C-o>"]),
    ("screen", 1, ["H", "M", "L", "dH", "dL", "gj", "gk", "{n}gj"]),
    ("repeats", 2, ["&", "g&", "@:", "{n}&"]),
    ("ex", 8, [":{range}{ex}<CR>", ":{range}{ex}<CR>", "v{motion}:{ex}<CR>", "{n}:{ex}<CR>", "V{motion}:{ex}<CR>"]),
]
# Those that begin with what only the command line makes.
EX_TABLES = ("ex", "repeats")

KEYS = {"Esc": "\x1b", "CR": "\r", "BS": "\x7f", "Tab": "\t", "lt": "<", "Space": " ", "Up": "\uf700", "Down": "\uf701", "Left": "\uf702", "Right": "\uf703",
        "Del": "\uf728", "Home": "\uf729", "End": "\uf72b", "PageUp": "\uf72c", "PageDown": "\uf72d"}


def keys_of(notation):
    """The keys of what is written in Vim users' notation."""
    def key(match):
        name = match.group(1)
        return chr(ord(name[2].upper()) - 0x40) if name.startswith("C-") else KEYS[name]
    return re.sub(r"<(C-.|" + "|".join(KEYS) + ")>", key, notation)


LINES = ["one two three", "foo(bar, baz[1]) {", "    return \"a b\" + 'c';", "}", "\tthe end. And more! Is it?", "", "", "  ", "x = {a: (b), c: [d, e]}",
         "a-b_c d.e,f", "1 22 -3 0x0f 0b11 007", "😀 smile 😀😀", "cafe\u0301 ae\u0301o\u0308 x", "<p>text <b>bold</b></p>", "the quick brown fox", "  indented twice",
         "Sentence one.  Sentence two!", "\tx\ty", "((a)(b))", "say \"it's\" and \"so\"", "a", "ab", "  foo  bar  ", "x1 y2 z9", "tail ", "the the the"]


def random_text(random):
    lines = [random.choice(LINES) for _ in range(random.choice([1, 1, 2, 3, 3, 4, 5, 7]))]
    kind = random.random()
    # Lines of a text end with LF, whatever those of its file do.
    return "\n".join(lines) + ("" if kind < 0.12 else "\n")


def caret_places(text):
    """Where a caret of normal mode may be: on a character, or in an empty line."""
    places = [place for place, character in enumerate(text)
              if character not in "\u0301\u0308" and (character not in "\r\n" or place == 0 or text[place - 1] == "\n")]
    return places or [0]


def random_caret(random, text):
    return units(text[:random.choice(caret_places(text))])


def random_command(random, rows):
    notation = random.choice(rows)
    while match := PART.search(notation):
        part = random.choice(COUNTS if match.group(1) == "n" else PARTS[match.group(1)])
        notation = notation[:match.start()] + part + notation[match.end():]
    return keys_of(notation)


def random_question(random, tables):
    text = random_text(random)
    length = random.randint(3, 30)
    keys = ""
    while len(keys) < length:
        rows = random.choices([rows for _, _, rows in tables], [weight for _, weight, _ in tables])[0]
        command = random_command(random, rows)
        if keys and len(keys) + len(command) > 30:
            break
        keys += command
    return {"text": text, "caret": random_caret(random, text), "keys": keys}
