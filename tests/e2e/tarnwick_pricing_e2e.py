#!/usr/bin/env python3
"""End-to-end check of the pricing aids on the real program: a quote line of 22 units of a
product with a break at 25 names that break under the totals, and with "Show volume prices"
ticked in the Quote Note window the quote document on the clipboard lists the cheaper breaks;
it stays on the clipboard, in every form, once the program has closed.

    tarnwick_pricing_e2e.py --driver DIR --program PATH --sample FILE [--source DIR] SCENARIO

Ends with the line "N passed, N failed".
"""
import os
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import tarnwick_e2e as e2e  # noqa: E402 - shares the runner and its helpers

from tarnwick_e2e import check, wait_for  # noqa: E402

NEXT_BREAK = ("Next break for BV-1050: 25 or more at $10.95 each \u2014 3 more units save "
              "$23.75 on this line.")


def keepers_on(display):
    """The pids of Tarnwick's clipboard keepers serving this X display."""
    found = []
    for entry in os.listdir("/proc"):
        if not entry.isdigit():
            continue
        try:
            with open("/proc/%s/comm" % entry) as f:
                if f.read().strip() != "tarnwick-clip":
                    continue
            with open("/proc/%s/environ" % entry, "rb") as f:
                if b"DISPLAY=" + display.encode() + b"\0" not in f.read():
                    continue
        except OSError:
            continue
        found.append(int(entry))
    return found


def scenario_pricing(run):
    """22 units of BV-1050 (breaks at 10, 25, 50 and 100): the next break, then the volume
    prices in the copied quote."""
    s = run.start()
    try:
        s.click_cell("GrdMain", 0, 0)
        s.context_menu("GrdMain", "Add to &Quote", cell=(0, 0))
        s.type_keys("22\n", delay=5)
        line = wait_for(lambda: s.read_table("GrdQuote")[0], 5, "the quote line")
        check(line[0] == "BV-1050" and line[3] == "22", "22 units of BV-1050: %r" % line)
        wait_for(lambda: s.read_text("LblNextBreak") == NEXT_BREAK, 5, "the next break shown")

        s.context_menu("GrdQuote", "&Quote Note", cell=(0, 0))
        s.wait_for_window("Quote Note")
        s.click("ChkVolumePrices", window="Quote Note")
        wait_for(lambda: s.is_checked("ChkVolumePrices", window="Quote Note"), 5,
                 "Show volume prices ticked")
        s.press("cmdNextTip", window="Quote Note")
        s.wait_window_gone("Quote Note")

        s.context_menu("GrdQuote", "&Copy", cell=(0, 0))
        text = wait_for(lambda: (lambda t: t if "Order Total" in t else None)(
            s.clipboard("text/plain")), 5, "the quote document on the clipboard")
        for order in ("Order 25 or more: $10.95 each.", "Order 50 or more: $9.80 each.",
                      "Order 100 or more: $8.90 each."):
            check(order in text, "%r in the document: %r" % (order, text))
        check(text.index("Order 25") < text.index("Order 50") < text.index("Order 100"),
              "the breaks in ascending quantity")
        forms = ("text/plain", "UTF8_STRING", "STRING", "TEXT", "text/html", "text/rtf",
                 "application/rtf")
        copied = {form: s.clipboard(form, raw=True) for form in forms}
        check(all(copied.values()), "every form of the copy offered: %r"
              % [form for form in forms if not copied[form]])
        # No clipboard keeper runs on this display: Tarnwick's own takes the copy, and the
        # close asks nothing.
        code = s.close()
        check(code == 0, "the program exits cleanly: %r" % code)
        kept = {form: s.clipboard(form, raw=True) for form in forms}
        for form in forms:
            check(kept[form] == copied[form], "%s the same after the close: %r" % (form, kept[form]))
        keepers = wait_for(lambda: keepers_on(s.display), 5, "the keeper running")
        # Something else copied: the keeper has nothing left to keep.
        s.set_clipboard("elsewhere")
        wait_for(lambda: not any(os.path.exists("/proc/%d" % pid) for pid in keepers), 10,
                 "the keeper gone once something else was copied")
        check(s.clipboard("UTF8_STRING") == "elsewhere", "the new copy on the clipboard")
    finally:
        for pid in keepers_on(s.display):
            os.kill(pid, 9)
        s.stop()
    with open(run.settings_file()) as f:
        check("VolumePrices=1" in f.read(), "the setting is kept")


SCENARIOS = {name[len("scenario_"):]: fn for name, fn in globals().items()
             if name.startswith("scenario_")}


if __name__ == "__main__":
    e2e.SCENARIOS = SCENARIOS
    sys.exit(e2e.main())
