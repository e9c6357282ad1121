"""The tokens of a C++ source, as clang sees them."""
import functools

from clang import cindex

from lib.checkout import ROOT


@functools.cache
def _index():
    return cindex.Index.create()


def tokens(name):
    """The spelling of every token of a source but comments. Nothing that it includes is read."""
    unit = _index().parse(str(ROOT / name), args=["-x", "c++", "-std=c++20", "-nostdinc"])
    return [token.spelling for token in unit.get_tokens(extent=unit.cursor.extent)
            if token.kind != cindex.TokenKind.COMMENT]


def literal_text(token):
    """What stands between the quotes of a string literal, escapes as they are written; None of another token."""
    begin = token.find('"')
    if not token.endswith('"') or token[:begin] not in ("", "L", "u8"):
        return None
    return token[begin + 1:-1]
