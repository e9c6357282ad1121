"""Whether includes run one way."""
import fnmatch
import re

from lib.checkout import ROOT, sources
from lib.layout import MAY_INCLUDE, PORTABLE, WINDOWS_HEADERS

INCLUDE = re.compile(r'^\s*#\s*include\s*(["<])([^">]+)[">]')


def _includes(folder):
    """Of each include of a folder's sources: where it stands, whether it is one of the project's, what it names."""
    for name in sources(f"{folder}/*.cpp", f"{folder}/*.h"):
        for number, line in enumerate((ROOT / name).read_text().splitlines(), 1):
            if include := INCLUDE.match(line):
                yield f"{name}:{number}: {line}", include[1] == '"', include[2]


def check():
    faults = []
    for folder, others in MAY_INCLUDE.items():
        allowed = [f"{folder}/*", *others]
        for place, own, header in _includes(folder):
            if own and "/" in header and not any(fnmatch.fnmatchcase(header, pattern) for pattern in allowed):
                faults.append(f"an include that runs the wrong way: {place}")
            if not own and folder in PORTABLE and header.lower() in WINDOWS_HEADERS:
                faults.append(f"a Windows header in the portable part: {place}")
    return faults
