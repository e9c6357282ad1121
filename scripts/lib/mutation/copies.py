"""Copies of the sources, in which mutants are built and tested."""
import shutil
import subprocess

from lib.checkout import BUILD, ROOT, sources
from lib.mutation.mutants import ENCODING, source_text

WORK = BUILD / "mutation"
BUILD_SECONDS = 600
MOST_MEMORY = 4 << 30  # of a test, in bytes: a loop without end may also eat


def _succeeds(command, folder, seconds):
    try:
        return subprocess.run(command, cwd=folder, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                              timeout=seconds, check=False).returncode == 0
    except subprocess.TimeoutExpired:
        return False


def _equip(folder):
    """Gives a copy the sources as they are. What an earlier run built from the same ones stays good."""
    names = set(sources("."))
    for name in names:
        (folder / name).parent.mkdir(parents=True, exist_ok=True)
        if not (folder / name).exists() or (folder / name).read_bytes() != (ROOT / name).read_bytes():
            shutil.copy(ROOT / name, folder / name)
    for file in folder.rglob("*"):
        name = file.relative_to(folder).as_posix()
        if file.is_file() and name not in names and not name.startswith("build/"):
            file.unlink()


class Copy:
    """A copy of the sources with its own builds. Without a change all tests pass in it."""

    def __init__(self, number, groups):
        self.folder = WORK / str(number)
        _equip(self.folder)
        for group in groups:
            subprocess.run(["cmake", "--preset", group.preset, *group.options], cwd=self.folder,
                           stdout=subprocess.DEVNULL, check=True)
            if self._judge(group) != "survived":
                raise SystemExit("the tests have to pass before anything is changed")

    def _judge(self, group):
        """What becomes of the sources as they are. A program is not linked before those ahead of it have passed."""
        build = self.folder / "build" / group.preset
        for test in group.tests:
            if not _succeeds(["cmake", "--build", build, "--target", test.target], self.folder, BUILD_SECONDS):
                return "does not build"
            limited = ["prlimit", f"--as={MOST_MEMORY}", build / test.program, *test.arguments]
            if not _succeeds(limited, self.folder, test.seconds):
                return "killed"
        return "survived"

    def try_out(self, mutant):
        file = self.folder / mutant.name
        file.write_text(mutant.text, ENCODING)
        try:
            return self._judge(mutant.group)
        finally:
            file.write_text(source_text(mutant.name), ENCODING)
