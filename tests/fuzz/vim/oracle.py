# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""Answers to questions: what Vim makes of keys in a text, and what the exact modal editing of this program makes of them.

A question is a dictionary with "text", "caret" and "keys", as tests/Vim/VimAnswers.h has them; so are both answers. Where somebody does
not answer, because of a crash or an endless loop, the answer has an "error" and nothing else."""
import json
import os
import pathlib
import re
import shutil
import subprocess
import tempfile
import time

HERE = pathlib.Path(__file__).resolve().parent
# Seconds that one question may take, a thousand times what any needs.
PATIENCE = 5
NAMED_KEYS = {"\x7f": "<BS>", "\uf700": "<Up>", "\uf701": "<Down>", "\uf702": "<Left>", "\uf703": "<Right>", "\uf728": "<Del>",
              "\uf729": "<Home>", "\uf72b": "<End>", "\uf72c": "<PageUp>", "\uf72d": "<PageDown>"}
# As Vim keeps those of them in registers that have no character, by the names of terminals.
KEY_CODES = {"kb": "\x7f", "ku": "\uf700", "kd": "\uf701", "kl": "\uf702", "kr": "\uf703", "kD": "\uf728", "kh": "\uf729", "@7": "\uf72b",
             "kP": "\uf72c", "kN": "\uf72d"}
KEY_CODE = re.compile("\ufffd(" + "|".join(KEY_CODES) + ")")
TYPES = {"v": "characters", "V": "lines", "\x16": "block"}


def units(text):
    """The length in UTF-16 units."""
    return len(text.encode("utf-16-le")) // 2


def prefix(text, length):
    """So many UTF-16 units of `text` from its start."""
    return text.encode("utf-16-le")[:2 * length].decode("utf-16-le", "replace")


def in_notation(keys):
    """As Vim users write them: <Esc>, <CR>, <C-v>, <lt>, and blanks as <Space>."""
    names = {"\x1b": "<Esc>", "\r": "<CR>", "<": "<lt>", " ": "<Space>"} | NAMED_KEYS
    return "".join(names.get(key) or (f"<C-{chr(ord(key) + 0x40).lower()}>" if key < " " else key) for key in keys)


def asked(question):
    """A question in the form in which oracle.vim reads it, and the line end of its text."""
    text = question["text"]
    line_end = "\r\n" if "\r\n" in text else "\n"
    before = prefix(text, question["caret"]).replace("\r\n", "\n")
    line = before.split("\n")[-1]
    return {"file": text.split("\n"), "line": before.count("\n") + 1, "column": len(line.encode()) + 1, "keys": question["keys"]}, line_end


def understood(answer, line_end):
    """An answer of oracle.vim in the form of the other one's."""
    # A NUL is what Vim keeps as a line feed within a line.
    lines = [line.replace("\n", "\0") for line in answer["lines"]]

    def place(line, column):
        before = "".join(text + line_end for text in lines[:line - 1])
        last = lines[line - 1].encode()[:column - 1].decode("utf-8", "replace") if line <= len(lines) else ""
        return units(before) + units(last)

    mode = answer["mode"]
    # Within a command is normal mode, and so is where insert mode waits for one command.
    mode = "n" if mode.startswith(("no", "ni")) else mode[0]
    result = {"text": line_end.join(lines) + (line_end if answer["hasEnd"] else ""), "mode": mode, "caret": place(*answer["head"])}
    if mode == "V":
        result["anchor"] = place(answer["anchor"][0], 1)
    elif mode in "v\x16":
        result["anchor"] = place(*answer["anchor"])

    def kept(text):
        joined = "\n".join(line.replace("\n", "\0") for line in text)
        return KEY_CODE.sub(lambda code: KEY_CODES[code.group(1)], joined.replace("\ufffd\ufffda", ""))

    result["registers"] = {name: {"text": kept(text) + ("\n" if kind == "V" else ""), "type": TYPES[kind]}
                           for name, (kind, text) in answer["registers"].items() if name != "z"}
    if answer.get("isUnfinished"):
        result["isUnfinished"] = True
    return result


def ask_until_answered(questions, ask_rest):
    """Answers to all, by asking once more for what follows one that was not answered."""
    answers = []
    while len(answers) < len(questions):
        rest, error = ask_rest(questions[len(answers):])
        answers += rest
        if not rest and error.startswith("ended with 0"):
            raise SystemExit(f"Nothing was answered: {error}")
        if len(answers) < len(questions):
            answers.append({"error": error})
    return answers


def run(command, environment, stdin, stdout, answers):
    """Runs it until it ends or has not answered for too long; what went wrong, if anything."""
    with tempfile.TemporaryFile() as errors:
        process = subprocess.Popen(command, env=environment, stdin=stdin, stdout=stdout, stderr=errors, start_new_session=True)
        size, since = -1, time.monotonic()
        while process.poll() is None:
            try:
                process.wait(0.5)
            except subprocess.TimeoutExpired:
                now = answers.stat().st_size if answers.exists() else 0
                if now != size:
                    size, since = now, time.monotonic()
                elif time.monotonic() - since > PATIENCE:
                    process.kill()
                    process.wait()
                    return f"no answer in {PATIENCE} s"
        errors.seek(0)
        said = [line for line in errors.read().decode("utf-8", "replace").splitlines() if "ERROR" in line or "error" in line]
        return f"ended with {process.returncode} {said[0] if said else ''}".strip()


class Vim:
    """Vim without anybody's settings, started for a list of questions."""

    def __init__(self):
        program = shutil.which("vim.nox") or shutil.which("vim")
        if not program:
            raise SystemExit("There is no vim to compare with: install vim-nox.")
        self.command = [program, "-u", "NONE", "-i", "NONE", "-N", "-n", "-X", "--not-a-term", "-T", "dumb", "-S", str(HERE / "oracle.vim")]

    def _ask(self, questions):
        # It asks the terminal for keys that interrupt it; at one where nobody types there are none.
        master, slave = os.openpty()
        try:
            with tempfile.TemporaryDirectory() as name:
                folder = pathlib.Path(name)
                forms = [asked(question) for question in questions]
                (folder / "questions").write_text("".join(json.dumps(form) + "\n" for form, _ in forms), encoding="utf-8")
                answers = folder / "answers"
                environment = {"PATH": os.environ["PATH"], "HOME": name, "LC_ALL": "C.UTF-8", "TERM": "dumb",
                               "ORACLE_QUESTIONS": str(folder / "questions"), "ORACLE_ANSWERS": str(answers)}
                error = run(self.command, environment, slave, subprocess.DEVNULL, answers)
                lines = answers.read_text(encoding="utf-8").split("\n")[:-1] if answers.exists() else []
        finally:
            os.close(master)
            os.close(slave)
        return [understood(json.loads(line), line_end) for line, (_, line_end) in zip(lines, forms)], error

    def answers(self, questions):
        return ask_until_answered(questions, self._ask)


class Quillet:
    """The exact modal editing of this program, by the program vim-answers."""

    def __init__(self, program):
        self.program = str(program)

    def _ask(self, questions):
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name)
            (folder / "questions").write_text("".join(json.dumps(question) + "\n" for question in questions), encoding="utf-8")
            answers = folder / "answers"
            with open(folder / "questions", "rb") as stdin, open(answers, "wb") as stdout:
                error = run([self.program], os.environ | {"LC_ALL": "C.UTF-8", "HOME": name}, stdin, stdout, answers)
            lines = answers.read_text(encoding="utf-8").split("\n")[:-1]
        return [json.loads(line) for line in lines], error

    def answers(self, questions):
        return ask_until_answered(questions, self._ask)
