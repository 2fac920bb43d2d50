#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""Compare Quillet with other editors in what a person waits for once a file is open; bench/README.md says what is measured and how.

Needs what compare.py needs. A program that is not installed has a row that says so.
"""
import argparse
import dataclasses
import datetime
import json
import os
import resource
import shutil
import statistics
import subprocess
import sys
import time

import compare
import frames
import gui_bench
import make_files
import screen as screens

TYPED_LINES, LETTERS_A_LINE, LETTER_MS = 5, 40, 60
TURNS = 180
SWITCHES = 40


def typed(run, way, args):
    """Letters at the beginnings of some lines. A caret does not blink between keys, so what is drawn first has the letter."""
    events, last = [], 0.0
    for _ in range(TYPED_LINES):
        line = frames.probe(run.screen, LETTERS_A_LINE, LETTER_MS, 'key', 'x')
        events += [(what, last + when) for what, when in line]
        last += line[-1][1] + frames.FRAME
        run.screen.press('key', '--delay', '20', 'Down', 'Home')
        if run.settle(time.monotonic()) is None:
            return None
    figures = frames.keys(events)
    return {**figures, 'type_taken': figures['unseen'] * 10 < TYPED_LINES * LETTERS_A_LINE}


def scrolled(run, way, args):
    return frames.scrolling(frames.probe(run.screen, TURNS, frames.FRAME, 'wheel'))


class Watch(screens.Film):
    """A film that also knows how much the program had computed at each moment."""

    def __init__(self, cpu):
        super().__init__()
        self._cpu, self.seconds = cpu, {}

    def add(self, moment, picture):
        super().add(moment, picture)
        self.seconds[moment] = self._cpu.seconds()


def pressed(run, way, args):
    """The key that begins the work, until what it does is seen, and until all that follows from it is done.

    Panels and bars that go away by it are no result: the text may look as when it was opened, or as before the key.
    """
    before, cpu, since, film = run.screen.look(), run.cpu.seconds(), time.monotonic(), Watch(run.cpu)
    run.screen.press('key', way.key)
    wall = run.settle(since, film)
    if wall is None:
        return None
    shown = film.became(run.opened, before)
    if shown is None:
        return {'act_taken': False}
    return {'shown_s': shown, 'shown_cpu_s': film.seconds[shown] - cpu, 'wall_s': wall, 'cpu_s': run.cpu.seconds() - cpu,
            'peak_mb': gui_bench.memory(run.program.pid)[1]}


def opened(run, way, args):
    return {}


def switched(run, way, args):
    return {} if run.keys('switch', SWITCHES, ['key', '--delay', '30'] + [way.key] * SWITCHES) else None


def typed_at_carets(run, way, args):
    """The letters come a quarter of a second apart, so that none waits for the one before."""
    return {} if run.keys('type', 10, ['type', '--delay', '250', 'x' * 10]) else None


def wakeups(root, seconds):
    """How often a second a thread of the program, or of one that it started, began to wait again."""
    def count():
        found = {}
        for process in gui_bench.tree(root):
            for task in os.listdir(f'/proc/{process}/task'):
                with open(f'/proc/{process}/task/{task}/status', encoding='utf-8') as file:
                    found[task] = next(int(line.split()[1]) for line in file if line.startswith('voluntary_ctxt_switches'))
        return found
    before, since = count(), time.monotonic()
    time.sleep(seconds)
    return sum(switches - before.get(task, 0) for task, switches in count().items()) / (time.monotonic() - since)


def rested(run, way, args):
    figures = {'focused': wakeups(run.program.pid, args.idle)}
    other = subprocess.Popen([compare.BARE_WINDOW], env=run.screen.environment, stdin=subprocess.DEVNULL, **screens.QUIET)
    try:
        if run.settle(time.monotonic()) is None:
            return None
        return {**figures, 'unfocused': wakeups(run.program.pid, args.idle)}
    finally:
        other.kill()
        other.wait()


@dataclasses.dataclass
class Way:
    """How a program does what a table is about: its command, the steps to where it begins, and the key where one is pressed then."""
    command: list
    steps: list = ()
    key: str = ''
    prepare: object = None
    needs: list = ()

    def missing(self, args):
        return [name for name in [self.command[0].format(quillet=args.quillet), *self.needs] if not shutil.which(name)]

    def measure(self, table, args, shot):
        run = gui_bench.Run([word.format(quillet=args.quillet) for word in self.command] + table.paths(), args.limit)
        try:
            if self.prepare:
                self.prepare(run.screen.home)
            line, unit = compare.middle(table.paths()[0])
            steps = [step.format(line=line, unit=unit) for step in self.steps]
            figures = table.act(run, self, args) if run.open() and run.go(steps) else None
            if shot:
                run.screen.save(shot)
            run.result.pop('command')
            return {**run.result, **figures} if figures is not None else {'late': True}
        except RuntimeError as error:
            return {'failed': str(error)}
        finally:
            run.close()


@dataclasses.dataclass
class Batch:
    """A command without a window; what `without` takes, which only reads the file, is left out."""
    command: list
    without: list

    def missing(self, args):
        return [name for name in self.command[:1] if not shutil.which(name)]

    @staticmethod
    def used(command):
        before, since = resource.getrusage(resource.RUSAGE_CHILDREN), time.monotonic()
        subprocess.run(command, stdin=subprocess.DEVNULL, check=False, **screens.QUIET)
        after, wall = resource.getrusage(resource.RUSAGE_CHILDREN), time.monotonic() - since
        return wall, after.ru_utime - before.ru_utime + after.ru_stime - before.ru_stime

    def measure(self, table, args, shot):
        (wall, cpu), (less_wall, less_cpu) = (self.used(command + table.paths()) for command in (self.command, self.without))
        return {'shown_s': wall - less_wall, 'shown_cpu_s': cpu - less_cpu}


@dataclasses.dataclass
class Table:
    """`columns` are (heading, key of a figure, unit, places). The other rows' ratios are to the first."""
    title: str
    files: list
    act: object
    columns: list
    ways: dict

    def paths(self):
        return [os.path.join(compare.DATA, name) for name in self.files]


