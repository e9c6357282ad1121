"""How the cost of an incremental update grows with the number of files and with their bytes."""
import subprocess

from checkout import WORK
from games import MIB
from timing import say
from updates import UpdateBench

PLOT = """
set terminal svg size 640,400 font "sans-serif,13" background "#ffffff"
set output "{output}"
set title "{title}"
set xlabel "{label}"
set ylabel "seconds"
set xrange [0:*]
set yrange [0:*]
set key left top
set grid
plot "{data}" using 1:2 with linespoints linewidth 2 pointtype 7 title "incremental update", \\
     "{data}" using 1:3 with linespoints linewidth 2 pointtype 5 title "floor"
"""


def _measure_one(files, total, repetitions):
    say(f"growth: {files} files, {total // MIB} MiB")
    with UpdateBench("growth", files, total, 4, changed=1) as bench:
        return bench.compare_incremental(repetitions).time


def _plot(output, title, label, points):
    data = WORK / (output.stem + ".tsv")
    data.write_text("".join(f"{x}\t{pairs.figure:.3f}\t{pairs.floor:.3f}\n" for x, pairs in points))
    script = PLOT.format(output=output, title=title, label=label, data=data)
    subprocess.run(["gnuplot"], input=script, text=True, check=True)


def measure(sizes, folder):
    """Measures both and draws growth-files.svg and growth-bytes.svg in the folder."""
    repetitions = sizes.growth_repetitions
    by_files = [(files, _measure_one(files, sizes.growth_files_bytes, repetitions)) for files in sizes.growth_files]
    by_bytes = [(size // MIB, _measure_one(sizes.growth_bytes_files, size, repetitions))
                for size in sizes.growth_bytes]
    _plot(folder / "growth-files.svg", f"{sizes.growth_files_bytes // MIB} MiB in more and more files", "files",
          by_files)
    _plot(folder / "growth-bytes.svg", f"{sizes.growth_bytes_files} files of more and more bytes", "MiB", by_bytes)
