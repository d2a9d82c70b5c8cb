#pragma once

#include <QByteArrayView>
#include <QLatin1StringView>
#include <QString>
#include <QStringList>

#include <span>

namespace tarnwick::fuzzing {

/// What one input came to: its outcome in a word the replay tests compare, and each rule of the
/// code under test that the input broke, in words (empty when every rule held).
struct Verdict
{
    QString outcome;
    QStringList broken;
};

/// The catalogue reader on the bytes of a "twdata.dat": read the quick way and the general way
/// (which must give the same table and result), read in a German locale, written back and read
/// again. Outcomes: "read", "failed" (a damaged file: error 62 or 5, the rows before it kept).
Verdict catalogueReader(QByteArrayView input);

/// The ".xlsx" reader. An input that starts with "PK" is the workbook file itself; any other
/// input lists the archive's members (see zipmembers.h), so the fuzzer can change the XML
/// inside without breaking the archive's checksums. Outcomes: "read" (the worksheet then goes
/// through the reader process's wire and must arrive unchanged), "not a workbook" (with a
/// non-zero error number and the text "This file is not an Excel 97 file.").
Verdict xlsxReader(QByteArrayView input);

/// The ".ods" reader, its input and outcomes as xlsxReader's.
Verdict odsReader(QByteArrayView input);

/// The tab-separated text reader on the file's bytes. Outcome: "read"; the worksheet goes
/// through the wire as xlsxReader's does.
Verdict textReader(QByteArrayView input);

/// The decoder the program uses on the reader process's output, on the input as that output:
/// fed whole and fed in small pieces, both must come to the same state and worksheet.
/// Outcomes: "read", "failed" (the reader reported an error), "malformed".
Verdict wireDecoder(QByteArrayView input);

/// The import into a catalogue of four products, once adding new products and once updating
/// existing ones, each planned and made one step of a history of changes that is undone and
/// redone (the catalogue file's bytes must come back each time). The first line of the input
/// says how: its first character "1" when the worksheet's first row holds headers, then the
/// column letter table the import window makes ("ABFCG@ED@@@@@@@": A the part number, B the
/// name, F the price …); the rest is a tab-separated worksheet. Outcomes: "added" (adding added
/// at least one product), "nothing added".
Verdict workbookImport(QByteArrayView input);

using Entry = Verdict (*)(QByteArrayView input);

/// A fuzz target: its name (the folder fuzz/regressions/<name>/ holds the inputs it found),
/// its entry and the outcomes its entry may give.
struct Target
{
    QLatin1StringView name;
    Entry entry;
    QStringList outcomes;
};

/// Every fuzz target of fuzz/.
std::span<const Target> targets();

/// The target of that name, or nullptr.
const Target *findTarget(QLatin1StringView name);

/// The rules a verdict of the target breaks: the entry's own, and an outcome the target does
/// not have.
QStringList brokenRules(const Target &target, const Verdict &verdict);

} // namespace tarnwick::fuzzing
