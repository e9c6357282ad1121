"""Checks that the sources and docs/failures.md have the same sentences, to the character.

The document has a sentence for each failure, also for those that no test can provoke. It stands in a column headed
"Sentence", where a cell that begins with a capital letter has sentences with " / " between them, or in quotation marks.
"""
import re

from lib.checkout import ROOT, sources
from lib.cpp_tokens import literal_text, tokens
from lib.layout import RAISES_SENTENCES, STEP_TEXTS, WINDOW_TEXTS

DOCUMENT = "docs/failures.md"
# Calls whose texts are no failures: names of steps, and the caption of a message box.
NOT_FAILURES = ("reportProgress", "MessageBoxW")
ADDS_ERROR_NUMBER = "withWindowsError"
# The ends of a whole sentence, or of a part after which the program inserts something.
ENDINGS = (".", ")", "(error", "HTTP", "<release>")


def _texts(name):
    """The texts of a source, except those in calls of NOT_FAILURES. Neighbouring literals are one text."""
    text, skipping, previous = None, False, ("", "")
    for token in tokens(name):
        part = literal_text(token)
        if part is not None and not skipping:
            if text is None and previous == (ADDS_ERROR_NUMBER, "("):
                part += " (Windows error N)"
            text = (text or "") + part
        elif text is not None:
            yield text
            text = None
        skipping = (skipping or token.text in NOT_FAILURES) and token.text != ";"
        previous = (previous[1], token.text)


def _is_sentence(text):
    return re.match(r"[A-Z][^\\]* ", text) is not None and "\\" not in text


def _texts_of_failures():
    names = sources(*(f"{folder}/*.cpp" for folder in RAISES_SENTENCES))
    return {text for name in names if name != WINDOW_TEXTS for text in _texts(name)}


def _cells(row):
    return [cell.strip() for cell in row.strip().strip("|").split("|")]


def _sentences_in_tables(lines):
    column = None
    for line in lines:
        if not line.startswith("|"):
            column = None
        elif column is None:
            column = _cells(line).index("Sentence") if "Sentence" in _cells(line) else -1
        elif column >= 0 and _cells(line)[column][:1].isupper():
            yield from _cells(line)[column].split(" / ")


def _quoted_sentences(text):
    return [quoted.strip() for quoted in re.findall(r'"([^"]+)"', text) if quoted.endswith(".") and " " in quoted.strip()]


def _is_in(sentence, texts):
    """Whether a text is the sentence, or its beginning up to where the program inserts something."""
    return any(sentence == text.strip() or (text.endswith(" ") and sentence.startswith(text)) for text in texts)


def check():
    listed = (ROOT / DOCUMENT).read_text()
    one_line = " ".join(listed.split("\n"))
    raised = _texts_of_failures()
    faults = [f"not a sentence of {DOCUMENT}: {text}" for text in sorted(filter(_is_sentence, raised))
              if text not in one_line or not text.strip().endswith(ENDINGS)]
    shown = raised | {part for name in (WINDOW_TEXTS, STEP_TEXTS) for text in _texts(name) for part in text.split("\\n")}
    known = [*_sentences_in_tables(listed.splitlines()), *_quoted_sentences(one_line)]
    return faults + [f"{DOCUMENT} has a sentence that no source has: {sentence}" for sentence in known
                     if not _is_in(sentence, shown)]
