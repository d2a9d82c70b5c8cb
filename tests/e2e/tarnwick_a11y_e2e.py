#!/usr/bin/env python3
"""End-to-end checks of what a screen reader hears from the real program: the events the
program sends on the desktop's accessibility bus, read by a listener of its own beside the
black-box driver.

    tarnwick_a11y_e2e.py --driver DIR --program PATH --sample FILE [--source DIR] SCENARIO

Ends with the line "N passed, N failed".
"""
import os
import subprocess
import sys
import time

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import tarnwick_e2e as e2e  # noqa: E402 - shares the runner and its helpers

from tarnwick_e2e import check, wait_for, check_clean_exit  # noqa: E402

# Writes one line per focus event: the time, the role and the name of what got the focus.
LISTENER = r"""
import sys, time
import gi
gi.require_version('Atspi', '2.0')
from gi.repository import Atspi, GLib
Atspi.init()
out = open(sys.argv[1], 'a', buffering=1)
def noted(event):
    if event.detail1 != 1:
        return
    try:
        role, name = event.source.get_role_name(), event.source.get_name()
    except Exception:
        role, name = '?', '?'
    out.write('%f\t%s\t%s\n' % (time.time(), role, name.replace('\n', ' ')))
listener = Atspi.EventListener.new(noted)
listener.register('object:state-changed:focused')
out.write('listening\n')
GLib.MainLoop().run()
"""


class FocusLog:
    """The focus events of the session's accessibility bus, as a screen reader gets them."""

    def __init__(self, session, folder):
        self.path = os.path.join(folder, "focus.log")
        python = os.environ.get("TW_DRIVER_PYTHON") or "/usr/bin/python3"
        env = session._env_base()  # the session's display and bus  # noqa: SLF001
        self.proc = subprocess.Popen([python, "-c", LISTENER, self.path], env=env,
                                     stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        wait_for(lambda: os.path.exists(self.path) and "listening" in open(self.path).read(),
                 15, "the focus listener")

    def since(self, moment):
        events = []
        for line in open(self.path).read().splitlines()[1:]:
            stamp, role, name = (line.split("\t") + ["", ""])[:3]
            if float(stamp) >= moment:
                events.append((role, name))
        return events

    def stop(self):
        self.proc.kill()
        self.proc.wait()


def help_title(s):
    """The title of the help window while it shows; empty otherwise."""
    return next((w["title"] for w in s.windows()
                 if w.get("showing", True) and w["title"].startswith("Tarnwick Help")), "")


def scenario_announce(run):
    """Typing a keyword into the help's index announces no index entry (the keyboard stays in
    the box); Down into the list does. Coming back to the product grid (Shift+F6) announces its
    current cell, not only the table. A menu opened by its letter leaves the menu announced.
    """
    s = run.start()
    log = FocusLog(s, run.tmp)
    try:
        s.click_cell("GrdMain", 2, 0)
        s.key("F1")
        first = wait_for(lambda: help_title(s), 15, "the help window")
        tab = time.time()
        s.key("alt+i", window=first)
        # The tab's own announcements come first: the keyword box has the keyboard.
        wait_for(lambda: [e for e in log.since(tab) if e[0] == "text"], 5,
                 "the keyword box announced: %r" % (log.since(tab),))
        typed = time.time()
        s.type_keys("passw", window=first, delay=5)
        s.key("Return", window=first)
        shown = wait_for(lambda: help_title(s) != first and help_title(s), 10, "the entry's page")
        # Down takes the keyboard into the list: its entry is announced, after every event the
        # typing caused.
        s.key("Down", window=shown)
        wait_for(lambda: [e for e in log.since(typed) if e[0] == "list item"], 5,
                 "the index entry announced once the keyboard is in the list: %r"
                 % (log.since(typed),))
        entries = [e for e in log.since(typed) if e[0] in ("list item", "table cell")]
        check(len(entries) == 1, "typing in the keyword box announced list entries: %r"
              % (entries,))
        s.key("Escape", window=shown)
        wait_for(lambda: not help_title(s), 10, "the help put away")

        s.activate(timeout=15)
        s.key("F6")  # to the side boxes
        back = time.time()
        s.key("shift+F6")  # and back to the product grid, at BV-1100
        cells = wait_for(lambda: [e for e in log.since(back) if e[0] == "table cell"], 5,
                         "the current product announced: %r" % (log.since(back),))
        check(any("BV-1100" in name for _, name in cells), "the cell announced: %r" % (cells,))

        # A menu opened by its letter highlights no item (a letter starts from the top): what
        # has the keyboard last is the menu, not its first item, which Enter would not choose.
        opened = time.time()
        s.key("alt+h")
        wait_for(lambda: [e for e in log.since(opened) if e[0] == "popup menu"], 5,
                 "the menu announced: %r" % (log.since(opened),))
        s.key("shift")
        last = log.since(opened)[-1]
        check(last[0] == "popup menu", "the last announcement after Alt+H: %r"
              % (log.since(opened),))
        s.key("Escape")
        check_clean_exit(s)
    finally:
        log.stop()
        s.stop()


if __name__ == "__main__":
    e2e.SCENARIOS = {"announce": scenario_announce}
    sys.exit(e2e.main())
