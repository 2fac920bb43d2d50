#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""Compare Quillet's search for expressions in 100 MB of C with `grep -P -c`; prints a table for docs/performance.md.

usage: compare_search.py [--rounds N]

The expressions are those of bench_search, where the text has been read. grep reads it out of the disk cache and stops at the first hit
of a line. Both figures are user and system time. A row says so when the two do not find hits in the same number of lines.
"""
import argparse
import json
import os
import resource
import statistics
import subprocess

import compare
import make_files

BENCH = os.path.join(compare.ROOT, 'build', 'bench', 'bin', 'bench_search')
FILE = os.path.join(compare.DATA, 'large.c')


def own():
    """What bench_search found: one entry an expression."""
    answer = subprocess.run([BENCH, '--benchmark_format=json', '--benchmark_min_time=0'], capture_output=True, check=True).stdout
    return json.loads(answer)['benchmarks']


def grep(expression):
    """Lines with a hit, and milliseconds."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    answer = subprocess.run(['grep', '-P', '-c', '-e', expression, FILE], env={**os.environ, 'LC_ALL': 'C.UTF-8'}, capture_output=True, check=False)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    if answer.returncode > 1:
        raise SystemExit(f'compare_search: grep: {answer.stderr.decode().strip()}')
    return int(answer.stdout), (after.ru_utime - before.ru_utime + after.ru_stime - before.ru_stime) * 1000


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument('--rounds', type=int, default=5)
    args = parser.parse_args()
    make_files.make(compare.DATA)
    ours, theirs = {}, {}
    for _ in range(args.rounds):
        for entry in own():
            found = entry['label']
            ours.setdefault(found, []).append(entry)
            theirs.setdefault(found, []).append(grep(found))
    print('| expression | hits | Quillet | grep -P -c | Quillet / grep |\n|---|---:|---:|---:|---:|')
    for expression, entries in ours.items():
        quillet = statistics.median(entry['cpu_time'] for entry in entries)
        other = statistics.median(milliseconds for _, milliseconds in theirs[expression])
        lines = theirs[expression][0][0]
        hits = f'{entries[0]["hits"]:.0f}' + ('' if entries[0]['lines'] == lines else f' (not in the {lines} lines of grep)')
        shown = expression.replace('|', '\\|')
        print(f'| `{shown}` | {hits} | {quillet:.0f} ms | {other:.0f} ms | {quillet / other:.2f} × |')


if __name__ == '__main__':
    main()
