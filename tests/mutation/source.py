"""C++ as far as the mutants need it: tokens, brackets and expressions of formatted sources.

The sources are formatted, and that is relied upon: an operator between two operands has spaces
around it, and a sign, the star of a pointer and the bracket of a template's argument have not."""

import bisect
import re

TOKEN = re.compile(r"""
    (?P<number>0[xX][0-9a-fA-F.']+(?:[pP][+-]?\d+)?[fFuUlL]*
             | (?:\d[\d']*\.?\d*|\.\d+)(?:[eE][+-]?\d+)?[fFuUlL]*)
  | (?P<word>[A-Za-z_]\w*)
  | (?P<mark><<=|>>=|->|\+\+|--|<<|>>|[-+*/%&|^=!<>]=|&&|\|\||::|\.\.\.|[^\w\s])
""", re.X)

COMMENT_OR_STRING = re.compile(r"""//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|'(?:\\.|[^'\\\n])'""",
                               re.S)
DIRECTIVE = re.compile(r"^[ \t]*#(?:\\\n|[^\n])*", re.M)
DEFINE_HEAD = re.compile(r"[ \t]*#[ \t]*define[ \t]+\w+(?:\([^)]*\))?")
# What isn't arithmetic, up to the bracket that closes.
BRACKETED = re.compile(r"\b(?:static_assert|__attribute__|alignas|asm|requires)\s*(?=[({])|"
                       r"\[(?=\[)|\btemplate\s*(?=<)")
UNBRACKETED = re.compile(r"\bcase\b[^\n:]*:|\busing\b[^;]*;|\boperator\s*[-+*/<>=!&|]+(?=\()")
# Functions that only processors with other vector units have.
OF_OTHERS = re.compile(r"^requires\(pointers_move_on\b.*?^\}", re.M | re.S)

CLOSING = {"(": ")", "[": "]", "{": "}", "<": ">"}


def blank(text, start, end):
    """The text with spaces for what is between, lines kept."""
    return text[:start] + re.sub(r"[^\n]", " ", text[start:end]) + text[end:]


def closing(text, start):
    """The place behind the bracket that closes the one at `start`."""
    opener, closer = text[start], CLOSING[text[start]]
    depth = 0
    for i in range(start, len(text)):
        depth += (text[i] == opener) - (text[i] == closer)
        if depth == 0:
            return i + 1
    return len(text)


def arithmetic_only(text):
    """The text with everything else blanked, so that places stay the same."""
    for match in COMMENT_OR_STRING.finditer(text):
        text = blank(text, *match.span())
    for match in OF_OTHERS.finditer(text):
        text = blank(text, *match.span())
    for match in DIRECTIVE.finditer(text):
        head = DEFINE_HEAD.match(match[0])
        text = blank(text, match.start(), match.start() + head.end() if head else match.end())
    text = text.replace("\\\n", " \n")
    for match in BRACKETED.finditer(text):
        text = blank(text, match.start(), closing(text, match.end()))
    for match in UNBRACKETED.finditer(text):
        text = blank(text, *match.span())
    return text


class Token:
    def __init__(self, match):
        self.kind, self.text = match.lastgroup, match[0]
        self.start, self.end = match.span()
        self.partner = None     # of a bracket: the index of the other one
        self.call = None        # the index of the name whose arguments this is among
        self.subscript = False  # whether it is within [ ]

    def __eq__(self, text):
        return self.text == text

    def __repr__(self):
        return self.text


