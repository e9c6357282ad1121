"""Runs updates in the window, on a virtual display, and takes pictures of it."""
import contextlib
import os
import subprocess
import time

from lib.checkout import BUILD
from lib.demo.game import UPDATER
from lib.demo.updates import WINE_RUN

PROBE = BUILD / "windows-demo" / "kvn_probe.exe"
STATUS_LIMIT_S = 60
LOOK_INTERVAL_S = 0.02
# The frame that Wine draws around a window, in pixels: left, right and bottom; and above, with the title.
FRAME = 3
TITLE = 22


@contextlib.contextmanager
def display():
    """Starts a virtual display, yields its name, and ends it."""
    server = subprocess.Popen(["Xvfb", "-displayfd", "1", "-noreset", "-screen", "0", "1280x1024x24"],
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
    try:
        yield ":" + server.stdout.readline().strip()
    finally:
        server.terminate()
        server.wait()


class UpdaterWindow:
    """An updater in its window, operated through the probe's subcommand "window"."""

    def __init__(self, display_name, options):
        self._display = display_name
        self._probe = subprocess.Popen(
            [WINE_RUN, PROBE, "window", UPDATER, *options], env={**os.environ, "DISPLAY": display_name},
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        self._read_answer()

    def _read_answer(self):
        """Reads lines "name=value" up to the "." that ends an answer, into a dictionary."""
        answer = {}
        while (line := self._probe.stdout.readline().rstrip()) != ".":
            if not line:
                raise SystemExit("the updater shows no window")
            name, _, value = line.partition("=")
            answer[name] = value
        return answer

    def tell(self, command):
        self._probe.stdin.write(command + "\n")
        self._probe.stdin.flush()
        return self._read_answer()

    def wait_for(self, status, position=0):
        """Waits until the status begins with a text and the bar has reached a position, in percent."""
        deadline = time.monotonic() + STATUS_LIMIT_S
        while True:
            shown = self.tell("look")
            if shown["status"].startswith(status) and int(shown["position"]) >= position:
                return
            # A closed window has no text.
            if not shown["status"] or time.monotonic() > deadline:
                raise SystemExit(f"the window shows \"{shown['status']}\" instead of \"{status}\"")
            time.sleep(LOOK_INTERVAL_S)

    def take_picture(self, file):
        """Takes a picture of the window with its frame."""
        (place,) = self.tell("place")
        left, top, width, height = (int(number) for number in place.split())
        area = f"{width + 2 * FRAME}x{height + TITLE + FRAME}+{left - FRAME}+{top - TITLE}"
        subprocess.run(["import", "-display", self._display, "-window", "root", "-crop", area, "+repage", file],
                       check=True)

    def exit_code(self):
        """Waits for the updater's end and returns its exit code."""
        (code,) = self.tell("exit-code")
        self._probe.stdin.close()
        self._probe.wait()
        return int(code, 16)


def show_update(options, pictures):
    """Runs an update and takes two pictures: working.png during the download, and succeeded.png."""
    with display() as name:
        window = UpdaterWindow(name, options)
        window.wait_for("Downloading changed files...", position=40)
        window.take_picture(pictures / "working.png")
        window.wait_for("Update complete. Welcome back, pilot.")
        window.take_picture(pictures / "succeeded.png")
        if window.exit_code() != 0:
            raise SystemExit("the update failed")


def show_failure(options, pictures):
    """Runs an update that fails, takes the picture failed.png, and returns the exit code."""
    with display() as name:
        window = UpdaterWindow(name, options)
        window.wait_for("Update could not be completed.")
        window.take_picture(pictures / "failed.png")
        window.tell("click-button")
        return window.exit_code()
