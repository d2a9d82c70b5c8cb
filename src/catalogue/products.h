#pragma once

#include "catalogue/cataloguefile.h"

#include <QLocale>
#include <QString>

#include <optional>
#include <utility>

namespace tarnwick {

class AppEnvironment;
class IPrompts;
class Table;

/// The catalogue class: reads the catalogue file into the catalogue table at start-up,
/// writes it back at shut-down and keeps the product count.
class Products
{
public:
    Products(Table &catalogue, IPrompts &prompts, const AppEnvironment &environment,
        const QLocale &locale);

    /// Sorts the data by product name (does nothing; the grid's sorts do the work).
    void SortByProduct() { }
    /// Sorts the data by part number (does nothing; start-up and the grid sort).
    void SortByPart() { }

    /// Reads the products from the file into rows 1..n of the catalogue and sets Count to n.
    /// The table grows while the file is read, so a catalogue of any size loads. With the
    /// "test" command line it shows the diagnostic boxes. On a failure the rows read so far
    /// stay, Count is left as it was and the result says what happened.
    CatalogueReadResult ReadProds(const QString &fileName);

    /// Writes every row with a part number to the file, safely: a temporary file in the same
    /// folder is written and flushed, the previous file is kept as "twdata.bak", then the new
    /// one takes its place. On a failure the old file is untouched and the result says why.
    /// Afterwards Count is the index of the last row if it was written, else one less.
    /// A save that fails leaves Count as it was. After a ReadProds that could not read the
    /// file, the save leaves "twdata.bak" as it is: it holds the last good catalogue. So does
    /// a save of a catalogue that has not changed since markAsFile() or the last save: the
    /// backup keeps the catalogue as it was before its last change, however often an
    /// unchanged catalogue is saved (every close saves).
    /// A file changed outside Tarnwick since it was read or saved here is never lost: an
    /// unchanged catalogue leaves it as it is (leftChangedFile), a changed one first keeps it
    /// as "twdata-changed-<date>-<time>.dat" (keptChangedCopy), and where that copy cannot be
    /// made, nothing is written.
    CatalogueWriteResult WriteProds(const QString &fileName);

    /// The catalogue as it is now is what the file holds (after the start read and sorted it).
    void markAsFile();
    /// Why a save must not write fileName: it was there (read at the start or saved since)
    /// and is gone with its backup, so the folder is not the one it was (a drive taken away
    /// from a fixed mount point). Empty when a save may go ahead.
    QString fileGoneProblem(const QString &fileName) const;
    /// The user chose to write the catalogue file anew (Save As onto its own name): the next
    /// save may make it where it is gone.
    void acceptFileGone() { m_fileKnown = false; }

    qint32 Count() const { return m_count; }
    /// The catalogue file as ReadProds found it or the last save left it; none before either.
    const std::optional<FileStamp> &fileStampKnown() const { return m_fileStamp; }
    void setCount(qint32 vData) { m_count = vData; }

    /// The object's debugging serial number.
    qint32 ClassDebugID() const { return m_debugId; }

    /// Runs hook in every later save just before the new file replaces the old one; a hook
    /// that returns false stops the save there. For tests of an interrupted save.
    void setBeforeReplaceHook(BeforeReplaceHook hook) { m_beforeReplace = std::move(hook); }

private:
    Table &m_catalogue;
    IPrompts &m_prompts;
    const AppEnvironment &m_environment;
    QLocale m_locale;
    qint32 m_count = 0;
    qint32 m_debugId;
    BeforeReplaceHook m_beforeReplace;
    bool m_readFailed = false; ///< the last ReadProds found a file it could not read
    /// The catalogue file was there: ReadProds found it, or a save wrote it.
    bool m_fileKnown = false;
    /// The catalogue's generation when it was what the file holds; none before.
    std::optional<quint64> m_fileGeneration;
    /// The file as ReadProds found it or the last save left it: a file found otherwise at the
    /// next save was changed outside Tarnwick (another copy of it, a program that keeps folders
    /// in step on two computers).
    std::optional<FileStamp> m_fileStamp;
};

} // namespace tarnwick
