"""Measures a figure and its floor side by side."""
import dataclasses
import os
import statistics
import subprocess
import sys
import time

import processor


def say(text):
    print(f"[{time.monotonic() - _STARTED:4.0f} s] {text}", file=sys.stderr, flush=True)


_STARTED = time.monotonic()


@dataclasses.dataclass
class Cost:
    """What one run took: its time, and the processor time of all its processes, in seconds."""

    seconds: float
    processor: float

    def __add__(self, other):
        return Cost(self.seconds + other.seconds, self.processor + other.processor)


class Pairs:
    """Several pairs of values, one of a figure and one of its floor, measured one right after the other."""

    def __init__(self, figures, floors):
        self.figure = statistics.median(figures)
        self.floor = statistics.median(floors)
        ratios = [figure / floor for figure, floor in zip(figures, floors)]
        self.ratio = statistics.median(ratios)
        self.quartiles = (self.ratio, self.ratio)
        if len(ratios) > 1:
            lower, _, upper = statistics.quantiles(ratios, n=4, method="inclusive")
            self.quartiles = (lower, upper)


class Comparison:
    """Runs of a figure and of its floor, in pairs."""

    def __init__(self, figures, floors):
        self.time = Pairs([cost.seconds for cost in figures], [cost.seconds for cost in floors])
        self.processor = Pairs([cost.processor for cost in figures], [cost.processor for cost in floors])


def _settled(measure):
    # Earlier writes reach the disk first, so that they are not measured.
    os.sync()
    return measure()


def compare(repetitions, figure, floor):
    """Measures so many pairs, in which the figure comes first as often as the floor.

    `figure` and `floor` prepare what they need, measure and return a Cost.
    """
    figures, floors = [], []
    for repetition in range(repetitions):
        turns = [(figure, figures), (floor, floors)]
        for measure, results in turns if repetition % 2 == 0 else reversed(turns):
            results.append(_settled(measure))
    say("  figure " + " ".join(f"{cost.seconds:.3f}" for cost in figures) +
        "   floor " + " ".join(f"{cost.seconds:.3f}" for cost in floors))
    return Comparison(figures, floors)


def median_seconds(repetitions, measure):
    """The median time of so many repetitions."""
    return statistics.median(_settled(measure).seconds for _ in range(repetitions))


def cost_of_native(*command):
    """The Cost of a native program from start to end."""
    def seconds():
        started = time.monotonic()
        subprocess.run([str(word) for word in command], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, check=True)
        return time.monotonic() - started

    return Cost(*processor.measured(seconds))