def settings(*lines):
    """Puts these into Quillet's settings."""
    def prepare(home):
        os.makedirs(f'{home}/config/Quillet')
        with open(f'{home}/config/Quillet/Quillet.conf', 'w', encoding='ascii') as file:
            file.write('\n'.join(['[General]', *lines, '']))
    return prepare


def quiet_kate(home):
    """Else it asks whether to start a language server."""
    compare.long_lines(home)
    os.makedirs(f'{home}/data/kate')
    with open(f'{home}/data/kate/anonymous.katesession', 'w', encoding='ascii') as file:
        file.write('[Kate Plugins]\nlspclientplugin=false\n')


KATE = ['kate', '--new']
NVIM = ['xterm', '-maximized', '-e', 'nvim', '-n']
VIM = ['vim', '-u', 'NONE', '-i', 'NONE', '-n', '-es']
MODAL = settings('editor.vimMode=true')
EXACT = settings('editor.vimMode=true', 'editor.vimExact=true')


def editors(sample='', more=(), keys=None, options=None):
    """A way for each program: to the place of typing in that sample, then `more`; `keys` where they have different ones."""
    programs, keys, options = compare.PROGRAMS, keys or {}, options or {}
    likes = {'quillet': 'quillet', 'gvim': 'gvim', 'kwrite': 'kwrite', 'featherpad': 'featherpad', 'kate': 'kwrite', 'nvim': 'gvim'}
    commands, needs, prepare = {'kate': KATE, 'nvim': NVIM}, {'nvim': ['nvim']}, {'kate': quiet_kate}
    return {name: Way(commands.get(name, programs[like].command) + options.get(name, []), programs[like].go.get(sample, []) + list(more),
                      keys.get(name, ''), prepare.get(name, programs[like].prepare), needs.get(name, []))
            for name, like in likes.items() if not keys or name in keys}


