"""tree_test.py SOURCE: the rules that the tree of sources keeps, each naming who breaks it by file and line."""

import collections
import os
import pathlib
import re
import sys
import unittest

import cases

ROOT = pathlib.Path(sys.argv.pop())
sys.path.insert(0, str(ROOT / "tools"))
from cpp_source import Source  # noqa: E402

PRODUCT = ("adapters", "base", "database", "host", "include", "src")
LIBRARY = ("include/", "src/")
LONGEST_FILE = 400
LONGEST_FUNCTION, LONGEST_OF_LIBRARY = 40, 35
RULER_END = 108

# Tables made by a tool, as long as their facts.
TABLES = {"src/platform/case_tables.h"}

# The folders of the product, inner rings first: a folder includes from itself and from those above it.
RINGS = """
    include/kalvo/platform src/platform
    include/kalvo base
    src/display src/context src/columns src/datasrc src/generator src/memory
    adapters/sql adapters/sqlite adapters/odbc adapters/ranking adapters/mail adapters/maildir adapters/imap
    database database/sample database/sample_mail
    host/script/text host/script/engine host/script/late_binding host/script/binding host/script/page
    host/parts
    host/edge host/audit
    host/web
    host/attack
    host/cli
""".split()

# What makes a statement out of a member without reading it.
CHANGES = {"clear", "push_back", "emplace_back", "reserve", "reset"}

# Members that are held for their lifetime alone: others look into them, or rely on it that they last.
HELD = {"DataSrc::table_", "DataSrc::context_", "Snapshot::bytes_", "Snapshot::texts_", "WindowedRows::records_"}


def product_files(*suffixes):
    for folder in PRODUCT:
        for path in sorted((ROOT / folder).rglob("*")):
            if path.suffix in suffixes:
                yield path.relative_to(ROOT).as_posix()


def read():
    return [Source(path, (ROOT / path).read_text(encoding="utf-8")) for path in product_files(".h", ".cpp")]


def too_long_files(sources):
    return [f"{s.path}: {lines} lines" for s in sources
            if (lines := s.text.count("\n")) > LONGEST_FILE and s.path not in TABLES]


def too_long_functions(sources):
    found = []
    for source in sources:
        longest = LONGEST_OF_LIBRARY if source.path.startswith(LIBRARY) else LONGEST_FUNCTION
        found += [f"{source.path}:{source.line(f.head)}: {f.name} has {source.length(f)} lines, {longest} are allowed"
                  for f in source.functions if source.length(f) > longest]
    return found


def unread_members(sources):
    """Members that neither their own class nor a friend reads. A friend's `of.member_` is told by its name alone."""
    bodies, found = collections.defaultdict(list), []
    read_by_friends = {s.tokens[i].text for s in sources for i in range(1, len(s.tokens))
                       if s.tokens[i].kind == "word" and s.tokens[i].text.endswith("_")
                       and s.tokens[i - 1].text in (".", "->") and s.tokens[i - 2].text != "this"
                       and s.tokens[i + 1].text not in ("=", "+=", "-=", "|=")}
    for source in sources:
        for function in source.functions:
            bodies[function.owner].append((source, function.head, function.body, function.end))
        for made in source.types:
            bodies[made.name].append((source, made.begin, made.begin, made.end))
    for source in sources:
        for made in source.types:
            for name, declared, access in made.members:
                places = bodies[made.name] if access != "protected" else \
                    [(s, 0, 0, len(s.tokens)) for s in sources]
                if name in read_by_friends or f"{made.name}::{name}" in HELD:
                    continue
                if not any(
                        reads(s, i, body) for s, begin, body, end in places for i in range(begin, end)
                        if s.tokens[i].text == name and (s, i) != (source, declared)):
                    found.append(f"{source.path}:{source.line(declared)}: {made.name}::{name} is never read")
    return found


def reads(source, index, body):
    """Whether the member at a token is read there, not only given a value."""
    before, after, behind = (source.tokens[i].text if i < len(source.tokens) else "" for i in
                             (index - 1, index + 1, index + 2))
    if index < body and before in (":", ",") and after in ("(", "{"):
        return False  # a constructor's initialiser
    if before in (";", "{", "}", ")", "else"):
        return after not in ("=", "+=", "-=", "|=", "++", "--") and not (after == "." and behind in CHANGES)
    return not (before in ("++", "--") and after == ";" and source.tokens[index - 2].text in (";", "{", "}", ")"))


def upward_includes(sources):
    folders, found = {s.path: ring_of(s.path) for s in sources}, []
    for source in sources:
        ring = ring_of(source.path)
        if ring is None:
            found.append(f"{source.path}: stands in no ring")
            continue
        for include in re.finditer(r'^#include "([^"]+)"', source.text, re.MULTILINE):
            path = next((base + include[1] for base in ("", "src/", "include/") if base + include[1] in folders), None)
            if path and folders[path] is not None and folders[path] > ring:
                line = source.text.count("\n", 0, include.start()) + 1
                found.append(f"{source.path}:{line}: includes {path}, which is further out")
    return found


