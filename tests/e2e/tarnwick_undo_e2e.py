#!/usr/bin/env python3
"""End-to-end check of Undo on the real program: a price edited, a product deleted and one
added, then Ctrl+Z three times; Edit's items name the steps; closing leaves the catalogue file
byte for byte as the run found it.

    tarnwick_undo_e2e.py --driver DIR --program PATH --sample FILE [--source DIR] SCENARIO

Ends with the line "N passed, N failed".
"""
import os
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import tarnwick_e2e as e2e  # noqa: E402 - shares the runner and its helpers

from tarnwick_e2e import check, wait_for, check_clean_exit  # noqa: E402


def titles(s):
    return [w["title"] for w in s.windows() if w["showing"]]


def key(s, name):
    """Presses a key in the main window. Its title gains or loses the unsaved mark "*" on the
    program's own time, and the driver looks for the window by the title it had a moment
    before: when the title changed meanwhile the window is looked for again. No key has been
    sent when activating fails."""
    for attempt in range(3):
        try:
            s.key(name)
            return
        except Exception as error:  # the driver's DriverTimeout; the driver is imported late
            if type(error).__name__ != "DriverTimeout" or attempt == 2:
                raise


def edit_items(s):
    """The first two items of the Edit menu: (caption without its "&", enabled) of Undo and
    Redo."""
    items = s.menu_items("&Edit")
    return [(item["caption"].replace("&", ""), item["enabled"]) for item in items[:2]]


def scenario_undo(run):
    """Edit a price, delete a product, add one, Ctrl+Z three times, close: the catalogue file is
    the one the run started with."""
    sample = run.sample_bytes()
    s = run.start()
    try:
        rows = s.read_table("GrdMain")
        check(len(rows) >= 3, "the sample has products: %r" % (rows,))
        check(edit_items(s) == [("Undo", False), ("Redo", False)],
              "nothing to undo or redo at the start: %r" % (edit_items(s),))
        s.toolbar("Edit")
        wait_for(lambda: s.is_checked("Edit"), 5, "edit mode")

        # A price typed into the list price box, stored when the box is left.
        first = rows[0][0]
        s.click_cell("GrdMain", 0, 0)
        s.type_text("TxtPrice", "99.99")
        key(s, "Tab")
        wait_for(lambda: s.read_table("GrdMain")[0][2] == "$99.99", 5, "the new price in the grid")
        wait_for(lambda: edit_items(s)[0] == ("Undo Edit List Price %s" % first, True), 5,
                 "Undo naming the price edit")

        # A product deleted.
        gone = rows[2][0]
        s.click_cell("GrdMain", 2, 0)
        s.toolbar("DelProd")
        s.answer_next_box("&Yes", title="Delete")
        wait_for(lambda: len(s.read_table("GrdMain")) == len(rows) - 1, 5, "one product fewer")
        check(gone not in [r[0] for r in s.read_table("GrdMain")], "%s deleted" % gone)

        # A product added.
        s.click_cell("GrdMain", 1, 0)
        s.menu("&Products/&Add")
        wait_for(lambda: len(s.read_table("GrdMain")) == len(rows), 5, "the new empty row")
        wait_for(lambda: edit_items(s)[0] == ("Undo Add Product", True), 5, "Undo naming the add")
        wait_for(lambda: "Tarnwick*" in titles(s), 5, "the unsaved mark")

        for _ in range(3):
            key(s, "ctrl+z")
        wait_for(lambda: s.read_table("GrdMain") == rows, 10, "the grid as it started")
        wait_for(lambda: edit_items(s) == [("Undo", False),
                                           ("Redo Edit List Price %s" % first, True)], 5,
                 "nothing left to undo, the price edit to redo")
        wait_for(lambda: "Tarnwick*" not in titles(s), 5, "the unsaved mark gone")
        check_clean_exit(s)
    finally:
        s.stop()
    check(open(run.catalogue(), "rb").read() == sample,
          "the catalogue file is byte for byte the one the run started with")
    check(not os.path.exists(os.path.join(run.app, "twdata-recovery.dat")),
          "no recovery file left")


SCENARIOS = {name[len("scenario_"):]: fn for name, fn in globals().items()
             if name.startswith("scenario_")}


if __name__ == "__main__":
    e2e.SCENARIOS = SCENARIOS
    sys.exit(e2e.main())
