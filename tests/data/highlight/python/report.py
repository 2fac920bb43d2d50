#!/usr/bin/env python3
"""Writes the monthly report.

Lines in here: # not a comment, 'not a string', def no_function().
"""
from __future__ import annotations

import asyncio
import re as regex
from dataclasses import dataclass, field

LIMIT = 1_000
MASK, MODE, BITS = 0xFF, 0o755, 0b1010
WAVE = 3.5e-2 + 1j - 10.
PATTERN = regex.compile(rb"\d+\s*\"units\"")


@dataclass(frozen=True)
class Entry(object):
    name: str
    amount: float = 0.0
    tags: list[str] = field(default_factory=list)

    @property
    def label(self) -> str:
        return f"{self.name!r}: {self.amount:.2f} # inside"

    @staticmethod
    async def load(path):
        async with open_file(path) as handle:
            return [Entry(*line.split(';')) for line in handle if line is not None]


def total(entries, *, limit=LIMIT):
    # Skips what is too large.
    text = r'''raw \n text
    "over" lines'''
    result = 0
    for index, entry in enumerate(sorted(entries, key=lambda e: e.name)):
        if isinstance(entry, Entry) and entry.amount < limit:
            result += entry.amount
        elif not entry:
            continue
        else:
            raise ValueError('entry %d is \'large\'' % index) from None
    match result:
        case 0: return False
        case _: pass
    print("total", str(result), end='')
    try:
        yield super().__len__()
    except (KeyError, OSError):
        del result
    return True


if __name__ == "__main__":
    asyncio.run(total([]))
