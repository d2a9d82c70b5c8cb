#!/usr/bin/env python3
"""Makes the fuzz targets' seeds from the repository's test data, one folder per target:

  catalogue_reader  the sample catalogue in UTF-8 with a byte order mark, with comma decimals,
                    cut in the middle of a product, with a field end missing, with a note of
                    two lines and with a price that is no number
  xlsx_reader       the sample workbooks, the hostile ones the tests make (but the zip bomb),
  ods_reader        and the members the readers read from each, as a list (fuzz/zipmembers.h)
  xls_reader        the sample workbooks and the hostile one the tests make
  text_reader       the tab-separated and comma-separated samples
  wire_decoder      the samples as the workbook reader process writes them, and its failure
  workbook_import   the tab-separated samples behind the import's settings line
                    (fuzz/fuzzentries.h)

Usage: make_seeds.py --source REPOSITORY FOLDER
"""
import argparse
import csv
import io
import os
import shutil
import struct
import subprocess
import sys
import tempfile
import zipfile

END = b'\x7f\x7f\x7f'

# The members each reader reads; the others of a workbook only slow the fuzzer down.
XLSX_MEMBERS = ['xl/workbook.xml', 'xl/_rels/workbook.xml.rels', 'xl/worksheets/sheet1.xml',
                'xl/sharedStrings.xml', 'xl/styles.xml']
ODS_MEMBERS = ['mimetype', 'content.xml']


def write(folder, name, data):
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, name), 'wb') as f:
        f.write(data)


def member_list(path, names):
    """The archive's members as the fuzz targets' list: name, line break, bytes; zero between."""
    with zipfile.ZipFile(path) as z:
        present = set(z.namelist())
        return b'\0'.join(name.encode() + b'\n' + z.read(name) for name in names
                          if name in present)


def catalogue_seeds(source, out):
    sample = open(os.path.join(source, 'data', 'sample', 'twdata.dat'), 'rb').read()
    lines = sample.split(b'\r\n')
    write(out, 'utf8-bom.dat', b'\xef\xbb\xbf' + sample.decode('cp1252').encode('utf-8'))
    comma = []
    for line in lines:
        fields = line.split(END)
        comma.append(END.join(f.replace(b'.', b',') if 2 <= i <= 14 else f
                              for i, f in enumerate(fields)))
    write(out, 'comma-decimals.dat', b'\r\n'.join(comma))
    write(out, 'cut.dat', sample[:len(sample) // 2])
    write(out, 'missing-end.dat', lines[0].replace(END, b'', 1) + b'\r\n' + b'\r\n'.join(lines[1:]))
    fields = lines[0].split(END)
    fields[3] = fields[3] + b'\r\nsecond line of the note'
    fields[2] = b'twelve'
    write(out, 'note-and-word.dat', END.join(fields) + b'\r\n' + b'\r\n'.join(lines[1:3]))


def wire(rows):
    """The reader process's output for the rows (lists of texts); see workbookwire.cpp."""
    out = bytearray(b'TWWBK02\n')
    count = 0
    for number, row in enumerate(rows, 1):
        cells = [(column, text) for column, text in enumerate(row[:18]) if text]
        if not cells:
            break
        for column, text in cells:
            data = text.encode('utf-8')
            out += b'C' + struct.pack('<IBI', number, column, len(data)) + data
        count = number
    out += b'E' + struct.pack('<I', count)
    return bytes(out)


def workbook_seeds(source, out):
    data = os.path.join(source, 'tests', 'exchange', 'data')
    hostile = tempfile.mkdtemp()
    try:
        subprocess.run([sys.executable, os.path.join(source, 'tests', 'exchange',
                                                     'make_hostile_workbooks.py'), hostile,
                        'claims-4gb.xlsx', 'longref.xlsx', 'repeat.ods', 'crash.xls'], check=True)
        for directory in (data, hostile):
            for name in sorted(os.listdir(directory)):
                if name.endswith('.xls'):
                    write(os.path.join(out, 'xls_reader'), name,
                          open(os.path.join(directory, name), 'rb').read())
        for kind, members in (('xlsx', XLSX_MEMBERS), ('ods', ODS_MEMBERS)):
            folder = os.path.join(out, kind + '_reader')
            for directory in (data, hostile):
                for name in sorted(os.listdir(directory)):
                    if not name.endswith('.' + kind):
                        continue
                    path = os.path.join(directory, name)
                    os.makedirs(folder, exist_ok=True)
                    shutil.copy(path, os.path.join(folder, name))
                    if zipfile.is_zipfile(path):
                        write(folder, name + '.members', member_list(path, members))
    finally:
        shutil.rmtree(hostile)


def text_seeds(source, out):
    data = os.path.join(source, 'tests', 'exchange', 'data')
    letters = b'ABFCG@ED@@@@@@@'
    for name in sorted(os.listdir(data)):
        if not name.endswith(('.txt', '.csv')):
            continue
        raw = open(os.path.join(data, name), 'rb').read()
        text = raw if name.endswith('.txt') else raw.replace(b',', b'\t')
        write(os.path.join(out, 'text_reader'), name, raw)
        write(os.path.join(out, 'workbook_import'), name, b'1' + letters + b'\n' + text)
        write(os.path.join(out, 'workbook_import'), 'no-headers-' + name, b'0AB' + b'?' * 13 + b'\n' + text)
        rows = list(csv.reader(io.StringIO(raw.decode('utf-8')),
                               delimiter='\t' if name.endswith('.txt') else ','))
        write(os.path.join(out, 'wire_decoder'), name + '.wire', wire(rows))
    # A row with an error cell between texts.
    write(os.path.join(out, 'wire_decoder'), 'error-cell.wire',
          b'TWWBK02\n' + b'C' + struct.pack('<IBI', 1, 0, 1) + b'a' + b'X'
          + struct.pack('<IB', 1, 1) + b'C' + struct.pack('<IBI', 1, 2, 1) + b'b' + b'E'
          + struct.pack('<I', 1))
    # A text that could pass for a number, said to be text, beside the number itself.
    write(os.path.join(out, 'wire_decoder'), 'text-cell.wire',
          b'TWWBK02\nN' + b'T' + struct.pack('<IBI', 1, 0, 5) + b'1.250' + b'C'
          + struct.pack('<IBI', 1, 1, 4) + b'1.25' + b'E' + struct.pack('<I', 1))
    # Rows sent while reading, withdrawn once, then sent again in order.
    first = b'C' + struct.pack('<IBI', 1, 0, 1) + b'a' + b'C' + struct.pack('<IBI', 2, 0, 1) + b'b'
    write(os.path.join(out, 'wire_decoder'), 'withdrawn.wire',
          b'TWWBK02\n' + first + b'R' + first + b'E' + struct.pack('<I', 2))
    failure = 'This file is not an Excel 97 file.'.encode()
    write(os.path.join(out, 'wire_decoder'), 'failure.wire',
          b'TWWBK02\n' + b'F' + struct.pack('<II', 51, len(failure)) + failure)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument('--source', required=True)
    parser.add_argument('folder')
    arguments = parser.parse_args()
    out = arguments.folder
    if os.path.isdir(out):
        shutil.rmtree(out)
    catalogue_seeds(arguments.source, os.path.join(out, 'catalogue_reader'))
    workbook_seeds(arguments.source, out)
    text_seeds(arguments.source, out)


if __name__ == '__main__':
    main()
