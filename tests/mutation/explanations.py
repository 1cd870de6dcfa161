"""The file of survivors that are explained."""

import collections

# `kind` is "equivalent" or "unseen".
Explanation = collections.namedtuple("Explanation", "line path before after kind reason")
KINDS = ("equivalent", "unseen")


def read(path):
    """The explanations by what they explain, as `Change.key` has it; ValueError if the file can't
    be understood."""
    found, entry = {}, []
    lines = path.read_text(encoding="utf-8").splitlines()
    for number, line in enumerate(lines + [""], 1):
        if line.startswith("#"):
            continue
        if line.strip():
            entry.append((number, line))
        elif entry:
            explanation = parse(entry)
            found[explanation.path, explanation.before, explanation.after] = explanation
            entry = []
    return found


def parse(entry):
    number, path = entry[0]
    before = tuple(line[1:].strip() for _, line in entry if line.startswith("-"))
    after = tuple(line[1:].strip() for _, line in entry if line.startswith("+"))
    text = " ".join(line.strip() for _, line in entry[1:] if line[0] not in "-+")
    kind, _, reason = text.partition(":")
    if not before or not after or kind not in KINDS or not reason.strip():
        raise ValueError(f"survivors:{number}: a file, its lines with - and +, and `equivalent:` "
                         "or `unseen:` with a reason are expected")
    return Explanation(number, path.strip(), before, after, kind, reason.strip())


def is_gone(explanation, root):
    """Whether the file hasn't these lines, one after the other, any more."""
    try:
        lines = [line.strip() for line in (root / explanation.path).read_text().splitlines()]
    except OSError:
        return True
    count = len(explanation.before)
    return not any(tuple(lines[i:i + count]) == explanation.before for i in range(len(lines)))
