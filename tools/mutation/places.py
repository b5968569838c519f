"""The places of a C++ file where a mistake can be put, and the mistakes.

The text is cut into tokens, so nothing inside a comment, a literal or a preprocessor line is touched. What a place
means is guessed from the layout that .clang-format gives (a comparison has blanks around it, a template does not);
a guess that was wrong does not compile, and such a mutant is not counted.
"""

import re

LONGEST_TOLD = 70
KINDS = ("relational", "arithmetic", "negated", "constant", "removed", "truth", "return", "text")

TOKEN = re.compile(
    r"""(?P<skip>\s+|//[^\n]*|/\*.*?\*/|^[ \t]*\#(?:[^\n\\]|\\.)*)
      | (?P<text>(?:u8|u|U|L)?R"(?P<tag>[^(]*)\(.*?\)(?P=tag)"|(?:u8|u|U|L)?"(?:[^"\\\n]|\\.)*")
      | (?P<char>'(?:[^'\\\n]|\\.)+')
      | (?P<number>\.?\d(?:'?[\w.]|[eE][+-])*)
      | (?P<word>[A-Za-z_]\w*)
      | (?P<sign><<=|>>=|<=>|->\*|\.\.\.|::|->|\+\+|--|<<|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|.)""",
    re.VERBOSE | re.DOTALL | re.MULTILINE)

RELATIONAL = {"<": "<=", ">": ">=", "<=": "<", ">=": ">", "==": "!=", "!=": "=="}
ARITHMETIC = {"+": "-", "-": "+", "*": "/", "/": "*", "%": "*", "+=": "-=", "-=": "+=", "++": "--", "--": "++",
              "&&": "||", "||": "&&", "&": "|", "|": "&", "|=": "&=", "&=": "|=", "<<": ">>"}
EITHER_SIDE = {"++", "--"}
PAIRS = {"(": ")", "[": "]", "{": "}"}
CLOSING = set(PAIRS.values())
# A statement that begins with one of these is a declaration or has a body of its own.
NO_STATEMENT = set("""return using typedef static const constexpr auto struct class enum template public private
    protected friend explicit virtual namespace case default if for while switch do try else operator inline extern
    unsigned int bool char double float void long short goto static_assert catch mutable""".split())
LEAVES_AT_ONCE = {"break", "continue", "throw", "delete", "return"}
ASSIGNMENTS = {"=", "+=", "-=", "*=", "/=", "%=", "|=", "&=", "^=", "<<=", ">>="}
CONDITION_STARTS = {";", "{", "}", ",", "?", ":", "=", "return", "<<", "+=", "-=", "|=", "&="}


class Token:
    __slots__ = ("kind", "text", "begin", "end", "partner")

    def __init__(self, kind, text, begin, end):
        self.kind, self.text, self.begin, self.end = kind, text, begin, end
        self.partner = None  # the index of the bracket that closes or opens this one


class Mutation:
    """One mistake: the bytes begin..end of the file become `new`."""

    def __init__(self, kind, begin, end, new, told):
        self.kind, self.begin, self.end, self.new, self.told = kind, begin, end, new, told


def tokens_of(text):
    tokens, opened = [], []
    for found in TOKEN.finditer(text):
        kind = found.lastgroup if found.lastgroup != "tag" else "text"
        if kind == "skip":
            continue
        token = Token(kind, found[0], found.start(), found.end())
        if token.text in PAIRS and kind == "sign":
            opened.append(len(tokens))
        elif token.text in CLOSING and opened and PAIRS[tokens[opened[-1]].text] == token.text:
            token.partner = opened.pop()
            tokens[token.partner].partner = len(tokens)
        tokens.append(token)
    return tokens


def mutations_of(text, kinds=KINDS):
    """Every mutation of one file's text, in the order of their places."""
    file = _File(text)
    found = []
    for index in range(len(file.tokens)):
        for mutation in file.at(index):
            if mutation.kind in kinds:
                found.append(mutation)
    return sorted(found, key=lambda m: (m.begin, m.end))


