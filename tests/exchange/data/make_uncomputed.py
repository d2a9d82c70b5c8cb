#!/usr/bin/env python3
"""Makes the workbooks that programs writing workbooks without a spreadsheet behind them leave:
formulas whose results are to be worked out when the file is opened (the workbook says so). The
files are committed; run this again only to change them.

  uncomputed.xlsx       openpyxl (Debian's python3-openpyxl): no result stored
  uncomputed-zero.xlsx  xlsxwriter (python3-xlsxwriter): 0 stored in place of each result it
                        is not given, and the one result given to it (F-5) stored as given

  Part Number | Product Name   | List Price   | Notes
  F-1         | Valve computed | =12.85*1.1   | formula
  F-2         | Valve typed    | 17.2         | number
  F-3         | Valve divided  | =1/0         | error when computed
  F-4         | Valve text     | ="ask"       | text formula
  F-5         | Valve given    | =20+1 (21)   | result given   (xlsxwriter only)
"""
import os

import openpyxl
import xlsxwriter

HERE = os.path.dirname(os.path.abspath(__file__))


def main():
    book = openpyxl.Workbook()
    sheet = book.active
    sheet.title = 'Prices'
    sheet.append(['Part Number', 'Product Name', 'List Price', 'Notes'])
    sheet.append(['F-1', 'Valve computed', '=12.85*1.1', 'formula'])
    sheet.append(['F-2', 'Valve typed', 17.2, 'number'])
    sheet.append(['F-3', 'Valve divided', '=1/0', 'error when computed'])
    sheet.append(['F-4', 'Valve text', '="ask"', 'text formula'])
    book.save(os.path.join(HERE, 'uncomputed.xlsx'))

    book = xlsxwriter.Workbook(os.path.join(HERE, 'uncomputed-zero.xlsx'))
    sheet = book.add_worksheet('Prices')
    rows = [['Part Number', 'Product Name', 'List Price', 'Notes'],
            ['F-1', 'Valve computed', '=12.85*1.1', 'formula'],
            ['F-2', 'Valve typed', 17.2, 'number'],
            ['F-3', 'Valve divided', '=1/0', 'error when computed'],
            ['F-4', 'Valve text', '="ask"', 'text formula']]
    for row, cells in enumerate(rows):
        for column, cell in enumerate(cells):
            if isinstance(cell, str) and cell.startswith('='):
                sheet.write_formula(row, column, cell)
            else:
                sheet.write(row, column, cell)
    sheet.write_row(5, 0, ['F-5', 'Valve given'])
    sheet.write_formula(5, 2, '=20+1', None, 21)
    sheet.write(5, 3, 'result given')
    book.close()


if __name__ == '__main__':
    main()