class Source:
    def __init__(self, text):
        self.text = text
        self.tokens = [Token(m) for m in TOKEN.finditer(arithmetic_only(text))]
        self.line_starts = [0] + [m.end() for m in re.finditer("\n", text)]
        self.pair_brackets()

    def pair_brackets(self):
        opened = []
        for i, token in enumerate(self.tokens):
            if opened:
                token.call = next((o - 1 for o in reversed(opened)
                                   if self.tokens[o] == "(" and self.names_call(o)), None)
                token.subscript = any(self.is_subscript(o) for o in opened)
            if token.text in ("(", "[", "{"):
                opened.append(i)
            elif token.text in (")", "]", "}") and opened:
                token.partner = opened.pop()
                self.tokens[token.partner].partner = i

    def at(self, i):
        return self.tokens[i].text if 0 <= i < len(self.tokens) else ""

    def is_word(self, i):
        return 0 <= i < len(self.tokens) and self.tokens[i].kind == "word"

    def tight(self, i):
        """Nothing stands between this token and the one before."""
        return i > 0 and self.tokens[i - 1].end == self.tokens[i].start

    def names_call(self, i):
        return self.tight(i) and self.is_word(i - 1)

    def is_subscript(self, i):
        return (self.at(i) == "[" and self.tight(i) and
                (self.is_word(i - 1) or self.at(i - 1) in (")", "]")))

    def is_between_operands(self, i):
        token = self.tokens[i]
        return (0 < token.start and self.text[token.start - 1].isspace() and
                token.end < len(self.text) and self.text[token.end] in " \n\\")

    def begins_operand(self, i):
        """Whether a sign or a call here is part of an expression, not of a declaration."""
        before = self.at(i - 1)
        if before in ("<", ">", "*", "&", "+", "-") and not self.is_between_operands(i - 1):
            return before != ">" and self.begins_operand(i - 1)
        return before in ("(", "[", "{", ",", "=", "?", ":", "return", "+", "-", "*", "/", "<", ">",
                          "<=", ">=", "==", "!=", "&&", "||", ";", "&", "|", "+=", "-=", "*=")

    def is_call(self, i):
        """Whether the name at i is called here, not declared."""
        end = self.template_end(i + 1)
        if not self.is_word(i) or self.at(end) != "(" or not self.tight(end):
            return False
        return (self.at(i - 1) in ("::", ".", "->") or self.begins_operand(i))

    def begins_statement(self, i):
        return self.at(i - 1) in (";", "{", "}", ")", "return", "else", "")

    # ---- Lines ----

    def line_of(self, place):
        return bisect.bisect_right(self.line_starts, place)

    def span(self, first, last):
        return self.tokens[first].start, self.tokens[last - 1].end

    def text_of(self, first, last):
        start, end = self.span(first, last)
        return self.text[start:end]

    # ---- Expressions ----

    def group_before(self, i):
        """Where the brackets that end before i begin, if they only group; None otherwise."""
        start = self.tokens[i - 1].partner if self.at(i - 1) == ")" else None
        if start is None or self.tight(start) and self.at(start - 1) not in ("(", "{"):
            return None
        return start

    def template_end(self, i):
        """The token behind the arguments of the template whose bracket is at i, or i."""
        if self.at(i) != "<" or not self.tight(i) or not self.tight(i + 1):
            return i
        depth = 0
        for j in range(i, min(i + 40, len(self.tokens))):
            depth += (self.at(j) == "<") - (self.at(j) == ">") - 2 * (self.at(j) == ">>")
            if self.at(j) in (";", "{") or depth < 0:
                return i
            if depth == 0:
                return j + 1
        return i

    def operand_end(self, i):
        """The token behind the operand that begins at i; i if none does."""
        first = i
        while self.at(i) in ("-", "!", "~", "*", "&", "++", "--") and self.tight(i + 1):
            i += 1
        if self.at(i) in ("(", "{"):
            i = self.tokens[i].partner + 1 if self.tokens[i].partner else first
        elif i < len(self.tokens) and self.tokens[i].kind in ("word", "number"):
            i += 1
        else:
            return first
        while i < len(self.tokens) and self.tight(i):
            if self.at(i) in ("(", "[", "{") and self.tokens[i].partner:
                i = self.tokens[i].partner + 1
            elif self.at(i) in (".", "->", "::"):
                i += 2 if self.is_word(i + 1) else 1
            elif self.at(i) == "<" and self.template_end(i) > i:
                i = self.template_end(i)
            else:
                break
        return i

    def term_end(self, i):
        """The token behind the product that begins at i."""
        end = self.operand_end(i)
        while end > i and self.at(end) in ("*", "/", "%") and self.is_between_operands(end):
            i, end = end, self.operand_end(end + 1)
        return end

    def arguments(self, i):
        """What stands between the parentheses at i, by commas."""
        parts, begin, j = [], self.tokens[i].end, i + 1
        while j < self.tokens[i].partner:
            if self.at(j) == ",":
                parts.append(self.text[begin:self.tokens[j].start].strip())
                begin = self.tokens[j].end
            if self.at(j) in ("(", "[", "{"):
                j = self.tokens[j].partner + 1
            else:
                j = max(j + 1, self.template_end(j))
        return parts + [self.text[begin:self.tokens[self.tokens[i].partner].start].strip()]
