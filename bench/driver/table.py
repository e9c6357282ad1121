"""The rows of the result, and the forms in which they are shown."""
import dataclasses


@dataclasses.dataclass
class Row:
    """One figure. Without a floor there is no ratio."""

    name: str
    value: float
    floor: float | None = None
    aim: str = ""
    digits: int = 2

    def cells(self, thousands=","):
        def number(value, digits):
            return "" if value is None else f"{value:{thousands}.{digits}f}"

        ratio = self.value / self.floor if self.floor else None
        return [self.name, number(self.value, self.digits), number(self.floor, self.digits), number(ratio, 2), self.aim]


HEADINGS = ["figure", "value", "floor", "ratio", "aim"]


def as_tsv(rows):
    return "".join("\t".join(row.cells(thousands="")) + "\n" for row in rows)


def as_text(rows):
    lines = [HEADINGS] + [row.cells() for row in rows]
    widths = [max(len(line[column]) for line in lines) for column in range(len(HEADINGS))]
    text = ""
    for name, value, floor, ratio, aim in lines:
        text += (f"{name:{widths[0]}}  {value:>{widths[1]}}  {floor:>{widths[2]}}  {ratio:>{widths[3]}}  {aim}".rstrip()
                 + "\n")
    return text


def as_markdown(rows):
    lines = ["| " + " | ".join(HEADINGS) + " |", "|---|--:|--:|--:|---|"]
    lines += ["| " + " | ".join(row.cells()) + " |" for row in rows]
    return "\n".join(lines) + "\n"
