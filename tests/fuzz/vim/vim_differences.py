#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""Where exact modal editing and Vim differ: random keys in random texts, each difference reduced to few keys and a short text.

Differences that are meant are named in known.txt. Fails when there is another one, or when more than one sequence in a hundred differs."""
import argparse
import collections
import concurrent.futures
import json
import pathlib
import random
import re
import sys
import time

import sequences
from oracle import HERE, Quillet, Vim, in_notation, prefix, units

CHUNK = 200
# Of a sequence's differences, the one that comes first here is what it is reduced for.
FIELDS = ["error", "text", "end", "mode", "caret", "anchor", "registers"]
CORPUS = HERE.parents[1] / "data/vim/corpus.jsonl"


def registers_that_differ(vim, ours):
    names = sorted(vim["registers"].keys() | ours["registers"].keys())
    return [name for name in names if vim["registers"].get(name) != ours["registers"].get(name)]


def fields_that_differ(vim, ours):
    """By name; none where Vim gave no answer."""
    if "error" in vim:
        return []
    if "error" in ours:
        return ["error"]
    fields = [field for field in ("mode", "caret") if vim[field] != ours[field]]
    if vim["text"] != ours["text"]:
        fields.append("end" if vim["text"].rstrip("\r\n") == ours["text"].rstrip("\r\n") and abs(units(vim["text"]) - units(ours["text"])) < 3 else "text")
    if vim["mode"] == ours["mode"] and vim.get("anchor") != ours.get("anchor"):
        fields.append("anchor")
    if registers_that_differ(vim, ours):
        fields.append("registers")
    return sorted(fields, key=FIELDS.index)


class Compared:
    """A question, both answers and the fields in which they differ."""

    def __init__(self, question, vim, ours):
        self.question, self.vim, self.ours = question, vim, ours
        self.fields = fields_that_differ(vim, ours)

    def size(self):
        return len(self.question["keys"]), len(self.question["text"])

    def shape(self):
        """Its keys without what is of no consequence: which character, which count, which of three registers."""
        keys = re.sub(r"(?<=[fFtTr])[^\x00-\x1f\x7f]", "·", self.question["keys"])
        keys = re.sub(r"(?<![0-9$^])[1-9][0-9]*", "N", keys)
        return in_notation(re.sub(r"(?<=[m`'@q\"])[abc](?!\w{2})", "a", keys))


class Comparison:
    """Asks both. What one question leaves behind in Vim (its last command line, the size of its last selection) is not all forgotten at the
    next one, so that a difference counts only when there is no other question before."""

    def __init__(self, program):
        self.vim, self.ours = Vim(), Quillet(program)
        self.pool = concurrent.futures.ThreadPoolExecutor(2)

    def _ask(self, questions):
        futures = []
        for start in range(0, len(questions), CHUNK):
            chunk = questions[start:start + CHUNK]
            futures.append((chunk, self.pool.submit(self.vim.answers, chunk), self.pool.submit(self.ours.answers, chunk)))
        for chunk, vim, ours in futures:
            yield from (Compared(*each) for each in zip(chunk, vim.result(), ours.result()))

    def alone(self, compared):
        """These with the answers that Vim has when it is asked nothing else."""
        answers = self.pool.map(lambda each: self.vim.answers([each.question])[0], compared)
        return [Compared(each.question, answer, each.ours) for each, answer in zip(compared, answers)]

    def roughly(self, questions):
        """Keys that end within a command make no difference: while it waits for more, Vim cannot be asked for its state."""
        compared = list(self._ask(questions))
        for each in compared:
            if each.vim.get("isUnfinished"):
                each.fields = []
        return compared

    def compare(self, questions):
        """Keys that end within a command get an Escape."""
        compared = list(self._ask(questions))
        unfinished = [place for place, each in enumerate(compared) if each.vim.get("isUnfinished")]
        again = [compared[place].question | {"keys": compared[place].question["keys"] + "\x1b"} for place in unfinished]
        for place, each in zip(unfinished, self.roughly(again)):
            compared[place] = each
        differing = [place for place, each in enumerate(compared) if each.fields]
        for place, each in zip(differing, self.alone([compared[place] for place in differing])):
            compared[place] = each
        return compared


def fewer_keys(question):
    """The question with some of its keys, the fewest first."""
    keys = question["keys"]
    made = set()
    size = len(keys) // 2
    while size >= 1:
        for start in range(0, len(keys) - size + 1, 1 if size < 4 else size):
            made.add(keys[:start] + keys[start + size:])
        size //= 2
    return [question | {"keys": less} for less in sorted(made, key=lambda less: (len(less), less))]


def less_text(question):
    """The question with less text: without some lines, then without some characters; the caret stays as near as it can."""
    text, caret = question["text"], len(prefix(question["text"], question["caret"]))
    cuts = []
    starts = [0] + [place + 1 for place, character in enumerate(text) if character == "\n"]
    cuts += [(start, end) for start, end in zip(starts, starts[1:] + [len(text)]) if start < end]
    size = len(text) // 2
    while size >= 1:
        cuts += [(start, start + size) for start in range(0, len(text) - size + 1, 1 if size < 3 else size)]
        size //= 2
    made = {}
    for start, end in cuts:
        less = text[:start] + text[end:]
        at = caret - (end - start) if caret >= end else min(caret, start)
        # In a text of nothing much is different that has nothing to do with these keys.
        if text.strip("\r\n") and not less.strip("\r\n"):
            continue
        if "\r" in less and not less.count("\r") == less.count("\n") == less.count("\r\n"):
            continue
        # Neither does what comes of an unterminated line in one that ends as it should, or of a caret where none can be.
        if text.endswith("\n") and not less.endswith("\n") or at not in sequences.caret_places(less):
            continue
        made[less] = {"text": less, "caret": units(less[:max(at, 0)]), "keys": question["keys"]}
    return sorted(made.values(), key=lambda each: len(each["text"]))


def best_candidates(comparison, candidates, is_better):
    """Of those that differ the first for each place that also does so alone; `candidates` are pairs of a place and a question."""
    good = collections.defaultdict(list)
    for (place, _), tried in zip(candidates, comparison.roughly([question for _, question in candidates])):
        if tried.fields and is_better(place, tried):
            good[place].append(tried)
    best = {}
    for turn in range(3):
        places = [place for place, tries in good.items() if place not in best and len(tries) > turn]
        for place, tried in zip(places, comparison.alone([good[place][turn] for place in places])):
            if tried.fields and not tried.vim.get("isUnfinished") and is_better(place, tried):
                best[place] = tried
    return best


def reduced(comparison, found, known):
    """Each of these with the fewest keys and the shortest text that still differ in the same way, all of them at once."""
    found = list(found)
    # The first keys at which they differ for more than a while, as everything after that may follow from it.
    candidates = [(place, each.question | {"keys": each.question["keys"][:length]})
                  for place, each in enumerate(found) for length in range(1, len(each.question["keys"]))]
    for place, tried in best_candidates(comparison, candidates, lambda place, tried: not known.is_passing(tried)).items():
        found[place] = tried

    def is_better(place, tried):
        return tried.fields[0] == found[place].fields[0] and tried.size() < found[place].size() and not known.is_passing(tried)

    for less in (fewer_keys, less_text, fewer_keys):
        active = range(len(found))
        while active:
            candidates = [(place, question) for place in active for question in less(found[place].question)[:40]]
            best = best_candidates(comparison, candidates, is_better)
            for place, tried in best.items():
                found[place] = tried
            active = sorted(best)
    return found


class Known:
    """Differences that are meant, of known.txt."""

    def __init__(self, path):
        self.rows = []
        blocks = re.split(r"\n\s*\n", re.sub(r"(?m)^#.*\n", "", path.read_text(encoding="utf-8")).strip())
        for block in filter(None, blocks):
            row = dict(line.split(": ", 1) for line in block.splitlines())
            if "reason" not in row or not row.keys() <= {"keys", "fields", "mode", "text", "reason", "passing"}:
                raise SystemExit(f"{path.name}: no such entry: {block}")
            self.rows.append(row)

    def _row(self, each):
        for row in self.rows:
            if (re.fullmatch(row.get("keys", ".*"), in_notation(each.question["keys"])) and re.fullmatch(row.get("fields", ".*"), " ".join(each.fields))
                    and re.fullmatch(row.get("mode", ".*"), each.vim.get("mode", "")) and re.search(row.get("text", ""), each.question["text"])):
                return row
        return {}

    def reason(self, each):
        return self._row(each).get("reason")

    def is_passing(self, each):
        """Whether nothing is left of the difference when the mode ends."""
        return "passing" in self._row(each)


def marked(text, caret):
    before = prefix(text, caret)
    return repr(before + "|" + text[len(before):])


def shown(answer, fields, registers):
    """What of an answer there is to say about these fields."""
    if "error" in answer:
        return answer["error"]
    parts = []
    if {"text", "end", "caret"} & set(fields):
        parts.append(marked(answer["text"], answer["caret"]))
    if "mode" in fields or "anchor" in fields:
        parts.append(f"mode {in_notation(answer['mode'])}" + (f" from {answer['anchor']}" if "anchor" in answer else ""))
    if "registers" in fields:
        kept = answer["registers"]
        parts += [f"\"{name} {kept[name]['text']!r} {kept[name]['type']}" if name in kept else f"\"{name} empty" for name in registers]
    return ", ".join(parts)


def print_example(each):
    registers = registers_that_differ(each.vim, each.ours) if "registers" in each.fields else []
    print(f"    {marked(each.question['text'], each.question['caret'])}  {in_notation(each.question['keys'])}")
    print(f"      Vim     {shown(each.vim, each.fields, registers)}")
    print(f"      Quillet {shown(each.ours, each.fields, registers)}")


def print_groups(found):
    groups = collections.defaultdict(list)
    for each in found:
        groups[each.shape(), each.fields[0]].append(each)
    for (shape, _), members in sorted(groups.items(), key=lambda group: -len(group[1])):
        example = min(members, key=Compared.size)
        print(f"{len(members):5}  {shape}    ({' '.join(example.fields)})")
        print_example(example)


def fuzz(comparison, options):
    chosen = [table for table in sequences.TABLES if re.search(options.only, table[0]) and not (options.no_ex and table[0] in sequences.EX_TABLES)]
    source = random.Random(options.seed)
    known = Known(HERE / "known.txt")
    end = time.monotonic() + options.seconds if options.seconds else None
    cases, unanswered, differing = 0, 0, []
    while time.monotonic() < end if end else cases < options.cases:
        count = 4 * CHUNK if end else min(8 * CHUNK, options.cases - cases)
        compared = comparison.compare([sequences.random_question(source, chosen) for _ in range(count)])
        cases += count
        unanswered += sum("error" in each.vim for each in compared)
        differing += [each for each in compared if each.fields]
    looked_at = differing if len(differing) <= options.reduce else source.sample(differing, options.reduce)
    found = reduced(comparison, looked_at, known)
    named = [each for each in found if known.reason(each)]
    unnamed = [each for each in found if not known.reason(each)]
    print_groups(unnamed)
    for reason, count in collections.Counter(known.reason(each) for each in named).most_common():
        print(f"{count:5}  named: {reason}")
    if options.json:
        pathlib.Path(options.json).write_text(json.dumps([vars(each) | {"reason": known.reason(each)} for each in found], ensure_ascii=False, indent=1))
    percent = 100 * len(differing) / max(cases, 1)
    print(f"{cases} cases (seed {options.seed}), {len(differing)} differing ({percent:.2f} %), {len(found)} of them reduced, {len(named)} named, "
          f"{unanswered} that Vim does not answer")
    return 1 if unnamed or percent > 1 else 0


def read_corpus(path):
    return [json.loads(line) for line in path.read_text(encoding="utf-8").splitlines()]


def record(comparison, path):
    """Puts Vim's answers into the lines of a corpus."""
    rows = read_corpus(path)
    lines = []
    for row, answer in zip(rows, comparison.vim.answers(rows)):
        if "error" in answer or answer.get("isUnfinished"):
            raise SystemExit(f"Vim has no answer: {in_notation(row['keys'])} in {row['text']!r}")
        lines.append(json.dumps(row | {"answer": answer}, ensure_ascii=False) + "\n")
    path.write_text("".join(lines), encoding="utf-8")
    print(f"{len(lines)} answers in {path}")
    return 0


