"""The changes that mutants are made by: what a slip of the pen might have put instead."""

import collections
import math
import random
import re
import struct

from source import Source


class Change:
    """Another text for a part of a file."""

    def __init__(self, path, source, kind, start, end, text):
        self.path, self.kind, self.start, self.end, self.text = path, kind, start, end, text
        self.first_line, last_line = source.line_of(start), source.line_of(end - 1)
        lines = source.text.split("\n")[self.first_line - 1:last_line]
        self.before = lines
        begin = source.line_starts[self.first_line - 1]
        whole = "\n".join(lines)
        self.after = (whole[:start - begin] + text + whole[end - begin:]).split("\n")

    @property
    def key(self):
        return (self.path, tuple(line.strip() for line in self.before),
                tuple(line.strip() for line in self.after))

    def applied(self, text):
        return text[:self.start] + self.text + text[self.end:]


# ---- Signs --------------------------------------------------------------------

OPPOSITE = {"+": "-", "-": "+", "+=": "-=", "-=": "+=", "<<": ">>", ">>": "<<"}


def signs(source):
    for i, token in enumerate(source.tokens):
        if token.text in OPPOSITE and source.is_between_operands(i):
            yield token.start, token.end, OPPOSITE[token.text]
        elif token == "-" and source.tight(i + 1) and source.begins_operand(i):
            yield token.start, token.end, ""


# ---- Constants ----------------------------------------------------------------

def next_single(x):
    """The float next to x, away from zero."""
    bits = struct.unpack("<I", struct.pack("<f", x))[0]
    return struct.unpack("<f", struct.pack("<I", bits + 1))[0]


def float_literals(text):
    hexadecimal = text.lower().startswith("0x")
    single = text[-1] in "fF" and (not hexadecimal or "p" in text.lower())
    digits = text.rstrip("fFlL") if single or not hexadecimal else text
    value = float.fromhex(digits) if hexadecimal else float(digits)

    def literal(x):
        if single:
            x = struct.unpack("<f", struct.pack("<f", x))[0]
        return (x.hex() if hexadecimal else repr(x)) + ("f" if single else "")

    if value == 0:
        return [literal(0.001)]
    return [literal(next_single(value) if single else math.nextafter(value, math.inf)),
            literal(value * 1.001)]


def integer_literals(text):
    digits, suffix = re.fullmatch(r"(\w*?)([uUlL]*)", text.replace("'", "")).groups()
    value = int(digits, 0) if not re.fullmatch(r"0\d+", digits) else int(digits, 8)
    write = hex if digits[:2] in ("0x", "0X") else str
    return [write(x) + suffix for x in (value - 1, value + 1) if x >= 0]


def is_float(literal):
    hexadecimal = literal.lower().startswith("0x")
    return bool(re.search("[pP]" if hexadecimal else "[.eEfF]", literal))


def declares(source, i):
    """Whether the name at i, or what is in brackets for one, is being declared as an array."""
    if source.at(i) == "]":
        return declares(source, source.tokens[i].partner - 1)
    if source.at(i) == ")":
        return source.at(source.tokens[i].partner + 1) in ("&", "*")
    before = i - 1
    if source.at(before) in ("*", "&") and not source.is_between_operands(before):
        before -= 1
    if source.at(before) == "," and source.at(before - 1) == "]":
        return declares(source, before - 1)    # another one in a list
    return source.at(before) in (">", "#") or (
        source.is_word(before) and source.at(before) not in ("return", "else"))


def is_declared_array(source, i):
    """Whether the token at i is within the length of an array that is being declared."""
    for j in range(i, 0, -1):
        if source.at(j) in (";", "{", "}", "("):
            return False
        if source.is_subscript(j) and source.tokens[j].partner > i:
            return declares(source, j - 1)
    return False


def constants(source):
    for i, token in enumerate(source.tokens):
        if token.kind != "number" or is_declared_array(source, i):
            continue
        for text in (float_literals if is_float(token.text) else integer_literals)(token.text):
            yield token.start, token.end, text


# ---- Fused operations -----------------------------------------------------------

FUSED = {"fma": "{a} * {b} + {c}", "fms": "{c} - {a} * {b}", "fnms": "{a} * {b} - {c}"}
FUSED_INTRINSICS = {"fmadd": "{p}_add{t}({p}_mul{t}({a}, {b}), {c})",
                    "fmsub": "{p}_sub{t}({p}_mul{t}({a}, {b}), {c})",
                    "fnmadd": "{p}_sub{t}({c}, {p}_mul{t}({a}, {b}))"}
INTRINSIC = re.compile(r"(_mm(?:256)?)_(fmadd|fmsub|fnmadd)(_p[sd])")


def as_operand(argument):
    simple = re.fullmatch(r"[\w.:]+(\([^()]*\)|\[[^][]*\])?", argument)
    return argument if simple else f"({argument})"


