"""The folders of this checkout, and the programs that measure or are measured."""
import pathlib

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = ROOT / "build"
WORK = BUILD / "bench"

UPDATER = BUILD / "windows-test" / "KVNUpdater.exe"
SHIPPED_UPDATER = BUILD / "windows-release" / "KVNUpdater.exe"
BENCH = BUILD / "windows-test" / "kvn_bench.exe"
FIRST_CALLS = BUILD / "windows-test" / "kvn_first_calls.exe"
NOTHING = BUILD / "windows-test" / "kvn_nothing.exe"
PROBE = BUILD / "windows-test" / "kvn_probe.exe"
PUBLISHER = BUILD / "linux-release" / "kvn-release"

WINE_RUN = ROOT / "scripts" / "wine-run"
CHANNEL_SERVER = ROOT / "scripts" / "channel-server"


def download_base_url():
    """The address of the release channel that the updater was built with."""
    for line in (BUILD / "windows-test" / "CMakeCache.txt").read_text().splitlines():
        if line.startswith("KVN_DOWNLOAD_BASE_URL:"):
            return line.split("=", 1)[1]
    raise RuntimeError("the preset windows-test is not configured")
