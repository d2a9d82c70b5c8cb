#!/usr/bin/env python3
"""Makes uncomputed.xlsx as programs that write workbooks without a spreadsheet behind them do
(here openpyxl, Debian's python3-openpyxl): formulas with no result, which the workbook asks to
be worked out when it is opened. The file is committed; run this again only to change it.

  Part Number | Product Name   | List Price   | Notes
  F-1         | Valve computed | =12.85*1.1   | formula
  F-2         | Valve typed    | 17.2         | number
  F-3         | Valve divided  | =1/0         | error when computed
  F-4         | Valve text     | ="ask"       | text formula
"""
import os

import openpyxl

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


if __name__ == '__main__':
    main()
