"""A release channel on this machine, served over TLS as in the tests."""
import contextlib
import subprocess

import wine
from checkout import CHANNEL_SERVER, PROBE


@contextlib.contextmanager
def served(channel, run_folder):
    """Serves the folder at the address that the updater was built with, and makes this checkout's Wine trust it."""
    subprocess.run([CHANNEL_SERVER, "start", channel, run_folder], check=True)
    try:
        wine.run(PROBE, "trust", run_folder / "certificates" / "authority.der")
        yield
    finally:
        subprocess.run([CHANNEL_SERVER, "stop", run_folder], check=True)
