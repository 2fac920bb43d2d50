# SPDX-FileCopyrightText: 2026 The Quillet authors
# SPDX-License-Identifier: MIT
"""The inspection tool in a world of its own. Usage of each test: TEST PROGRAM"""
import json
import pathlib
import subprocess
import sys
import tempfile

sys.path.append(str(pathlib.Path(__file__).resolve().parents[1]))
from world import make_world, need  # noqa: E402, F401

PROGRAM = sys.argv.pop(1)
ROOT = pathlib.Path(__file__).resolve().parents[2]
FOLDER = tempfile.TemporaryDirectory()
PATH = pathlib.Path(FOLDER.name)
ENVIRONMENT = make_world(PATH) | {"TMPDIR": str(PATH / "run")}
FILES = PATH / "files"


def run(*arguments, stdin=b""):
    return subprocess.run([PROGRAM, *map(str, arguments)], input=stdin, env=ENVIRONMENT, capture_output=True, timeout=300)


def ask(*arguments, status=0, stdin=b""):
    done = run(*arguments, stdin=stdin)
    assert done.returncode == status, (arguments, done)
    answer = json.loads(done.stdout.decode("utf-8"))
    assert ("error" in answer) == (status == 1), answer
    return answer
