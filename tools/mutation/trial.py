"""Compiling a mutant, linking it into the test programs and running them.

A mutated file stands in a folder that is searched before the tree's own, so the compile commands of the build serve
as they are, and the tree and its build are never written to.
"""

import glob
import hashlib
import json
import os
import pwd
import re
import resource
import shlex
import shutil
import subprocess
import time

LONGEST_LINK = 120
MEMORY = 1 << 30
# A mutant in a program is endless when the program takes this many times its own time, and so many seconds more of
# processor or of waiting.
SLOWER = 10
GRACE_BUSY = 4
GRACE_WAITING = 25
# A mutant may do anything, so it runs as nobody, away from the tree, when it is root who asks for it.
WHOM = {"user": "nobody", "group": "nogroup", "extra_groups": []} if os.geteuid() == 0 else {}


class Unit:
    """One source of the product: how it is compiled, and what it includes."""

    def __init__(self, entry):
        words = shlex.split(entry["command"])
        if os.path.basename(words[0]) == "ccache":
            words = words[1:]
        self.source = entry["file"]
        output = words.index("-o")
        self.object = words[output + 1]
        del words[output:output + 2]
        words.remove("-c")
        words.remove(self.source)
        self.command = [w for w in words if not re.match(r"-[OgW]", w)] + ["-w"]
        self.file_name = self.object.replace("/", "_")
        self.library = re.sub(r"CMakeFiles/(\w+)\.dir/.*", r"lib\1.a", self.object)
        self.includes = set()


class Program:
    """A test program: how it is linked, which of its cases are meant, and how long they take when nothing is wrong."""

    def __init__(self, name, path, link, cases):
        self.name, self.path, self.link, self.cases = name, path, link, cases
        self.seconds = 0.0
        self.noticed = {}  # folder of the source -> how many of its mutants failed here

    def likelihood(self, source):
        own = self.name in source.split("/") or os.path.basename(source).split(".")[0].startswith(self.name)
        return (own, self.noticed.get(os.path.dirname(source), 0), -self.seconds)


class Build:
    """The scratch build that mutants are linked with."""

    def __init__(self, root, folder, programs):
        self.root, self.folder = root, folder
        self.units = self._units()
        self.programs = [self._program(name) for name in programs]

    def _units(self):
        with open(os.path.join(self.folder, "compile_commands.json"), encoding="utf-8") as file:
            units = {}
            for entry in json.load(file):
                unit = Unit(entry)
                unit.is_test = self.relative(unit.source).startswith("tests/")
                if self.relative(unit.source).split("/")[0] in ("src", "adapters", "host", "tests"):
                    units[unit.object] = unit
        listed = subprocess.run(["ninja", "-C", self.folder, "-t", "deps"], stdout=subprocess.PIPE, text=True, check=True)
        unit = None
        for line in listed.stdout.splitlines():
            if line.startswith(" "):
                if unit:
                    unit.includes.add(os.path.normpath(os.path.join(self.folder, line.strip())))
            else:
                unit = units.get(line.split(":")[0])
        return list(units.values())

    def _program(self, words):
        name, _, cases = words.partition(" ")
        target = f"{name}_test"
        listed = subprocess.run(["ninja", "-C", self.folder, "-t", "commands", target], stdout=subprocess.PIPE,
                                text=True, check=True)
        link = listed.stdout.splitlines()[-1]
        words = shlex.split(link.removeprefix(": && ").removesuffix(" && :"))
        output = words.index("-o")
        path = os.path.join(self.folder, words[output + 1])
        del words[output:output + 2]
        return Program(name, path, words, cases or "*")

    def relative(self, path):
        return os.path.relpath(path, self.root)

    def own_cases(self, path):
        """A filter for the cases that stand in the file's own test file; "" where there is none."""
        stem = os.path.splitext(os.path.basename(path))[0]
        suites = set()
        for found in glob.glob(os.path.join(self.root, "tests", "**", f"{stem}_test.cpp"), recursive=True):
            with open(found, encoding="utf-8") as file:
                suites.update(re.findall(r"^(?:TYPED_)?TEST(?:_F|_P)?\((\w+),", file.read(), re.MULTILINE))
        return ":".join(f"{suite}.*:*/{suite}.*" for suite in sorted(suites))

    def is_linked(self, program, made):
        """Whether the program has this object, of its own or of one of its libraries."""
        unit = next(u for u in self.units if u.file_name == os.path.basename(made))
        return unit.object in program.link or unit.library in program.link

    def units_of(self, path):
        """Which sources of the product have to be compiled when this file changes."""
        return [u for u in self.units if not u.is_test and (path == u.source or path in u.includes)
                and any(u.library in program.link for program in self.programs)]

    def tests_of(self, path, program):
        """Which sources of the program do: a default argument or a constant of a header is compiled into them."""
        return [u for u in self.units if path in u.includes and u.object in program.link]


