#!/usr/bin/env python3
"""Golden vectors of the seeded generator and of whole runs.

An independent model of what a seed means, written from its description and not from the C++ code.
Renew the header that the tests include, or check that it is current:

    python3 Tests/Support/golden_vectors.py > Tests/CoreTests/GoldenVectors.h
    python3 Tests/Support/golden_vectors.py --check Tests/CoreTests/GoldenVectors.h

A difference means that seeds stop reproducing the banks of earlier runs.
"""

import sys

WORD = 2**64
GAMMA = 0x9E3779B97F4A7C15


class SplitMix64:
    def __init__(self, seed):
        self.state = seed if seed != 0 else GAMMA
        self.draws = 0

    def next(self):
        self.draws += 1
        self.state = (self.state + GAMMA) % WORD
        z = self.state
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9 % WORD
        z = (z ^ (z >> 27)) * 0x94D049BB133111EB % WORD
        return z ^ (z >> 31)

    def below(self, n):
        m = self.next() * n
        if m % WORD < n:
            t = (WORD - n) % n
            while m % WORD < t:
                m = self.next() * n
        return m // WORD

    def shuffled(self, items):
        items = list(items)
        for i in range(len(items) - 1):
            j = i + self.below(len(items) - i)
            items[i], items[j] = items[j], items[i]
        return items


class CyclingPool:
    def __init__(self, items, rng):
        self.items = items
        self.order = rng.shuffled(items)
        self.cursor = 0

    def next(self, excluded, rng):
        wrapped = False
        first = None
        for _ in range(3 * len(self.items)):
            if self.cursor >= len(self.order):
                self.order = rng.shuffled(self.items)
                self.cursor = 0
                wrapped = True
            item = self.order[self.cursor]
            self.cursor += 1
            first = first or item
            if item not in excluded:
                return item, wrapped
        return first, True


DRUM_CHANNELS = ["kick", "clap", "closedHat", "openHat", "snare", "perc", "perc", "perc"]
POOL_ORDER = ["kick", "clap", "closedHat", "openHat", "snare", "perc"]


def bucket(role, count):
    """The names the C++ test gives to the samples of a bucket."""
    return [f"{role}{i}" for i in range(1, count + 1)]


def banks(pools, channel_pools, count, rng):
    for _ in range(count):
        row, used, reused = [], set(), False
        for name in channel_pools:
            item, again = pools[name].next(used, rng)
            row.append(item)
            used.add(item)
            reused = reused or again
        yield " ".join(row) + (" reused" if reused else "")


def drum_run(counts, seed, count):
    rng = SplitMix64(seed)
    pools = {role: CyclingPool(bucket(role, counts.get(role, 0)), rng) for role in POOL_ORDER}
    channel_pools = [role if counts.get(role, 0) else "perc" for role in DRUM_CHANNELS]
    return list(banks(pools, channel_pools, count, rng))


def uniform_run(role, available, seed, count):
    rng = SplitMix64(seed)
    pools = {role: CyclingPool(bucket(role, available), rng)}
    return list(banks(pools, [role] * 8, count, rng))


SEEDS = [0, 1, GAMMA, 0x0123456789ABCDEF, WORD - 1]
BOUNDS = [1, 2, 3, 10, 2**32 + 1, 2**63, 2**63 + 1, 3 * 2**62 + 1, WORD - 1]
FULL_DRUMS = {"kick": 5, "clap": 2, "closedHat": 3, "openHat": 1, "snare": 4, "perc": 7}
PERC_ONLY = {"kick": 1, "perc": 3}


def words(values):
    return ", ".join(f"0x{value:016X}U" for value in values)


def run_lines(name, rows):
    yield f"inline const std::vector<std::string> {name}{{"
    for row in rows:
        yield f'    "{row}",'
    yield "};"


def header():
    yield "// Made by Tests/Support/golden_vectors.py, which says how to renew it. Not edited by hand."
    yield "#pragma once"
    yield ""
    yield "#include <cstdint>"
    yield "#include <string>"
    yield "#include <vector>"
    yield ""
    yield "// clang-format off"
    yield "namespace torvo::test::golden {"
    yield ""
    yield "struct Draws { std::uint64_t seed; std::vector<std::uint64_t> values; };"
    yield "inline const std::vector<Draws> draws{"
    for seed in SEEDS:
        rng = SplitMix64(seed)
        yield f"    {{0x{seed:016X}U, {{{words(rng.next() for _ in range(5))}}}}},"
    yield "};"
    yield ""
    yield "/// `nextDraw` is the draw that follows: it tells how many draws the bounded ones took."
    yield "struct BoundedDraws { std::uint64_t bound; std::vector<std::uint64_t> values; std::uint64_t nextDraw; int rejections; };"
    yield "inline const std::uint64_t boundedSeed = 7;"
    yield "inline const std::vector<BoundedDraws> boundedDraws{"
    for bound in BOUNDS:
        rng = SplitMix64(7)
        values = [rng.below(bound) for _ in range(32)]
        rejections = rng.draws - len(values)
        yield f"    {{0x{bound:016X}U, {{{words(values)}}}, 0x{rng.next():016X}U, {rejections}}},"
    yield "};"
    yield ""
    yield "struct Shuffle { std::size_t length; std::vector<int> order; std::uint64_t nextDraw; };"
    yield "inline const std::uint64_t shuffleSeed = 2026;"
    yield "inline const std::vector<Shuffle> shuffles{"
    for length in [0, 1, 2, 3, 8, 52]:
        rng = SplitMix64(2026)
        order = ", ".join(str(i) for i in rng.shuffled(range(length)))
        yield f"    {{{length}, {{{order}}}, 0x{rng.next():016X}U}},"
    yield "};"
    yield ""
    yield "/// A bank a line: the samples of channels 1 to 8, and whether the bank counts as reused."
    yield from run_lines("fullDrums", drum_run(FULL_DRUMS, 0x0123456789ABCDEF, 24))
    yield from run_lines("percOnlyDrums", drum_run(PERC_ONLY, 42, 6))
    yield from run_lines("zeroSeedDrums", drum_run(FULL_DRUMS, 0, 6))
    yield from run_lines("elevenLoops", uniform_run("loop", 11, WORD - 1, 24))
    yield from run_lines("eightStabs", uniform_run("stab", 8, 3, 6))
    yield ""
    yield "} // namespace torvo::test::golden"
    yield "// clang-format on"


def main(arguments):
    text = "\n".join(header()) + "\n"
    if not arguments:
        sys.stdout.write(text)
        return 0
    if len(arguments) != 2 or arguments[0] != "--check":
        sys.stderr.write(__doc__)
        return 2
    with open(arguments[1], encoding="utf-8") as current:
        if current.read() == text:
            return 0
    sys.stderr.write(arguments[1] + " is not what the model gives.\n")
    return 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
