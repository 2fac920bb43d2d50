#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""Compare Quillet with other editors, as they come from Debian, on the same files; bench/README.md says what is measured and how."""
import argparse
import dataclasses
import datetime
import json
import os
import shutil
import statistics
import subprocess
import sys

import gui_bench
import make_files

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
DATA = os.path.join(ROOT, 'build', 'bench-data')
RESULTS = os.path.join(ROOT, 'build', 'bench-results')
BARE_WINDOW = os.path.join(ROOT, 'build', 'bench', 'bin', 'bare_window')
LETTERS = 40


@dataclasses.dataclass
class Sample:
    """A file to open; `pages` Page Downs are pressed in it. The keys of a program's `go` are the names of these.

    With `others` they are opened too, and nothing is pressed.
    """
    name: str
    title: str
    pages: int
    others: list = dataclasses.field(default_factory=list)

    def paths(self):
        return [os.path.join(DATA, name) for name in [self.name, *self.others]]


SAMPLES = {
    'empty': Sample('empty.txt', 'An empty file', 0),
    '20kb': Sample('small.c', 'C, 20 kB', 10),
    '100mb': Sample('large.c', 'C, 100 MB', LETTERS),
    '1line': Sample('line.json', 'JSON, 10 MB in one line', LETTERS),
    '20files': Sample(make_files.MANY[0], 'Twenty files of C, 20 kB each', 0, make_files.MANY[1:]),
}


def long_lines(home):
    """Kwrite wraps a line of more than 10000 units and then refuses to edit, unless its limit is lifted."""
    os.makedirs(f'{home}/config')
    for name in ('kwriterc', 'katepartrc'):
        with open(f'{home}/config/{name}', 'w', encoding='ascii') as file:
            file.write('[KTextEditor Document]\nLine Length Limit=100000000\n')


@dataclasses.dataclass
class Program:
    """`command` gets the file's path appended. `go` are the steps to the place of typing, {line} and {unit} being the middle.

    `prepare` puts settings into an empty home. `notes` are what a reader of a file's figures must know; `refuses` says why a program
    is not measured on a file.
    """
    command: list
    package: str | None
    go: dict
    prepare: object = None
    notes: dict = dataclasses.field(default_factory=dict)
    refuses: dict = dataclasses.field(default_factory=dict)


TOP = ['key ctrl+Home']
# A middle click into a Qt scroll bar goes there at once (in GTK a left click does); the click after it puts the caret there.
BAR = ['click 1272 450 2', 'click 640 450']
BARE, LABEL = 'bare window', 'window with text'

PROGRAMS = {
    'quillet': Program(['{quillet}'], None, {'20kb': TOP, '100mb': BAR, '1line': BAR}),
    'gvim': Program(['gvim', '-f', '-n'], 'vim-gtk3', {
        'empty': ['key i'], '20kb': ['key g g i'], '100mb': ['type {line}Gi'], '1line': ['type {unit}|i']}, notes={
        '1line': 'gives highlighting up after two seconds, and cannot page within a line'}),
    'kwrite': Program(['kwrite'], 'kwrite', {
        '20kb': TOP, '100mb': ['key ctrl+g', 'type {line}', 'key Return'], '1line': BAR}, long_lines,
        notes={'1line': 'has its limit of 10000 units a line lifted; with it the line would come broken into pieces and cannot be edited'}),
    'featherpad': Program(['featherpad', '--standalone'], 'featherpad', {'20kb': TOP, '100mb': BAR}, notes={
        '100mb': 'says that the file is too large for highlighting'}, refuses={
        '1line': 'shows the first 500000 units of the line and cannot edit them'}),
    'geany': Program(['geany', '--new-instance'], 'geany', {
        '20kb': TOP, '100mb': ['key ctrl+l', 'type {line}', 'key Return'], '1line': ['click 710 743', 'click 700 149']}),
    'mousepad': Program(['mousepad', '--disable-server'], 'mousepad', {
        '20kb': TOP, '100mb': ['key ctrl+l', 'type {line}', 'key Return'],
        '1line': ['key ctrl+l', 'key Tab', 'type {unit}', 'key Return']}),
    'gedit': Program(['gedit', '--standalone'], 'gedit', {
        '20kb': TOP, '100mb': ['key ctrl+i', 'type {line}', 'key Return'], '1line': ['click 1272 450', 'click 640 450']}),
    BARE: Program([BARE_WINDOW], None, {}),
    LABEL: Program([BARE_WINDOW, 'One line of text'], None, {}),
}

YARDSTICKS = {BARE: 'Qt Widgets without anything in it', LABEL: "the same with a label, in the size of Quillet's first window"}

