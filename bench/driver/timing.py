"""Measures a figure and its floor side by side."""
import os
import subprocess
import sys
import time


def say(text):
    print(f"[{time.monotonic() - _STARTED:4.0f} s] {text}", file=sys.stderr, flush=True)


_STARTED = time.monotonic()


def _settled(measure):
    # What was written before is on the disk, so that nobody else's writing is measured.
    os.sync()
    return measure()


def compare(repetitions, figure, floor):
    """The least of each over so many repetitions, in turn, each of them first as often as second.

    The least, because whatever else runs on the machine only adds. `figure` and `floor` prepare what they need, measure
    and return seconds.
    """
    figures, floors = [], []
    for repetition in range(repetitions):
        turns = [(figure, figures), (floor, floors)]
        for measure, results in turns if repetition % 2 == 0 else reversed(turns):
            results.append(_settled(measure))
    say("  figure " + " ".join(f"{s:.3f}" for s in figures) + "   floor " + " ".join(f"{s:.3f}" for s in floors))
    return min(figures), min(floors)


def least(repetitions, measure):
    """The least over so many repetitions."""
    return min(_settled(measure) for _ in range(repetitions))


def seconds_of_native(*command):
    """The seconds that a native program takes from start to end."""
    started = time.monotonic()
    subprocess.run([str(word) for word in command], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, check=True)
    return time.monotonic() - started
