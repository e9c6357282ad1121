#!/usr/bin/env python3
"""Makes the game folder that publishing is measured with: 1,000 files of 1 GiB together, from 64 KiB to a few MiB.

Usage: publish-game-folder.py FOLDER

One quarter of the bytes cannot be compressed, as sound and textures in packed formats; the others are text-like
records that deflate brings down to about a third or less. The same folder comes out each time.
"""
import pathlib
import random
import sys

FILES = 1000
TOTAL = 1 << 30
FRAGMENT = 512
PACKED_EVERY = 4


def sizes(source):
    shares = [source.expovariate(1) + 0.07 for _ in range(FILES)]
    cut = [int(share * TOTAL / sum(shares)) for share in shares]
    cut[0] += TOTAL - sum(cut)
    return cut


def fragments(source):
    words = ["".join(source.choices("abcdefghijklmnopqrstuvwxyz_", k=source.randint(3, 9))) for _ in range(100)]
    pool = []
    for _ in range(4096):
        record = ""
        while len(record) < FRAGMENT:
            record += f"{source.choice(words)}.{source.choice(words)}={source.randint(0, 63)}\n"
        pool.append(record[:FRAGMENT].encode())
    return pool


def main(folder):
    source = random.Random(42)
    pool = fragments(source)
    required = ["Vorthmere.exe", "KVNUpdater.exe"]
    for number, size in enumerate(sizes(source)):
        name = required[number] if number < len(required) else f"data/part {number % 20:02}/asset-{number:04}.dat"
        if number % PACKED_EVERY == PACKED_EVERY - 1:
            content = source.randbytes(size)
        else:
            content = b"".join(source.choices(pool, k=size // FRAGMENT + 1))[:size]
        file = folder / name
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_bytes(content)


if len(sys.argv) != 2:
    sys.exit(__doc__)
main(pathlib.Path(sys.argv[1]))
