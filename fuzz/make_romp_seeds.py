#!/usr/bin/env python3
"""Writes the seeds of fuzz_romp into fuzz/corpus/romp: one body of an entry for each kind of value."""
import pathlib
import struct

INT, LONG, TEXT, FLOAT, LONG64, DATA, LIST, OBJECT, UNDEFINED, NOTHING = 0, 1, 2, 3, 4, 5, 7, 8, 9, 15
AS_BODIES, END_OF_BODY = b"\x01", b"\xf5"


def counted(data):
    return struct.pack(">I", len(data)) + data


def value(kind, data=b""):
    return bytes([kind]) + data


def pair(name, packed):
    return counted(name) + packed


def nest(kind, members):
    return value(kind, struct.pack(">I", len(members)) + b"".join(members))


ONE = value(INT, struct.pack(">i", 1))
SEEDS = {
    "int": pair(b"a", ONE),
    "long": pair(b"a", value(LONG, struct.pack(">q", -1))),
    "text": pair(b"name", value(TEXT, counted(b"a text that is longer than an atom"))),
    "float": pair(b"a", value(FLOAT, struct.pack(">f", 2.5))),
    "long64": pair(b"a", value(LONG64, struct.pack(">q", 1 << 40))),
    "data": pair(b"a", value(DATA, counted(b"\x00\x01\xff"))),
    "list": pair(b"l", nest(LIST, [ONE, value(NOTHING), nest(LIST, [])])),
    "object": pair(b"o", nest(OBJECT, [pair(b"x", ONE), pair(b"y", nest(LIST, [ONE]))])),
    "null": pair(b"a", value(UNDEFINED)) + END_OF_BODY + pair(b"b", value(NOTHING)),
    "pads": END_OF_BODY + pair(b"a", ONE) + END_OF_BODY,
    "deep": pair(b"d", b"".join(value(LIST, struct.pack(">I", 1)) for _ in range(1000)) + ONE),
    "wide": pair(b"w", value(LIST, struct.pack(">I", 0xFFFFFFFF)) + ONE),
}

folder = pathlib.Path(__file__).parent / "corpus" / "romp"
folder.mkdir(parents=True, exist_ok=True)
for name, body in SEEDS.items():
    (folder / name).write_bytes(AS_BODIES + body)
(folder / "raw").write_bytes(b"\x00" + struct.pack(">III", 6, 0, 0) + SEEDS["int"])