def check(comparison, path):
    """Compares the answers of a corpus with our own."""
    rows = read_corpus(path)
    compared = [Compared(row, row["answer"], ours) for row, ours in zip(rows, comparison.ours.answers(rows))]
    wrong = [(number, each) for number, each in enumerate(compared, 1) if each.fields]
    for number, each in wrong:
        print(f"line {number}: {' '.join(each.fields)}")
        print_example(each)
    print(f"{len(rows)} lines, {len(wrong)} differing")
    return 1 if wrong else 0


def try_keys(comparison, text, keys):
    caret = text.find("|")
    question = {"text": text[:max(caret, 0)] + text[caret + 1:], "caret": units(text[:max(caret, 0)]), "keys": sequences.keys_of(keys)}
    each = comparison.compare([question])[0]
    print("differing: " + " ".join(each.fields) if each.fields else "the same")
    print(json.dumps({"vim": each.vim, "ours": each.ours}, ensure_ascii=False, indent=1))
    return 1 if each.fields else 0


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--program", type=pathlib.Path, help="vim-answers (the newest in build)")
    parser.add_argument("--cases", type=int, default=2000, help="how many random sequences")
    parser.add_argument("--seconds", type=int, help="as many as there are in this time, beside that for reducing them")
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--only", default="", metavar="REGEX", help="the tables of sequences.py to choose from")
    parser.add_argument("--no-ex", action="store_true", help="without the command line's")
    parser.add_argument("--reduce", type=int, default=400, help="how many differing sequences are reduced at most")
    parser.add_argument("--json", metavar="FILE", help="the reduced ones, with both answers")
    parser.add_argument("--record", type=pathlib.Path, metavar="FILE", help="put Vim's answers into a corpus")
    parser.add_argument("--corpus", type=pathlib.Path, nargs="?", const=CORPUS, metavar="FILE", help="compare with the answers of a corpus")
    parser.add_argument("--try", nargs=2, metavar=("TEXT", "KEYS"), dest="tried", help="both answers; TEXT with | for the caret and \\n, KEYS as <Esc>, <C-v>")
    options = parser.parse_args()
    programs = sorted(HERE.parents[2].glob("build/*/bin/vim-answers"), key=lambda path: path.stat().st_mtime)
    program = options.program or (programs[-1] if programs else None)
    if not program and not options.record:
        raise SystemExit("Build the target vim-answers first.")
    comparison = Comparison(program)
    if options.record:
        return record(comparison, options.record)
    if options.corpus:
        return check(comparison, options.corpus)
    if options.tried:
        text = options.tried[0].replace("\\n", "\n").replace("\\r", "\r").replace("\\t", "\t")
        return try_keys(comparison, text, options.tried[1])
    return fuzz(comparison, options)


if __name__ == "__main__":
    sys.exit(main())
