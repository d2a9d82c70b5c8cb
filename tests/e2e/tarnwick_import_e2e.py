#!/usr/bin/env python3
"""End-to-end check of "Update existing products" with the real Tarnwick executable, driven
from outside as a user would (see tarnwick_e2e.py for the session and its helpers).

    tarnwick_import_e2e.py --driver DIR --program PATH --sample FILE [--source DIR] SCENARIO

supplier: the program exports the sample catalogue; a supplier's workbook made by LibreOffice
from that export, with changed prices (data/supplier.xlsx, made by data/make_supplier_sheet.py),
is imported with "Update existing products" and "Match Headers"; "Import Preview" shows the
counts, Apply changes the products, and the catalogue file written at close holds exactly the
changed and the new products.

Ends with the line "N passed, N failed".
"""
import csv
import decimal
import os
import shutil
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
sys.dont_write_bytecode = True
import tarnwick_e2e as base  # noqa: E402 - beside this script

DATA = os.path.join(os.path.dirname(os.path.abspath(__file__)), "data")
NUMBER_FIELDS = [2] + list(range(5, 15))


def number(text):
    """The value of a price as the sheet holds it ("$1,234.50"), or None."""
    try:
        return decimal.Decimal(text.replace("$", "").replace(",", ""))
    except decimal.InvalidOperation:
        return None


def stored(text):
    """A number as the catalogue file holds it: no currency sign, no trailing zeros."""
    digits = format(number(text), "f")
    return digits.rstrip("0").rstrip(".") if "." in digits else digits


def plan(sample, rows):
    """What the import should do: the count lines of the preview and the catalogue after it."""
    catalogue = {r[0].decode("cp1252"): list(r) for r in sample}
    seen, added, changed, unchanged = set(), [], 0, 0
    skipped = {"empty part number": 0, "part number twice in the sheet": 0,
               "list price that is no number": 0}
    for row in rows:
        part = row[0]
        if not any(row):
            break
        if not part:
            skipped["empty part number"] += 1
        elif part in seen:
            skipped["part number twice in the sheet"] += 1
        elif row[2] and number(row[2]) is None:
            skipped["list price that is no number"] += 1
        elif part in catalogue:
            if update(catalogue[part], row):
                changed += 1
            else:
                unchanged += 1
        else:
            added.append([(stored(v) if i in NUMBER_FIELDS and v else v).encode("cp1252")
                          for i, v in enumerate(row)])
        seen.add(part)
    reasons = "; ".join("%s: %d" % (k, v) for k, v in skipped.items() if v)
    lines = ["Products added: %d" % len(added), "Products changed: %d" % changed,
             "Products unchanged: %d" % unchanged,
             "Rows skipped: %d (%s)" % (sum(skipped.values()), reasons)]
    saved = sorted(list(catalogue.values()) + added, key=lambda r: r[0])
    return lines, saved


def update(record, row):
    """Puts the sheet's values into a catalogue record; True when one of them differs. An empty
    cell changes nothing; numbers are compared by value."""
    differs = False
    for field, value in enumerate(row):
        if field == 0 or not value:
            continue
        old = record[field].decode("cp1252")
        if field in NUMBER_FIELDS:
            same = number(old) is not None and number(old) == number(value)
            new = stored(value)
        else:
            same = old == value
            new = value
        if not same:
            record[field] = new.encode("cp1252")
            differs = True
    return differs


def scenario_supplier(run):
    """Export, then "Update existing products" from the supplier's workbook made from it."""
    sample = base.records(run.args.sample)
    with open(os.path.join(DATA, "supplier.csv"), encoding="utf-8", newline="") as f:
        rows = list(csv.reader(f))[1:]
    lines, saved = plan(sample, rows)
    exported = os.path.join(run.tmp, "export.txt")
    sheet = os.path.join(run.tmp, "supplier.xlsx")
    shutil.copy(os.path.join(DATA, "supplier.xlsx"), sheet)
    s = run.start()
    try:
        s.toolbar("Export")
        s.answer_next_box("Yes", title="Export to File")
        base.choose_file(s, "Save As", exported)
        base.wait_for(lambda: os.path.exists(exported) and os.path.getsize(exported) > 0, 10,
                      "the export")
        base.check(open(exported, "rb").read()
                   == open(os.path.join(DATA, "sample-export.txt"), "rb").read(),
                   "the supplier's workbook was made from this very export")

        base.open_import_window(s, sheet)
        s.key("alt+u", window="Update")
        base.wait_for(lambda: s.is_checked("OptUpdate", window="Update"), 5, "Update existing")
        s.key("alt+m", window="Update")
        for name, entry in (("CmbField(0)", "Col 0-  Part Number"),
                            ("CmbField(1)", "Col 1-  Product Name"),
                            ("CmbField(3)", "Col 2-  Price"),
                            ("CmbField(14)", "Col 14-  Price 5")):
            base.wait_for(lambda: s.read_text(name, window="Update") == entry, 15,
                          "%s at %r after Match Headers" % (name, entry))
        s.key("alt+p", "Return", window="Update")
        s.wait_for_window("Import Preview", timeout=30)
        base.activate_shown(s, "Import Preview")
        shown = [s.read_text(n, window="Import Preview")
                 for n in ("LblAdded", "LblChanged", "LblUnchanged", "LblSkipped")]
        base.check(shown == lines, "preview counts %r, expected %r" % (shown, lines))
        changes = s.read_table("GrdChanges", window="Import Preview", max_rows=1)
        base.check(changes[0] == ["2", "BV-1075", "Change", "Price", "$16.40", "$18.04"],
                   "first change listed: %r" % (changes[0],))
        base.check(open(run.catalogue(), "rb").read() == run.sample_bytes(),
                   "nothing is written before Apply")
        s.key("Return", window="Import Preview")
        box = s.answer_next_box("OK", title="Success!", timeout=30)
        base.check(box.text.splitlines() == lines, "result message: %r" % (box.text,))
        s.wait_window_gone("Update", timeout=15)
        rows_shown = base.wait_for(lambda: [r for r in s.read_table("GrdMain") if r[0]], 10,
                                   "the grid")
        base.check(len(rows_shown) == len(saved), "the grid shows %d products" % len(rows_shown))
        base.check_clean_exit(s)
    finally:
        s.stop()
    written = base.records(run.catalogue())
    for want, got in zip(saved, written):
        base.check(want == got, "saved %r, expected %r" % (got, want))
    base.check(len(written) == len(saved), "%d products saved" % len(written))


SCENARIOS = {"supplier": scenario_supplier}


if __name__ == "__main__":
    base.SCENARIOS = SCENARIOS
    sys.exit(base.main())
