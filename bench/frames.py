# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""What is drawn after keys and turns of the wheel, and when: runs input_probe on a screen and reckons with what it says, in milliseconds."""
import math
import os
import subprocess

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
PROBE = os.path.join(ROOT, 'build', 'bench', 'bin', 'input_probe')
# The middle of a window: no tabs, tool bars or status bars, in which a program may draw before or after the text.
AREA = (0, 200, 1280, 600)
FRAME = 1000 / 60
# Of one picture a program may draw several pieces; what comes later than that is the next one.
SAME_PICTURE = 1.0


def probe(screen, count, interval, *words):
    """What happens on the screen by `count` inputs, one in `interval` milliseconds: [('input' or 'drawn', milliseconds)]."""
    answer = subprocess.run([PROBE, str(count), str(interval), *map(str, AREA), *words], env=screen.environment, capture_output=True,
                            text=True, check=True).stdout
    return [(what, int(when) / 1000) for what, when in (line.split() for line in answer.splitlines())]


def pictures(events):
    """When each picture began to be drawn."""
    begins, last = [], float('-inf')
    for what, when in events:
        if what == 'drawn':
            if when - last > SAME_PICTURE:
                begins.append(when)
            last = when
    return begins


def waits(events):
    """For each input how long it was until the next picture; None where another input came first, or nothing any more."""
    inputs, drawn = [when for what, when in events if what == 'input'], pictures(events)
    ends = inputs[1:] + [float('inf')]
    return [next((picture - begin for picture in drawn if begin <= picture < end), None) for begin, end in zip(inputs, ends)]


def quantile(values, part):
    """The least of the values that at least this part of them does not exceed."""
    return sorted(values)[max(1, math.ceil(part * len(values))) - 1]


def keys(events):
    """How long it took until a key's picture, and how many keys had none."""
    times = [time for time in waits(events) if time is not None]
    figures = {'p50_ms': quantile(times, 0.5), 'p99_ms': quantile(times, 0.99), 'longest_ms': max(times)} if times else {}
    return {'unseen': sum(what == 'input' for what, _ in events) - len(times), **figures}


def scrolling(events):
    """How smooth it was: pictures that were late or left out, and the longest time in which nothing moved."""
    times, drawn = waits(events), pictures(events)
    end = max(when for what, when in events if what == 'input') + FRAME
    shown = [when for when in drawn if when <= end]
    return {'missed': sum(time is None or time > FRAME for time in times),
            'gap_ms': max((after - before for before, after in zip(shown, shown[1:])), default=end),
            'wait_ms': quantile([time for time in times if time is not None] or [end], 0.5)}
