#!/usr/bin/env python3
"""Runs clang-tidy over the sources of a build tree and compiles headers by themselves.

Usage: check_sources.py (tidy|headers) BUILD_TREE JOBS FILE…

Reads BUILD_TREE/compile_commands.json, which has to come from a build without precompiled headers.
Prints what was found and exits with 1 if that is anything. A source that passed is noted in the
user's cache under a hash of all that the result depends on within the project, and is passed over
until that changes.
"""

import concurrent.futures
import functools
import hashlib
import json
import os
import re
import shlex
import subprocess
import sys
from pathlib import Path

INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)
CACHE = Path(os.environ.get("XDG_CACHE_HOME") or Path.home() / ".cache") / "zelvaro" / "lint"


@functools.cache
def includes(file):
    """The files that a file includes by a name in quotes, as they are written."""
    return INCLUDE.findall(Path(file).read_text(errors="replace"))


def compile_commands(tree):
    """The compiler's arguments by source file, relative to the top of the project."""
    commands = {}
    for entry in json.loads((tree / "compile_commands.json").read_text()):
        file = os.path.relpath(entry["file"])
        if not file.startswith((".", "build/")):
            commands.setdefault(file, shlex.split(entry["command"]))
    return commands


def closure(file, seen):
    """The file and the headers of the project that it includes, directly or not."""
    if file in seen or not os.path.isfile(file):
        return seen
    seen.add(file)
    for included in includes(file):
        closure(included, seen)
        closure(os.path.normpath(os.path.join(os.path.dirname(file), included)), seen)
    return seen


def generate(folder, sources):
    """Makes what the sources include of uic and moc."""
    folder.mkdir(parents=True, exist_ok=True)
    steps = []
    forms = subprocess.run(["git", "ls-files", "*.ui"], check=True, capture_output=True, text=True)
    for form in forms.stdout.split():
        steps.append((form, f"ui_{Path(form).stem}.h", ["uic"]))
    for source in sources:
        for name in includes(source):
            if name.endswith(".moc"):
                steps.append((source, name, ["moc", "-I."]))
    for origin, name, command in steps:
        made = folder / name
        if not made.exists() or made.stat().st_mtime < os.stat(origin).st_mtime:
            subprocess.run([*command, origin, "-o", str(made)], check=True)


def configurations(file):
    """The .clang-tidy files that apply to the file."""
    return [p / ".clang-tidy" for p in Path(file).parents if (p / ".clang-tidy").is_file()]


class Checker:
    def __init__(self, kind, tree):
        self.kind = kind
        self.tree = tree
        self.commands = compile_commands(tree)
        self.generated = f"-I{tree.resolve()}/generated"
        generate(tree / "generated", self.commands)
        self.version = subprocess.run(
            ["clang-tidy", "--version"], check=True, capture_output=True
        ).stdout

    def key(self, file, flags):
        digest = hashlib.sha256(self.version + self.kind.encode() + shlex.join(flags).encode())
        for part in sorted(closure(file, set())) + configurations(file):
            digest.update(str(part).encode() + b"\0" + Path(part).read_bytes())
        return digest.hexdigest()

    def flags_of_user(self, header):
        """What a header is compiled with: as the first source that includes it, directly or not."""
        for source, flags in self.commands.items():
            if source.endswith(".cpp") and header in closure(source, set()):
                return flags
        return None

    def check_source(self, file):
        flags = self.commands[file]
        note = CACHE / self.key(file, flags)
        if note.exists():
            return None
        # The names of the C sources are C's.
        checks = ["--checks=-readability-identifier-naming"] if file.endswith(".c") else []
        result = subprocess.run(
            ["clang-tidy", "-p", str(self.tree), "--quiet", *checks,
             f"--extra-arg={self.generated}", "--extra-arg=-Wno-unknown-warning-option", file],
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace",
        )
        return self.conclude(note, result)

    def check_header(self, file):
        command = self.flags_of_user(file)
        if command is None:
            return f"{file}: no source includes this header\n"
        flags = self.include_flags(command)
        note = CACHE / self.key(file, flags)
        if note.exists():
            return None
        result = subprocess.run(
            ["g++", *flags, self.generated, "-fPIC", "-fsyntax-only", "-Wall", "-x", "c++", "-"],
            input=f'#include "{file}"\n', stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace",
        )
        return self.conclude(note, result)

    @staticmethod
    def include_flags(command):
        flags, words = [], iter(command)
        for word in words:
            if word in ("-isystem", "-include"):
                flags += [word, next(words)]
            elif word.startswith(("-I", "-D", "-std=")):
                flags.append(word)
        return flags

    @staticmethod
    def conclude(note, result):
        if result.returncode == 0:
            note.touch()
            return None
        # How often each header's finding was seen and silenced is no news.
        return re.sub(r"(?m)^\d+ (warnings?|errors?).*(generated|treated as errors)\.?\n", "", result.stdout)

    def includes_itself_first(self, header):
        """Whether the header's own source has it as its first include: then that one checks it."""
        for ending in (".cpp", ".c"):
            source = os.path.splitext(header)[0] + ending
            if source in self.commands:
                return includes(source)[:1] == [header]
        return False


def main():
    kind, tree, jobs, files = sys.argv[1], Path(sys.argv[2]), int(sys.argv[3]), sys.argv[4:]
    CACHE.mkdir(parents=True, exist_ok=True)
    checker = Checker(kind, tree)
    if kind == "tidy":
        work, check = [f for f in files if f in checker.commands], checker.check_source
        for file in files:
            if file not in checker.commands and file.endswith((".cpp", ".c")):
                print(f"{file}: no target compiles this source")
                work.append(None)
        if None in work:
            return 1
    else:
        work = [f for f in files if not checker.includes_itself_first(f)]
        check = checker.check_header
    failed = 0
    # One line of a header is reported by each source that includes it.
    printed = set()
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        for findings in pool.map(check, work):
            if findings is not None:
                failed += 1
                if findings not in printed:
                    printed.add(findings)
                    print(findings, flush=True)
    print(f"{len(work) - failed} of {len(work)} files passed", file=sys.stderr)
    return 1 if failed else 0


sys.exit(main())
