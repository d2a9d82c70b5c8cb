#!/usr/bin/env python3
"""Makes errors-gnumeric.ods as Gnumeric writes an OpenDocument spreadsheet: a formula's error
result (#DIV/0!, #N/A) is written as a text result, not marked as an error. The sheet is
written by openpyxl (Debian's python3-openpyxl) and converted by Gnumeric's ssconvert (package
gnumeric), which works the formulas out. The file is committed; run this again only to change
it.

  Part Number | Product Name | List Price | Notes
  G-1         | Divided      | =1/0       | error result
  G-2         | Not found    | =NA()      | n/a result
  G-3         | Typed        | 12.5       | #N/A typed as text
"""
import os
import subprocess
import tempfile

import openpyxl

HERE = os.path.dirname(os.path.abspath(__file__))


def main():
    with tempfile.TemporaryDirectory() as out:
        source = os.path.join(out, 'errors.xlsx')
        book = openpyxl.Workbook()
        sheet = book.active
        sheet.title = 'Prices'
        sheet.append(['Part Number', 'Product Name', 'List Price', 'Notes'])
        sheet.append(['G-1', 'Divided', '=1/0', 'error result'])
        sheet.append(['G-2', 'Not found', '=NA()', 'n/a result'])
        sheet.append(['G-3', 'Typed', 12.5, '#N/A typed as text'])
        book.save(source)
        subprocess.run(['ssconvert', source, os.path.join(HERE, 'errors-gnumeric.ods')],
                       check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


if __name__ == '__main__':
    main()
