"""Runs Windows programs and looks at the memory that they take."""
import os
import subprocess
import time

from checkout import BENCH, WINE_RUN

SAMPLE_INTERVAL_S = 0.002


def windows_path(path):
    """A path as Windows programs take it."""
    return "Z:" + str(path)


def _words(command):
    return [str(WINE_RUN)] + [windows_path(word) if isinstance(word, os.PathLike) else str(word) for word in command]


def run(*command):
    """Runs a program to its end and returns what it printed. Words that are paths become Windows paths."""
    end = subprocess.run(_words(command), stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, check=True, text=True)
    return end.stdout


def seconds_inside(*command):
    """The seconds that a subcommand of kvn_bench measured inside itself."""
    return float(run(BENCH, *command))


def seconds_of(*command):
    """The seconds from the start of a program to its end, as a Windows program that starts it sees them."""
    return seconds_inside("time", *command)


def _private_bytes(process_id):
    """What the process has written to and shares with nobody; 0 when it has ended."""
    try:
        with open(f"/proc/{process_id}/smaps_rollup", encoding="ascii") as rollup:
            fields = dict(line.split(":", 1) for line in rollup if ":" in line and "kB" in line)
    except (FileNotFoundError, ProcessLookupError, PermissionError):
        return 0
    return sum(int(fields[name].split()[0]) * 1024 for name in ("Private_Dirty", "Swap") if name in fields)


def peak_private_bytes(*command):
    """The most private memory that a program took in one run."""
    process = subprocess.Popen(_words(command), stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
    peak = 0
    # wine-run becomes the program, so that this is the program's process.
    while process.poll() is None:
        peak = max(peak, _private_bytes(process.pid))
        time.sleep(SAMPLE_INTERVAL_S)
    if process.returncode != 0:
        raise RuntimeError(f"{command[0]} ended with exit code {process.returncode}")
    return peak


def idle_private_bytes():
    """The private memory of kvn_bench, which loads what the updater loads, when it does nothing."""
    process = subprocess.Popen(_words([BENCH, "idle"]), stdin=subprocess.PIPE, stdout=subprocess.PIPE)
    process.stdout.readline()
    idle = _private_bytes(process.pid)
    process.communicate()
    return idle
