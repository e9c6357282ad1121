"""Measures the updater beside the least work that any updater has to do. Run it with scripts/bench."""
import argparse
import shutil
import sys

import growth
import measurements
import processor
import table
from checkout import ROOT, WORK
from sizes import Sizes

DOCUMENT = ROOT / "docs" / "performance.md"
TABLE_BEGINS = "<!-- table -->\n"
TABLE_ENDS = "<!-- end of the table -->\n"


def keep_table(rows):
    text = DOCUMENT.read_text()
    before, rest = text.split(TABLE_BEGINS)
    _, after = rest.split(TABLE_ENDS)
    DOCUMENT.write_text(before + TABLE_BEGINS + table.as_markdown(rows) + TABLE_ENDS + after)


def parse_options():
    parser = argparse.ArgumentParser(prog="scripts/bench", description=__doc__)
    parser.add_argument("--tsv", action="store_true", help="print the rows separated by tabs, in the order of "
                        "the table")
    parser.add_argument("--quick", action="store_true", help="small sizes and few repetitions, for work on the "
                        "benchmarks themselves; such figures mean nothing")
    parser.add_argument("--only", action="append", choices=[*measurements.MEASUREMENTS, "growth"], metavar="NAME",
                        help="measure this alone; may be given more than once: %(choices)s")
    parser.add_argument("--keep", action="store_true", help="put the table and the plots into docs/")
    options = parser.parse_args()
    if options.keep and (options.quick or options.only):
        parser.error("only the whole of it is worth keeping")
    return options


def measure(options, chosen, rows):
    """@return a line for each measurement that failed, with the reason"""
    sizes = Sizes(options.quick)
    failures = measurements.measure(sizes, [name for name in chosen if name != "growth"], rows)
    if "growth" in chosen:
        try:
            growth.measure(sizes, ROOT / "docs" if options.keep else WORK)
        except measurements.FAILURES as failure:
            failures.append(f"growth was not measured: {failure}")
    return failures


def main():
    options = parse_options()
    processor.adopt_orphans()
    shutil.rmtree(WORK, ignore_errors=True)
    WORK.mkdir(parents=True)
    rows, failures = [], ["not all was measured"]
    try:
        failures = measure(options, options.only or [*measurements.MEASUREMENTS, "growth"], rows)
    finally:
        # Also after a failure. Times come first, then memory.
        rows.sort(key=lambda row: row.name.startswith("memory:"))
        print(table.as_tsv(rows) if options.tsv else table.as_text(rows), end="", flush=True)
        for failure in failures:
            print(failure, file=sys.stderr)
    if options.keep and not failures:
        keep_table(rows)
    return 1 if failures else 0


sys.exit(main())
