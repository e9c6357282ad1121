"""The rows of the result, and the formats in which they are printed."""
import dataclasses

HEADINGS = ["figure", "value", "floor", "ratio", "quartiles", "processor", "its floor", "its ratio", "aim"]


@dataclasses.dataclass
class Row:
    """One figure. Without a floor it has no ratio.

    `quartiles` are those of the pairs' ratios. `processor` are the Pairs of processor time, in seconds.
    """

    name: str
    value: float
    floor: float | None = None
    aim: str = ""
    digits: int = 2
    ratio: float | None = None
    quartiles: tuple | None = None
    processor: object = None

    def cells(self, thousands=","):
        def number(value, digits):
            return "" if value is None else f"{value:{thousands}.{digits}f}"

        ratio = self.value / self.floor if self.ratio is None and self.floor else self.ratio
        quartiles = "" if self.quartiles is None else f"{self.quartiles[0]:.2f} to {self.quartiles[1]:.2f}"
        used = self.processor
        processor = ["", "", ""] if used is None else [number(used.figure, self.digits), number(used.floor, self.digits),
                                                       number(used.ratio, 2)]
        return [self.name, number(self.value, self.digits), number(self.floor, self.digits), number(ratio, 2),
                quartiles, *processor, self.aim]


def compared(name, comparison, aim, digits=2):
    """The row of a Comparison."""
    time = comparison.time
    return Row(name, time.figure, time.floor, aim, digits, time.ratio, time.quartiles, comparison.processor)


def as_tsv(rows):
    return "".join("\t".join(row.cells(thousands="")) + "\n" for row in rows)


def as_text(rows):
    lines = [HEADINGS] + [row.cells() for row in rows]
    widths = [max(len(line[column]) for line in lines) for column in range(len(HEADINGS))]
    text = ""
    for name, *numbers, aim in lines:
        cells = [f"{name:{widths[0]}}"] + [f"{cell:>{width}}" for cell, width in zip(numbers, widths[1:])] + [aim]
        text += "  ".join(cells).rstrip() + "\n"
    return text


def as_line(row):
    """One row as a line of text, with the headings."""
    named = [f"{heading} {cell}" for heading, cell in zip(HEADINGS[1:], row.cells()[1:]) if cell]
    return f"{row.name.strip()}: {', '.join(named)}"


def as_markdown(rows):
    lines = ["| " + " | ".join(HEADINGS) + " |", "|---|" + "--:|" * (len(HEADINGS) - 2) + "---|"]
    lines += ["| " + " | ".join(row.cells()) + " |" for row in rows]
    return "\n".join(lines) + "\n"
