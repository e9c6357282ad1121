"""How much is measured."""
from games import MIB


class Sizes:
    """How much is measured. With `quick` a small part only, for work on the benchmarks themselves."""

    def __init__(self, quick):
        shrink = 8 if quick else 1
        self.repetitions = 2 if quick else 5
        self.short_repetitions = 2 if quick else 15
        self.cost_repetitions = 1 if quick else 3
        self.starts = 5 if quick else 40
        self.files = 1000 // shrink
        self.update_bytes = 512 * MIB // shrink
        self.package_bytes = 256 * MIB // shrink
        self.installed_files = 1024
        self.published = [(1000 // shrink, 1024 * MIB // shrink, False)]
        if not quick:
            # With the publisher's two files this is the largest release: 1,024 files, just below 2 GiB.
            self.published.append((1022, 2047 * MIB, True))
        self.publish_repetitions = 1 if quick else 3
        self.growth_repetitions = 1 if quick else 3
        self.growth_files = [64, 256, 1024]
        self.growth_files_bytes = 256 * MIB // shrink
        self.growth_bytes = [size // shrink for size in (64 * MIB, 128 * MIB, 256 * MIB, 512 * MIB, 1024 * MIB)]
        self.growth_bytes_files = 256
