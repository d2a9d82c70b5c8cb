#!/usr/bin/env python3
"""End-to-end checks of the quote book with the real program: a quote saved for a customer
is on screen again after a close and a start, File -> New empties it, and "Open Quote..."
brings the saved one back with the same lines and totals; a quote on screen outlives a kill;
a price typed at full speed and "Add to Quote" right after reach the quote together.

    tarnwick_quotebook_e2e.py --driver DIR --program PATH --sample FILE [--source DIR] SCENARIO

Ends with the line "N passed, N failed".
"""
import os
import sqlite3
import subprocess
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import tarnwick_e2e as e2e  # noqa: E402 - shares the runner and its helpers

from tarnwick_e2e import check, wait_for, check_clean_exit  # noqa: E402


def quote_lines(s):
    """The quote grid's lines (rows with a part number)."""
    return [r for r in s.read_table("GrdQuote", max_rows=12) if r[0]]


def totals(s):
    return [s.read_text(name) for name in ("TxtTotal", "TxtDisc", "TxtQdisper")]


def add_to_quote(s, row, quantity=None):
    s.click_cell("GrdMain", row, 0)
    s.context_menu("GrdMain", "Add to &Quote", cell=(row, 0))
    if quantity is not None:
        s.type_keys(quantity + "\n", delay=5)


def quote_command(s, caption):
    """Chooses a command of the quote grid's context menu."""
    s.context_menu("GrdQuote", caption, cell=(0, 0))


def show_quote_tab(s):
    s.select_tab("&Quote")
    wait_for(lambda: s.widget("GrdQuote")["states"].count("showing"), 5, "the quote tab")


def book_path(run):
    return os.path.join(run.app, "quotes.db")


def in_hand_parts(run):
    """The part numbers of the quote in hand as the quote book keeps it, read by Python's own
    SQLite (the program keeps running; the book is in WAL mode)."""
    if not os.path.exists(book_path(run)):
        return []
    with sqlite3.connect("file:%s?mode=ro" % book_path(run), uri=True) as db:
        return [r[0] for r in db.execute("SELECT part_number FROM in_hand_lines ORDER BY line")]


def scenario_quotebook(run):
    """Build a quote, save it for "ACME Plumbing", close, start again: the quote is still on
    screen; New empties it; Open Quote brings the saved one back with its lines and totals."""
    s = run.start()
    try:
        add_to_quote(s, 0, "10")
        add_to_quote(s, 1)
        lines = wait_for(lambda: len(quote_lines(s)) == 2 and quote_lines(s), 5, "two quote lines")
        check(lines[0][3] == "10", "quantity typed after Add to Quote: %r" % (lines,))
        before = totals(s)
        check(before[0].startswith("$"), "the total is shown: %r" % (before,))
        quote_command(s, "&Save Quote...")
        s.wait_for_window("Save Quote")
        s.type_text("TxtCustomer", "ACME Plumbing", window="Save Quote")
        s.press("CmdOK", window="Save Quote")
        s.wait_window_gone("Save Quote")
        wait_for(lambda: "A saved for ACME Plumbing." in s.status_text(), 5,
                 "the saved quote in the status bar")
        check_clean_exit(s)
    finally:
        s.stop()
    check(os.path.exists(os.path.join(run.app, "quotes.bak")), "quotes.bak written at close")
    with sqlite3.connect(book_path(run)) as db:
        saved = db.execute("SELECT customer, revision FROM quotes").fetchall()
    check(saved == [("ACME Plumbing", 0)], "one quote, revision A, for ACME: %r" % (saved,))

    s = run.start()
    try:
        show_quote_tab(s)
        check(quote_lines(s) == lines, "the quote is on screen again: %r" % (quote_lines(s),))
        check(totals(s) == before, "with its totals: %r" % (totals(s),))
        s.menu("&File/&New")
        wait_for(lambda: not quote_lines(s), 5, "an empty quote after New")
        quote_command(s, "&Open Quote...")
        s.wait_for_window("Quotes")
        listed = s.read_table("GrdQuotes", window="Quotes")
        check(len(listed) == 1 and listed[0][2] == "ACME Plumbing",
              "the saved quote is listed: %r" % (listed,))
        s.press("CmdOpen", window="Quotes")
        s.wait_window_gone("Quotes")
        wait_for(lambda: quote_lines(s) == lines, 5, "the saved lines back on screen")
        check(totals(s) == before, "the same totals: %r" % (totals(s),))
        check_clean_exit(s)
    finally:
        s.stop()


