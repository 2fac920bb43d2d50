#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""Make the files that are measured: usage make_files.py FOLDER. The same bytes on every machine; what is there is kept.

small.c     20 kB of C
large.c     100 MB of C, one byte below 104857600: about 30 bytes a line, some units indented with tabs and some with spaces
line.json   10 MB of JSON in a single line without a line end
empty.txt   nothing
many-*.c    twenty more of 20 kB of C
hits.txt    a million lines that begin with their only x
carets.txt  ten thousand lines
tabs/*.c    2000 files of 2 kB of C
"""
import functools
import json
import os
import random
import sys

SEED = 20260101
SMALL = 20 * 1024
LARGE = 100 * 1024 * 1024 - 1
LINE = 10 * 1024 * 1024

NOUNS = ('buffer node cache queue entry table packet frame chunk stream token record page slot index block header region '
         'session channel cursor filter handle socket timer worker').split()
VERBS = ('read write find insert remove update parse flush reset merge split load store check count copy open close '
         'resize lookup append scan notify').split()
FIELDS = ('size count flags offset length next head tail state owner refs capacity level mask limit id key value width '
          'height depth first last mode').split()
TYPES = ['int', 'size_t', 'unsigned', 'char *', 'uint32_t', 'uint64_t', 'long', 'const char *', 'bool', 'double']
MESSAGES = ['out of memory', 'invalid %s: %d', 'unexpected end of input', 'cannot open \\"%s\\"', 'limit of %u reached',
            'retry %d of %d', 'bad checksum 0x%08x\\n', 'closed by peer', 'not found', 'done in %.3f s\\n']
REMARKS = ['The caller holds the lock.', 'Nothing to do when it is empty.', 'Grow by half, so that appending stays cheap.',
           'Keep the order of equal keys.', 'Zero means no limit.', 'The last one has no successor.', 'Fall back to the slow path.',
           'See the note at the top.', 'Sizes are in bytes.', 'This must not fail.']


class Writer:
    """Makes C units (a function, a type, a run of macros); `@` stands for the unit's number, so that one text serves many times."""

    def __init__(self, seed):
        self.random = random.Random(seed)

    def pick(self, words):
        return self.random.choice(words)

    def place(self):
        noun = f'{self.pick(NOUNS)}_' if self.random.random() < 0.8 else ''
        return f'{self.pick(("self", "node", "ctx", "item"))}->{noun}{self.pick(FIELDS)}'

    def value(self):
        return self.pick((self.place(), str(self.random.randrange(300)), f'0x{self.random.randrange(4096):x}', 'i', 'n',
                          f'sizeof(*{self.pick(("self", "item"))})', 'NULL'))

    def condition(self):
        parts = [f'{self.place()} {self.pick(("==", "!=", "<", ">=", "&"))} {self.value()}' for _ in range(self.pick((1, 1, 2)))]
        return self.pick((' && ', ' || ')).join(parts)

    def call(self):
        return f'{self.pick(VERBS)}_{self.pick(NOUNS)}_{self.pick(FIELDS)}({", ".join([self.place(), self.value(), self.place()][:self.pick((2, 2, 3))])})'

    def statement(self, depth, indent):
        kind = self.random.randrange(12 if depth < 3 else 7)
        if kind < 3:
            right = self.pick((self.value(), f'{self.place()} {self.pick(("+", "-", "*", "<<"))} {self.value()}', self.call()))
            return [f'{indent * depth}{self.place()} {self.pick(("=", "+=", "|=", "="))} {right};']
        if kind < 5:
            return [f'{indent * depth}{self.call()};']
        if kind == 5:
            return [f'{indent * depth}log_{self.pick(("info", "warning", "error"))}("{self.pick(MESSAGES)}", {self.place()});']
        if kind == 6:
            return [f'{indent * depth}/* {self.pick(REMARKS)} {self.pick(REMARKS)} */']
        if kind == 7:
            return self.switch(depth, indent)
        head = self.pick((f'if ({self.condition()}) {{', 'for (size_t i = 0; i < n; i++) {', f'while ({self.condition()}) {{',
                          f'if (!{self.place()}) {{'))
        body = [indent * depth + head]
        for _ in range(self.random.randrange(1, 4)):
            body += self.statement(depth + 1, indent)
        if head.startswith('if') and self.random.random() < 0.3:
            body += [f'{indent * depth}}} else {{', f'{indent * (depth + 1)}return {self.pick(("-1", "0", "NULL", "-EINVAL"))};']
        return body + [indent * depth + '}']

    def switch(self, depth, indent):
        lines = [f'{indent * depth}switch ({self.place()}) {{']
        for name in self.random.sample(NOUNS, self.random.randrange(2, 5)):
            lines += [f'{indent * depth}case {name.upper()}_{self.pick(FIELDS).upper()}:',
                      f'{indent * (depth + 1)}{self.place()} = {self.value()};', f'{indent * (depth + 1)}break;']
        return lines + [f'{indent * depth}default:', f'{indent * (depth + 1)}break;', indent * depth + '}']

    def function(self, indent):
        name = f'{self.pick(VERBS)}_{self.pick(NOUNS)}_@'
        lines = [f'/* {self.pick(REMARKS)}', f' * {self.pick(REMARKS)} */'] if self.random.random() < 0.4 else []
        lines += [f'static {self.pick(TYPES[:4])} {name}'.replace('* ', '*') + f'(struct {self.pick(NOUNS)} *self, size_t n)', '{',
                  f'{indent}{self.pick(TYPES)} {self.pick(FIELDS)} = {self.random.randrange(100)};'.replace('* ', '*'), '']
        for _ in range(self.random.randrange(3, 9)):
            lines += self.statement(1, indent)
        return lines + [f'{indent}return {self.pick(("0", "n", "self->count", "-1"))};', '}', '']

    def type(self, indent):
        name = f'{self.pick(NOUNS)}_@'
        lines = [f'struct {name} {{']
        for field in self.random.sample(FIELDS, self.random.randrange(3, 9)):
            lines.append(f'{indent}{self.pick(TYPES)} {self.pick(NOUNS)}_{field};'.replace('* ', '*')
                         + (f' // {self.pick(REMARKS)}' if self.random.random() < 0.2 else ''))
        return lines + ['};', '']

    def macros(self):
        return [f'#define {self.pick(NOUNS).upper()}_{field.upper()}_@ {self.random.randrange(1 << 16)}'
                for field in self.random.sample(FIELDS, 3)] + ['']

    def unit(self):
        indent = self.pick(('\t', '    '))
        lines = self.random.choices((self.function, self.type, lambda _: self.macros()), (8, 2, 1))[0](indent)
        return '\n'.join(lines) + '\n'


