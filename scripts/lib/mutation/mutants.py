"""Sources with one change."""
from lib.checkout import ROOT
from lib.mutation.changes import changes

# One character for each byte: places in a source are counted in bytes.
ENCODING = "latin-1"


def source_text(name):
    return (ROOT / name).read_text(ENCODING)


class Mutant:
    """A source with one change. `key` is made of the changed lines, so it stays when the code around them moves."""

    def __init__(self, group, name, text, start, end, new):
        self.group = group
        self.name = name
        self.text = text[:start] + new + text[end:]
        first = text.rfind("\n", 0, start + len(text[start:end]) - len(text[start:end].lstrip())) + 1
        self.line = text.count("\n", 0, first) + 1
        before = text[first:(text + "\n").find("\n", end)]
        after = self.text[first:(self.text + "\n").find("\n", start + len(new))] if first <= start else new
        self.key = f"{name}: {' '.join(before.split())} => {' '.join(after.split())}".rstrip()


def mutants(groups, names):
    """The mutants of the named sources, or of all sources of the groups when none is named."""
    found = {}
    for group in groups:
        for name in group.sources:
            if names and name not in names:
                continue
            text = source_text(name)
            for start, end, new in changes(name, text):
                mutant = Mutant(group, name, text, start, end, new)
                if mutant.text != text:
                    found.setdefault((name, mutant.text), mutant)
    return list(found.values())
