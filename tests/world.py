# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""A world for programs under test that has nothing of this machine in it."""
import os
import pathlib
import shutil
import subprocess
import sys
import time

# Seconds for anything that is waited for: a sanitized program on a busy machine is slow, and only a failure takes that long.
TIMEOUT = 60
FONTS = pathlib.Path(__file__).resolve().with_name("data") / "fonts.conf"
BUS_CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig><type>session</type><listen>unix:tmpdir={folder}</listen><servicedir>{folder}/services</servicedir>
<policy context="default"><allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/></policy></busconfig>
"""
# What the spelling dictionary knows.
WORDS = ("a", "text")


def need(tools):
    """Ends the test when one of these programs is not there, and names the packages that are to be installed."""
    if missing := sorted({package for tool, package in tools.items() if not shutil.which(tool)}):
        sys.exit(f"not installed: {' '.join(missing)}")


def until(what, condition, explain=lambda: ""):
    """Waits until `condition()` is true, and answers with that."""
    deadline = time.monotonic() + TIMEOUT
    while not (answer := condition()):
        if time.monotonic() > deadline:
            raise AssertionError(f"waited in vain for {what}{explain()}")
        time.sleep(0.005)
    return answer


def make_world(path, settings=""):
    """Folders of a user who has nothing but these settings, and the environment of programs that look nowhere else."""
    folders = {name: path / name for name in ("files", "home", "config", "data", "state", "cache", "run", "share", "services")}
    for folder in folders.values():
        folder.mkdir(mode=0o700)
    (path / "bus.conf").write_text(BUS_CONFIGURATION.format(folder=path))
    dictionaries = path / "data" / "hunspell"
    dictionaries.mkdir()
    (dictionaries / "en_US.aff").write_text("SET UTF-8\n")
    (dictionaries / "en_US.dic").write_text("\n".join((str(len(WORDS)), *WORDS, "")))
    (path / "config" / "Quillet").mkdir()
    (path / "config" / "Quillet" / "Quillet.conf").write_text("[General]\n" + settings)
    environment = {name: value for name, value in os.environ.items() if name.endswith("SAN_OPTIONS")}
    environment |= {"PATH": "/usr/local/bin:/usr/bin:/bin", "LC_ALL": "C.UTF-8", "TZ": "UTC", "HOME": str(path / "home"),
                    "XDG_RUNTIME_DIR": str(path / "run"), "XDG_DATA_DIRS": str(path / "share"), "XDG_CONFIG_DIRS": str(path / "share"),
                    "XDG_CURRENT_DESKTOP": "openbox", "FONTCONFIG_FILE": str(FONTS), "GSETTINGS_BACKEND": "memory",
                    # No service of another desktop is asked, and none is started.
                    "DBUS_SESSION_BUS_ADDRESS": f"unix:path={path}/run/no-bus"}
    return environment | {f"XDG_{name.upper()}_HOME": str(path / name) for name in ("config", "data", "state", "cache")}


def start_bus(path, environment):
    """A session bus in that world, which starts what its folder of services names; these find their schemas among the machine's."""
    daemon = subprocess.Popen(("dbus-daemon", f"--config-file={path}/bus.conf", "--nofork", "--print-address"),
                              env=environment | {"XDG_DATA_DIRS": "/usr/share"}, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL, text=True)
    environment["DBUS_SESSION_BUS_ADDRESS"] = daemon.stdout.readline().strip()
    return daemon
