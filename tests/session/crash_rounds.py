#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""Works at random, in two programs at times, kills them at bad moments, also when they start or end, and looks what comes back: nothing
that was kept may be lost, and nothing else come. Usage: crash_rounds.py PROGRAM [--rounds N] [--seed S] [--keep]"""
import argparse
import collections
import random
import sys

from desktop import until
from driven_program import Driven, Home

SETTINGS = "session.autosaveInterval=0.5\n"
# No blanks: the editor would begin the next line with those of the line before.
LETTERS = "abcdefghijklmnopqrstuvwxyz0123456789_-.äß€"


class Loss(Exception):
    pass


def require(condition, what):
    if not condition:
        raise Loss(what)


def shortened(text):
    text = repr(text)
    return text if len(text) <= 80 else text[:50] + "…" + text[-25:]


class State:
    """What the program shows. The session is that of the window in front, at the end that of the last one."""

    def __init__(self, answer):
        self.windows = answer["windows"]
        self.number = answer["front"]
        self.front = self.windows[self.number]
        self.question = answer.get("question")
        self.texts = {}
        for window in self.windows:
            self.texts.update(window["texts"])

    def current(self):
        """Id and text of the tab in front."""
        return self.front["current"], self.texts[self.front["current"]]

    def may_close_window(self):
        """Without a question."""
        texts = self.front["texts"].values()
        return len(self.windows) > 1 and not any(text["isUnsaved"] or text["isDirty"] for text in texts)

    def comes_back(self, identity):
        """All do but empty ones without a file."""
        return bool(self.texts[identity]["path"] or self.texts[identity]["text"])

    def in_session(self, number):
        """The texts of that window, and those that others have not saved."""
        window = self.windows[number]
        return {identity: text for identity, text in self.texts.items() if identity in window["texts"] or text["isUnsaved"]}

    def wanted(self, number=0):
        """With that window as the session, path and text of what has to come back, and whether the text is in no file."""
        return {identity: (text["path"], text["text"], text["isUnsaved"]) for identity, text in self.in_session(number).items()
                if self.comes_back(identity)}


class Disk:
    """What lies there when nothing runs."""

    def __init__(self, home):
        self.session = home.session()
        self.drafts = home.drafts()
        self.files = home.file_texts()

    def wanted(self):
        """What has to come back from it, as of a state."""
        texts = {}
        entries = self.session["documents"] if self.session else []
        named = {entry.get("draftFilename") for entry in entries}
        for entry in entries:
            own = entry["id"] + ".draft"
            name = entry.get("draftFilename") or (own if own not in named else None)
            path = entry.get("filePath", "")
            if name in self.drafts:
                texts[entry["id"].lower()] = (path, self.drafts[name], True)
                named.add(name)
            elif path in self.files:
                texts[entry["id"].lower()] = (path, self.files[path], False)
        for name, text in self.drafts.items():
            if name not in named and text:
                texts[name.removesuffix(".draft").lower()] = ("", text, True)
        return texts

    def holds(self, state):
        """Everything that was typed."""
        entries = {entry["id"].lower(): entry for entry in self.session["documents"]} if self.session else {}
        texts = state.in_session(state.number)
        drafts = {entry["draftFilename"] for entry in entries.values() if "draftFilename" in entry}
        if (entries.keys(), drafts) != (texts.keys(), self.drafts.keys()):
            return False
        for identity, text in texts.items():
            entry = entries[identity]
            kept = self.drafts[entry["draftFilename"]] if "draftFilename" in entry else self.files.get(text["path"], "")
            if (kept, entry.get("filePath", "")) != (text["text"], text["path"]):
                return False
        return True


class Rounds:
    def __init__(self, program, seed):
        self.program = program
        self.random = random.Random(seed)
        self.home = Home(SETTINGS)
        self.driven = None
        for name, lines in (("short.txt", 3), ("long.txt", 300), ("longer.txt", 900)):
            (self.home.files / name).write_text("".join(f"line-{line}-of-{name}\n" for line in range(lines)))
        self.openable = [str(file) for file in self.home.files.iterdir()]
        # Every version of each text, by its id, and its file; as indexes, the latest that is on disk for certain and the one saved last.
        self.versions = collections.defaultdict(list)
        self.paths = {}
        self.certain = {}
        # Of those, what is in no file.
        self.unsaved = set()
        self.saved = {}
        self.dismissed = set()
        # What has to come back, as of a state, and whether nothing else may.
        self.wanted = {}
        self.is_all = False
        # A second program, all that such ones had, and what those that have ended left: path and version by id.
        self.guest = None
        self.of_guests = set()
        self.left = {}

    # What is known of the texts

    def note(self, state):
        for identity, text in state.texts.items():
            self.paths[identity] = text["path"]
            if not self.versions[identity] or self.versions[identity][-1] != text["text"]:
                self.versions[identity].append(text["text"])

    def version(self, identity, text):
        """-1 when it was never typed."""
        versions = self.versions.get(identity, [])
        return max((index for index, version in enumerate(versions) if version == text), default=-1)

    def note_certain(self, state, window=0):
        self.certain = {identity: self.version(identity, text["text"]) for identity, text in state.in_session(window).items()
                        if state.comes_back(identity)}
        self.unsaved = {identity for identity in self.certain if state.texts[identity]["isUnsaved"]}

    # Working

    def state(self):
        state = State(self.driven.ask("state"))
        self.note(state)
        for identity in list(self.certain):
            # Closed by the user, who was asked; or a file that another window's session does not have.
            if identity not in state.texts or (len(state.windows) > 1 and not state.texts[identity]["isUnsaved"]):
                del self.certain[identity]
            elif not state.texts[identity]["isUnsaved"]:
                self.unsaved.discard(identity)
        return state

    def typing(self, state=None):
        """The command; what the text is like between the keys is noted."""
        lines = ("".join(self.random.choices(LETTERS, k=self.random.randint(1, 12))) for _ in range(self.random.randint(1, 8)))
        keys = "\n".join(lines)
        state = state or self.state()
        identity, text = state.current()
        location, length = state.front["range"]
        units = text["text"].encode("utf-16-le")
        before, after = units[:2 * location].decode("utf-16-le"), units[2 * (location + length):].decode("utf-16-le")
        self.versions[identity] += [before + keys[:count] + after for count in range(1, len(keys) + 1)]
        return "type " + keys.replace("\n", "\\n")

    # A second program

    def guest_state(self):
        state = State(self.guest.ask("state"))
        self.note(state)
        self.of_guests |= state.texts.keys()
        return state

    def start_guest(self):
        self.guest = Driven(self.program, self.home)
        until("the second program to say that it is one", lambda: self.guest_state().question)
        self.guest.ask("answer OK")

    def guest_step(self):
        ask, choices = self.guest.ask, self.random.choice
        choices((lambda: ask(self.typing(self.guest_state())), lambda: ask(self.typing(self.guest_state())), lambda: ask("do newDocument:"),
                 lambda: ask(f"open {choices(self.openable)}"), lambda: ask("do undo:"), self.guest_save))()

    def guest_save(self):
        if self.guest_state().current()[1]["path"]:
            self.guest.ask("do saveDocument:")

    def end_guest(self):
        if self.random.random() < 0.7:
            self.guest.ask(self.typing(self.guest_state()))
        state = self.guest_state()
        self.guest.rest()
        self.left |= {identity: (text["path"], self.version(identity, text["text"])) for identity, text in state.texts.items()
                      if text["isUnsaved"]}
        if self.random.random() < 0.3:
            require((code := self.guest.terminate()) == 0, f"exit code {code} of the second program")
        else:
            if self.random.random() < 0.5:
                self.guest.send(self.typing(state))
                self.look_on(1000)
            self.guest.freeze()
            self.guest.kill()
        self.guest = None

    def saving(self):
        identity, text = self.state().current()
        self.saved[identity] = self.version(identity, text["text"])
        return "do saveDocument:"

    def save(self):
        self.driven.ask(self.saving())
        if "question" in self.driven.ask("state"):
            self.driven.ask(f"answer {self.home.files / str(self.random.random())}.txt")

    def close(self):
        self.driven.ask("do closeTab:")
        state = State(self.driven.ask("state"))
        if state.question:
            answer = self.random.choice(("Don’t Save", "Don’t Save", "Cancel"))
            self.driven.ask(f"answer {answer}")

    def step(self):
        ask, before = self.driven.ask, self.state()
        keys = self.random.choice(("Ctrl+Home", "Ctrl+End", "PgDown", "PgUp", "Down", "Right", "Shift+Right", "Shift+Down", "End"))
        split = self.random.choice(("splitEditorRight:", "splitEditorDown:", "closeSplit:", "toggleSplitOrientation:", "focusNextPane:"))
        tab = self.random.choice(("selectNextTab:", "selectPreviousTab:"))
        steps = ((30, lambda: ask(self.typing())), (6, lambda: ask("do newDocument:")),
                 (5, lambda: ask(f"open {self.random.choice(self.openable)}")), (14, lambda: ask(f"keys {keys}")),
                 (8, lambda: ask(f"do {split}")), (8, lambda: ask(f"do {tab}")), (8, lambda: ask("do undo:")), (3, lambda: ask("do redo:")),
                 (8, self.save), (8 + 4 * max(0, before.front["tabCount"] - 6), self.close), (2, self.settle),
                 (5 if len(before.windows) < 3 else 0, lambda: ask("do newWindow:")),
                 (8 if len(before.windows) > 1 else 0, lambda: ask(f"front {self.random.randrange(len(before.windows))}")),
                 (10 if before.may_close_window() else 0, lambda: ask("do performClose:")))
        self.random.choices([step for _, step in steps], [weight for weight, _ in steps])[0]()
        state = self.state()
        require(not state.question, f"the program asks: {state.question}")
        return state

    # Ways to end

    def settle(self):
        """Waits until the disk holds everything."""
        def settled():
            state = self.state()
            return state if Disk(self.home).holds(state) else None
        state = until("what was typed to be written", settled)
        self.note_certain(state, state.number)
        return state

    def kill_settled(self):
        state = self.settle()
        self.driven.kill()
        self.wanted, self.is_all = state.wanted(state.number), True

    def terminate(self):
        state = self.state()
        require((code := self.driven.terminate()) == 0, f"exit code {code} when told to end")
        self.note_certain(state, -1)
        self.wanted, self.is_all = state.wanted(-1), True

    def look_on(self, most):
        """For a moment, which is longer where everything takes longer."""
        for _ in range(int(self.random.random() ** 2 * most)):
            self.home.trace()

    def kill_typing(self):
        self.driven.send(self.typing())
        self.look_on(3000)
        self.kill()

    def kill_saving(self):
        _, text = self.state().current()
        if not text["path"]:
            self.save()
            self.state()
        self.driven.ask(self.typing())
        self.state()
        if self.random.random() < 0.5:
            self.look_on(2000)
        self.driven.send(self.saving())
        self.look_on(100)
        self.kill()

    def kill_at_tick(self):
        trace = self.home.trace()
        if self.random.random() < 0.5:
            # Its draft is written before the session knows of it.
            self.driven.ask("do newDocument:")
        self.driven.ask(self.typing())
        self.state()
        until("something to be written after typing", lambda: self.home.trace() != trace)
        self.look_on(20)
        self.kill()

    def type_for_certain(self):
        self.driven.ask(self.typing())
        state = self.state()
        self.driven.rest()
        # Texts; a tab of a file waits for the tick.
        certain = {identity: self.version(identity, text["text"]) for identity, text in state.texts.items()
                   if text["isUnsaved"] and text["text"]}
        self.certain |= certain
        self.unsaved |= certain.keys()

    def kill_soon_after_typing(self):
        """Before the next tick, or at it."""
        self.type_for_certain()
        self.kill()

    def kill_quitting(self):
        """On its way to the end, or when it is there."""
        if self.random.random() < 0.5:
            self.type_for_certain()
        else:
            self.state()
        if self.random.random() < 0.5:
            self.driven.send("do terminate:")
        else:
            self.driven.process.terminate()
        self.look_on(1000)
        self.kill()

    def kill_starting(self):
        """Before it has brought back what has to come, or soon after: that is as it was."""
        self.driven = Driven(self.program, self.home)
        self.look_on(6000)
        self.driven.freeze()
        self.driven.kill()

    def kill(self):
        self.driven.freeze()
        self.wanted, self.is_all = Disk(self.home).wanted(), False
        self.driven.kill()

    # What comes back

    def is_back(self, found, identity, path, index):
        """That version or a later one, in whatever tab, or what was typed into a text that another program wrote."""
        return any(self.version(identity, text["text"]) >= index or (text["isOfInsertions"] and text["origin"] == path)
                   for text in found.texts.values())

    def check(self, found):
        paths = {text["path"] for text in found.texts.values()}
        for identity, (path, text, is_unsaved) in self.wanted.items():
            got = found.texts.get(identity)
            same = got and (got["path"], got["text"]) == (path, text)
            # What was typed since the draft was written is in the journal.
            is_later = got and not self.is_all and self.version(identity, got["text"]) > self.version(identity, text)
            # The tab of a file has what a second program wrote or left; a text that it had may be in another.
            is_elsewhere = self.is_back(found, identity, path, self.version(identity, text)) if is_unsaved else path in paths
            require(same or is_later or is_elsewhere, f"on disk, not back: {shortened(text)} {path}")
        for identity, (path, index) in self.left.items():
            require(self.is_back(found, identity, path, index), f"lost of a second program: {shortened(self.versions[identity][index])} {path}")
        more = {identity for identity in found.wanted() if not found.texts[identity]["isOfInsertions"]} - self.wanted.keys() - self.of_guests
        require(not self.is_all or not more, f"came back without being kept: {more} {found.texts}")
        files = self.home.file_texts()
        for identity, index in self.certain.items():
            is_tab = identity not in self.unsaved and (identity in found.texts or self.paths[identity] in paths)
            require(is_tab or self.is_back(found, identity, self.paths[identity], index), f"lost: {shortened(self.versions[identity][index])}")
        for identity, text in found.texts.items():
            if not found.comes_back(identity):
                continue
            in_file = files.get(text["path"])
            if text["isOfInsertions"]:
                require(all(any(line in version for versions in self.versions.values() for version in versions)
                            for line in text["text"].splitlines()), f"never typed: {shortened(text['text'])}")
                continue
            version = self.version(identity, text["text"])
            require(identity not in self.dismissed, f"dismissed, but back: {shortened(text['text'])}")
            if version < 0 and text["text"] == in_file:
                # Typed into another tab of the file, which was closed or is not in the session yet, or by another program.
                require(any(in_file in versions for versions in self.versions.values()), f"not of this file: {shortened(in_file)}")
            else:
                require(version >= 0, f"never typed: {shortened(text['text'])}")
                require(version >= self.certain.get(identity, 0), f"older than what was kept: {shortened(text['text'])}")
                # Killed when the file was saved and the draft not deleted yet; the user is told that they differ.
                saved = self.saved.get(identity, -1)
                is_older = version < saved and in_file == self.versions[identity][saved]
                require(not is_older or text["isConflicted"], f"older than its file: {shortened(text['text'])} {text['path']}")
            require(text["isUnsaved"] or in_file == text["text"], f"counts as saved, but is not: {shortened(text['text'])}")

    def start(self):
        """Checks what came back; views need a moment until they are where they were."""
        self.driven = Driven(self.program, self.home)
        problem = None

        def checked():
            nonlocal problem
            state = State(self.driven.ask("state"))
            try:
                require(not state.question, f"the program asks: {state.question}")
                self.check(state)
                return state
            except Loss as loss:
                problem = loss
                return None
        state = until("all to be back", checked, lambda: f": {problem}")
        self.note(state)
        self.note_certain(state)
        self.left.clear()
        return state

    def round(self):
        """Answers with how it ended."""
        gone = set()
        starts = 0
        while self.home.data.exists() and self.random.random() < 0.2:
            self.kill_starting()
            starts += 1
        state = self.start()
        if not self.guest and self.random.random() < 0.4:
            self.start_guest()
        for _ in range(self.random.randint(1, 10)):
            before = state
            if self.guest and self.random.random() < 0.5:
                self.guest_step()
            state = self.step()
            gone |= before.texts.keys() - state.texts.keys()
            if self.random.random() < 0.05:
                self.settle()
                self.dismissed |= gone - state.texts.keys()
        end = self.random.choice((self.kill_settled, self.kill_settled, self.terminate, self.kill_typing,
                                  self.kill_soon_after_typing, self.kill_soon_after_typing, self.kill_saving, self.kill_at_tick,
                                  self.kill_at_tick, self.kill_quitting, self.kill_quitting))
        # A second program ends before the first one, after it, or works on beside the next one.
        ends_guest = self.guest and self.random.random() < 0.7
        is_first = self.random.random() < 0.5
        if ends_guest and is_first:
            self.end_guest()
        end()
        if ends_guest and not is_first:
            self.end_guest()
        if end in (self.kill_settled, self.terminate):
            self.dismissed |= gone - state.texts.keys()
        complaints = self.home.complaints()
        require(not complaints, f"the program complains: {complaints[:3]}")
        return {end.__name__: 1, "kill_starting": starts, "end_guest": int(bool(ends_guest))}

    def end(self):
        for program in filter(None, (self.driven, self.guest)):
            program.kill()


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("program")
    parser.add_argument("--rounds", type=int, default=100)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--keep", action="store_true", help="the folders of a loss stay")
    arguments = parser.parse_args()
    losses = 0
    ends = collections.Counter()
    rounds = Rounds(arguments.program, arguments.seed)
    for number in range(1, arguments.rounds + 1):
        try:
            ends.update(rounds.round())
            if number == arguments.rounds:
                rounds.start()
        except (Loss, AssertionError, RuntimeError, BrokenPipeError) as problem:
            losses += 1
            place = f" ({rounds.home.path})" if arguments.keep else ""
            print(f"seed {arguments.seed}, round {number}: {problem}{place}", file=sys.stderr)
            rounds.end()
            rounds.home.remove(keep=arguments.keep)
            # Anew: what follows from a loss is none.
            rounds = Rounds(arguments.program, f"{arguments.seed}/{number}")
    rounds.end()
    rounds.home.remove()
    print(", ".join(f"{count} {name}" for name, count in sorted(ends.items())))
    print(f"{arguments.rounds} rounds, {losses} losses")
    return 1 if losses else 0


if __name__ == "__main__":
    sys.exit(main())
