"""Checks that includes run one way and that the core calls the system only through platform/."""
import fnmatch
import re

from lib.checkout import ROOT, sources
from lib.layout import CORE, KEPT_OUT, MAY_INCLUDE, PAST_THE_DOOR

INCLUDE = re.compile(r'^\s*#\s*include\s*(["<])([^">]+)[">]')


def _includes(*patterns):
    """For each include of these sources: its place, whether it is in double quotes, and the header."""
    for name in sources(*patterns):
        if not name.endswith((".cpp", ".h")):
            continue
        for number, line in enumerate((ROOT / name).read_text().splitlines(), 1):
            if include := INCLUDE.match(line):
                yield f"{name}:{number}: {line}", include[1] == '"', include[2]


def _wrong_ways():
    for folder, others in MAY_INCLUDE.items():
        allowed = [f"{folder}/*", *others]
        for place, own, header in _includes(folder):
            if own and "/" in header and not any(fnmatch.fnmatchcase(header, pattern) for pattern in allowed):
                yield f"an include that runs the wrong way: {place}"


def _kept_out():
    for complaint, headers, patterns in KEPT_OUT:
        for place, own, header in _includes(*patterns):
            if not own and header.lower() in headers:
                yield f"{complaint}: {place}"


def _past_the_door():
    for name in sources(*CORE):
        for number, line in enumerate((ROOT / name).read_bytes().decode("utf-8", "replace").splitlines(), 1):
            if name.endswith((".cpp", ".h")) and re.search(PAST_THE_DOOR, line):
                yield f"an operation of std::filesystem in the core: {name}:{number}: {line}"


def check():
    return [*_wrong_ways(), *_kept_out(), *_past_the_door()]