def fused(source):
    """Other forms, and the product and the sum rounded apart."""
    for i, token in enumerate(source.tokens):
        if not source.is_call(i) or source.at(i + 1) != "(":
            continue
        arguments = source.arguments(i + 1)
        if len(arguments) != 3:
            continue
        end = source.tokens[source.tokens[i + 1].partner].end
        intrinsic = INTRINSIC.fullmatch(token.text)
        if token.text in FUSED:
            qualified = source.at(i - 1) == "::"
            a, b, c = map(as_operand, arguments)
            start = source.tokens[i - 2 if qualified else i].start
            yield start, end, f"({FUSED[token.text].format(a=a, b=b, c=c)})"
            if not qualified:
                for other in FUSED:
                    yield token.start, token.end, other
        elif intrinsic:
            prefix, form, kind = intrinsic.groups()
            a, b, c = arguments
            yield token.start, end, FUSED_INTRINSICS[form].format(p=prefix, t=kind, a=a, b=b, c=c)
            for other in FUSED_INTRINSICS:
                yield token.start, token.end, f"{prefix}_{other}{kind}"


# ---- Order of rounding ----------------------------------------------------------

# What sums and products of these are aren't rounded.
INTEGERS = {"M", "N", "at", "bands", "block", "buffer", "channels", "e", "first", "frame",
            "history", "i", "in", "j", "k", "l", "lanes", "m", "n", "offset", "out", "size_t",
            "sizeof", "slack", "slot", "src", "dst", "stages", "state", "step", "stride", "taps",
            "window", "work"}
FLIPPED = {"+": "-", "-": "+"}


def is_of_integers(source, first, last):
    """Whether the operands from one token to another look like integers or pointers; what they
    call and are subscripted with doesn't count."""
    i = first
    while i < last:
        token = source.tokens[i]
        if token.text in INTEGERS or token.kind == "number" and not is_float(token.text):
            return True
        skips = source.names_call(i) and token == "(" or source.is_subscript(i)
        i = (token.partner if skips and token.partner else max(i, source.template_end(i) - 1)) + 1
    return False


def order(source):
    """Sums and products of three, the other two first."""
    for i, token in enumerate(source.tokens):
        if token.text not in ("+", "-", "*") or token.subscript or \
                not source.is_between_operands(i):
            continue
        alike = ("+", "-") if token != "*" else ("*",)
        end_of = source.operand_end if token == "*" else source.term_end

        def joined(sign):
            """The sign that the last of three has once it is in parentheses behind this one."""
            return FLIPPED[sign] if token == "-" else sign

        def behind(first):
            """Of `x s y s z` without brackets: the second sign and where y and z end."""
            middle = end_of(first)
            last = end_of(middle + 1)
            fits = middle > first and source.at(middle) in alike and \
                source.is_between_operands(middle) and last > middle + 1
            return (middle, last) if fits else None

        def written(first, middle, last):
            return (f"{source.text_of(first, middle)} {joined(source.at(middle))} "
                    f"{source.text_of(middle + 1, last)}")

        # a s b s c
        three = behind(i + 1)
        if three and not is_of_integers(source, i + 1, three[1]):
            yield *source.span(i + 1, three[1]), f"({written(i + 1, *three)})"
        # a s (b s c)
        if source.at(i + 1) == "(" and not source.tight(i + 1):
            two, last = behind(i + 2), source.tokens[i + 1].partner
            if two and two[1] == last and not is_of_integers(source, i + 2, last):
                yield *source.span(i + 1, last + 1), written(i + 2, *two)
        # (a s b) s c
        first, last = i + 1, end_of(i + 1)
        group = source.group_before(i)
        if group is None or last == first or source.at(group - 1) in ("-", "*", "/"):
            continue
        middle = end_of(group + 1)
        if source.at(middle) in alike and end_of(middle + 1) == i - 1 and \
                not is_of_integers(source, group + 1, last):
            sign = source.at(middle)
            inner = FLIPPED[token.text] if sign == "-" else token.text
            yield *source.span(group, last), (
                f"{source.text_of(group + 1, middle)} {sign} "
                f"({source.text_of(middle + 1, i - 1)} {inner} {source.text_of(first, last)})")


# ---- Bounds and counts ------------------------------------------------------------

NEXT_TO = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="}
COUNTED = {"counted", "counted_fours", "cover"}


def bounds(source):
    for i, token in enumerate(source.tokens):
        if token.text in NEXT_TO and source.is_between_operands(i):
            yield token.start, token.end, NEXT_TO[token.text]
            loop = token.call is not None and source.at(token.call) == "for"
            if token == "<" and loop:
                end = source.tokens[token.call + 1].partner
                if "++" in (t.text for t in source.tokens[i:end]):
                    yield token.start, token.end, "+ 1 <"
        elif token.text in COUNTED and source.begins_statement(i):
            bracket = source.template_end(i + 1)
            if source.at(bracket) == "(":
                start = source.tokens[bracket].end
                count = source.arguments(bracket)[0]
                yield start, start + len(count), f"{count} - 1"


