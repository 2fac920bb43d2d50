#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""Compare Quillet's comparison of two texts with diff and git on the same pairs; prints a table for docs/performance.md.

usage: compare_diff.py [--make] [--rounds N]      --make only makes the pairs, in build/bench-data/diff

few        100 MB of C and the same with 10 lines changed, from the first to the last part of the file
versions   5 MB of C and a later version: 200 places with lines changed, added or taken out, at most five each
unrelated  two files of 2 MB of C that were made from different seeds
equal      the 100 MB twice
indented   the 5 MB and the same with each line indented further (white space ignored)

diff and git write to a file: diff looks only for a first difference when it sees /dev/null. Their figures are user and system time,
reading and writing included; Quillet's is the time for the comparison alone, on one thread, of texts that are read.
"""
import argparse
import json
import os
import random
import resource
import statistics
import subprocess
import tempfile

import make_files

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
PAIRS = os.path.join(ROOT, 'build', 'bench-data', 'diff')
BENCH = os.path.join(ROOT, 'build', 'bench', 'bin', 'bench_diff')
NAMES = ('few', 'versions', 'unrelated', 'equal', 'indented')
PROGRAMS = {'diff -u': ['diff', '-u'], 'git diff': ['git', '--no-pager', 'diff', '--no-index', '--no-color']}
IGNORING = {'indented': ['-w']}


def c_lines(size, seed):
    path = os.path.join(PAIRS, 'part')
    with open(path, 'w', encoding='ascii', newline='') as file:
        make_files.write_c(file, size, seed)
    with open(path, encoding='ascii', newline='') as file:
        lines = file.readlines()
    os.remove(path)
    return lines


def write_pair(name, old, new):
    for side, lines in (('old', old), ('new', new)):
        with open(os.path.join(PAIRS, f'{name}.{side}'), 'w', encoding='ascii', newline='') as file:
            file.writelines(lines)


def later(lines):
    """Changes from the end to the start, so that none moves the place of another."""
    draw = random.Random(make_files.SEED)
    new = list(lines)
    for place in sorted(draw.sample(range(len(lines)), 200), reverse=True):
        count = draw.randrange(1, 6)
        kind = draw.randrange(3)
        added = [f'    changed_{place}_{number} = {draw.randrange(1000)};\n' for number in range(count)] if kind != 1 else []
        new[place:place + (count if kind != 2 else 0)] = added
    return new


def make():
    os.makedirs(PAIRS, exist_ok=True)
    if os.path.exists(os.path.join(PAIRS, 'indented.new')):
        return
    lines = c_lines(make_files.LARGE, make_files.SEED)
    write_pair('equal', lines, lines)
    new = list(lines)
    for number in range(10):
        place = 10 + number * (len(lines) - 20) // 9
        new[place] = f'/* changed {number} */\n'
    write_pair('few', lines, new)
    lines = c_lines(5 * 1024 * 1024, 1)
    write_pair('versions', lines, later(lines))
    write_pair('unrelated', c_lines(2 * 1024 * 1024, 2), c_lines(2 * 1024 * 1024, 3))
    write_pair('indented', lines, ['\t' + line for line in lines])


def cpu_of(command):
    with tempfile.TemporaryFile() as output:
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        status = subprocess.run(command, stdout=output, env={**os.environ, 'LC_ALL': 'C.UTF-8'}, check=False).returncode
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
    if status not in (0, 1):
        raise SystemExit(f'compare_diff: {command[0]} failed')
    return (after.ru_utime - before.ru_utime + after.ru_stime - before.ru_stime) * 1000


def own(name):
    answer = subprocess.run([BENCH, f'--benchmark_filter=comparePair/{name}/', '--benchmark_format=json', '--benchmark_min_time=0.3'],
                            capture_output=True, check=True).stdout
    return json.loads(answer)['benchmarks'][0]['real_time']


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument('--make', action='store_true')
    parser.add_argument('--rounds', type=int, default=5)
    args = parser.parse_args()
    make()
    if args.make:
        return
    print(f'| pair | Quillet | {" | ".join(PROGRAMS)} | Quillet / the faster |')
    print('|---|' + '---:|' * (len(PROGRAMS) + 2))
    for name in NAMES:
        files = [os.path.join(PAIRS, f'{name}.{side}') for side in ('old', 'new')]
        rounds = [[own(name), *(cpu_of(command + IGNORING.get(name, []) + files) for command in PROGRAMS.values())]
                  for _ in range(args.rounds)]
        medians = [statistics.median(figures) for figures in zip(*rounds)]
        cells = ' | '.join(f'{figure:.0f} ms' for figure in medians)
        print(f'| {name} | {cells} | {medians[0] / min(medians[1:]):.2f} × |', flush=True)


if __name__ == '__main__':
    main()