WAIT = [('p50', 'p50_ms', 'ms', 1), ('p99', 'p99_ms', 'ms', 1), ('longest', 'longest_ms', 'ms', 1), ('without a picture', 'unseen', '', 0)]
SMOOTH = [('late or left out', 'missed', '', 0), ('a turn, p50', 'wait_ms', 'ms', 1), ('longest standstill', 'gap_ms', 'ms', 1)]
WORK = [('replaced', 'shown_s', 's', 2), ('CPU until then', 'shown_cpu_s', 's', 2), ('idle', 'wall_s', 's', 2), ('CPU until then', 'cpu_s', 's', 2),
        ('peak', 'peak_mb', 'MB', 0)]
OPEN = [('first picture', 'painted_s', 's', 2), ('settled', 'open_wall_s', 's', 2), ('CPU until settled', 'open_cpu_s', 's', 2),
        ('resident', 'rss_mb', 'MB', 0)]
REPLACE = ['key ctrl+alt+f', 'type x', 'key Tab', 'type yy']
# To another tab: backwards where the last one is in front and nothing follows it.
OTHER_TAB = {'quillet': 'ctrl+Tab', 'gvim': 'ctrl+Next', 'kwrite': 'alt+Left', 'featherpad': 'alt+Left', 'kate': 'alt+Left', 'nvim': 'ctrl+Next'}
IN_TABS = {'gvim': ['--cmd', 'set tabpagemax=1000', '-p'], 'nvim': ['--cmd', 'set tabpagemax=1000', '-p']}
CARETS = {name: 'x' for name in ('quillet', 'kate', 'kwrite')}

TABLES = {
    'type-20kb': Table('A letter typed into 20 kB of C', ['small.c'], typed, WAIT, editors('20kb', ['key' + ' Down' * 15])),
    'type-100mb': Table('A letter typed into 100 MB of C', ['large.c'], typed, WAIT, editors('100mb')),
    'scroll': Table(f'{TURNS} turns of the wheel, 60 a second, in 100 MB of C', ['large.c'], scrolled, SMOOTH, editors('100mb')),
    'replace': Table('A million hits replaced', ['hits.txt'], pressed, WORK, {
        'quillet, :%s': Way(['{quillet}'], ['type :%s/x/yy/g'], 'Return', MODAL),
        'quillet, :%s, exact': Way(['{quillet}'], ['type :%s/x/yy/g'], 'Return', EXACT),
        'quillet, Replace All': Way(['{quillet}'], REPLACE, 'alt+a'),
        'gvim, :%s': Way(['gvim', '-f', '-n'], ['type :%s/x/yy/g'], 'Return'),
        'vim -es': Batch([*VIM, '-c', '%s/x/yy/g', '-c', 'q!'], [*VIM, '-c', 'q!'])}),
    'files': Table('2000 files of 2 kB opened at once', make_files.TABS, opened, OPEN, editors()),
    'tabs': Table(f'From one of 1000 tabs to the next, {SWITCHES} times', make_files.TABS[:1000], switched, [
        *OPEN[1:], ('CPU a switch', 'switch_cpu_ms', 'ms', 1)], editors(keys=OTHER_TAB, options=IN_TABS)),
    'carets': Table('A letter at ten thousand carets', ['carets.txt'], typed_at_carets, [('CPU a letter', 'type_cpu_ms', 'ms', 1)], editors(
        more=['key ctrl+a', 'key alt+shift+i', 'key End'], keys=CARETS)),
    'idle': Table('Wake-ups a second of a program that does nothing', ['small.c'], rested, [
        ('with the focus', 'focused', '', 1), ('without it', 'unfocused', '', 1)], editors('20kb')),
}


def cell(column, results, limit):
    """Text and median of a figure; the median is None where there is none."""
    _, key, unit, places = column
    if any('failed' in result for result in results):
        return 'failed', None
    if any('late' in result for result in results):
        return f'over {limit:g} s', None
    if any(result.get(taken) is False for result in results for taken in ('act_taken', 'switch_taken', 'type_taken')):
        return 'no effect', None
    values = [result[key] for result in results if key in result]
    if not values:
        return '–', None
    median = statistics.median(values)
    return f'{median:.{places}f} {unit}'.strip(), median


