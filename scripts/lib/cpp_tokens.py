"""The tokens of a C++ source, as clang sees them."""
import dataclasses
import functools

from clang import cindex

from lib.checkout import ROOT


@dataclasses.dataclass(frozen=True)
class Token:
    """A token and its place in the source, in bytes."""

    text: str
    start: int
    end: int
    kind: str  # PUNCTUATION, KEYWORD, IDENTIFIER or LITERAL


@functools.cache
def _index():
    return cindex.Index.create()


def tokens(name):
    """All tokens of a source except comments. Included files are not read."""
    unit = _index().parse(str(ROOT / name), args=["-x", "c++", "-std=c++20", "-nostdinc"])
    return [Token(token.spelling, token.extent.start.offset, token.extent.end.offset, token.kind.name)
            for token in unit.get_tokens(extent=unit.cursor.extent) if token.kind != cindex.TokenKind.COMMENT]


def literal_text(token):
    """The text between the quotes of a string literal, with its escapes as they are; None for any other token."""
    begin = token.text.find('"')
    if not token.text.endswith('"') or token.text[:begin] not in ("", "L", "u8"):
        return None
    return token.text[begin + 1:-1]
