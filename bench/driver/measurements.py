"""The measurements that make the rows of the table, in their order."""
import subprocess

import operations
import publishing
import whole_updates
import wine
from table import as_line
from timing import say

# How a measurement fails. The others go on.
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
    """Adds each row to `rows` as soon as it is measured.

    @return a line for each measurement that failed, with the reason
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