def write_c(file, size, seed=SEED):
    writer = Writer(seed)
    units = [writer.unit().split('@') for _ in range(min(6000, size // 400))]
    left, number, misses = size, 0, 0
    head = '// Made for measuring; it is never compiled.\n#include <stdint.h>\n#include <stdlib.h>\n\n'
    file.write(head)
    left -= len(head)
    while True:
        text = f'{number:06d}'.join(writer.pick(units))
        if len(text) > left:
            misses += 1
            if misses == 40:
                break
            continue
        file.write(text)
        left -= len(text)
        number += 1
    while left > 3:
        line = '//' + '-' * min(58, left - 3) + '\n'
        file.write(line)
        left -= len(line)
    file.write('\n' * left)


def write_json(file, size):
    draw = random.Random(SEED)
    left = size - 2
    file.write('[')
    first = True
    while True:
        record = {'id': draw.randrange(1 << 32), 'name': f'{draw.choice(VERBS)} {draw.choice(NOUNS)}', 'on': draw.random() < 0.5,
                  draw.choice(FIELDS): round(draw.uniform(-1000, 1000), 3), 'note': draw.choice((None, draw.choice(REMARKS))),
                  'tags': draw.sample(NOUNS, draw.randrange(4)), 'at': {'x': draw.randrange(1280), 'y': draw.randrange(900)}}
        text = ('' if first else ',') + json.dumps(record, separators=(',', ':'))
        if len(text) > left - 3:
            file.write(',"' + '-' * (left - 3) + '"')
            break
        file.write(text)
        left -= len(text)
        first = False
    file.write(']')


def write_lines(file, size, words, count):
    """`count` lines of these words, each with its number."""
    file.writelines(f'{words} {number:07}\n' for number in range(count))


HITS, CARETS = ('x and more words of the same line', 1_000_000), ('a caret at the end of', 10_000)


def lines_of(words, count):
    return functools.partial(write_lines, words=words, count=count), (len(words) + 9) * count


FILES = {'small.c': (write_c, SMALL), 'large.c': (write_c, LARGE), 'line.json': (write_json, LINE),
         'empty.txt': (lambda file, size: None, 0), 'hits.txt': lines_of(*HITS), 'carets.txt': lines_of(*CARETS)}
MANY = [f'many-{number:02}.c' for number in range(1, 21)]
FILES |= {name: (write_c, SMALL) for name in MANY}
TABS = [f'tabs/{number:04}.c' for number in range(1, 2001)]
FILES |= {name: (write_c, 2048) for name in TABS}


def make(folder):
    for name, (write, size) in FILES.items():
        path = os.path.join(folder, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        if os.path.exists(path) and os.path.getsize(path) == size and os.path.getmtime(path) > os.path.getmtime(__file__):
            continue
        with open(path + '.part', 'w', encoding='ascii', newline='') as file:
            write(file, size)
        if os.path.getsize(path + '.part') != size:
            sys.exit(f'make_files.py: {name} has {os.path.getsize(path + ".part")} bytes instead of {size}')
        os.replace(path + '.part', path)


if __name__ == '__main__':
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    make(sys.argv[1])
