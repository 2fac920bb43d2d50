# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""An X server of our own whose picture is read out of a mapped file: looking costs neither the program nor the server anything."""
import mmap
import os
import struct
import subprocess
import tempfile
import time
from collections import Counter

QUIET = {'stdout': subprocess.DEVNULL, 'stderr': subprocess.DEVNULL}
WIDTH, HEIGHT = 1280, 900
# Every fourth row below the title bar and above the status bars: four samples a line of text.
ROWS = range(44, 872, 4)
# The rows that make the first picture: above the place where messages and search bars come and go.
PICTURE_ROWS = range(44, 800, 4)
# Openbox settings: one size of window for all programs, no matter what size they would choose.
OPENBOX = '''<?xml version="1.0"?>
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <theme><name>Clearlooks</name></theme>
  <mouse><context name="Client"><mousebind button="Left" action="Press"><action name="Focus"/></mousebind></context></mouse>
  <applications><application class="*" type="normal"><maximized>true</maximized></application></applications>
</openbox_config>
'''


class Screen:
    """Starts Xvfb, openbox and a D-Bus session in a folder that is thrown away; `environment` is for programs shown here."""

    def __init__(self):
        memory = '/dev/shm' if os.access('/dev/shm', os.W_OK) else None
        self._folder = tempfile.TemporaryDirectory(prefix='quillet-bench-', dir=memory)
        self.home = os.path.join(self._folder.name, 'home')
        os.mkdir(self.home, 0o700)
        self._started, self._bus = [], None
        self.display = self._start_server()
        home = self.home
        self.environment = {key: value for key, value in os.environ.items() if not key.startswith(('QT_', 'GTK_', 'WAYLAND_'))}
        self.environment.update(
            DISPLAY=self.display, HOME=home, XDG_CONFIG_HOME=f'{home}/config', XDG_DATA_HOME=f'{home}/data',
            XDG_CACHE_HOME=f'{home}/cache', XDG_STATE_HOME=f'{home}/state', XDG_RUNTIME_DIR=home, LC_ALL='C.UTF-8',
            NO_AT_BRIDGE='1', LIBGL_ALWAYS_SOFTWARE='1')
        rules = os.path.join(self._folder.name, 'openbox.xml')
        with open(rules, 'w', encoding='ascii') as file:
            file.write(OPENBOX)
        self._started.append(subprocess.Popen(['openbox', '--config-file', rules], env=self.environment, **QUIET))
        bus = subprocess.run(['dbus-daemon', '--session', '--fork', '--print-address=1', '--print-pid=1'], env=self.environment,
                             capture_output=True, text=True, check=True).stdout.split()
        self.environment['DBUS_SESSION_BUS_ADDRESS'], self._bus = bus[0], int(bus[1])
        self._wait_for('openbox', lambda: subprocess.run(
            ['xprop', '-root', '_NET_SUPPORTING_WM_CHECK'], env=self.environment, capture_output=True, text=True,
            check=False).stdout.count('window id'))
        self._file = open(self._picture, 'rb')
        self._map = mmap.mmap(self._file.fileno(), 0, access=mmap.ACCESS_READ)
        # The file is an X window dump: header size, …, bytes a row (13th word), …, colours (20th word), all big-endian.
        words = struct.unpack('>25I', self._map[:100])
        self._pixels, self._stride = words[0] + 12 * words[19], words[12]

    def _start_server(self):
        read, write = os.pipe()
        self._picture = os.path.join(self._folder.name, 'Xvfb_screen0')
        self._started.append(subprocess.Popen(
            ['Xvfb', '-displayfd', str(write), '-screen', '0', f'{WIDTH}x{HEIGHT}x24', '-nolisten', 'tcp', '-noreset', '-fbdir',
             self._folder.name], pass_fds=[write], **QUIET))
        os.close(write)
        with os.fdopen(read) as pipe:
            number = pipe.readline().strip()
        if not number:
            raise RuntimeError('Xvfb did not start')
        return f':{number}'

    @staticmethod
    def _wait_for(what, condition):
        end = time.monotonic() + 10
        while not condition():
            if time.monotonic() > end:
                raise RuntimeError(f'{what} did not start')
            time.sleep(0.02)

    @property
    def server(self):
        return self._started[0].pid

    def look(self):
        """What is shown now: the green of the sampled rows, a byte a pixel."""
        at = self._pixels + 1
        return b''.join(self._map[at + row * self._stride:at + row * self._stride + 4 * WIDTH - 1:4] for row in ROWS)

    def save(self, path):
        subprocess.run(['convert', f'xwd:{self._picture}', path], check=True, **QUIET)

    def press(self, *words):
        """xdotool with these words, e.g. press('key', 'ctrl+End')."""
        subprocess.run(['xdotool', *words], env=self.environment, check=False, **QUIET)

    def close(self):
        for process in reversed(self._started):
            process.terminate()
            process.wait()
        if self._bus:
            try:
                os.kill(self._bus, 15)
            except OSError:
                pass
        self._map.close()
        self._file.close()
        self._folder.cleanup()


def ink(picture, background):
    """A number with one bit in eight for every pixel of another brightness than `background`."""
    return int.from_bytes(picture.translate(bytes(value != background for value in range(256))), 'little')


class Film:
    """Pictures with the times from which on they were seen; equal ones are held once."""

    def __init__(self):
        self._seen, self.scenes = {}, []

    def add(self, moment, picture):
        picture = picture[:len(PICTURE_ROWS) * WIDTH]
        picture = self._seen.setdefault(picture, picture)
        if not self.scenes or self.scenes[-1][1] is not picture:
            self.scenes.append((moment, picture))

    def painted(self, least=0.0):
        """The moment from which on the screen stayed as it is at the end, or None; None too where less than `least` of it is ink.

        What counts is where there is ink, not its colour (highlighting may come later), and a tenth of it may differ (a blinking
        caret, a progress bar).
        """
        if len(self.scenes) < 2:
            return None
        last = self.scenes[-1][1]
        background = Counter(last).most_common(1)[0][0]
        target = ink(last, background)
        if target.bit_count() < least * len(last):
            return None
        allowed = max(200, target.bit_count() // 10)
        moment, differs = None, {}
        for when, picture in reversed(self.scenes):
            if picture not in differs:
                differs[picture] = (ink(picture, background) ^ target).bit_count()
            if differs[picture] > allowed:
                return moment
            moment = when
        return None  # It never differed: nothing was painted.

    def became(self, *others):
        """The moment from which on the screen was nearer to what it is at the end than to `others`; None when that is one of them."""
        others = [other[:len(PICTURE_ROWS) * WIDTH] for other in others]
        moment, last = None, self.scenes[-1][1]
        for when, picture in reversed(self.scenes):
            if difference(picture, last) >= min(difference(picture, other) for other in others):
                return moment
            moment = when
        return moment


def difference(one, other):
    """How many sampled pixels differ."""
    return 0 if one == other else sum(a != b for a, b in zip(one, other))


def changed(before, after, least=24):
    """True when at least `least` sampled pixels differ; a caret of a pixel or two has less than 24."""
    return before != after and difference(before, after) >= least
