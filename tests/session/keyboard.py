# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""A keyboard that presses keys by where they are, whatever the layout makes of them."""
import ctypes
import ctypes.util
import re
import subprocess

# The codes of the keys of a US keyboard by what they type there, without and with Shift.
ROWS = ((10, "1234567890-=", "!@#$%^&*()_+"), (24, "qwertyuiop[]", "QWERTYUIOP{}"), (38, "asdfghjkl;'`", "ASDFGHJKL:\"~"),
        (51, "\\zxcvbnm,./", "|ZXCVBNM<>?"))
CODES = {"Esc": 9, "BS": 22, "Tab": 23, "CR": 36, "Space": 65, "F1": 67, "F3": 69, "F4": 70, "F11": 95, "PgUp": 112, "PgDn": 117, "Home": 110, "End": 115,
         "Left": 113, "Right": 114, "Up": 111, "Down": 116, "Del": 119,
         # Between Shift and Z, where there is one key more than on a US keyboard, and what is right of the space bar.
         "Extra": 94, "AltGr": 108}
MODIFIERS = {"C": 37, "S": 50, "A": 64, "G": CODES["AltGr"]}
USE_CORE_KEYBOARD = 0x100


def places():
    """(code, whether Shift is held) of each character of a US keyboard."""
    found = {" ": (CODES["Space"], False), "\n": (CODES["CR"], False)}
    for first, plain, shifted in ROWS:
        for index, (lower, upper) in enumerate(zip(plain, shifted)):
            found[lower] = (first + index, False)
            found[upper] = (first + index, True)
    return found


class Keyboard:
    """Of the desktop's display. Keys are written as on a US keyboard: "a", "A", "<C-a>", "<C-S-PgDn>", "<G-q>" with AltGr."""
    PLACES = places()

    def __init__(self, desktop):
        self.desktop = desktop
        environment = desktop.environment
        self.x11 = ctypes.CDLL(ctypes.util.find_library("X11") or "libX11.so.6")
        self.test = ctypes.CDLL(ctypes.util.find_library("Xtst") or "libXtst.so.6")
        self.x11.XOpenDisplay.restype = ctypes.c_void_p
        self.display = ctypes.c_void_p(self.x11.XOpenDisplay(environment["DISPLAY"].encode()))
        self.layout = None

    def use(self, layout):
        """As "de", "de/nodeadkeys", "us,ru" or "us+compose:ralt"; of several layouts the last is on."""
        if layout == self.layout:
            return
        self.layout = layout
        names, _, option = layout.partition("+")
        groups = [group.partition("/") for group in names.split(",")]
        subprocess.run(("setxkbmap", "-layout", ",".join(group[0] for group in groups), "-variant", ",".join(group[2] for group in groups),
                        "-option", "", *(("-option", option) if option else ())), env=self.desktop.environment, check=True)
        self.x11.XkbLockGroup(self.display, USE_CORE_KEYBOARD, len(groups) - 1)
        self.x11.XSync(self.display, False)
        self.desktop.rest()

    def press(self, keys):
        """Each when the one before has had its effect: the toolkit composes a key when it reads it, be there others that it has not handed
        on yet."""
        for token in re.findall(r"<[^<>]+>|.|\n", keys):
            *modifiers, key = token[1:-1].replace("--", "-\0").split("-") if len(token) > 1 else token
            key = key.replace("\0", "-")
            code, shift = (CODES[key], False) if key in CODES else self.PLACES[key]
            held = [MODIFIERS[modifier] for modifier in modifiers] + ([MODIFIERS["S"]] if shift else [])
            for held_code in held:
                self.test.XTestFakeKeyEvent(self.display, held_code, True, 0)
            self.test.XTestFakeKeyEvent(self.display, code, True, 0)
            self.test.XTestFakeKeyEvent(self.display, code, False, 0)
            for held_code in reversed(held):
                self.test.XTestFakeKeyEvent(self.display, held_code, False, 0)
            self.x11.XSync(self.display, False)
            self.desktop.rest()
