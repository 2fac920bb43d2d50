#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""Measure a desktop program from outside: time and CPU until it settles, first picture, memory, CPU per key and per page.

usage: gui_bench.py [--goto STEP]... [--type N] [--pages N] [--limit S] [--shots PREFIX] -- COMMAND...
Runs the command under its own Xvfb (1280x900) with openbox, a private D-Bus session and an empty HOME; its window is maximised.
Prints one JSON line:
  open_wall_s, open_cpu_s   until the process tree used less than 10 % of a core for 0.7 s (wall: its last busy moment,
                            or the first picture where that came later)
  painted_s                 until the screen showed what it shows then (or at the limit), colours and a caret apart
  rss_mb, peak_mb           resident and peak memory of the tree then; end_* after the keys
  type_cpu_ms, page_cpu_ms  CPU of the tree per typed letter and per Page Down; *_server_ms what the X server used for it,
                            *_wall_s from the first key to the last busy moment
  *_taken                   whether the picture changed by it; a figure without that is worth nothing
  late                      the first of open, goto, type, page that took longer than the limit; what follows it is left out
Steps, pressed before typing: "key CHORD...", "type TEXT", "click X Y [BUTTON]".
--shots saves PREFIX-open.png, PREFIX-type.png and PREFIX-page.png: look at them once for each program. Needs xvfb, openbox, xdotool, dbus-daemon, imagemagick, x11-utils.
"""
import argparse
import json
import os
import signal
import subprocess
import sys
import time

import screen as screens

QUIET_S = 0.7
BUSY_SHARE = 0.10
LOOK_S = 0.01
MUCH_INK = 0.02


def parents():
    found = {}
    for entry in os.listdir('/proc'):
        if entry.isdigit():
            try:
                with open(f'/proc/{entry}/stat', encoding='utf-8', errors='replace') as file:
                    stat = file.read()
            except OSError:
                continue
            found.setdefault(int(stat[stat.rfind(')') + 2:].split()[1]), []).append(int(entry))
    return found


def tree(root):
    children = parents()
    found, todo = [], [root]
    while todo:
        found.append(todo.pop())
        todo += children.get(found[-1], [])
    return found


def process_cpu(process):
    """CPU seconds of a process with all its threads, those that ended too."""
    return time.clock_gettime((~process << 3) | 2)


class Cpu:
    """CPU seconds of a process tree; processes that ended keep their last reading. Who belongs to it is asked every 0.1 s."""

    def __init__(self, root):
        self.root, self._seen, self._members, self._asked = root, {}, [root], 0.0

    def seconds(self):
        now = time.monotonic()
        if now - self._asked > 0.1:
            self._members, self._asked = tree(self.root), now
        for process in self._members:
            try:
                self._seen[process] = process_cpu(process)
            except OSError:
                pass
        return sum(self._seen.values())


def memory(root):
    now = peak = 0
    for process in tree(root):
        try:
            with open(f'/proc/{process}/status', encoding='utf-8') as file:
                for line in file:
                    if line.startswith('VmHWM'):
                        peak += int(line.split()[1])
                    elif line.startswith('VmRSS'):
                        now += int(line.split()[1])
        except OSError:
            pass
    return round(now / 1024, 1), round(peak / 1024, 1)


def busy(before, after):
    """Whether a core was used for more than a tenth between two (time, CPU seconds)."""
    return after[1] - before[1] > BUSY_SHARE * (after[0] - before[0])


class Run:
    """One start of one program."""

    def __init__(self, command, limit):
        self.screen, self.limit = screens.Screen(), limit
        self.film, self._blank = screens.Film(), self.screen.look()
        self.program, self.cpu, self.opened = None, None, None
        self.result = {'command': ' '.join(command)}
        self._command = command

    def settle(self, since, film=None):
        """Waits until the tree is idle; the seconds from `since` to its last busy moment, or None when the limit is over.

        With a film a program that shows nothing yet is not idle: it may be waiting for something.
        """
        last_busy, window = since, []
        shown = film is None
        while True:
            now = time.monotonic()
            if film:
                picture = self.screen.look()
                film.add(now - since, picture)
                shown = shown or screens.changed(self._blank, picture)
            window = [entry for entry in window if now - entry[0] <= 0.11] + [(now, self.cpu.seconds())]
            # Busy is judged over a tenth of a second; the look that saw the last of it dates it.
            if len(window) > 1 and busy(window[0], window[-1]) and busy(window[-2], window[-1]):
                last_busy = now
            if shown and now - last_busy > QUIET_S:
                return last_busy - since
            if now - since > self.limit:
                return None
            if self.program.poll() is not None:
                raise RuntimeError(f'the program ended by itself with status {self.program.returncode}')
            time.sleep(max(0.0, LOOK_S - (time.monotonic() - now)))

    def open(self):
        since = time.monotonic()
        self.program = subprocess.Popen(self._command, env=self.screen.environment, start_new_session=True,
                                        stdin=subprocess.DEVNULL, **screens.QUIET)
        self.cpu = Cpu(self.program.pid)
        wall = self.settle(since, self.film)
        self.opened = self.screen.look()
        rss, peak = memory(self.program.pid)
        # At the limit a window that is still empty is no picture; a screen of text has more ink than any toolbar.
        painted = self.film.painted(MUCH_INK if wall is None else 0.0)
        self.result.update(open_cpu_s=round(self.cpu.seconds(), 3), rss_mb=rss, peak_mb=peak)
        if painted is not None:
            self.result['painted_s'] = round(painted, 3)
        if wall is not None:
            self.result['open_wall_s'] = round(max(wall, painted or 0.0), 3)
        return wall is not None

    def go(self, steps):
        """Clicks into the text and does the steps."""
        for step in ['click 640 450', *steps]:
            verb, *words = step.split()
            since = time.monotonic()
            if verb == 'click':
                self.screen.press('mousemove', words[0], words[1], 'click', words[2] if len(words) > 2 else '1')
            elif verb == 'type':
                self.screen.press('type', '--delay', '20', ' '.join(words))
            else:
                self.screen.press('key', '--delay', '20', *words)
            if self.settle(since) is None:
                return False
        return True

    def keys(self, name, count, words):
        before, cpu, server = self.screen.look(), self.cpu.seconds(), process_cpu(self.screen.server)
        since = time.monotonic()
        self.screen.press(*words)
        wall = self.settle(since)
        if wall is None:
            return False
        self.result[f'{name}_cpu_ms'] = round((self.cpu.seconds() - cpu) / count * 1000, 3)
        self.result[f'{name}_wall_s'] = round(wall, 3)
        self.result[f'{name}_server_ms'] = round((process_cpu(self.screen.server) - server) / count * 1000, 3)
        self.result[f'{name}_taken'] = screens.changed(before, self.screen.look(), max(24, 2 * count))
        return True

    def close(self):
        if self.program:
            for process in reversed(tree(self.program.pid)):
                try:
                    os.kill(process, signal.SIGKILL)
                except OSError:
                    pass
            self.program.wait()
        self.screen.close()


def measure(command, goto=(), letters=0, pages=0, limit=90.0, shots=None, prepare=None):
    """One run; `prepare(home)` may put settings into the empty home first. The dictionary that is described above."""
    run = Run(command, limit)
    try:
        if prepare:
            prepare(run.screen.home)
        stages = [('open', run.open)]
        if letters or pages:
            stages.append(('goto', lambda: run.go(goto)))
        if letters:
            stages.append(('type', lambda: run.keys('type', letters, ['type', '--delay', '30', 'x' * letters])))
        if pages:
            stages.append(('page', lambda: run.keys('page', pages, ['key', '--delay', '30'] + ['Next'] * pages)))
        for name, act in stages:
            done = act()
            if shots and name != 'goto':
                run.screen.save(f'{shots}-{name}.png')
            if not done:
                run.result['late'] = name
                break
        if len(stages) > 1:
            run.result['end_rss_mb'], run.result['end_peak_mb'] = memory(run.program.pid)
    except RuntimeError as error:
        run.result['failed'] = str(error)
    finally:
        run.close()
    return run.result


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument('--goto', action='append', default=[])
    parser.add_argument('--type', type=int, default=0)
    parser.add_argument('--pages', type=int, default=0)
    parser.add_argument('--limit', type=float, default=90)
    parser.add_argument('--shots')
    parser.add_argument('command', nargs=argparse.REMAINDER)
    args = parser.parse_args()
    command = args.command[1:] if args.command[:1] == ['--'] else args.command
    if not command:
        parser.error('no command')
    result = measure(command, args.goto, args.type, args.pages, args.limit, args.shots)
    print(json.dumps(result))
    return 1 if 'failed' in result else 0


if __name__ == '__main__':
    sys.exit(main())
