#!/usr/bin/python3
"""The keyboard alone: from the start to banks on the medium, and every place the focus can go."""

import os

import trustlib
import window
from desktop import wait_until
from window import CREATED, MOST_STOPS, OUTPUT_PANEL, SOURCE_PANEL


class Keyboard(window.WindowTest):
    def focus_is(self, program, name, role=None):
        node = program.focused()
        return node and node.name == name and (role is None or node.role == role)

    def answer_panel_by_keys(self, program, title, path):
        program.panel(title)
        wait_until(lambda: program.focused() and program.focused().role == "text",
                   "the focus in the panel's field")
        # What the field shows at first is selected or replaced.
        program.desktop.key("ctrl+a")
        program.desktop.type_text(path)
        wait_until(lambda: program.focused() and program.focused().text == path, "the typed path")
        program.desktop.key("Return")
        program.wait_closed(title)

    def test_whole_run(self):
        library = trustlib.make_library(self.folder("Kit"))
        output = self.folder("Out")
        program = self.start()
        wait_until(lambda: self.focus_is(program, "DROP SOURCE FOLDER"), "the focus at the start")
        program.desktop.key("Return")
        self.answer_panel_by_keys(program, SOURCE_PANEL, library)
        program.wait_scanned()

        output_card = program.window.wait_for(name="OUTPUT")
        program.tab_to("CHOOSE FOLDER",
                       fits=lambda node: node == output_card.find(node.role, node.name))
        program.desktop.key("space")
        self.answer_panel_by_keys(program, OUTPUT_PANEL, output)
        program.window.wait_for_text(os.path.join(output, "Kit", "QZT508"))

        program.tab_to("GENERATE")
        program.desktop.key("Return")
        program.window.wait_for_text(CREATED, 300)
        self.assertTrue(os.path.exists(os.path.join(output, "Kit/QZT508/Bank 99/info.txt")))
        program.quit()

    def test_arrow_keys_choose_the_mode_and_rescan(self):
        program = self.start()
        program.choose_source(trustlib.make_library(self.folder("Kit")))
        program.wait_scanned()
        names = [node.name for node in program.window.wait_for(name="Generation mode").children]
        self.assertEqual(len(names), 3)
        program.window.wait_for(name=names[0])
        program.tab_to(names[0], role="radio-button")
        for key, index, seen in (("Right", 1, "LOOPS"), ("Right", 2, "STABS"), ("Right", 2, "STABS"),
                                 ("Left", 1, "LOOPS"), ("Home", 0, "CH1 KICK"), ("End", 2, "STABS")):
            program.desktop.key(key)
            wait_until(lambda: self.focus_is(program, names[index], "radio-button"),
                       lambda: f"{key} to reach {names[index]}, not {program.focused()}")
            wait_until(program.focused().is_checked, f"{names[index]} to be chosen")
            program.wait_scanned()
            program.window.wait_for_text(seen)
        # One stop for all three: the next Tab leaves the selector.
        program.desktop.key("Tab")
        wait_until(lambda: program.focused() and program.focused().name not in names,
                   "Tab to leave the selector")
        program.quit()

    def test_every_control_is_reached_and_the_circle_closes(self):
        program = self.start()
        program.choose_source(trustlib.make_library(self.folder("Kit")))
        program.choose_output(self.folder("Out"))
        program.wait_scanned()
        program.window.wait_for("check-box", "ENABLE CV ASSIGNMENTS").do("Toggle")
        wait_until(program.window.wait_for(name="8").is_enabled, "the channels to be enabled")
        first = program.focused()
        circle = [first]
        while len(circle) < MOST_STOPS:
            last = circle[-1]
            program.desktop.key("Tab")
            wait_until(lambda: program.focused() and program.focused() != last, f"Tab past {last}")
            if program.focused() == first:
                break
            circle.append(program.focused())
        self.assertLess(len(circle), MOST_STOPS, "the circle never closes")
        reached = {node.name for node in circle}
        for name in ("DROP SOURCE FOLDER", "CLEAR", "CHOOSE FOLDER", "ENABLE CV ASSIGNMENTS", "1", "8",
                     "IGNORED FOLDERS 0", "IGNORED FILES 1", "GENERATE", "Halvorine"):
            self.assertIn(name, reached)
        # One stop for the three modes; paths take the focus from the pointer, to be selected.
        no_stops = {"radio-button", "label"}
        focusable = [str(node) for node in program.window.showing()
                     if {"focusable", "enabled"} <= node.states and node.role not in no_stops
                     and node not in circle]
        self.assertEqual(focusable, [])
        for node in reversed(circle[1:]):
            program.desktop.key("shift+Tab")
            wait_until(lambda: program.focused() == node, lambda: f"Shift+Tab to reach {node}")
        program.quit()

    def test_space_and_enter_press_what_has_the_focus(self):
        program = self.start()
        program.choose_source(trustlib.make_library(self.folder("Kit")))
        program.wait_scanned()
        header = program.tab_to("IGNORED FILES 1")
        for key, is_open in (("space", True), ("Return", False), ("Return", True)):
            program.desktop.key(key)
            wait_until(lambda: ("expanded" in header.states) == is_open, f"{key} on {header}")
        program.window.wait_for("list-item")
        enable = program.tab_to("ENABLE CV ASSIGNMENTS", role="check-box")
        program.desktop.key("space")
        wait_until(enable.is_checked, "the check box to be checked")
        channel = program.tab_to("2", role="check-box")
        program.desktop.key("space")
        wait_until(channel.is_checked, "channel 2 to be selected")
        program.desktop.key("Return")
        wait_until(lambda: not channel.is_checked(), "channel 2 to be free again")
        program.quit()

    def test_menus(self):
        program = self.start()
        program.window.wait_for("menu-item", "File")
        program.desktop.key("Alt_L")
        wait_until(lambda: self.focus_is(program, "File"), "the focus in the menu bar")
        program.desktop.key("Down")
        entry = program.application.wait_for("menu-item", "Import JSON…")
        wait_until(lambda: "focused" in entry.states or "selected" in entry.states,
                   "the first entry to be chosen")
        program.desktop.key("Return")
        program.panel(window.IMPORT_PANEL)
        program.desktop.key("Escape")
        program.wait_closed(window.IMPORT_PANEL)
        program.quit()


if __name__ == "__main__":
    window.main()