# Heading, key in a result, unit, places, and whether it means something only when the picture changed by it.
COLUMNS = [
    ('first picture', 'painted_s', 's', 2, None),
    ('settled', 'open_wall_s', 's', 2, None),
    ('CPU until settled', 'open_cpu_s', 's', 2, None),
    ('resident', 'rss_mb', 'MB', 0, None),
    ('peak', 'peak_mb', 'MB', 0, None),
    ('CPU a letter', 'type_cpu_ms', 'ms', 2, 'type_taken'),
    ('CPU a Page Down', 'page_cpu_ms', 'ms', 2, 'page_taken'),
]
STAGE = {'painted_s': 'open', 'open_wall_s': 'open', 'open_cpu_s': 'open', 'rss_mb': 'open', 'peak_mb': 'open',
         'type_cpu_ms': 'type', 'page_cpu_ms': 'page'}
STAGES = ['open', 'goto', 'type', 'page']


def middle(path):
    """The middle line (from 1) and the middle unit of a file."""
    half = os.path.getsize(path) // 2
    with open(path, 'rb') as file:
        return file.read(half).count(b'\n') + 1, half


def command_of(name, paths, quillet):
    return [word.format(quillet=quillet) for word in PROGRAMS[name].command] + (paths if name not in YARDSTICKS else [])


def drop_caches():
    """Has the kernel forget what it read from disk, as after a start of the machine."""
    os.sync()
    with open('/proc/sys/vm/drop_caches', 'w', encoding='ascii') as file:
        file.write('3')


def remove_left(folder):
    """Files that a program left: a swap file makes the next start ask what to do with it. Folders are others' data."""
    known = {os.path.join(DATA, name) for name in make_files.FILES}
    for entry in os.scandir(folder):
        if entry.is_file() and entry.path not in known:
            os.remove(entry.path)


def one(name, key, args, round_number):
    sample, program = SAMPLES[key], PROGRAMS[name]
    path = os.path.join(DATA, sample.name)
    line, unit = middle(path)
    steps = [step.format(line=line, unit=unit) for step in program.go.get(key, [])]
    passive = name in YARDSTICKS or bool(sample.others) or args.cold
    if args.cold:
        drop_caches()
    shots = os.path.join(RESULTS, 'shots', f'{key}-{name.replace(" ", "-")}') if round_number == 1 else None
    before = os.stat(path)
    result = gui_bench.measure(command_of(name, sample.paths(), args.quillet), [] if passive else steps,
                               0 if passive else LETTERS, 0 if passive else sample.pages,
                               args.limit, shots, program.prepare)
    after = os.stat(path)
    if (before.st_size, before.st_mtime_ns) != (after.st_size, after.st_mtime_ns):
        os.remove(path)
        make_files.make(DATA)
        result['failed'] = 'the program saved the file by itself'
    remove_left(DATA)
    return {'program': name, 'file': key, 'round': round_number, **result}


def rounds(names, keys, args, log):
    """The programs take turns within a file, so that drift of the machine hits all of them. What was late is not tried again."""
    results, given_up = [], set()
    for name in names:
        one(name, 'empty', args, 0)  # Reads the program into the disk cache; not counted.
    for key in keys:
        for path in SAMPLES[key].paths():
            with open(path, 'rb') as file:
                while file.read(1 << 20):
                    pass
        for number in range(1, args.rounds + 1):
            for name in names:
                if (name, key) in given_up or key in PROGRAMS[name].refuses or (name in YARDSTICKS and key != 'empty'):
                    continue
                result = one(name, key, args, number)
                results.append(result)
                log.write(json.dumps(result) + '\n')
                log.flush()
                note = result.get('failed') or (f'{result["late"]}: over {args.limit:g} s' if 'late' in result else 'done')
                print(f'compare: {key} {name} {number}/{args.rounds}: {note}', file=sys.stderr)
                if 'late' in result or 'failed' in result:
                    given_up.add((name, key))
    return results


def cell(results, column, limit):
    """Text and median of one measure of one program on one file; the median is None where there is none."""
    _, key, unit, places, needs = column
    if any('failed' in result for result in results):
        return 'failed', None
    late = next((result['late'] for result in results if 'late' in result), None)
    if late and STAGES.index(late) <= STAGES.index(STAGE[key]):
        if unit in ('s', 'ms') and key != 'painted_s':
            return (f'over {limit:g} s' if late == STAGE[key] else '–'), None
    if needs and any(result.get(needs) is False for result in results):
        return 'no effect', None
    values = [result[key] for result in results if key in result]
    if not values:
        return '–', None
    median = statistics.median(values)
    return f'{median:.{places}f} {unit}', median


def beside(value, base):
    """How many times `base` it is, in brackets; nothing where one of them is none."""
    if value is None or not base:
        return ''
    ratio = value / base
    return f' ({ratio:.0f}×)' if ratio >= 20 else f' ({ratio:.1f}×)' if ratio >= 1 else f' ({ratio:.2f}×)'


