#!/usr/bin/python3 -B
"""A window to drag files from: drag_source.py URI... Prints the progress of the drag to standard output."""

import sys

import gi

gi.require_version("Gdk", "3.0")
gi.require_version("Gtk", "3.0")
from gi.repository import Gdk, Gtk  # noqa: E402


def tell(text):
    print(text, flush=True)


def begin(window, context):
    tell("begin")
    context.connect("action-changed",
                    lambda _, action: tell("accepted" if action else "refused"))


def main():
    window = Gtk.Window(title="Files")
    window.set_default_size(200, 200)
    window.add(Gtk.Label(label="Drag me"))
    window.drag_source_set(Gdk.ModifierType.BUTTON1_MASK, [], Gdk.DragAction.COPY)
    window.drag_source_add_uri_targets()
    window.connect("drag-begin", begin)
    window.connect("drag-data-get",
                   lambda _w, _c, data, _i, _t: data.set_uris(sys.argv[1:]))
    window.connect("drag-end", lambda _, context: tell(
        "taken" if Gdk.drag_drop_succeeded(context) else "not taken"))
    window.connect("map-event", lambda *_: tell("shown"))
    # Beside the program's window.
    screen = Gdk.Display.get_default().get_monitor(0)
    window.move(screen.get_geometry().width - 260, 40)
    window.show_all()
    Gtk.main()


main()