def scenario_quotebook_kill(run):
    """The quote on screen reaches the quote book within moments of each change and comes
    back after the program is killed."""
    s = run.start()
    try:
        add_to_quote(s, 2)
        add_to_quote(s, 0)
        parts = [r[0] for r in wait_for(lambda: len(quote_lines(s)) == 2 and quote_lines(s), 5,
                                         "two quote lines")]
        wait_for(lambda: in_hand_parts(run) == parts, 5, "the quote in hand in quotes.db")
        s.kill()
    finally:
        s.stop()
    s = run.start()
    try:
        show_quote_tab(s)
        check([r[0] for r in quote_lines(s)] == parts, "the quote after the kill: %r"
              % (quote_lines(s),))
        check_clean_exit(s)
    finally:
        s.stop()


# Types a price and presses Ctrl+D through one X connection in one flush, as fast as the X
# server hands keys over.
TYPE_THEN_ADD = r"""
import sys
from Xlib import X, XK, display
from Xlib.ext import xtest
d = display.Display()
control = d.keysym_to_keycode(XK.XK_Control_L)
for ch in sys.argv[1] + "d":
    code = d.keysym_to_keycode(XK.string_to_keysym("period" if ch == "." else ch))
    if ch == "d":
        xtest.fake_input(d, X.KeyPress, control)
    xtest.fake_input(d, X.KeyPress, code)
    xtest.fake_input(d, X.KeyRelease, code)
    if ch == "d":
        xtest.fake_input(d, X.KeyRelease, control)
d.sync()
"""


def scenario_typed_ahead(run):
    """A price typed at full speed and "Add to Quote" (Ctrl+D) at once, as a practised user
    does: the product takes the price, and the quote's line takes the product with it, on every
    row tried (the shortcut was once handled before the keys the accessibility bus still held)."""
    products = [[b"TW-%d00" % n, b"Widget %d" % n, b"%d.5" % n] for n in range(1, 7)]
    with open(run.catalogue(), "wb") as f:
        f.write(b"".join(e2e.catalogue_record(p) for p in products))
    parts = [p[0].decode() for p in products]
    s = run.start()
    try:
        s.toolbar("Edit")
        check(s.is_checked("Edit"), "edit mode")
        typed = []
        python = os.environ.get("TW_DRIVER_PYTHON") or "/usr/bin/python3"
        env = dict(os.environ, DISPLAY=s.display)
        env.pop("XAUTHORITY", None)
        for row in range(6):
            s.click_cell("GrdMain", row, 2)
            price = "%d.%02d" % (row + 11, row + 3)
            typed.append(price)
            subprocess.run([python, "-c", TYPE_THEN_ADD, price], env=env, check=True, timeout=30)
            wait_for(lambda: len(quote_lines(s)) == row + 1, 5, "quote line %d" % (row + 1))
        lines = quote_lines(s)
        check([r[0] for r in lines] == parts, "the rows typed in, in order: %r" % (lines,))
        check([r[2] for r in lines] == ["$" + p for p in typed],
              "each line at the price typed: %r" % (lines,))
        check([r[3] for r in lines] == ["1"] * 6, "no typing in the quantities: %r" % (lines,))
        grid = s.read_table("GrdMain", max_rows=6)
        check([r[2] for r in grid] == ["$" + p for p in typed],
              "each product at the price typed: %r" % (grid,))
        check_clean_exit(s)
    finally:
        s.stop()


SCENARIOS = {name[len("scenario_"):]: fn for name, fn in globals().items()
             if name.startswith("scenario_")}


if __name__ == "__main__":
    e2e.SCENARIOS = SCENARIOS
    sys.exit(e2e.main())
