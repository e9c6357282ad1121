"""Runs the updater on an installation and shows what it did."""
import hashlib
import subprocess
import time

from lib.checkout import SCRIPTS
from lib.demo.game import INSTALLED_RELEASE, OFFERED_RELEASE, UPDATER, package

WINE_RUN = SCRIPTS / "wine-run"
WORK_FOLDER = ".kvn-update"


def options(installation):
    """Options of every run."""
    return ["--apply", "--install", str(installation), "--current", str(INSTALLED_RELEASE), "--no-relaunch"]


def local_package(channel):
    """Options for an update from the package, with local files."""
    return ["--manifest-file", str(channel / "KVN-alpha.manifest"),
            "--package-file", str(package(channel, OFFERED_RELEASE))]


def local_objects(channel):
    """Options for an incremental update, with local files."""
    return [*local_package(channel), "--inventory-file", str(package(channel, OFFERED_RELEASE)) + ".files",
            "--object-directory", str(channel)]


def _digests(installation):
    """The digest of each file outside the work folder, by path."""
    files = (file for file in installation.rglob("*") if file.is_file())
    named = {file.relative_to(installation).as_posix(): file for file in files}
    return {name: hashlib.sha256(file.read_bytes()).hexdigest() for name, file in sorted(named.items())
            if not name.startswith(WORK_FOLDER + "/")}


def _published_digests(channel):
    records = (package(channel, OFFERED_RELEASE).with_suffix(".zip.files")).read_text().splitlines()[5:]
    return {path: digest for path, _, digest in (record.split("\t") for record in records)}


def _what_happened(before, after, is_managed):
    if before is None:
        return "new"
    if after is None:
        return "dropped"
    if before != after:
        return "changed"
    return "right already" if is_managed else "the player's, untouched"


def _show_files(before, after, managed):
    """Prints a line for each file that the update changed and for each of the player's files."""
    print(f"    {'file':28} {'before':12} {'after':12}")
    kept = 0
    for name in sorted({*before, *after}):
        old, new = before.get(name), after.get(name)
        what = _what_happened(old, new, name in managed)
        if what == "right already":
            kept += 1
        else:
            print(f"    {name:28} {(old or '-'):.12}".ljust(45) + f" {(new or '-'):12.12} {what}")
    print(f"    and {kept} files that were right already")


def _show_verdict(after, published):
    wrong = [name for name, digest in published.items() if after.get(name) != digest]
    if wrong:
        raise SystemExit(f"  installed now:    NOT release {OFFERED_RELEASE}: {', '.join(wrong)}")
    print(f"  installed now:    release {OFFERED_RELEASE}, all {len(published)} files as published")


def update_and_show(channel, installation, *more_options):
    """Runs the updater without a window and prints what it did."""
    before = _digests(installation)
    begin = time.monotonic()
    run = subprocess.run([WINE_RUN, UPDATER, *options(installation), "--test-no-ui", *more_options], check=False)
    seconds = time.monotonic() - begin
    after = _digests(installation)
    managed = (installation / "KVN_MANAGED_FILES.txt").read_text().splitlines()
    _show_files(before, after, managed)
    _show_verdict(after, _published_digests(channel))
    print(f"  transfer report:  {' '.join((installation / WORK_FOLDER / 'transfer.txt').read_text().split())}")
    print(f"  exit code:        {run.returncode}")
    print(f"  time:             {seconds:.2f} s", flush=True)
    if run.returncode != 0:
        raise SystemExit("the update failed")
