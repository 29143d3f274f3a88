#!/usr/bin/env python3
"""Writes the seeds of fuzz_pages into fuzz/corpus/pages. The first byte of a seed says whether the pages get their
positions and checksums put right, as a fuzzer can't; the rest is the file."""
import pathlib
import struct

PAGE, HEADER, SLICE, LAST = 512, 44, 468, 2147483647
AS_THEY_ARE, PUT_RIGHT = b"\0", b"\1"


def page(data, total, stamp, next_page=None, is_first=True, replaced=None):
    place, place_stamp = (replaced[0] * PAGE, replaced[1]) if replaced else (LAST, 0)
    link = LAST if next_page is None else next_page * PAGE
    head = struct.pack("<2sBBIIIQIQII", b"ZP", 1, is_first, link, total, len(data), stamp, place, place_stamp, 0, 0)
    return (head + data).ljust(PAGE, b"\0")


EMPTY = bytes(PAGE)
SMALL = page(b"small", 5, 7)
LARGE = page(b"l" * SLICE, SLICE + 10, 8, 3) + EMPTY + page(b"r" * 10, SLICE + 10, 8, is_first=False)
SEEDS = {
    "chains": PUT_RIGHT + SMALL + LARGE + EMPTY,
    "former": PUT_RIGHT + SMALL + page(b"newer", 5, 9, replaced=(0, 7)) + page(b"newest", 6, 11, replaced=(1, 9)),
    "circle": PUT_RIGHT + page(b"c" * SLICE, 3 * SLICE, 5, 1) + page(b"c" * SLICE, 3 * SLICE, 5, 1, is_first=False),
    "shared": PUT_RIGHT + page(b"s" * SLICE, SLICE + 9, 8, 2) * 2 + page(b"r" * 9, SLICE + 9, 8, is_first=False),
    "last_stamp": PUT_RIGHT + page(b"one", 3, 2**64 - 1) + SMALL,
    "damaged": AS_THEY_ARE + SMALL + EMPTY,
    "cut": AS_THEY_ARE + SMALL[:100],
}

folder = pathlib.Path(__file__).parent / "corpus" / "pages"
folder.mkdir(parents=True, exist_ok=True)
for name, seed in SEEDS.items():
    (folder / name).write_bytes(seed)
