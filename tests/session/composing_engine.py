# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""An input method for tests: letters are composed, Space makes them a text of another script, Escape gives them up.
Usage: composing_engine.py [--ignores-escape], in the environment of an ibus-daemon; says "ready" when it is on. With the
option the program gets Escape itself, and has to give up what is composed."""
import sys

import gi

gi.require_version("IBus", "1.0")
from gi.repository import GLib, IBus  # noqa: E402

NAME = "quillet-test"
WORDS = {"nihon": "日本", "w": "b"}
IGNORES_ESCAPE = "--ignores-escape" in sys.argv


class Engine(IBus.Engine):
    __gtype_name__ = "ComposingEngine"

    def __init__(self, connection, path):
        super().__init__(connection=connection, object_path=path, engine_name=NAME)
        self.letters = ""

    def show(self, letters):
        self.letters = letters
        text = IBus.Text.new_from_string(letters)
        attributes = IBus.AttrList()
        attributes.append(IBus.Attribute.new(IBus.AttrType.UNDERLINE, IBus.AttrUnderline.SINGLE, 0, len(letters)))
        text.set_attributes(attributes)
        self.update_preedit_text(text, len(letters), bool(letters))

    def do_process_key_event(self, symbol, code, state):
        if state & (IBus.ModifierType.RELEASE_MASK | IBus.ModifierType.CONTROL_MASK | IBus.ModifierType.MOD1_MASK):
            return False
        if ord("a") <= symbol <= ord("z"):
            self.show(self.letters + chr(symbol))
            return True
        if not self.letters:
            return False
        if symbol == IBus.KEY_space:
            letters = self.letters
            self.show("")
            self.commit_text(IBus.Text.new_from_string(WORDS.get(letters, letters)))
            return True
        if symbol == IBus.KEY_Escape and not IGNORES_ESCAPE:
            self.show("")
            return True
        return False

    def do_reset(self):
        self.show("")

    def do_focus_out(self):
        self.show("")


def main():
    IBus.init()
    bus = IBus.Bus()
    factory = IBus.Factory.new(bus.get_connection())
    made = []

    def make(_factory, _name):
        made.append(Engine(bus.get_connection(), f"/org/freedesktop/IBus/Engine/Composing/{len(made)}"))
        return made[-1]

    factory.connect("create-engine", make)
    component = IBus.Component.new("org.quillet.ComposingEngine", "For tests", "1", "MIT", "", "", "", "")
    component.add_engine(IBus.EngineDesc.new(NAME, NAME, "For tests", "ja", "MIT", "", "", "us"))
    bus.register_component(component)
    bus.request_name("org.quillet.ComposingEngine", 0)
    loop = GLib.MainLoop()
    bus.connect("disconnected", lambda *_: loop.quit())

    def on(_bus, result):
        print("ready" if bus.set_global_engine_async_finish(result) else "failed", flush=True)

    GLib.idle_add(lambda: bus.set_global_engine_async(NAME, -1, None, on) and False)
    loop.run()


main()
