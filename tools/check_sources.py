#!/usr/bin/env python3
"""Runs clang-tidy over the sources of a build tree and compiles headers by themselves.

Usage: check_sources.py (tidy|headers) BUILD_TREE JOBS FILE…

Reads BUILD_TREE/compile_commands.json, which has to come from a build without precompiled headers.
Prints what was found and exits with 1 if that is anything. A source that passed is noted in the
user's cache under a hash of all that the result depends on within the project, and is passed over
until that changes.

Most of what clang-tidy does for a source goes into the system headers, so that sources which are
compiled alike are checked as one translation unit. A unit in which something is found, or whose
sources clash, is checked again by halves, so that each finding is told of its source alone.
"""

import collections
import concurrent.futures
import functools
import hashlib
import json
import os
import re
import shlex
import shutil
import subprocess
import sys
import types
from pathlib import Path

INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)
# A definition at the start of a line, and what it names.
DEFINITION = re.compile(
    r"^(?!\s|using namespace|namespace|(?:class|struct) \w+;|#)"
    r"(?:(?:class|struct|enum class|enum) (\w+)|(?:[\w:<>,&*\[\] ]*[\s&*>])?(\w+)\s*(?:[(={;]|$))",
    re.MULTILINE,
)
UNNAMED_NAMESPACE = re.compile(r"^namespace \{\n(.*?)(?:^\} // namespace$|\Z)", re.MULTILINE | re.DOTALL)
MAIN = re.compile(r"^(QTEST_\w*MAIN|int main)\(", re.MULTILINE)
MACROS = {"TEST", "TEST_F", "TEST_P", "INSTANTIATE_TEST_SUITE_P", "QTEST_MAIN"}
# Sources in one translation unit: more save little, and a finding costs more.
UNIT_SIZE = 12
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


def definitions(text):
    return {name or other for name, other in DEFINITION.findall(text)} - MACROS


@functools.cache
def names_of_header(header):
    return definitions(Path(header).read_text(errors="replace"))


def private_names(file):
    """What the source defines for itself alone, as far as a look at its lines tells."""
    parts = UNNAMED_NAMESPACE.findall(Path(file).read_text(errors="replace"))
    return set().union(*(definitions(part) for part in parts))


def names_of_headers(file):
    """What the headers that the source includes define outside the namespaces of the program."""
    headers = (h for h in closure(file, set()) - {file} if h.startswith(("tests/", "bench/")))
    return set().union(*map(names_of_header, headers))


def include_flags(command):
    flags, words = [], iter(command)
    for word in words:
        if word in ("-isystem", "-include"):
            flags.append((word, next(words)))
        elif word.startswith(("-I", "-D", "-std=")):
            flags.append((word,))
    return flags


def definitions_of_flags(command):
    """The macros that the compiler is given, by name."""
    return {f[0].partition("=")[0]: f[0] for f in include_flags(command) if f[0].startswith("-D")}


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
        # The names of the C sources are C's.
        checks = ["--checks=-readability-identifier-naming"] if file.endswith(".c") else []
        result = self.tidy(
            "-p", str(self.tree), *checks, f"--extra-arg={self.generated}",
            "--extra-arg=-Wno-unknown-warning-option", file,
        )
        return self.conclude(CACHE / self.key(file, flags), result)

    @staticmethod
    def tidy(*arguments):
        return subprocess.run(
            ["clang-tidy", "--quiet", *arguments],
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace",
        )

    def units(self, files):
        """The sources in groups that can be checked as one translation unit each."""
        groups = collections.defaultdict(list)
        for file in files:
            if file.endswith(".c"):
                groups[file].append(types.SimpleNamespace(files=[file]))
                continue
            own, shared = private_names(file), names_of_headers(file)
            defines = definitions_of_flags(self.commands[file])
            # The macros of Xlib (None, Bool) and of Qt (signals, slots) break what comes after them.
            with_xlib = any("<X11/" in Path(f).read_text(errors="replace") for f in closure(file, set()))
            units = groups[tuple(configurations(file)), with_xlib, "-DQT_CORE_LIB" in defines]
            for unit in units:
                clash = unit.own & (own | shared) | unit.shared & own
                clash = clash or any(unit.defines.get(name, value) != value for name, value in defines.items())
                if len(unit.files) < UNIT_SIZE and not clash:
                    break
            else:
                unit = types.SimpleNamespace(files=[], own=set(), shared=set(), defines={})
                units.append(unit)
            unit.files.append(file)
            unit.own |= own
            unit.shared |= shared
            unit.defines |= defines
        return [unit.files for units in groups.values() for unit in units]

    def check_unit(self, files):
        """What is found in the sources: a text or None for each."""
        if len(files) == 1:
            return [self.check_source(files[0])]
        flags = dict.fromkeys(flag for file in files for flag in include_flags(self.commands[file]))
        # Below copies of the configurations that the sources have.
        folder = self.tree / "units" / configurations(files[0])[0].parent
        folder.mkdir(parents=True, exist_ok=True)
        if folder != self.tree / "units":
            shutil.copy(configurations(files[0])[0], folder)
        unit = folder / (hashlib.sha256("\n".join(files).encode()).hexdigest() + ".cpp")
        with unit.open("w") as text:
            for number, file in enumerate(files):
                # Each test is a program.
                has_main = MAIN.search(Path(file).read_text(errors="replace"))
                text.write(f"#define main main_{number}\n" if has_main else "")
                text.write(f'#include "{os.path.abspath(file)}"\n')
                text.write("#undef main\n" if has_main else "")
        result = self.tidy(
            str(unit), "--",
            *(word for flag in flags for word in flag), self.generated, "-I.", "-ferror-limit=1",
            "-Wno-unknown-warning-option",
        )
        if result.returncode != 0:
            half = len(files) // 2
            return self.check_unit(files[:half]) + self.check_unit(files[half:])
        return [self.conclude(CACHE / self.key(file, self.commands[file]), result) for file in files]

    def check_sources(self, jobs, files):
        files = [f for f in files if not (CACHE / self.key(f, self.commands[f])).exists()]
        for findings in jobs.map(self.check_unit, self.units(files)):
            yield from findings

    def check_header(self, file):
        command = self.flags_of_user(file)
        if command is None:
            return f"{file}: no source includes this header\n"
        flags = [word for flag in include_flags(command) for word in flag]
        note = CACHE / self.key(file, flags)
        if note.exists():
            return None
        result = subprocess.run(
            ["g++", *flags, self.generated, "-fPIC", "-fsyntax-only", "-Wall", "-x", "c++", "-"],
            input=f'#include "{file}"\n', stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace",
        )
        return self.conclude(note, result)

    def check_headers(self, jobs, files):
        return jobs.map(self.check_header, files)

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
        work, check = files, checker.check_sources
        unknown = [f for f in files if f not in checker.commands]
        for file in unknown:
            print(f"{file}: no target compiles this source")
        if unknown:
            return 1
    else:
        work = [f for f in files if not checker.includes_itself_first(f)]
        check = checker.check_headers
    failed = 0
    # One line of a header is reported by each source that includes it.
    printed = set()
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        for findings in check(pool, work):
            if findings is not None:
                failed += 1
                if findings not in printed:
                    printed.add(findings)
                    print(findings, flush=True)
    print(f"{len(work) - failed} of {len(work)} files passed", file=sys.stderr)
    return 1 if failed else 0


sys.exit(main())