def ring_of(path):
    """The place of a file's folder among the rings; a folder that is not named counts to the one around it."""
    folder = path
    while "/" in folder:
        folder = folder.rpartition("/")[0]
        if folder in RINGS:
            return RINGS.index(folder)
    return None


def headers_of_one_name(paths):
    named = collections.defaultdict(list)
    for path in paths:
        named[os.path.basename(path)].append(path)
    return [f"{name}: {', '.join(several)}" for name, several in sorted(named.items()) if len(several) > 1]


# What is written in one way: why | what is not written | what is written for it
DIALECT = [
    ("a pointer is asked as a truth", re.compile(r"[=!]= nullptr\b|\bnullptr [=!]="), "if (p), if (!p)"),
    ("no position is std::string::npos", re.compile(r"(?<!\bstd::string)(?:::|\.)npos\b"),
     "std::string::npos"),
]


def off_dialect(sources):
    found = []
    for source in sources:
        code = source.code()
        for why, pattern, instead in DIALECT:
            for place in pattern.finditer(code):
                found.append(f"{source.path}:{source.text.count(chr(10), 0, place.start()) + 1}: {why}: {instead}")
    return found


# What one file alone may do: why | how it is written | the file
ALONE = [
    ("a descriptor is closed by its File", re.compile(r"(?<![\w.>:])(?:::)?close\("), "base/file.cpp"),
    ("a file is renamed over another by ReplaceFile", re.compile(r"(?<![\w.>:])(?:::)?renameat\("), "base/fresh_file.cpp"),
    ("a private folder is made by MakePrivateFolder", re.compile(r"(?<![\w.>:])(?:::)?mkdir\("), "base/private_folder.cpp"),
    ("the steady clock is asked for milliseconds by Milliseconds", re.compile(r"\bCLOCK_MONOTONIC\b"), ""),
    ("hexadecimal digits stand in one table", re.compile(r'"0123456789(?:abcdef|ABCDEF)"'),
     "include/kalvo/platform/text_tools.h"),
]


def done_elsewhere(sources):
    found = []
    for source in sources:
        code = source.code()
        for why, pattern, file in ALONE:
            # texts are blanked out of the code: what is looked for in them is looked for in the whole source
            for place in pattern.finditer(source.text if pattern.pattern.startswith('"') else code):
                if source.path != file:
                    found.append(f"{source.path}:{source.text.count(chr(10), 0, place.start()) + 1}: {why}")
    return found


def uneven_rulers(sources):
    found = []
    for source in sources:
        for number, line in enumerate(source.text.splitlines(), 1):
            if re.match(r" *// ?-{4,}", line) and not (len(line) == RULER_END and line.endswith("----")):
                found.append(f"{source.path}:{number}: a ruler ends in column {RULER_END}")
    return found


def crowded_namespaces(sources):
    """A namespace of several paragraphs begins with a blank line, unless another namespace opens there."""
    found = []
    for source in sources:
        for opened in re.finditer(r"^namespace\b.*\{\n(?!\n|namespace\b)", source.text, re.MULTILINE):
            held = source.text[opened.end():source.text.find("\n}", opened.end())]
            if "\n\n" in held:
                line = source.text.count("\n", 0, opened.start()) + 1
                found.append(f"{source.path}:{line}: no blank line behind the namespace")
    return found


class Rules(unittest.TestCase):
    """Each rule names who breaks it, and lets pass what keeps it."""

    def test_a_function_is_measured_from_its_signature_to_its_brace(self):
        body = "".join(f"  f({i});\n" for i in range(LONGEST_OF_LIBRARY))
        for head in ("int A::B(int c) {", "A::A(int c) : b_{c}, d_(c) {", "int& A::operator[](int c) const {",
                     "template <typename T>\nvoid B(T&& c) noexcept {", "namespace a {\nclass A {\n  int B() const {"):
            with self.subTest(head):
                end = "}\n" * head.count("{\n")
                short = Source("src/a.cpp", f"{head}\n" + body.replace("  f(0);\n  f(1);\n", "") + "}\n" + end)
                long = Source("src/a.cpp", f"{head}\n{body}}}\n{end}")
                self.assertEqual(too_long_functions([short]), [])
                self.assertRegex(" ".join(too_long_functions([long])), r"src/a.cpp:\d+: \S+ has 3[78] lines, 35 are")
        table = Source("src/a.cpp", "constexpr int kA[] = {\n" + "    f(1),\n" * 50 + "};\n")
        self.assertEqual(too_long_functions([table]), [])

    # Why | what the class does with its member a_ | whether that reads it
    MEMBERS = [
        ("it is only given a value", "A::A() : a_(1) {}\nvoid A::F() { a_ = 2; }", False),
        ("it is counted up", "void A::F() { ++a_; }", False),
        ("it is added to", "void A::F() {\n  if (b) a_ += 2;\n}", False),
        ("it is filled", "void A::F() { a_.push_back(1); }", False),
        ("another class reads one of its own", "int B::F() { return a_; }", False),
        ("it is answered", "int A::F() const { return a_; }", True),
        ("a constructor reads it", "A::A() : b_(a_) {}", True),
        ("it is handed on", "void A::F() { G(a_); }", True),
        ("what it is changed to is used", "int A::F() { return ++a_; }", True),
        ("it is asked", "bool A::F() { return b || a_.empty(); }", True),
        ("a friend reads it", "int B::F(const A& of) { return of.a_; }", True),
        ("a friend gives it a value", "void B::F(A& of) { of.a_ = 1; }", False),
    ]

    def test_a_member_is_read_or_told(self):
        for why, text, read_there in self.MEMBERS:
            with self.subTest(why):
                header = Source("src/a.h", "class A {\n public:\n  void F();\n\n private:\n  int a_ = 0;\n};\n")
                told = unread_members([header, Source("src/a.cpp", text)])
                self.assertEqual(told, [] if read_there else ["src/a.h:6: A::a_ is never read"])

    def test_an_include_leads_inwards(self):
        inner, outer = Source("include/kalvo/a.h", ""), Source("src/display/b.h", '\n#include "kalvo/a.h"\n')
        self.assertEqual(upward_includes([inner, outer]), [])
        inner = Source("include/kalvo/a.h", '\n#include "display/b.h"\n')
        self.assertEqual(upward_includes([inner, outer]),
                         ["include/kalvo/a.h:2: includes src/display/b.h, which is further out"])
        self.assertEqual(upward_includes([Source("elsewhere/a.h", "")]), ["elsewhere/a.h: stands in no ring"])

    def test_a_name_of_two_headers_is_told(self):
        self.assertEqual(headers_of_one_name(["a/x.h", "b/y.h"]), [])
        self.assertEqual(headers_of_one_name(["a/x.h", "b/x.h"]), ["x.h: a/x.h, b/x.h"])

    def test_the_dialect_is_that_of_code_alone(self):
        kept = 'if (!p) return text.find(x) == std::string::npos;  // p == nullptr\nf("text.npos");\n'
        self.assertEqual(off_dialect([Source("a.cpp", kept)]), [])
        for text in ("a == nullptr", "nullptr != a", "a.npos", "std::string_view::npos", "Text::npos"):
            with self.subTest(text):
                self.assertRegex(" ".join(off_dialect([Source("a.cpp", f"\nf({text});\n")])), "^a.cpp:2: ")

    def test_what_one_file_does_is_told_of_another(self):
        for text in ("close(file);", "::close(file);", "renameat(a, b, c, d);", "mkdir(path, 0700);",
                     'f("0123456789abcdef"[i]);'):
            with self.subTest(text):
                self.assertRegex(" ".join(done_elsewhere([Source("host/a.cpp", f"\n{text}\n")])), "^host/a.cpp:2: ")
        self.assertEqual(done_elsewhere([Source("base/file.cpp", "close(file);")]), [])
        self.assertEqual(done_elsewhere([Source("host/a.cpp", "out.close(); // close(file)\nFile::close();")]), [])

    def test_rulers_and_namespaces(self):
        self.assertEqual(uneven_rulers([Source("a.h", "  // ---- a ".ljust(RULER_END, "-") + "\n")]), [])
        self.assertEqual(uneven_rulers([Source("a.h", "// ---- a ----\n")]), ["a.h:1: a ruler ends in column 108"])
        for kept in ("namespace a {\n\nint b;\n\n}\n", "namespace a {\nclass B;\n}\n",
                     "namespace a {\nnamespace {\n\nint b;\n\n}\n}\n"):
            self.assertEqual(crowded_namespaces([Source("a.h", kept)]), [])
        self.assertEqual(crowded_namespaces([Source("a.h", "\nnamespace a {\nint b;\n\nint c;\n}\n")]),
                         ["a.h:2: no blank line behind the namespace"])


class Tree(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.sources = read()

    def holds(self, offenders):
        self.assertEqual(offenders, [], "\n" + "\n".join(offenders))

    def test_the_product_is_read(self):
        self.assertGreater(len(self.sources), 300)
        self.assertGreater(sum(len(s.functions) for s in self.sources), 2000)
        self.assertGreater(sum(len(made.members) for s in self.sources for made in s.types), 500)

    def test_no_file_is_too_long(self):
        self.holds(too_long_files(self.sources))

    def test_no_function_is_too_long(self):
        self.holds(too_long_functions(self.sources))

    def test_every_member_is_read(self):
        self.holds(unread_members(self.sources))

    def test_includes_lead_inwards(self):
        self.holds(upward_includes(self.sources))

    def test_no_two_headers_have_one_name(self):
        self.holds(headers_of_one_name(product_files(".h")))

    def test_a_tool_is_made_once(self):
        self.holds(done_elsewhere(self.sources))

    def test_one_dialect_is_spoken(self):
        self.holds(off_dialect(self.sources))

    def test_rulers_are_of_one_length(self):
        self.holds(uneven_rulers(self.sources))

    def test_a_namespace_begins_with_a_blank_line(self):
        self.holds(crowded_namespaces(self.sources))


if __name__ == "__main__":
    cases.main()