class _File:
    def __init__(self, text):
        self.text = text
        self.tokens = tokens_of(text)
        self.checked_by_compiler = self._spans("static_assert")

    def at(self, index):
        token = self.tokens[index]
        if any(begin <= token.begin < end for begin, end in self.checked_by_compiler):
            return
        if token.kind == "sign":
            yield from self._signs(index, token)
        elif token.kind == "number":
            yield from self._numbers(token)
        elif token.kind == "text" and not self._word(index - 1) == "extern":
            yield self._replaced("text", token, token.text[:-1] + '~"')
        elif token.kind == "word":
            yield from self._words(index, token)
        yield from self._removed(index)

    def _signs(self, index, token):
        spaced = self.text[token.begin - 1:token.begin].isspace() and self.text[token.end:token.end + 1].isspace()
        if token.text in RELATIONAL and spaced and self._word(index - 1) != "template":
            yield self._replaced("relational", token, RELATIONAL[token.text])
        elif token.text in ARITHMETIC and (spaced or token.text in EITHER_SIDE):
            yield self._replaced("arithmetic", token, ARITHMETIC[token.text])
        elif token.text == "!":
            yield Mutation("negated", token.begin, token.end, "", "! -> nothing")
        elif token.text == "?":
            yield from self._chosen(index)

    def _chosen(self, index):
        """The condition of `c ? a : b`, negated."""
        begin = index - 1
        while begin >= 0:
            token = self.tokens[begin]
            if token.text in CLOSING and token.partner is not None:
                begin = token.partner
            elif token.text in PAIRS or token.text in CONDITION_STARTS:
                break
            begin -= 1
        first, last = self.tokens[begin + 1], self.tokens[index - 1]
        if first.begin < last.end:
            yield self._negated(first.begin, last.end)

    def _numbers(self, token):
        plain = token.text.replace("'", "")
        found = re.fullmatch(r"(0[xX][0-9a-fA-F]+|\d+)([uUlLzZ]*)", plain)
        if found:
            number = int(found[1], 16) if found[1][:2] in ("0x", "0X") else int(found[1])
            for changed in (number + 1, number - 1):
                new = str(changed) if changed >= 0 else f"({changed})"
                yield self._replaced("constant", token, new + found[2])
        elif re.fullmatch(r"\d*\.?\d+(?:[eE][+-]?\d+)?|\d+\.", plain):
            for sign in "+-":
                yield self._replaced("constant", token, f"({plain} {sign} 1)")

    def _words(self, index, token):
        if token.text in ("true", "false"):
            yield self._replaced("truth", token, "false" if token.text == "true" else "true")
        elif token.text in ("if", "while"):
            yield from self._condition(index + 1)
        elif token.text == "return":
            yield from self._returned(index)

    def _condition(self, opening):
        if self._word(opening) == "constexpr" or self._word(opening) != "(" or not self.tokens[opening].partner:
            return
        closing = self.tokens[opening].partner
        first, index = opening + 1, opening + 1
        while index < closing:  # behind an initialiser: if (x = f(); x > 0)
            token = self.tokens[index]
            if token.text in PAIRS and token.partner:
                index = token.partner
            elif token.text == ";":
                first = index + 1
            index += 1
        yield self._negated(self.tokens[first].begin, self.tokens[closing].begin)

    def _returned(self, index):
        end = self._statement_end(index)
        if end is None or end == index + 1:
            return
        begin, told = self.tokens[index + 1].begin, self._short(self.tokens[index].begin, self.tokens[end].end)
        if end > index + 2 or self.tokens[index + 1].kind not in ("number", "text"):
            if self.tokens[index + 1].text not in ("true", "false", "nullptr", "{"):
                yield Mutation("return", begin, self.tokens[end].begin, "{}", f"{told} -> return {{}};")

    def _removed(self, index):
        before = self._word(index - 1)
        begins = before in (";", "{", "}", ")", "else") or (before == ":" and self._is_label(index - 1))
        if not begins or not self._is_statement(index):
            return
        end = self._statement_end(index)
        if end is not None:
            begin, stop = self.tokens[index].begin, self.tokens[end].end
            yield Mutation("removed", begin, stop, ";", f"{self._short(begin, stop)} -> removed")

    def _is_label(self, colon):
        index = colon - 1
        while index > 0 and self._word(index) not in (";", "{", "}", ":"):
            index -= 1
        return self._word(index + 1) in ("case", "default")

    def _is_statement(self, index):
        first = self.tokens[index]
        if first.text in LEAVES_AT_ONCE:
            return first.text != "return" or self._word(index + 1) == ";"
        if first.text in ("*", "++", "--"):
            return True
        if first.kind != "word" or first.text in NO_STATEMENT:
            return False
        while index < len(self.tokens):  # a path of names, then a call or an assignment
            token = self.tokens[index]
            if token.text == "[" and token.partner:
                index = token.partner
            elif token.kind == "word":
                if self.tokens[index + 1].kind == "word":
                    return False
            elif token.text not in (".", "->", "::"):
                return token.text in ("(", "++", "--") or token.text in ASSIGNMENTS
            index += 1
        return False

    def _statement_end(self, index):
        while index < len(self.tokens):
            token = self.tokens[index]
            if token.text == ";":
                return index
            if token.text in CLOSING:
                return None
            index = (token.partner or index) + 1 if token.text in PAIRS else index + 1
        return None

    def _spans(self, word):
        spans = []
        for index, token in enumerate(self.tokens[:-1]):
            partner = self.tokens[index + 1].partner
            if token.text == word and partner:
                spans.append((token.begin, self.tokens[partner].end))
        return spans

    def _word(self, index):
        return self.tokens[index].text if 0 <= index < len(self.tokens) else ""

    def _replaced(self, kind, token, new):
        return Mutation(kind, token.begin, token.end, new, f"{token.text} -> {new}")

    def _negated(self, begin, end):
        return Mutation("negated", begin, end, f"!({self.text[begin:end]})", f"{self._short(begin, end)} -> negated")

    def _short(self, begin, end):
        told = " ".join(self.text[begin:end].split())
        return told if len(told) <= LONGEST_TOLD else told[:LONGEST_TOLD - 3] + "..."
