"""The single changes to a source, found by its tokens."""
from lib.cpp_tokens import literal_text, tokens

# Operators between spaces, and their replacements.
OPERATORS = {"==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">", "&&": "||", "||": "&&", "+": "-",
             "-": "+", "*": "/"}
VALUES = {"true": "false", "false": "true"}
OPENING, CLOSING = "([{", ")]}"
LEAVES = ("return", "continue", "break")


class Source:
    """A source's text, and its tokens outside of directives and static assertions."""

    def __init__(self, name, text):
        self.text = text
        lines = {"#", "static_assert"}
        self.tokens = [token for token in tokens(name) if self._first_word(token) not in lines]

    def _first_word(self, token):
        """The beginning of the token's line: "#" for a directive, else the text up to a bracket or the token."""
        line = self.text[self.text.rfind("\n", 0, token.start) + 1:token.start] + token.text
        return "#" if line.lstrip().startswith("#") else line.split("(")[0].strip()

    def is_spaced(self, token):
        return self.text[token.start - 1] == " " and self.text[token.end:token.end + 1] == " "

    def starts_line(self, token):
        """Whether the token is the first in its line, after the end of a statement or the start or end of a block."""
        before = self.text[:token.start].rstrip()
        return before.endswith((";", "{", "}")) and "\n" in self.text[len(before):token.start]

    def line_start(self, token):
        return self.text.rfind("\n", 0, token.start) + 1


def _other_values(source):
    """Replaces an operator, a number, a text or a truth value."""
    for token in source.tokens:
        text = literal_text(token)
        if token.text in OPERATORS and source.is_spaced(token):
            yield token.start, token.end, OPERATORS[token.text]
        elif token.text in VALUES:
            yield token.start, token.end, VALUES[token.text]
        elif token.text == "!" and source.text[token.start - 1] in " (":
            yield token.start, token.end, ""
        elif token.text.isdecimal():
            for number in (int(token.text) + 1, int(token.text) - 1):
                yield token.start, token.end, str(number)
        elif text:
            yield token.end - 1, token.end, 'x"'
        elif token.kind == "LITERAL" and token.text.endswith("'") and not token.text.endswith("'\\0'"):
            yield token.start + token.text.index("'"), token.end, "'\\x02'"


def _closing(found, opening):
    """The number of the token that closes the bracket at `opening`."""
    depth = 0
    for number in range(opening, len(found)):
        depth += (found[number].text in OPENING) - (found[number].text in CLOSING)
        if depth == 0:
            return number
    return len(found) - 1


def _end_of_statement(found, first):
    """The number of the ";" that ends the statement from `first` on; None when a block comes before it."""
    for number in range(first, len(found)):
        if found[number].text in "{}":
            return None
        if found[number].text == ";":
            return number
    return None


def _dropped_checks(source):
    """Drops a check together with the statement that leaves."""
    found = source.tokens
    for number, token in enumerate(found):
        if token.text != "if" or found[number + 1].text != "(":
            continue
        after = _closing(found, number + 1) + 1
        end = _end_of_statement(found, number)
        if end is not None and found[after].text in LEAVES:
            yield token.start, found[end].end, ";"


def _is_dropped_alone(words):
    """Whether a statement, given as its words without the ";", is only a call, an increment or an assignment."""
    if "=" not in words and words[-1] == ")" and len(words) > 2 and words[1] in ("(", ".", "->"):
        return True
    if words[0] == "++":
        return len(words) == 2
    assignment = next((number for number, word in enumerate(words) if word in ("=", "+=")), None)
    return assignment is not None and all(word.isidentifier() or word.isdecimal() or word in ".[]"
                                          for word in words[:assignment])


def _dropped_statements(source):
    found = source.tokens
    for number, token in enumerate(found):
        if token.kind != "IDENTIFIER" and token.text != "++" or not source.starts_line(token):
            continue
        end = _end_of_statement(found, number)
        if end is None:
            continue
        words = [word.text for word in found[number:end]]
        # In a declaration the second word is a name.
        if len(words) > 1 and not (words[0].isidentifier() and words[1].isidentifier()) and _is_dropped_alone(words):
            yield source.line_start(token), found[end].end, ""


def _operand_end(found, operator):
    """The number of the token after the right operand of an operator."""
    depth, number = 0, operator + 1
    while number < len(found):
        text = found[number].text
        if depth == 0 and (text in (")", "]", "}", ";", "?", "&&", "||")):
            break
        depth += (text in OPENING) - (text in CLOSING)
        number += 1
    return number


def _operand_start(found, operator):
    """The number of the first token of the left operand of an operator."""
    depth, number = 0, operator
    while number > 0:
        text = found[number - 1].text
        if depth == 0 and text in ("(", "[", "{", ";", "?", "=", "&&", "||", "return"):
            break
        depth += (text in CLOSING) - (text in OPENING)
        number -= 1
    return number


def _dropped_operands(source):
    """Drops one side of each && and ||, with the operator."""
    found = source.tokens
    for number, token in enumerate(found):
        if token.text in ("&&", "||") and source.text[token.start - 1] == " " and source.text[token.end].isspace():
            yield token.start, found[_operand_end(found, number) - 1].end, ""
            yield found[_operand_start(found, number)].start, token.end, ""


def changes(name, text):
    """All single changes of a source: where each starts and ends in the text, and the text that replaces it."""
    source = Source(name, text)
    for kind in (_other_values, _dropped_checks, _dropped_statements, _dropped_operands):
        yield from kind(source)
