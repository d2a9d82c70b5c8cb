#!/usr/bin/env python3
"""Makes uncomputed.ods as odfpy (Debian's python3-odf) writes an OpenDocument spreadsheet: a
formula with no result, which the spreadsheet works out when it opens the file. The file is
committed; run this again only to change it.

  Part Number | List Price
  O-1         | =12.85*1.1   (no result)
  O-2         | 17.2
"""
import os

from odf.opendocument import OpenDocumentSpreadsheet
from odf.table import Table, TableCell, TableRow
from odf.text import P

HERE = os.path.dirname(os.path.abspath(__file__))


def text_cell(text):
    cell = TableCell(valuetype='string')
    cell.addElement(P(text=text))
    return cell


def main():
    document = OpenDocumentSpreadsheet()
    table = Table(name='Prices')
    for cells in ([text_cell('Part Number'), text_cell('List Price')],
                  [text_cell('O-1'), TableCell(formula='of:=12.85*1.1')],
                  [text_cell('O-2'), TableCell(valuetype='float', value=17.2)]):
        row = TableRow()
        for cell in cells:
            row.addElement(cell)
        table.addElement(row)
    document.spreadsheet.addElement(table)
    document.save(os.path.join(HERE, 'uncomputed.ods'))


if __name__ == '__main__':
    main()
