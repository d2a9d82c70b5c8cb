#!/usr/bin/env python3
"""End-to-end check of the pricing aids on the real program: a quote line of 22 units of a
product with a break at 25 names that break under the totals, and with "Show volume prices"
ticked in the Quote Note window the quote document on the clipboard lists the cheaper breaks.

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
        # No clipboard keeper runs on this display: the close asks before the copy goes.
        s.close(wait=False)
        box = s.answer_next_box("Yes", title="Clipboard")
        check("still on the clipboard" in box.text, "the close names the copy: %r" % box.text)
        code = s.wait_exit(10)
        check(code == 0, "the program exits cleanly after Yes: %r" % code)
    finally:
        s.stop()
    with open(run.settings_file()) as f:
        check("VolumePrices=1" in f.read(), "the setting is kept")


SCENARIOS = {name[len("scenario_"):]: fn for name, fn in globals().items()
             if name.startswith("scenario_")}


if __name__ == "__main__":
    e2e.SCENARIOS = SCENARIOS
    sys.exit(e2e.main())
