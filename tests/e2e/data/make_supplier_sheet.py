#!/usr/bin/env python3
"""Makes the supplier's price sheet of the end-to-end scenario "supplier" from the sample
catalogue, the way a supplier would: Tarnwick's export opened in LibreOffice, some prices
changed, a new product, a row with no number for its price, a row without a part number and a
part number given twice, saved as an Excel workbook.

    make_supplier_sheet.py SAMPLE_TWDATA OUTPUT_FOLDER

Writes into OUTPUT_FOLDER:
  sample-export.txt  the export Tarnwick writes of the sample catalogue under an English locale
                     (the scenario checks that the program's own export is byte for byte this)
  supplier.csv       the supplier's rows (UTF-8, every field quoted)
  supplier.xlsx      supplier.csv converted by LibreOffice Calc (soffice must be installed; the
                     scenario itself needs only the committed workbook)
"""
import csv
import decimal
import os
import shutil
import subprocess
import sys
import tempfile

FIELD_END = b"\x7f\x7f\x7f"
HEADER = ["Part Number", "Product Name", "Price", "Notes", "Includes", "Price Point 1",
          "Price 1", "Price Point 2", "Price 2", "Price Point 3", "Price 3", "Price Point 4",
          "Price 4", "Price Point 5", "Price 5"]

NEW_PRODUCT = ["NW-1000", "Supplier's new widget", "$45.00", "New this season", "Mounting kit",
               "1", "45", "10", "42", "", "", "", "", "", ""]
NO_NUMBER = "TS-9001"       # its list price is "call us"
NEW_PRICE_2 = ("SV-8200", "6.95")


def records(path):
    data = open(path, "rb").read()
    return [line.split(FIELD_END) for line in data.split(FIELD_END + b"\r\n") if line]


def currency(value):
    return "${:,.2f}".format(decimal.Decimal(value))


def export_bytes(catalogue):
    """Tarnwick's export: a header, then each product's fields joined by tabs, the list price in
    the currency form, CR LF after each line."""
    lines = ["\t".join(HEADER).encode("ascii") + b"\r\n"]
    for record in catalogue:
        price = currency(record[2].decode("ascii")).encode("ascii")
        lines.append(b"\t".join([record[0], record[1], price] + record[3:]) + b"\r\n")
    return b"".join(lines)


def raised(price):
    """Ten per cent more, to the cent."""
    value = (decimal.Decimal(price) * decimal.Decimal("1.1")).quantize(
        decimal.Decimal("0.01"), rounding=decimal.ROUND_HALF_UP)
    return currency(value)


def supplier_rows(catalogue):
    rows = []
    one_line = [r for r in catalogue if not any(b"\r" in f or b"\n" in f for f in r)]
    for index, record in enumerate(one_line):
        fields = [f.decode("cp1252") for f in record]
        fields[2] = currency(fields[2])
        if fields[0] == NO_NUMBER:
            continue
        if index % 3 == 0:
            fields[2] = raised(record[2].decode("ascii"))
        if fields[0] == NEW_PRICE_2[0]:
            fields[8] = NEW_PRICE_2[1]
        rows.append(fields)
    first = rows[0][0]
    rows.append(NEW_PRODUCT)
    no_number = [f.decode("cp1252") for f in next(r for r in one_line if r[0] == NO_NUMBER.encode())]
    no_number[2] = "call us"
    rows.append(no_number)
    rows.append(["", "Unnamed offer", "$3.00"] + [""] * 12)
    rows.append([first, "Listed twice", "$1.00"] + [""] * 12)
    return rows


def main():
    sample, out = sys.argv[1], sys.argv[2]
    catalogue = records(sample)
    with open(os.path.join(out, "sample-export.txt"), "wb") as f:
        f.write(export_bytes(catalogue))
    source = os.path.join(out, "supplier.csv")
    with open(source, "w", encoding="utf-8", newline="") as f:
        writer = csv.writer(f, quoting=csv.QUOTE_ALL, lineterminator="\n")
        writer.writerow(HEADER)
        writer.writerows(supplier_rows(catalogue))
    # Part number, name, notes and includes as text; prices and quantities as LibreOffice
    # reads them in English (United States): "$45.00" is a currency value.
    infilter = "CSV:44,34,76,1,1/2/2/2/4/2/5/2,1033,false,true"
    with tempfile.TemporaryDirectory() as work:
        subprocess.run(["soffice", "-env:UserInstallation=file://" + work + "/profile",
                        "--headless", "--infilter=" + infilter, "--convert-to", "xlsx",
                        "--outdir", work, source], check=True, stdout=subprocess.DEVNULL)
        shutil.copy(os.path.join(work, "supplier.xlsx"), os.path.join(out, "supplier.xlsx"))


if __name__ == "__main__":
    main()