# ---- Indices --------------------------------------------------------------------

def indices(source):
    for i, token in enumerate(source.tokens):
        empty = source.at(i + 1) == "]"
        if source.is_subscript(i) and not empty and not is_declared_array(source, i + 1):
            inner = source.text[token.end:source.tokens[token.partner].start]
            if re.fullmatch(r"\d+", inner):
                continue    # a constant
            if re.search(r"[?&|<>]", inner):
                inner = f"({inner})"
            yield token.end, source.tokens[token.partner].start, f"{inner} + 1"


# ---- One for another ----------------------------------------------------------------

def both_ways(*pairs):
    return dict(pairs) | {b: a for a, b in pairs}


EXTREMES = both_ways(("max", "min"), ("maxnum", "minnum"), ("greater_of", "lesser_of"),
                     ("max_propagating", "min_propagating"))
CALLS = EXTREMES | both_ways(
    ("lower", "upper"), ("interleave", "deinterleave"), ("split_pairs", "join_pairs"),
    ("sin_pi", "cos_pi"), ("sines", "cosines")) | {
        f"{access}_descending": access
        for access in ("load", "store", "load_complex", "store_complex")}
DROPPED = {"reverse", "reversed", "natural_order"}
MEMBERS = both_ways(("re", "im"), ("lo", "hi"), ("even", "odd"), ("s", "c"), ("s0", "s1"))
CHOICES = both_ways(("true", "false"))
INTRINSICS = [("_add_p", "_sub_p"), ("_sub_p", "_add_p"), ("_max_", "_min_"), ("_min_", "_max_"),
              ("unpacklo", "unpackhi"), ("unpackhi", "unpacklo"), ("_and_", "_or_"),
              ("_or_", "_and_"), ("cmpgt", "cmpge"), ("_CMP_GT_OQ", "_CMP_GE_OQ")]


def extremes(source):
    for i, token in enumerate(source.tokens):
        if token.text in EXTREMES and source.is_call(i):
            yield token.start, token.end, EXTREMES[token.text]


def lanes(source):
    """The other half, the other part, the other order."""
    for i, token in enumerate(source.tokens):
        if token.kind != "word":
            continue
        if source.is_call(i) and token.text not in EXTREMES:
            if token.text in CALLS:
                yield token.start, token.end, CALLS[token.text]
            elif token.text in DROPPED and source.at(i - 1) != "::":
                yield token.start, token.end, ""
        elif token.text in MEMBERS and source.at(i - 1) == "." and source.at(i + 1) != "(":
            yield token.start, token.end, MEMBERS[token.text]
        elif token.text in CHOICES and source.at(i - 1) in ("<", ",", "(", "=", "return"):
            yield token.start, token.end, CHOICES[token.text]
        if token.text.startswith("_"):
            for old, new in INTRINSICS:
                if old in token.text:
                    yield token.start, token.end, token.text.replace(old, new)


# ---- All of them ------------------------------------------------------------------

KINDS = {"sign": signs, "constant": constants, "fused form": fused, "order": order,
         "bound": bounds, "index": indices, "extreme": extremes, "lane": lanes}
# How likely a kind is on a line where there are several: the harder to notice, the likelier.
WEIGHTS = {"fused form": 3, "order": 4, "bound": 2, "extreme": 2}


def changes_of(path, text):
    source = Source(text)
    changes = [Change(path, source, kind, *change)
               for kind, find in KINDS.items() for change in find(source)]
    return [change for change in changes if change.before != change.after]


def draw(changes, seed):
    """All changes in an order of chance: one of each line, then another, so that files have parts
    by the lines of their arithmetic. What chance makes of a line hangs on the line alone: where
    others are edited, it stays in the sample."""
    lines, copies = {}, collections.Counter()
    for change in changes:
        kinds = lines.setdefault((change.path, change.first_line), {})
        kinds.setdefault(change.kind, []).append(change)
    turns = []
    for (path, _), kinds in lines.items():
        text = next(iter(kinds.values()))[0].before[0].strip()
        copies[path, text] += 1
        chance = random.Random(f"{seed} {path} {text} {copies[path, text]}")
        turn = 0
        while kinds:
            kind, = chance.choices(list(kinds), [WEIGHTS.get(kind, 1) for kind in kinds])
            change = kinds[kind].pop(chance.randrange(len(kinds[kind])))
            turns.append(((turn, chance.random()), change))
            if not kinds[kind]:
                del kinds[kind]
            turn += 1
    return [change for _, change in sorted(turns, key=lambda place: place[0])]