class Bench:
    """Where one mutant at a time is tried."""

    def __init__(self, build, folder, linker):
        self.build, self.folder, self.linker = build, folder, linker
        self.shadow = os.path.join(folder, "tree")
        self.home = os.path.join(folder, "home")
        os.makedirs(self.shadow, exist_ok=True)
        self.originals = {}

    def compiled(self, path, text, level, where="mutant", units=None):
        """The objects of every source that sees the file, with this text in it; None when one does not compile."""
        units = self.build.units_of(path) if units is None else units
        objects_folder = os.path.join(self.folder, where)
        os.makedirs(objects_folder, exist_ok=True)
        shown = os.path.join(self.shadow, self.build.relative(path))
        os.makedirs(os.path.dirname(shown), exist_ok=True)
        with open(shown, "w", encoding="utf-8") as file:
            file.write(text)
        try:
            objects = []
            for unit in units:
                made = os.path.join(objects_folder, unit.file_name)
                if not self._compile(unit, shown if unit.source == path else unit.source, made, level):
                    return None
                objects.append(made)
            return objects
        finally:
            os.remove(shown)

    def _compile(self, unit, source, made, level):
        command = []
        for word in unit.command:
            if word.startswith("-I" + self.build.root):
                command.append("-I" + os.path.normpath(self.shadow + "/" + self.build.relative(word[2:])))
            command.append(word)
        command += [level, f"-ffile-prefix-map={self.shadow}={self.build.root}", "-o", made, "-c", source]
        done = subprocess.run(command, cwd=self.build.folder, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL, check=False)
        return done.returncode == 0

    def is_original(self, path, text, objects, level):
        """Whether the compiler makes the same program of this text as of the file itself."""
        if (path, level) not in self.originals:
            with open(path, encoding="utf-8") as file:
                self.originals[path, level] = digest(self.compiled(path, file.read(), level, "original"))
        return digest(objects or self.compiled(path, text, level)) == self.originals[path, level]

    def links(self, program, objects, left_out=()):
        own = [word for word in program.link[1:] if word not in left_out]
        objects = [made for made in objects if self.build.is_linked(program, made)]
        command = program.link[:1] + self.linker + objects + own + ["-o", self.target(program)]
        done = subprocess.run(command, cwd=self.build.folder, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL, timeout=LONGEST_LINK, check=False)
        return done.returncode == 0

    def target(self, program):
        return os.path.join(self.folder, os.path.basename(program.path))

    def run(self, executable, cases, seconds):
        """How the program ended: "" when every case passed."""
        shutil.rmtree(self.home, ignore_errors=True)
        os.makedirs(self.home)
        if WHOM:
            os.chown(self.home, pwd.getpwnam("nobody").pw_uid, -1)
        environment = {"PATH": os.environ["PATH"], "HOME": self.home, "TMPDIR": self.home, "LANG": "C.UTF-8",
                       "GTEST_FAIL_FAST": "1", "GTEST_FILTER": cases}
        child = subprocess.Popen([executable], cwd=self.home, env=environment, stdin=subprocess.DEVNULL,
                                 stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True,
                                 preexec_fn=lambda: _limit(seconds * SLOWER + GRACE_BUSY), **WHOM)
        try:
            code = child.wait(seconds * SLOWER + GRACE_WAITING)
        except subprocess.TimeoutExpired:
            code = None
        _end_group(child.pid)
        child.wait()
        if code is None or code == -24:
            return "did not end"
        return "" if code == 0 else f"signal {-code}" if code < 0 else "failed"

    def measure(self, program):
        begun = time.monotonic()
        ended = self.run(program.path, program.cases, 60)
        program.seconds = time.monotonic() - begun
        return ended


def _limit(seconds):
    resource.setrlimit(resource.RLIMIT_CPU, (int(seconds), int(seconds) + 5))
    resource.setrlimit(resource.RLIMIT_DATA, (MEMORY, MEMORY))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
    os.umask(0o022)


def _end_group(pid):
    try:
        os.killpg(pid, 9)
    except ProcessLookupError:
        pass


def digest(objects):
    sums = []
    for made in objects:
        with open(made, "rb") as file:
            sums.append(hashlib.sha256(file.read()).hexdigest())
    return sums
