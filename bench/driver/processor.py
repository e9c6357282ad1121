"""The processor time of a run: of its programs, of the programs that they start, and of Wine's server."""
import contextlib
import ctypes
import os
import pathlib
import resource
import time

from checkout import BUILD

PR_SET_CHILD_SUBREAPER = 36
NANOSECONDS = 1e9
END_LIMIT_S = 2
LOOK_INTERVAL_S = 0.002


def adopt_orphans():
    """Makes this process the parent of the programs that Wine starts, which detach from their own parent.

    A parent learns what a program used when it has waited for its end.
    """
    if ctypes.CDLL(None, use_errno=True).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0) != 0:
        raise OSError(ctypes.get_errno(), "prctl")


def _used(process):
    """The seconds that all threads of a living process have used so far."""
    return sum(int((task / "schedstat").read_text().split()[0]) for task in (process / "task").iterdir()) / NANOSECONDS


def _living():
    """The processes of this checkout's Wine prefix, with its server, and the seconds that each has used."""
    prefix = f"WINEPREFIX={os.environ.get('KVN_WINEPREFIX', BUILD / 'wine')}".encode()
    processes = {}
    for process in pathlib.Path("/proc").glob("[0-9]*"):
        with contextlib.suppress(OSError):
            if prefix in (process / "environ").read_bytes().split(b"\0"):
                processes[process.name] = _used(process)
    return processes


def _used_by_ended():
    with contextlib.suppress(ChildProcessError):
        while os.waitpid(-1, os.WNOHANG) != (0, 0):
            pass
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    return used.ru_utime + used.ru_stime


def _after_the_end(before):
    """What _living() returns when the programs of a run are gone, a moment after Wine reports their end."""
    deadline = time.monotonic() + END_LIMIT_S
    while (after := _living()).keys() - before.keys() and time.monotonic() < deadline:
        time.sleep(LOOK_INTERVAL_S)
    return after


def measured(run):
    """Calls `run`, which starts programs and waits for them. Returns its result and the seconds of processor time."""
    before, ended_before = _living(), _used_by_ended()
    result = run()
    after = _after_the_end(before)
    used = _used_by_ended() - ended_before
    return result, used + sum(seconds - before.get(process, 0) for process, seconds in after.items())
