"""Whether every source is formatted as .clang-format says."""
import re
import subprocess

from lib.checkout import ROOT, sources


def check():
    judged = subprocess.run(["clang-format", "--dry-run", *sources("*.cpp", "*.h")], cwd=ROOT, check=False,
                            stdin=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True).stderr
    wrong = sorted(set(re.findall(r"^([^: \n]+\.(?:cpp|h)):", judged, re.MULTILINE)))
    return [f"not formatted; this mends it:\n    clang-format -i {' '.join(wrong)}"] if wrong else []
