"""Whether this machine has the release of clang that counts: others format and warn differently."""
import re
import subprocess
import sys

from lib.layout import JUDGING_CLANG


def is_here(tool):
    """Whether a tool of clang is of that release. Prints a line when it is not."""
    told = subprocess.run([tool, "--version"], stdout=subprocess.PIPE, check=True, text=True).stdout
    release = int(re.search(r"version (\d+)", told)[1])
    if release != JUDGING_CLANG:
        print(f"not checked: {tool} is of release {release}, and only {JUDGING_CLANG} (Debian 12) counts",
              file=sys.stderr)
    return release == JUDGING_CLANG
