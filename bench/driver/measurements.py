"""The rows of the table, in their order."""
import subprocess

import operations
import publishing
import whole_updates
import wine
from table import as_line
from timing import say

# What a measurement that fails ends with; the others are made all the same.
FAILURES = (OSError, RuntimeError, ValueError, subprocess.SubprocessError)
MEASUREMENTS = {
    "incremental": whole_updates.measure_incremental,
    "https": whole_updates.measure_https,
    "complete": whole_updates.measure_complete,
    "download": operations.measure_download,
    "install": operations.measure_install,
    "parsers": operations.measure_parsers,
    "size": operations.measure_size,
    "start": whole_updates.measure_start,
    "publish": publishing.measure_publishing,
    "releases": publishing.measure_releases,
}


def measure(sizes, chosen, rows):
    """Adds every row to `rows` when it is there.

    @return what could not be measured, and why, one a line
    """
    idle = wine.idle_private_bytes()
    failures = []
    for name in chosen:
        say(name)
        try:
            new = MEASUREMENTS[name](sizes, idle)
        except FAILURES as failure:
            failures.append(f"{name} was not measured: {failure}")
            say(failures[-1])
            continue
        for row in new:
            say("  " + as_line(row))
        rows += new
    return failures
