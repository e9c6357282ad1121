"""Copies of the sources, in which mutants are built and tested."""
import shutil
import subprocess

from lib.checkout import BUILD, ROOT, sources
from lib.mutation.mutants import ENCODING, source_text

WORK = BUILD / "mutation"
BUILD_SECONDS = 600
TEST_SECONDS = 20


def _succeeds(command, folder, seconds):
    try:
        return subprocess.run(command, cwd=folder, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                              timeout=seconds, check=False).returncode == 0
    except subprocess.TimeoutExpired:
        return False


class Copy:
    """A copy of the sources with its own builds. Without a change all tests pass in it."""

    def __init__(self, number, groups):
        self.folder = WORK / str(number)
        shutil.rmtree(self.folder, ignore_errors=True)
        for name in sources("."):
            (self.folder / name).parent.mkdir(parents=True, exist_ok=True)
            shutil.copy2(ROOT / name, self.folder / name)
        for group in groups:
            subprocess.run(["cmake", "--preset", group.preset, *group.options], cwd=self.folder,
                           stdout=subprocess.DEVNULL, check=True)
            if self._judge(group) != "survived":
                raise SystemExit("the tests have to pass before anything is changed")

    def _judge(self, group):
        build = self.folder / "build" / group.preset
        targets = [test.target for test in group.tests]
        if not _succeeds(["cmake", "--build", build, "--target", *targets], self.folder, BUILD_SECONDS):
            return "does not build"
        passed = all(_succeeds([build / test.program, *test.arguments], self.folder, TEST_SECONDS)
                     for test in group.tests)
        return "survived" if passed else "killed"

    def try_out(self, mutant):
        file = self.folder / mutant.name
        file.write_text(mutant.text, ENCODING)
        try:
            return self._judge(mutant.group)
        finally:
            file.write_text(source_text(mutant.name), ENCODING)
