"""Rows that several measurements share."""
from games import MIB
from table import Row

MEMORY_AIM = "at most 16 MiB above"


def mebibytes(size):
    return f"{size // MIB} MiB"


def memory_row(what, peak, idle):
    return Row(f"memory: {what} [MiB]", peak / MIB, idle / MIB, MEMORY_AIM, digits=1)


def parts(floor, costs):
    """Rows with the parts of a figure, each beside the floor of the whole figure."""
    return [Row(f"  of it: {what} [s]", seconds, floor, digits=3) for what, seconds in costs.items()]
