#!/usr/bin/python3 -B
"""Sends cheap requests to the main thread of a program at a steady rate: answer_times.py PID

Prints "ready", measures until SIGTERM, then prints the answer times in milliseconds as a JSON list. Requests
that were due while an answer was late are counted with the delay that they would have had.
"""

import json
import os
import signal
import sys
import time

import gi

gi.require_version("Gio", "2.0")
from gi.repository import Gio, GLib  # noqa: E402

INTERVAL = 0.005  # seconds
MIN_ANSWERS = 20
ROOT = "/org/a11y/atspi/accessible/root"
ACCESSIBLE = "org.a11y.atspi.Accessible"


def call(bus, owner, path, interface, method, arguments=None):
    return bus.call_sync(owner, path, interface, method, arguments, None, Gio.DBusCallFlags.NONE,
                         30000, None).unpack()


def accessibility_bus():
    session = Gio.bus_get_sync(Gio.BusType.SESSION)
    (address,) = call(session, "org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress")
    return Gio.DBusConnection.new_for_address_sync(
        address, Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
        | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION, None, None)


def owner_of(bus, pid):
    (children,) = call(bus, "org.a11y.atspi.Registry", ROOT, ACCESSIBLE, "GetChildren")
    for owner, _ in children:
        (found,) = call(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                        "GetConnectionUnixProcessID", GLib.Variant("(s)", (owner,)))
        if found == pid:
            return owner
    sys.exit(f"process {pid} is not on the accessibility bus")


def main():
    running = True

    def stop(*_):
        nonlocal running
        running = False

    signal.signal(signal.SIGTERM, stop)
    bus = accessibility_bus()
    owner = owner_of(bus, int(sys.argv[1]))
    question = GLib.Variant("(ss)", (ACCESSIBLE, "ChildCount"))
    times = []
    print("ready", flush=True)
    due = time.monotonic()
    # Measure short operations a little longer.
    while running or len(times) < MIN_ANSWERS:
        call(bus, owner, ROOT, "org.freedesktop.DBus.Properties", "Get", question)
        now = time.monotonic()
        while due <= now:
            times.append(1000 * (now - due))
            due += INTERVAL
        time.sleep(due - now)
    print(json.dumps(times), flush=True)
    os._exit(0)


main()
