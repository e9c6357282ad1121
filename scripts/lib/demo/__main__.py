"""The steps of scripts/demo."""
import argparse
import contextlib
import os
import pathlib
import re
import shutil
import signal
import subprocess
import time

from lib.checkout import BUILD, ROOT, SCRIPTS
from lib.demo import window
from lib.demo.game import OFFERED_RELEASE, install_older_release, package, publish_releases
from lib.demo.updates import WINE_RUN, local_objects, local_package, options, update_and_show

DEMO = BUILD / "demo"
CHANNEL = DEMO / "channel"
PREFIX = BUILD / "wine"
SERVER = DEMO / "server"
CHANNEL_SERVER = SCRIPTS / "channel-server"
# The speed of the slow connection, on which the window can be watched.
SLOW_BYTES_PER_SECOND = "200k"

# When scripts/demo started, and the process in which it builds the archive tool.
STARTED = int(os.environ["KVN_DEMO_STARTED"])
ARCHIVE_TOOL_PROCESS = int(os.environ["KVN_DEMO_ARCHIVE_TOOL"])


@contextlib.contextmanager
def step(title):
    """Announces a step, and prints at its end how long it took."""
    begin = time.monotonic()
    print(f"\n\033[1m[{time.time() - STARTED:3.0f} s] {title}\033[0m", flush=True)
    yield
    print(f"  (this took {time.monotonic() - begin:.1f} s)", flush=True)


def build():
    """Builds the programs, and makes the Wine prefix meanwhile."""
    prefix = subprocess.Popen([SCRIPTS / "wine-prefix", PREFIX])
    subprocess.run([SCRIPTS / "build", "windows-demo"], check=True)
    subprocess.run([SCRIPTS / "build", "linux-release", "kvn-release"], check=True)
    if prefix.wait() != 0:
        raise SystemExit(1)


def address():
    """The channel's address, which the updater was built with."""
    cache = (BUILD / "windows-demo" / "CMakeCache.txt").read_text()
    return re.search(r"^KVN_DOWNLOAD_BASE_URL:[A-Z]*=(.*)$", cache, re.MULTILINE)[1]


@contextlib.contextmanager
def served(**environment):
    """Serves the channel over TLS, and makes this checkout's Wine trust it."""
    subprocess.run([CHANNEL_SERVER, "start", CHANNEL, SERVER],
                   env={**os.environ, "KVN_DOWNLOAD_BASE_URL": address(), **environment}, check=True)
    try:
        subprocess.run([WINE_RUN, window.PROBE, "trust", SERVER / "certificates" / "authority.der"],
                       stdout=subprocess.DEVNULL, check=True)
        yield
    finally:
        subprocess.run([CHANNEL_SERVER, "stop", SERVER], check=True)


def installation(name):
    install_older_release(CHANNEL, DEMO / name)
    return DEMO / name


def show_requests():
    transferred = 0
    requests = (SERVER / "access.log").read_text().splitlines()
    print("  requests:")
    for method, path, status, size, *_ in (request.split("\t") for request in requests):
        print(f"    {method} {status:>3} {int(size):9} bytes  {path}")
        transferred += int(size)
    print(f"  transferred:      {transferred} bytes in {len(requests)} requests")
    print(f"  complete package: {package(CHANNEL, OFFERED_RELEASE).stat().st_size} bytes")


def show_https():
    with served():
        update_and_show(CHANNEL, installation("https"))
        show_requests()


def show_window():
    with served(KVN_CHANNEL_RATE=SLOW_BYTES_PER_SECOND):
        window.show_update(options(installation("window")), DEMO)
    code = window.show_failure(options(DEMO / "no game here"), DEMO)
    print(f"  exit codes:       0 and, where there is no game, {code}")
    print("  pictures of it at work, succeeded and failed:")
    for name in ("working", "succeeded", "failed"):
        print(f"    {(DEMO / name).relative_to(ROOT)}.png")


def wait_for_archive_tool():
    # Raised when it ended before exec: then the shell has already waited for it.
    with contextlib.suppress(ChildProcessError):
        os.waitpid(ARCHIVE_TOOL_PROCESS, 0)
    subprocess.run([SCRIPTS / "wine-prefix", PREFIX], check=True)
    if not (PREFIX / "drive_c" / "windows" / "system32" / "tar.exe").exists():
        raise SystemExit("there is no archive tool")


def demonstrate():
    with step("Building the updater and the publisher's tool"):
        build()
    with step("Publishing releases 41 and 42"):
        publish_releases(DEMO, CHANNEL)
    with step("Updating incrementally, from local files"):
        update_and_show(CHANNEL, installation("incremental"), *local_objects(CHANNEL))
    with step("Updating over HTTPS"):
        show_https()
    with step("Updating in the window, over a slow connection"):
        show_window()
    with step("Waiting for the archive tool, which only the complete package needs"):
        wait_for_archive_tool()
    with step("Updating with the complete package, from local files"):
        update_and_show(CHANNEL, installation("complete"), *local_package(CHANNEL))


def main():
    parser = argparse.ArgumentParser(prog="scripts/demo")
    parser.add_argument("--picture", type=pathlib.Path, metavar="FILE",
                        help="put a picture of the window at work there")
    picture = parser.parse_args().picture
    shutil.rmtree(DEMO, ignore_errors=True)
    DEMO.mkdir(parents=True)
    try:
        demonstrate()
    except BaseException as failure:
        with contextlib.suppress(ProcessLookupError):
            os.kill(ARCHIVE_TOOL_PROCESS, signal.SIGTERM)
        if isinstance(failure, subprocess.CalledProcessError):
            raise SystemExit(f"{failure.cmd[0]} failed, see above") from None
        raise
    if picture:
        shutil.copyfile(DEMO / "working.png", picture)
    print(f"\nAll of it took {time.time() - STARTED:.0f} s.")


main()