def table(key, names, results, limit):
    lines = ['| | ' + ' | '.join(column[0] for column in COLUMNS) + ' |', '|---' + '|---:' * len(COLUMNS) + '|']
    ours = [result for result in results if result['file'] == key and result['program'] == 'quillet']
    for name in names:
        theirs = [result for result in results if result['file'] == key and result['program'] == name]
        if not theirs:
            continue
        cells = []
        for column in COLUMNS:
            text, value = cell(theirs, column, limit)
            base = cell(ours, column, limit)[1] if ours else None
            cells.append(text + (beside(value, base) if name != 'quillet' else ''))
        lines.append(f'| {name} | ' + ' | '.join(cells) + ' |')
    remarks = [f'{name} {PROGRAMS[name].notes.get(key) or "is not here: it " + PROGRAMS[name].refuses[key]}' for name in names
               if key in PROGRAMS[name].notes or key in PROGRAMS[name].refuses]
    return '\n'.join(lines + ['', '. '.join(remarks) + '.'] if remarks else lines)


def version(name, quillet):
    package = PROGRAMS[name].package
    if package:
        return subprocess.run(['dpkg-query', '-W', '-f=${Version}', package], capture_output=True, text=True, check=False).stdout
    if name == 'quillet':
        commit = subprocess.run(['git', '-C', ROOT, 'describe', '--always', '--dirty'], capture_output=True, text=True, check=False)
        return f'{commit.stdout.strip()}, {os.path.getsize(quillet) / 2**20:.1f} MB'
    return YARDSTICKS[name]


def machine():
    with open('/proc/cpuinfo', encoding='utf-8') as file:
        model = next((line.split(':', 1)[1].strip() for line in file if line.startswith('model name')), 'unknown processor')
    with open('/proc/meminfo', encoding='ascii') as file:
        memory = int(file.readline().split()[1]) / 2**20
    system = subprocess.run(['sh', '-c', '. /etc/os-release; echo "$PRETTY_NAME"'], capture_output=True, text=True, check=False)
    return f'{model}, {os.cpu_count()} cores, {memory:.0f} GB; {system.stdout.strip()}, Linux {os.uname().release}'


def report(names, keys, results, args):
    parts = [f'Machine: {machine()}. {datetime.date.today()}, load before the start {args.load:.1f}. '
             f'{"Nothing in the disk cache. " if args.cold else ""}Medians of {args.rounds} round{"s" if args.rounds > 1 else ""}; in brackets: how many times Quillet\'s figure.']
    for key in keys:
        parts += [f'### {SAMPLES[key].title}', table(key, names, results, args.limit)]
    rows = ['| | version | command | to the place of typing |', '|---|---|---|---|']
    for name in names:
        command = ' '.join(command_of(name, ['FILE'], os.path.relpath(args.quillet, ROOT))).replace(ROOT + '/', '')
        ways = '; '.join(f'{key}: {", ".join(PROGRAMS[name].go[key])}' for key in keys if key in PROGRAMS[name].go)
        rows.append(f'| {name} | {version(name, args.quillet)} | `{command}` | {ways.replace("|", chr(92) + "|") or "–"} |')
    parts += ['### Programs', '\n'.join(rows)]
    return '\n\n'.join(parts) + '\n'


def choice(text, known, what, parser):
    wanted = [word.strip() for word in text.split(',')] if text else list(known)
    for word in wanted:
        if word not in known:
            parser.error(f'there is no {what} "{word}"; there are {", ".join(known)}')
    return [word for word in known if word in wanted]


def main():
    parser = argparse.ArgumentParser(prog='dev bench compare', description=__doc__)
    parser.add_argument('--only', help='programs, separated by commas: ' + ', '.join(PROGRAMS))
    parser.add_argument('--files', help='files, separated by commas: ' + ', '.join(SAMPLES))
    parser.add_argument('--rounds', type=int, default=5)
    parser.add_argument('--limit', type=float, default=90, help='seconds that anything may take')
    parser.add_argument('--quillet', default=os.path.join(ROOT, 'build', 'bench', 'bin', 'quillet'), help='the binary to measure')
    parser.add_argument('--cold', action='store_true', help='only start, with nothing in the disk cache; needs root')
    args = parser.parse_args()
    if args.cold and not os.access('/proc/sys/vm/drop_caches', os.W_OK):
        parser.error('--cold needs root')
    names = choice(args.only, PROGRAMS, 'program', parser)
    keys = choice(args.files, SAMPLES, 'file', parser)
    args.quillet, args.load = os.path.abspath(args.quillet), os.getloadavg()[0]
    for name in names:
        binary = command_of(name, [], args.quillet)[0]
        if not shutil.which(binary):
            parser.error(f'{binary} is missing; leave {name} out with --only or build it')
    make_files.make(DATA)
    os.makedirs(os.path.join(RESULTS, 'shots'), exist_ok=True)
    stem = os.path.join(RESULTS, datetime.datetime.now().strftime('compare-%Y%m%d-%H%M%S'))
    with open(stem + '.jsonl', 'w', encoding='utf-8') as log:
        results = rounds(names, keys, args, log)
    text = report(names, keys, results, args)
    with open(stem + '.md', 'w', encoding='utf-8') as file:
        file.write(text)
    print(text)
    print(f'compare: raw figures in {os.path.relpath(stem, ROOT)}.jsonl, pictures in build/bench-results/shots', file=sys.stderr)
    return 1 if any('failed' in result for result in results) else 0


if __name__ == '__main__':
    sys.exit(main())
