"""The folders of this checkout, and its sources."""
import pathlib
import subprocess

ROOT = pathlib.Path(__file__).resolve().parents[2]
SCRIPTS = ROOT / "scripts"
BUILD = ROOT / "build"


def sources(*patterns):
    """The files of the checkout that match one of these git patterns, relative to ROOT, sorted."""
    listed = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard", "--", *patterns],
                            cwd=ROOT, stdout=subprocess.PIPE, check=True, text=True).stdout
    return [name for name in sorted(set(listed.split("\0"))) if name and (ROOT / name).is_file()]
