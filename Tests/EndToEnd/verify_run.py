#!/usr/bin/env -S python3 -B
"""Reads a written device folder as the device does and compares it with the mapping document.

Shares no code with the program: names, chunks and payload bytes are implemented a second time.
usage: verify_run.py DOCUMENT OUTPUT_FOLDER [--bits N] [--rate BYTE] [--filter CODE] [--cv 1,3]
"""

import argparse
import json
import os
import re
import struct
import sys
import unicodedata
import urllib.parse


PAYLOAD_SIZE = 1936
SIGNATURE = struct.pack("<I", 0x12345677)


def fail(message):
    sys.exit(f"verify_run: {message}")


def sanitized(name):
    mapped = "".join(c if c.isascii() and c.isalnum() else "-" for c in name)
    return re.sub("--+", "-", mapped).strip("-") or "Sample"


def ascii_text(name):
    out = []
    for c in unicodedata.normalize("NFC", name):
        base = unicodedata.normalize("NFD", c)[0]
        out.append(base if base.isascii() else "?")
    return "".join(out).encode()


def chunks(data):
    """(id, header offset, payload) of every whole chunk."""
    if data[:4] != b"RIFF" or data[8:12] != b"WAVE":
        fail("no RIFF/WAVE")
    at, found = 12, []
    while at + 8 <= len(data):
        size = struct.unpack_from("<I", data, at + 4)[0]
        if at + 8 + size > len(data):
            break
        found.append((data[at : at + 4], at, data[at + 8 : at + 8 + size]))
        at += 8 + size + size % 2
    return found


def new_payload(data_size, channel):
    p = bytearray(PAYLOAD_SIZE)
    p[:4] = SIGNATURE
    for at in (16, 20, 916):
        struct.pack_into("<I", p, at, data_size)
    p[43], p[48] = 4, 1
    p[58:62] = b"\xee\x7f\xcc\x4c"
    p[62] = p[63] = p[909] = channel - 1
    p[72:76] = b"\xff\xff\xff\xff"
    for i in range(8):
        for k in range(17):
            p[110 + 88 * i + 4 * k] = 99
    p[904], p[1680] = 4, 1
    struct.pack_into("<H", p, 1684, 1000)
    return p


def put_options(p, channel, options):
    """Writes the settings into a new payload or one from the source file."""
    p[24] = options.bits
    p[50] = p[50] & 0xF0 | options.filter
    p[54] = p[55] = options.rate
    if channel in options.cv:
        for at, route in ((76, 0x4000), (80, 0x8000), (84, 0x20)):
            word = struct.unpack_from("<I", p, at)[0]
            struct.pack_into("<I", p, at, word & ~(0x4000 | 0x8000 | 0x20) | route)
        for at in (160, 252, 300):
            p[at : at + 4] = b"\x00\x00\x63\x00"


def stamped(file, channel, options):
    """The bytes of a file after stamping it for a channel, or for none."""
    found = chunks(file)
    data_size = next(len(p) for i, _, p in found if i == b"data")
    at, old = next(((at, p) for i, at, p in found if i == b"busy"), (len(file), None))
    if old is not None and len(old) == PAYLOAD_SIZE and old[:4] == SIGNATURE:
        payload = bytearray(old)
    else:
        payload = new_payload(data_size, channel or 1)
    put_options(payload, channel, options)
    end = at if old is None else at + 8 + len(old)
    return file[:at] + b"busy" + struct.pack("<I", PAYLOAD_SIZE) + payload + file[end:]


def check_wav(path, sample, channel, options):
    with open(path, "rb") as file:
        data = file.read()
    if "compatibleWav" in sample["compatibility"]:
        with open(urllib.parse.unquote_to_bytes(sample["sourceURL"][len("file://") :]), "rb") as file:
            source = file.read()
        if data != stamped(source, channel, options):
            fail(f"{path}: not the stamped source")
        return "stamped again" if any(i == b"busy" for i, _, _ in chunks(source)) else "copied"
    converted = data[: len(data) - 8 - PAYLOAD_SIZE]
    if data != stamped(converted, channel, options):
        fail(f"{path}: not a file with a new stamp behind it")
    fmt = next(p for i, _, p in chunks(converted) if i == b"fmt ")
    if struct.unpack("<HHIIHH", fmt[:16]) != (1, 1, 44100, 88200, 2, 16):
        fail(f"{path}: format {fmt.hex()}")
    if struct.unpack_from("<I", data, 4)[0] != len(converted) - 8:
        fail(f"{path}: the RIFF size counts the stamp")
    return "converted"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("document")
    parser.add_argument("output")
    parser.add_argument("--bits", type=int, default=16)
    parser.add_argument("--rate", type=int, default=0)
    parser.add_argument("--filter", type=int, default=0)
    parser.add_argument("--cv", type=lambda s: {int(c) for c in s.split(",")}, default=set())
    options = parser.parse_args()

    with open(options.document, encoding="utf-8") as file:
        document = json.load(file)
    device = os.path.join(options.output, document["naming"]["sourceFolderName"], "QZT508")
    expected = {os.path.join(device, "Pool")}
    counts = {"copied": 0, "stamped again": 0, "converted": 0}
    for number, recipe in enumerate(document["recipes"], start=1):
        if recipe["bankIndex"] != number:
            fail(f"bank {number} has index {recipe['bankIndex']}")
        if recipe["shortName"] != document["naming"]["prefix"] + f"{number:03d}":
            fail(f"bank {number} is called {recipe['shortName']}")
        bank = os.path.join(device, f"Bank {number}")
        pool = os.path.join(device, "Pool", f"Bank {number:02d}")
        info = os.path.join(bank, "info.txt")
        expected |= {bank, pool, info}
        with open(info, "rb") as file:
            if file.read() != ascii_text(recipe["shortName"]):
                fail(f"{info} differs")
        taken = set()
        for channel in range(1, 9):
            sample = recipe["channels"][str(channel)]
            base = sanitized(sample["displayName"])
            folder = os.path.join(bank, str(channel))
            path = os.path.join(folder, base + ".wav")
            name, n = base, 2
            while name.lower() in taken:
                name, n = f"{base}-{n:03d}", n + 1
            taken.add(name.lower())
            pooled = os.path.join(pool, name + ".wav")
            expected |= {folder, path, pooled}
            for file in (path, pooled):
                counts[check_wav(file, sample, channel, options)] += 1
    found = set()
    for parent, folders, files in os.walk(device):
        found |= {os.path.join(parent, name) for name in folders + files}
    if found != expected:
        fail(f"the tree differs: {sorted(found ^ expected)[:10]}")
    print(f"{len(document['recipes'])} banks, {counts['copied']} copied, {counts['stamped again']} copied "
          f"with an earlier stamp, {counts['converted']} converted files are correct")


if __name__ == "__main__":
    main()
