#!/usr/bin/python3
"""Runs a Windows program of tests under Wine while HTTPS servers on this machine give it the answers that it asks for.

Usage: with_https_server.py CERTIFICATES PORT PROBE PROGRAM [ARGUMENTS...]

The query of a request describes its answer in the words of tests/end_to_end/support/fault_server.py, for instance
"/?status=404&text=nothing". Besides:
  repeat=NAME   the body is what the request says in this header
A server that is to be silent closes the connection after SILENCE seconds.

Certificates come into the folder CERTIFICATES, which is made when it is missing or too old. PROBE is kvn_probe.exe.
"""
import pathlib
import select
import shutil
import subprocess
import sys
import urllib.parse

sys.dont_write_bytecode = True
SOURCES = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(SOURCES / "tests/end_to_end/support"))

from fault_answer import Answer  # noqa: E402
from faulty_host import FaultyHost  # noqa: E402

# Longer than the receive time-out of a test that waits for it to end.
SILENCE = 2
TRUSTED, WRONG_NAME, UNKNOWN_AUTHORITY = "127.0.0.1", "127.0.0.2", "127.0.0.3"


class DescribedHost(FaultyHost):
    def record(self, head):
        request, *lines = head.split("\r\n")
        query = urllib.parse.urlsplit(request.split(" ")[1]).query
        words = dict(urllib.parse.parse_qsl(query, keep_blank_values=True, encoding="latin-1"))
        repeated = words.pop("repeat", None)
        if repeated:
            fields = [line.partition(":") for line in lines]
            words["text"] = ",".join(value.strip() for name, _, value in fields if name.lower() == repeated.lower())
        return Answer(f"{key}={value}" for key, value in words.items())

    def stall(self, connection):
        select.select([connection], [], [], SILENCE)


def certificates(folder, host):
    """The folder of certificates for a host, which have an authority of their own."""
    own = pathlib.Path(folder, host)
    check = ["openssl", "x509", "-in", own / "good.pem", "-noout", "-checkend", "3600"]
    if subprocess.run(check, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode != 0:
        shutil.rmtree(own, ignore_errors=True)
        subprocess.run([SOURCES / "scripts/channel-certificates", own, host], check=True)
    return own


def run_under_wine(*command, watched_by=()):
    return subprocess.run([*watched_by, SOURCES / "scripts/wine-run", *command]).returncode


def main():
    folder, port, probe, program, *arguments = sys.argv[1:]
    trusted, unknown = (certificates(folder, host) for host in (TRUSTED, UNKNOWN_AUTHORITY))
    if run_under_wine(probe, "trust", f"Z:{trusted}/authority.der") != 0:
        sys.exit("the test's authority is not trusted")
    for host, shown in ((TRUSTED, trusted), (WRONG_NAME, trusted), (UNKNOWN_AUTHORITY, unknown)):
        DescribedHost(shown, int(port), host)
    sys.exit(run_under_wine(program, *arguments, watched_by=[SOURCES / "tests/support/run_to_the_end"]))


if __name__ == "__main__":
    main()
