"""Shared by the end-to-end checks: a small library, snapshots of trees, the program under strace."""

import array
import fcntl
import hashlib
import json
import math
import os
import re
import shutil
import stat
import struct
import subprocess
import sys
import tempfile
import time
import wave


class Failed(Exception):
    """A check that failed."""


def check(condition, message):
    if not condition:
        raise Failed(message)


def describe(what):
    return what() if callable(what) else what


def wait_until(condition, what, seconds=60.0):
    """Returns the first true result of `condition`; fails if there is none in time. `what` describes what is waited
    for: a text, or a function that returns one and is called on failure."""
    deadline = time.monotonic() + seconds
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > deadline:
            raise Failed(f"timed out after {seconds:.0f} s: {describe(what)}")
        time.sleep(0.01)


def work_folder():
    """A new folder in TMPDIR, or in memory if that is not set: the sweeps call fsync() thousands of times."""
    in_memory = "TMPDIR" not in os.environ and os.access("/dev/shm", os.W_OK)
    return tempfile.mkdtemp(prefix="torvo-e2e-", dir="/dev/shm" if in_memory else None)


def one_processor():
    """Pins this process and its children to one processor: programs then start no worker threads, and the n-th
    system call is the same in every run. Sweeps choose different processors as long as there are enough."""
    allowed = sorted(os.sched_getaffinity(0))
    for number in allowed:
        # The lock is released when this process ends.
        claim = os.open(f"/sys/devices/system/cpu/cpu{number}", os.O_RDONLY)
        try:
            fcntl.flock(claim, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except BlockingIOError:
            os.close(claim)
            continue
        os.sched_setaffinity(0, {number})
        return
    os.sched_setaffinity(0, {allowed[os.getpid() % len(allowed)]})


def write_wav(path, rate, channels, width, frames):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    with wave.open(path, "wb") as file:
        file.setnchannels(channels)
        file.setsampwidth(width)
        file.setframerate(rate)
        data = bytearray()
        for i in range(frames * channels):
            value = int(0.4 * (1 << (8 * width - 1)) * math.sin(0.03 * i + 1.0 / (1 + i)))
            data += (value & ((1 << (8 * width)) - 1)).to_bytes(width, "little")
        file.writeframes(bytes(data))


def write_au(path, rate, frames):
    os.makedirs(os.path.dirname(path), exist_ok=True)
    samples = array.array("h", (i * 37 % 20000 for i in range(frames)))
    if sys.byteorder == "little":
        samples.byteswap()
    with open(path, "wb") as file:
        file.write(b".snd" + struct.pack(">5I", 24, 2 * frames, 3, rate, 1) + samples.tobytes())


def make_library(folder):
    """Samples of both kinds: copied unchanged, and converted with and without FFmpeg."""
    write_wav(folder + "/Kicks/kick 1.wav", 44100, 1, 2, 900)
    write_wav(folder + "/Kicks/808/BD 2.wav", 48000, 2, 3, 5000)
    write_wav(folder + "/Snares/snare.wav", 44100, 2, 3, 500)
    write_au(folder + "/Claps/clap.au", 32000, 3000)
    write_wav(folder + "/Hats/closed hat.wav", 22050, 1, 2, 400)
    write_wav(folder + "/Hats/open hat.wav", 44100, 1, 2, 300)
    for n in (1, 2, 3):
        write_wav(folder + "/Toms/tom %d.wav" % n, 44100, 1, 2, 400 * n)
    with open(folder + "/notes.txt", "w") as file:
        file.write("no sample\n")
    return folder


def snapshot(folder, times=True):
    """Maps every item below a folder to its mode, modification time and content hash."""
    items = {}
    for parent, folders, files in os.walk(folder):
        for name in ["."] * (parent == folder) + folders + files:
            path = os.path.normpath(os.path.join(parent, name))
            details = os.lstat(path)
            content = ""
            if stat.S_ISREG(details.st_mode):
                with open(path, "rb") as file:
                    content = hashlib.sha256(file.read()).hexdigest()
            elif stat.S_ISLNK(details.st_mode):
                content = os.readlink(path)
            items[os.path.relpath(path, folder)] = (
                details.st_mode, details.st_mtime_ns if times else 0, content)
    return items


def differences(before, after):
    lines = ["- " + path for path in before if path not in after]
    lines += ["+ " + path for path in after if path not in before]
    lines += ["! " + path for path in before if path in after and before[path] != after[path]]
    return sorted(lines)


def check_same(before, after, what):
    found = differences(before, after)
    check(not found, "%s:\n  %s" % (what, "\n  ".join(found[:20])))


def replace_tree(source, destination):
    shutil.rmtree(destination, ignore_errors=True)
    shutil.copytree(source, destination, symlinks=True)


def run(command, **options):
    """Runs a command and captures its output as text."""
    return subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                          errors="replace", timeout=120, check=False, **options)


def run_successfully(command):
    result = run(command)
    check(result.returncode == 0,
          "%s\nended with %d: %s" % (" ".join(command), result.returncode, result.stderr))
    return json.loads(result.stdout)


def require_tool(name):
    check(shutil.which(name), name + " is missing")


CALL = re.compile(r"^(\d+)\s+(\w+)\((.*)$")


def traced_calls(command, calls, below):
    """Runs the command under strace. Returns, for each system call, which of a thread's calls (counted
    from 1) concern something below a folder."""
    with tempfile.NamedTemporaryFile("r", errors="replace") as log:
        result = run(["strace", "-f", "-qq", "-y", "-s", "0", "-o", log.name,
                      "-e", "trace=" + ",".join(calls)] + command)
        check(result.returncode == 0, "%s failed: %s" % (" ".join(command), result.stderr))
        counts, points = {}, {call: set() for call in calls}
        for line in log:
            found = CALL.match(line)
            if not found:
                continue
            thread, call, rest = found.groups()
            if call not in points:
                continue
            counts[thread, call] = counts.get((thread, call), 0) + 1
            if below in rest:
                points[call].add(counts[thread, call])
    return {call: sorted(numbers) for call, numbers in points.items()}


def injected(command, call, what, n):
    """Runs the command with `what` ("error=EIO", "signal=SIGKILL") at each thread's n-th call."""
    # Stopping only at these calls takes two thirds of the time, but strace then delivers no signals.
    filtered = ["--seccomp-bpf"] if what.startswith("error=") else []
    return run(["strace"] + filtered + ["-f", "-qq", "-o", "/dev/null", "-e", "trace=" + call,
                "-e", "inject=%s:%s:when=%d" % (call, what, n)] + command)


def stopped_child(tracer, log):
    """Waits until strace has stopped its tracee; returns the tracee's number."""
    def look():
        check(tracer.poll() is None, "ended before it could be stopped")
        with open(log, errors="replace") as lines:
            return next((int(line.split()[0]) for line in lines if "stopped by SIGSTOP" in line), 0)
    try:
        return wait_until(look, "the program to be stopped")
    except Failed:
        tracer.kill()
        tracer.communicate()
        raise


def main(checks):
    """Runs named checks and prints each result. Returns the exit code."""
    failed = 0
    for name, function in checks:
        try:
            print("OK    %s: %s" % (name, function()), flush=True)
        except Failed as error:
            failed += 1
            print("FAIL  %s: %s" % (name, error), flush=True)
    return 1 if failed else 0