def rows(table, results, limit):
    """The lines of a table of what came out: {way: list of results, or what "is" or "are" not installed}."""
    lines = ['| | ' + ' | '.join(column[0] for column in table.columns) + ' |', '|---' + '|---:' * len(table.columns) + '|']
    base = None
    for name, found in results.items():
        if isinstance(found, str):
            lines.append(f'| {name} | {found} not installed |' + ' |' * (len(table.columns) - 1))
            continue
        cells = [cell(column, found, limit) for column in table.columns]
        base = base or [median for _, median in cells]
        ratios = [compare.beside(median, first) if base != [value for _, value in cells] else '' for (_, median), first in zip(cells, base)]
        lines.append(f'| {name} | ' + ' | '.join(text + ratio for (text, _), ratio in zip(cells, ratios)) + ' |')
    return lines


def measured(name, args, log):
    """The programs take turns, so that drift of the machine hits all of them; one that was late or failed is not tried again."""
    table = TABLES[name]
    results = {}
    for way, how in table.ways.items():
        if args.only and way.replace(',', '').split()[0] not in args.only:
            continue
        missing = how.missing(args)
        results[way] = f'{" and ".join(missing)} {"is" if len(missing) == 1 else "are"}' if missing else []
    for number in range(args.rounds):
        for way, found in results.items():
            if isinstance(found, str) or any('late' in result or 'failed' in result for result in found):
                continue
            shot = os.path.join(compare.RESULTS, 'shots', f'{name}-{way.replace(" ", "-")}.png'.replace(',', '').replace(':%', '')) if number == 0 else None
            result = table.ways[way].measure(table, args, shot)
            compare.remove_left(os.path.dirname(table.paths()[0]))
            found.append(result)
            log.write(json.dumps({'table': name, 'program': way, 'round': number + 1, **result}) + '\n')
            log.flush()
            print(f'compare-use: {name} {way} {number + 1}/{args.rounds}: {result.get("failed") or ("late" if "late" in result else "done")}',
                  file=sys.stderr)
    return results


def main():
    parser = argparse.ArgumentParser(prog='dev bench compare-use', description=__doc__)
    parser.add_argument('--only', help='programs, separated by commas', type=lambda text: text.split(','))
    parser.add_argument('--tables', help='separated by commas: ' + ', '.join(TABLES))
    parser.add_argument('--rounds', type=int, default=3)
    parser.add_argument('--limit', type=float, default=90, help='seconds that anything may take')
    parser.add_argument('--idle', type=float, default=60, help='seconds for which wake-ups are counted')
    parser.add_argument('--quillet', default=os.path.join(compare.ROOT, 'build', 'bench', 'bin', 'quillet'), help='the binary to measure')
    args = parser.parse_args()
    args.quillet, load = os.path.abspath(args.quillet), os.getloadavg()[0]
    make_files.make(compare.DATA)
    os.makedirs(os.path.join(compare.RESULTS, 'shots'), exist_ok=True)
    stem = os.path.join(compare.RESULTS, datetime.datetime.now().strftime('use-%Y%m%d-%H%M%S'))
    parts = [f'Machine: {compare.machine()}. {datetime.date.today()}, load before the start {load:.1f}. Medians of {args.rounds} rounds; '
             'in brackets: how many times the figure of the first row.']
    with open(stem + '.jsonl', 'w', encoding='utf-8') as log:
        for name in compare.choice(args.tables, TABLES, 'table', parser):
            parts += [f'### {TABLES[name].title}', '\n'.join(rows(TABLES[name], measured(name, args, log), args.limit))]
    text = '\n\n'.join(parts) + '\n'
    with open(stem + '.md', 'w', encoding='utf-8') as file:
        file.write(text)
    print(text)


if __name__ == '__main__':
    main()
