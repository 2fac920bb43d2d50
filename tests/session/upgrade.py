#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""Installs a package, works with its program, installs the next one over it, whose program brings everything back, and removes it. All of it
in a root of its own, users' homes included, and with no right to anything else. Usage: upgrade.py OLD.deb NEW.deb [--pictures FOLDER]"""
import argparse
import contextlib
import os
import pathlib
import subprocess
import tarfile
import tempfile

from desktop import TOOLS, Desktop, expect, need

NAME = "quillet"
# What its dpkg keeps, and where the users live.
OTHERS = ("var", "home")


class Root:
    """A root folder, on which dpkg has the packages of the machine as installed, so that those of NAME get what they depend on, or do not."""

    def __init__(self, path):
        self.path = path
        self.program = path / "usr/bin" / NAME
        state = path / "var/lib/dpkg"
        for folder in ("info", "triggers", "updates"):
            (state / folder).mkdir(parents=True)
        known = pathlib.Path("/var/lib/dpkg/status").read_text().split("\n\n")
        (state / "status").write_text("\n\n".join(entry for entry in known if not entry.startswith(f"Package: {NAME}\n")))
        (path / "home").mkdir()

    def dpkg(self, *arguments):
        """What it says."""
        done = subprocess.run(("dpkg", f"--root={self.path}", "--log=/dev/null", "--force-not-root", *arguments), stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, env=os.environ | {"LC_ALL": "C", "PATH": "/usr/sbin:/usr/bin:/sbin:/bin"})
        said = "\n".join(line for line in done.stdout.splitlines() if "files list file for package" not in line)
        expect((done.returncode, said if done.returncode else ""), (0, ""), f"dpkg {' '.join(map(str, arguments))}")
        return said

    def files(self):
        return {str(entry.relative_to(self.path)) for folder in self.path.iterdir() if folder.name not in OTHERS
                for entry in (folder, *folder.rglob("*"))}

    def install(self, package):
        """Its files are there as it has them, and no others."""
        self.dpkg("--install", package)
        expect(self.dpkg("--verify", NAME), "", "files that differ from those of the package")
        with subprocess.Popen(("dpkg-deb", "--fsys-tarfile", package), stdout=subprocess.PIPE) as unpacking, \
                tarfile.open(fileobj=unpacking.stdout, mode="r|") as archive:
            names = {name for member in archive if (name := os.path.normpath(member.name)) != "."}
        expect(self.files() ^ names, set(), "files that are in the package or on the disk alone")


class User(Desktop):
    """A home below the root, and three texts in it: a changed one, one as it is on the disk with the caret in it, one without a file."""

    def __init__(self, root, leave, pictures):
        super().__init__(root.program, pictures / leave.__name__ if pictures else None)
        self.leave = leave

    def until_tab(self, title):
        self.until_title(f"{title} — Quillet")

    def until_on_disk(self, name, text):
        """In the folder that the program takes for it."""
        self.until(f"{name} to hold “{text}”", lambda: [file.read_text() for file in self.path.rglob(name)] == [text])

    def drafts(self):
        return {draft.read_text() for draft in (self.path / "data/Quillet/Drafts").glob("*.draft")}

    def work(self):
        (self.files / "changed.txt").write_text("on the disk\n")
        (self.files / "caret.txt").write_text("first\nsecond\n")
        self.start_program("changed.txt", "caret.txt")
        self.until_tab("caret.txt")
        self.keys("Down", "Right", "Right")
        self.keys("ctrl+1")
        self.until_tab("changed.txt")
        self.type("not yet ")
        self.until_tab("changed.txt*")
        self.keys("ctrl+n")
        self.until_tab("Untitled")
        self.type("in no")
        self.until_tab("Untitled*")
        self.picture("before")
        self.until("drafts", lambda: self.drafts() == {"not yet on the disk\n", "in no"})

    def go_on(self):
        """All is back, as far as saving and typing tell."""
        self.start_program()
        window = self.until_title("Untitled* — Quillet")
        self.picture("after")
        self.keys("ctrl+1")
        self.until_tab("changed.txt*")
        self.keys("ctrl+s")
        self.until_on_disk("changed.txt", "not yet on the disk\n")
        self.keys("ctrl+2")
        self.until_tab("caret.txt")
        self.type("|")
        self.keys("ctrl+s")
        self.until_on_disk("caret.txt", "first\nse|cond\n")
        self.keys("ctrl+3")
        self.until_tab("Untitled*")
        self.keys("ctrl+s")
        self.until_other_window(window)
        self.type("named.txt")
        self.keys("Return")
        self.until_on_disk("named.txt", "in no file")
        self.until_tab("named.txt")
        self.quit()

    def quit(self):
        self.keys("ctrl+q")
        expect((self.exit_code(), self.complaints()), (0, ""), "how it ended and what it complained of")

    # The ways to leave

    def quit_soon(self):
        self.type(" file")
        self.quit()

    def be_killed(self):
        """What was typed last is not in a draft yet."""
        self.type(" file")
        self.started.kill()
        self.exit_code()

    def log_out(self):
        self.type(" file")
        self.started.terminate()
        expect((self.exit_code(), self.complaints()), (0, ""), "how it ended and what it complained of")


def homes(users):
    """What is in the users' files and in what the program keeps for them."""
    return {file: file.read_bytes() for user in users for folder in ("files", "home", "config", "data", "state", "cache")
            for file in (user.path / folder).rglob("*") if file.is_file()}


def upgrade(root, old, new, pictures):
    with contextlib.ExitStack() as stack:
        root.install(old)
        tempfile.tempdir = str(root.path / "home")
        users = [stack.enter_context(User(root, leave, pictures)) for leave in (User.quit_soon, User.be_killed, User.log_out)]
        for user in users:
            user.work()
        # One of them has it running meanwhile.
        for user in users[:2]:
            user.leave(user)
        root.install(new)
        users[2].leave(users[2])
        for user in users:
            user.go_on()
        before = homes(users)
        root.dpkg("--purge", NAME)
        expect(root.files(), set(), "what is left of it")
        expect(homes(users) == before, True, "whether the homes are as before")


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("old", type=pathlib.Path)
    parser.add_argument("new", type=pathlib.Path)
    parser.add_argument("--pictures", type=pathlib.Path, help="takes pictures of the screen into this folder")
    arguments = parser.parse_args()
    need(TOOLS | {"dpkg-deb": "dpkg"})
    with tempfile.TemporaryDirectory(prefix="quillet-root-") as folder:
        upgrade(Root(pathlib.Path(folder)), arguments.old.resolve(), arguments.new.resolve(), arguments.pictures)


if __name__ == "__main__":
    main()
