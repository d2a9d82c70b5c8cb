#!/usr/bin/env python3
"""Makes the workbooks of the reader tests from their sources with LibreOffice, then the
variants other spreadsheet programs write, by rewriting LibreOffice's files. The files it makes
are committed, so the tests need no LibreOffice; run it again after changing a source.

  values.fods      every kind of cell value the readers must hand over alike
      -> values.xls, values.xlsx, values.ods          (LibreOffice)
      -> values-quoted.txt                            (LibreOffice, tab-separated, text quoted)
      -> values-noref.xlsx   values.xlsx with no "r" attribute on its rows and cells, and an
                             empty row or cell where values.xlsx leaves one out
      -> values-inline.xlsx  values.xlsx with every text as an inline string of rich-text runs
                             followed by a phonetic run, line breaks as "_x000D_" and a line
                             feed, and the date formats as the built-in formats 14 and 22
      -> values-badshared.xlsx  values.xlsx whose cell B2 names a shared text the workbook
                             does not hold (a damaged file)
  repeats.fods     adjacent cells and rows of the same values
      -> repeats.xls, repeats.xlsx, repeats.ods       (LibreOffice)
      -> repeats-rows.ods    repeats.ods with its three equal rows as one row repeated three
                             times
  dates1904.fods   dates of a workbook that counts its days from 1904
      -> dates1904.xls, dates1904.xlsx, dates1904.ods (LibreOffice)
  errortext.fods   formulas whose results are errors, and one whose result is the text "#N/A"
      -> errortext.xls, errortext.xlsx, errortext.ods (LibreOffice)
  textnumbers.fods prices typed as text ("1.250") beside the same prices as numbers, and a
                   formula whose result is such a text
      -> textnumbers.xls, textnumbers.xlsx, textnumbers.ods (LibreOffice)

Usage: make_workbooks.py [source ...]  (needs soffice on the PATH; works in the folder of this
script; the sources named, without ".fods", or all of them)
"""
import os
import re
import shutil
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ET
import zipfile

HERE = os.path.dirname(os.path.abspath(__file__))
MAIN = '{http://schemas.openxmlformats.org/spreadsheetml/2006/main}'
QUOTED_TEXT = 'txt:Text - txt - csv (StarCalc):9,34,76,1,,0,true,true,true'


def soffice(source, target, outdir):
    subprocess.run(['soffice', '--headless', '--convert-to', target, '--outdir', outdir,
                    os.path.join(HERE, source)], check=True, stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL)


def rewrite_zip(source, target, change):
    """Copies a zip archive member by member; change(name, data) gives each member's bytes."""
    with zipfile.ZipFile(os.path.join(HERE, source)) as old, \
            zipfile.ZipFile(os.path.join(HERE, target), 'w', zipfile.ZIP_DEFLATED) as new:
        for info in old.infolist():
            new.writestr(info, change(info.filename, old.read(info.filename)))


def column_number(letters):
    number = 0
    for letter in letters:
        number = number * 26 + ord(letter) - ord('A') + 1
    return number


def without_references(name, data):
    """Rows and cells without their "r" attribute: every row and cell in its place, an empty
    row or cell written where the file had none, as programs that leave "r" out write them."""
    if name != 'xl/worksheets/sheet1.xml':
        return data
    text = data.decode()
    out = []
    last_row = 0
    last_column = 0
    at = 0
    for match in re.finditer(r'<row r="([0-9]+)" |<c r="([A-Z]+)[0-9]+" ', text):
        out.append(text[at:match.start()])
        at = match.end()
        if match.group(1):
            row = int(match.group(1))
            out.append('<row/>' * (row - last_row - 1) + '<row ')
            last_row = row
            last_column = 0
        else:
            column = column_number(match.group(2))
            out.append('<c/>' * (column - last_column - 1) + '<c ')
            last_column = column
    out.append(text[at:])
    return ''.join(out).encode()


def escape(text):
    return (text.replace('&', '&amp;').replace('<', '&lt;').replace('>', '&gt;')
            .replace('\n', '_x000D_\n'))


def inline_string(text):
    """A text as two rich-text runs and a phonetic run that is no part of it."""
    half = len(text) // 2
    runs = ''.join('<r><rPr><b val="true"/></rPr><t xml:space="preserve">%s</t></r>' % escape(part)
                   for part in (text[:half], text[half:]) if part)
    return '<is>%s<rPh sb="0" eb="1"><t>PHONETIC</t></rPh><phoneticPr fontId="0"/></is>' % runs


def with_inline_strings(strings):
    def change(name, data):
        if name == 'xl/styles.xml':
            data = data.replace(b'<xf numFmtId="165"', b'<xf numFmtId="14"')
            return data.replace(b'<xf numFmtId="167"', b'<xf numFmtId="22"')
        if name != 'xl/worksheets/sheet1.xml':
            return data
        def cell(match):
            return ('%s t="inlineStr">%s</c>' % (match.group(1).decode(),
                                                 inline_string(strings[int(match.group(2))]))
                    ).encode()
        return re.sub(rb'(<c r="[A-Z]+[0-9]+" s="[0-9]+") t="s"><v>([0-9]+)</v></c>', cell, data)
    return change


def shared_strings(xlsx):
    with zipfile.ZipFile(os.path.join(HERE, xlsx)) as archive:
        root = ET.fromstring(archive.read('xl/sharedStrings.xml'))
    return [''.join(t.text or '' for t in si.iter(MAIN + 't')) for si in root.iter(MAIN + 'si')]


def with_a_shared_text_missing(name, data):
    if name != 'xl/worksheets/sheet1.xml':
        return data
    cell = re.search(rb'(<c r="B2"[^>]* t="s"><v>)\d+(</v>)', data)
    assert cell
    return data[:cell.start()] + cell.group(1) + b'999999' + cell.group(2) + data[cell.end():]


def with_rows_repeated(name, data):
    if name != 'content.xml':
        return data
    rows = re.findall(rb'<table:table-row[^>]*>.*?</table:table-row>', data)
    repeated = [row for row in rows if b'R-2' in row]
    assert len(repeated) == 3 and repeated[0] == repeated[1] == repeated[2]
    first = data.index(repeated[0])
    end = data.rindex(repeated[2]) + len(repeated[2])
    once = repeated[0].replace(b'<table:table-row ', b'<table:table-row '
                               b'table:number-rows-repeated="3" ', 1)
    return data[:first] + once + data[end:]


SOURCES = ('values', 'repeats', 'dates1904', 'textnumbers', 'errortext')


def main(sources):
    with tempfile.TemporaryDirectory() as out:
        for source in sources:
            for kind in ('xls', 'xlsx', 'ods'):
                soffice(source + '.fods', kind, out)
                shutil.copy(os.path.join(out, '%s.%s' % (source, kind)), HERE)
        if 'values' in sources:
            soffice('values.fods', QUOTED_TEXT, out)
            shutil.copy(os.path.join(out, 'values.txt'),
                        os.path.join(HERE, 'values-quoted.txt'))
    if 'values' in sources:
        rewrite_zip('values.xlsx', 'values-noref.xlsx', without_references)
        rewrite_zip('values.xlsx', 'values-inline.xlsx',
                    with_inline_strings(shared_strings('values.xlsx')))
        rewrite_zip('values.xlsx', 'values-badshared.xlsx', with_a_shared_text_missing)
    if 'repeats' in sources:
        rewrite_zip('repeats.ods', 'repeats-rows.ods', with_rows_repeated)


if __name__ == '__main__':
    main(sys.argv[1:] or SOURCES)
