"""Runs Windows programs and measures their time and memory."""
import os
import subprocess
import sys
import time

import processor
from checkout import BENCH, NOTHING, WINE_RUN
from timing import Cost, say

SAMPLE_INTERVAL_S = 0.002


def windows_path(path):
    """The path in the form that Windows programs understand."""
    return "Z:" + str(path)


def _words(command):
    return [str(WINE_RUN)] + [windows_path(word) if isinstance(word, os.PathLike) else str(word) for word in command]


def _never_began(end):
    """Whether Wine could not start the program, or a program that it starts.

    Our programs say why they fail, and the updater has no exit code 1.
    """
    said = end.stderr.strip()
    return end.returncode == 1 and (not end.stdout + said or said.endswith(("error 1359", "ended with exit code 1")))


def _began(command, attempt):
    """Runs a program to its end. Tries once more when Wine could not start it: nothing has happened then.

    @return the ended process, which has succeeded
    """
    end = attempt()
    if _never_began(end):
        say(f"Wine did not start {command[0]}; it is started again")
        end = attempt()
    if end.returncode != 0:
        sys.stderr.write(end.stderr)
        raise RuntimeError(f"{command[0]} ended with exit code {end.returncode}")
    return end


def run(*command):
    """Runs a program to its end and returns its output. Paths among the words become Windows paths."""
    return _began(command, lambda: subprocess.run(
        _words(command), stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False,
        text=True)).stdout


def cost_inside(*command):
    """The Cost of a subcommand of kvn_bench: the seconds that it prints, and its whole processor time."""
    printed, used = processor.measured(lambda: run(BENCH, *command))
    return Cost(float(printed), used)


def cost_of(*command):
    """The Cost of a program from its start to its end, measured by the Windows program that starts it."""
    return cost_inside("time", *command)


def _private_bytes(process_id):
    """The bytes of memory that the process has written to and shares with nobody; 0 when it has ended."""
    try:
        with open(f"/proc/{process_id}/smaps_rollup", encoding="ascii") as rollup:
            fields = dict(line.split(":", 1) for line in rollup if ":" in line and "kB" in line)
    except (FileNotFoundError, ProcessLookupError, PermissionError):
        return 0
    return sum(int(fields[name].split()[0]) * 1024 for name in ("Private_Dirty", "Swap") if name in fields)


def _watch(command, samples):
    """Runs a program to its end and keeps adding the size of its private memory to the samples."""
    process = subprocess.Popen(_words(command), stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                               stderr=subprocess.PIPE, text=True)
    # wine-run replaces itself by the program, so this is the program's process.
    while process.poll() is None:
        samples.append(_private_bytes(process.pid))
        time.sleep(SAMPLE_INTERVAL_S)
    return subprocess.CompletedProcess(command, process.returncode, "", process.stderr.read())


def peak_private_bytes(*command):
    """The most private memory that a program used in one run, in bytes."""
    samples = [0]
    _began(command, lambda: _watch(command, samples))
    return max(samples)


def idle_private_bytes():
    """The private memory, in bytes, of an idle kvn_bench, which loads the same DLLs as the updater."""
    # Starts the Wine session, and fails when no program runs at all.
    run(NOTHING)
    process = subprocess.Popen(_words([BENCH, "idle"]), stdin=subprocess.PIPE, stdout=subprocess.PIPE)
    if not process.stdout.readline():
        raise RuntimeError("kvn_bench does not start")
    idle = _private_bytes(process.pid)
    process.communicate()
    return idle
