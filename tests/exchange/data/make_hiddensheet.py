#!/usr/bin/env python3
"""Makes the hiddensheet workbooks: last year's prices on a first worksheet the workbook hides,
this year's on the second, the one a spreadsheet shows. Each format is written by a program
that keeps the hidden mark (LibreOffice keeps it only in its own format):

  hiddensheet.ods   LibreOffice, from hiddensheet.fods (soffice on the PATH)
  hiddensheet.xlsx  openpyxl (Debian's python3-openpyxl)
  hiddensheet.xls   xlwt (python3-xlwt)

The files are committed; run this again only to change them.
"""
import os
import shutil
import subprocess
import tempfile

import openpyxl
import xlwt

HERE = os.path.dirname(os.path.abspath(__file__))
SHEETS = [('Old 2023', 9.99), ('Prices 2024', 13.5)]


def main():
    with tempfile.TemporaryDirectory() as out:
        subprocess.run(['soffice', '--headless', '--convert-to', 'ods', '--outdir', out,
                        os.path.join(HERE, 'hiddensheet.fods')], check=True,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        shutil.copy(os.path.join(out, 'hiddensheet.ods'), HERE)

    book = openpyxl.Workbook()
    book.remove(book.active)
    for name, price in SHEETS:
        sheet = book.create_sheet(name)
        sheet.append(['Part Number', 'Price'])
        sheet.append(['BV-1050', price])
    book['Old 2023'].sheet_state = 'hidden'
    book.active = 1
    book.save(os.path.join(HERE, 'hiddensheet.xlsx'))

    book = xlwt.Workbook()
    for name, price in SHEETS:
        sheet = book.add_sheet(name)
        for column, text in enumerate(['Part Number', 'Price']):
            sheet.write(0, column, text)
        sheet.write(1, 0, 'BV-1050')
        sheet.write(1, 1, price)
    book.get_sheet(0).visibility = 1
    book.get_sheet(0).set_selected(False)
    book.get_sheet(1).set_selected(True)
    book.active_sheet = 1
    book.save(os.path.join(HERE, 'hiddensheet.xls'))


if __name__ == '__main__':
    main()
