: #!/usr/bin/env python3
= cccccccccccccccccccccc
: """Writes the monthly report.
= ssssssssssssssssssssssssssssss
:
= s
: Lines in here: # not a comment, 'not a string', def no_function().
= sssssssssssssssssssssssssssssssssssssssssssssssssssssssssssssssssss
: """
= sss
: from __future__ import annotations
= kkkk            kkkkkk
:
: import asyncio
= kkkkkk
: import re as regex
= kkkkkk    kk
: from dataclasses import dataclass, field
= kkkk             kkkkkk
:
: LIMIT = 1_000
= ttttt   nnnnn
: MASK, MODE, BITS = 0xFF, 0o755, 0b1010
= tttt  tttt  tttt   nnnn  nnnnn  nnnnnn
: WAVE = 3.5e-2 + 1j - 10.
= tttt   nnnnnn   nn   nn
: PATTERN = regex.compile(rb"\d+\s*\"units\"")
= ttttttt         fffffff sssssssssssssssssss
:
= a
:
= a
: @dataclass(frozen=True)
= aaaaaaaaaa        bbbb
: class Entry(object):
= kkkkk fffff bbbbbb
:     name: str
=           bbb
:     amount: float = 0.0
=             bbbbb   nnn
:     tags: list[str] = field(default_factory=list)
=           bbbb bbb    fffff                 bbbb
:
= a
:     @property
= aaaaaaaaaaaaa
:     def label(self) -> str:
=     kkk fffff bbbb     bbb
:         return f"{self.name!r}: {self.amount:.2f} # inside"
=         kkkkkk    bbbb           bbbb             ccccccccc
:
= a
:     @staticmethod
= aaaaaaaaaaaaaaaaa
:     async def load(path):
=     kkkkk kkk ffff
:         async with open_file(path) as handle:
=         kkkkk kkkk fffffffff       kk
:             return [Entry(*line.split(';')) for line in handle if line is not None]
=             kkkkkk  fffff       fffff sss   kkk      kk        kk      kk kkk bbbb
:
:
: def total(entries, *, limit=LIMIT):
= kkk fffff                   ttttt
:     # Skips what is too large.
=     cccccccccccccccccccccccccc
:     text = r'''raw \n text
=            ssssssssssssssss
:     "over" lines'''
= sssssssssssssssssss
:     result = 0
=              n
:     for index, entry in enumerate(sorted(entries, key=lambda e: e.name)):
=     kkk              kk bbbbbbbbb bbbbbb              kkkkkk
:         if isinstance(entry, Entry) and entry.amount < limit:
=         kk bbbbbbbbbb        ttttt  kkk
:             result += entry.amount
:         elif not entry:
=         kkkk kkk
:             continue
=             kkkkkkkk
:         else:
=         kkkk
:             raise ValueError('entry %d is \'large\'' % index) from None
=             kkkkk ffffffffff sssssssssssssssssssssss          kkkk bbbb
:     match result:
=     kkkkk
:         case 0: return False
=         kkkk n  kkkkkk bbbbb
:         case _: pass
=         kkkk    kkkk
:     print("total", str(result), end='')
=     bbbbb sssssss  bbb              ss
:     try:
=     kkk
:         yield super().__len__()
=         kkkkk bbbbb   fffffff
:     except (KeyError, OSError):
=     kkkkkk  tttttttt  ttttttt
:         del result
=         kkk
:     return True
=     kkkkkk bbbb
:
:
: if __name__ == "__main__":
= kk             ssssssssss
:     asyncio.run(total([]))
=             fff fffff
:
