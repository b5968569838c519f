"""mutation_test.py TOOLS: which mistakes tools/mutate puts into a line of C++, and that it touches no more."""

import sys
import unittest

import cases

sys.path.insert(0, sys.argv.pop())
from mutation import places  # noqa: E402

# Why | a text | the kinds asked for | the texts with one mistake each
CASES = [
    ("a comparison takes or leaves its limit", "f(a < b);", "relational", ["f(a <= b);"]),
    ("equal becomes unequal", "f(a == b);", "relational", ["f(a != b);"]),
    ("a template's brackets are no comparison", "std::vector<int> a; template <class T> T b;", "relational", []),
    ("a sum becomes a difference", "f(a + b);", "arithmetic", ["f(a - b);"]),
    ("and becomes or", "f(a && b);", "arithmetic", ["f(a || b);"]),
    ("a reference or a pointer is no arithmetic", "void f(A&& a, B* b, const C& c);", "arithmetic", []),
    ("counting up becomes counting down", "++i;", "arithmetic", ["--i;"]),
    ("a condition is negated", "if (a(b)) c();", "negated", ["if (!(a(b))) c();"]),
    ("behind its initialiser", "if (int a = f(); a > g(1))", "negated", ["if (int a = f(); !(a > g(1)))"]),
    ("a not is left out", "f(!a);", "negated", ["f(a);"]),
    ("a choice is negated", "return a(b, c) == d ? e : f;", "negated", ["return !(a(b, c) == d) ? e : f;"]),
    ("a number is one more or less", "f(10'000u);", "constant", ["f(10001u);", "f(9999u);"]),
    ("also in hexadecimal", "f(0xff);", "constant", ["f(256);", "f(254);"]),
    ("a fraction is", "f(.5);", "constant", ["f((.5 + 1));", "f((.5 - 1));"]),
    ("a call is left out", "{ a.b->c(d); }", "removed", ["{ ; }"]),
    ("with what stands in it", "{ f([&] { g(); }); }", "removed", ["{ ; }", "{ f([&] { ; }); }"]),
    ("an assignment is", "{ a_[i] += b; }", "removed", ["{ ; }"]),
    ("a throw is", "if (a) throw B();", "removed", ["if (a) ;"]),
    ("the statement of a label is", "switch (a) { case 1: f(); }", "removed", ["switch (a) { case 1: ; }"]),
    ("a declaration stays", "{ std::string a(b); int c = 1; auto& d = e(); }", "removed", []),
    ("half of a choice is no statement", "int a = b ? c : d == e;", "removed", []),
    ("true becomes false", "f(true);", "truth", ["f(false);"]),
    ("an answer becomes the empty one", "{ return a + b; }", "return", ["{ return {}; }"]),
    ("an answer that is a number does not", "{ return 1; }", "return", []),
    ("a text gets a letter more", 'f("a");', "text", ['f("a~");']),
    ("comments are left alone", "// a < 1\n/* if (true) */", ",".join(places.KINDS), []),
    ("and preprocessor lines", "#if A < 1\n#define B \\\n  true\n#endif", ",".join(places.KINDS), []),
    ("and characters", "char a = '1';", ",".join(places.KINDS), []),
    ("and text is not code", 'f("if (a < 1)", R"(true < "1")");', "relational,negated,constant,truth", []),
    ("what the compiler checks is left alone", "static_assert(a < 1);", ",".join(places.KINDS), []),
]


class Places(unittest.TestCase):
    def test_mistakes(self):
        for why, text, kinds, expected in CASES:
            with self.subTest(why):
                made = [text[:m.begin] + m.new + text[m.end:] for m in places.mutations_of(text, kinds.split(","))]
                self.assertEqual(made, expected)


if __name__ == "__main__":
    cases.main()
