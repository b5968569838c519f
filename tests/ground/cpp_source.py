"""What the rules of the tree read in a C++ file: its functions, its classes' members, and its lines without comments
and texts. Guessed from tokens and from the layout that .clang-format gives, which is enough for code that compiles."""

import bisect
import re

from mutation import places

TYPES = {"class", "struct", "union", "enum"}
ACCESS = {"public", "private", "protected"}
MEMBER = re.compile(r"[a-z]\w*_")


class Function:
    """A definition: tokens head..body are its signature and initialisers, body..end its braces."""

    def __init__(self, name, owner, head, body, end):
        self.name, self.owner, self.head, self.body, self.end = name, owner, head, body, end


class Type:
    """A class: its own tokens lie between the braces begin and end; members are (name, token, access)."""

    def __init__(self, name, begin, end):
        self.name, self.begin, self.end, self.members = name, begin, end, []


class Source:
    def __init__(self, path, text):
        self.path, self.text = path, text
        self.tokens = places.tokens_of(text)
        self.line_starts = [0] + [found.end() for found in re.finditer("\n", text)]
        self.functions, self.types = [], []
        self._scope(0, len(self.tokens), None)

    def line(self, index):
        """The line of a token, from 1."""
        return bisect.bisect_right(self.line_starts, self.tokens[index].begin)

    def code(self):
        """The text with blanks where its comments and literals stand."""
        pieces, at = [], 0
        for token in self.tokens:
            pieces.append(re.sub(r"[^\n]", " ", self.text[at:token.begin]))
            pieces.append(re.sub(r"[^\n]", " ", token.text) if token.kind in ("text", "char") else token.text)
            at = token.end
        return "".join(pieces)

    def length(self, function):
        return self.line(function.end) - self.line(function.head) + 1

    def _scope(self, index, end, owner):
        start, access = index, "private"
        while index < end:
            token = self.tokens[index]
            text = token.text if token.kind in ("sign", "word") else ""
            if text == ";":
                index = start = index + 1
            elif text in ACCESS and self._text(index + 1) == ":":
                access = text
                index = start = index + 2
            elif text in ("(", "[") and token.partner:
                index = token.partner + 1
            elif text == "{" and token.partner:
                index, start = self._braces(start, index, owner)
            else:
                if owner:
                    self._member(owner, start, index, access)
                index += 1

    def _braces(self, start, opening, owner):
        """Reads what a brace opens; answers where to go on, and where the statement begins that it belongs to."""
        closing = self.tokens[opening].partner
        head = self._top_level(start, opening)
        words = [self._text(i) for i in head]
        if "namespace" in words[:2] or words[:1] == ["extern"]:
            self._scope(opening + 1, closing, None)
        elif "=" in words and "operator" not in words:
            return closing + 1, start
        elif "(" in words and not self._initialises(words):
            self.functions.append(self._function(head, words, owner, start, opening, closing))
        elif TYPES & set(words) and "(" not in words:
            made = Type(self._type_name(words), opening, closing)
            self.types.append(made)
            self._scope(opening + 1, closing, None if "enum" in words else made)
            return closing + 1, closing + 1
        else:
            return closing + 1, start
        return closing + 1, closing + 1

    def _top_level(self, start, end):
        """The tokens of a statement, without what stands in brackets or in a template's own angles."""
        found, index = [], start
        if self._text(index) == "template":
            depth = 0
            while index < end:
                text = self._text(index)
                depth += text.count("<") - (text.count(">") if text != "->" else 0)
                index += 1
                if depth == 0 and text.endswith(">"):
                    break
        while index < end:
            found.append(index)
            token = self.tokens[index]
            index = token.partner + 1 if token.text in ("(", "[", "{") and token.partner else index + 1
        return found

    @staticmethod
    def _initialises(words):
        """Whether the brace behind these words begins a member's value in a constructor's list."""
        after = words[words.index("(") + 1:]
        return ":" in after and re.fullmatch(r"\w+|>", words[-1]) is not None

    def _function(self, head, words, owner, start, opening, closing):
        at = words.index("(")
        name = words[at - 1] if at else ""
        if "operator" in words[:at]:
            name, at = "operator" + "".join(words[words.index("operator") + 1:at]), words.index("operator") + 1
        of = owner.name if owner else None
        if at >= 3 and words[at - 2] == "::":
            of = words[at - 3]
        elif at >= 4 and words[at - 2] == "~" and words[at - 3] == "::":
            of = words[at - 4]
        return Function(name, of, head[0] if head else start, opening, closing)

    @staticmethod
    def _type_name(words):
        at = next(i for i, word in enumerate(words) if word in TYPES)
        names = [w for w in words[at + 1:] if w not in ("final", "class")]
        return names[0] if names and re.fullmatch(r"\w+", names[0]) else ""

    def _member(self, owner, start, index, access):
        """Notes the token as a member when it stands where one is declared."""
        if not MEMBER.fullmatch(self.tokens[index].text) or self._text(index + 1) not in (";", "=", "{", ",", "[", ":"):
            return
        between = [self._text(i) for i in range(start, index)]
        if "=" not in between and "using" not in between:
            owner.members.append((self.tokens[index].text, index, access))

    def _text(self, index):
        return self.tokens[index].text if 0 <= index < len(self.tokens) else ""
