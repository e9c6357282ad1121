"""Checks that every source is formatted as .clang-format says."""
import re
import subprocess

from lib.checkout import ROOT, sources
from lib.checks import judging_clang


def check():
    if not judging_clang.is_here("clang-format"):
        return []
    judged = subprocess.run(["clang-format", "--dry-run", *sources("*.cpp", "*.h")], cwd=ROOT, check=False,
                            stdin=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True).stderr
    wrong = sorted(set(re.findall(r"^([^: \n]+\.(?:cpp|h)):", judged, re.MULTILINE)))
    return [f"not formatted; this mends it:\n    clang-format -i {' '.join(wrong)}"] if wrong else []
