#pragma once

#include "catalogue/cataloguefile.h"

#include <QString>

namespace tarnwick {

class IPrompts;
class Module1;

/// Loads the catalogue at start-up and writes it back at shut-down, and tells the user when
/// either goes wrong. A catalogue file that could not be read completely is kept under a
/// name of its own before the shut-down save replaces it, so nothing in it is lost.
class CatalogueLifecycle
{
public:
    static constexpr int InitialRows = 1000;

    CatalogueLifecycle(Module1 &module, IPrompts &prompts);

    /// Sizes the catalogue to 1000 rows, reads the file, cuts the table to Count rows and sorts
    /// it on the part number. A file that exists but could not be read completely is reported
    /// once, here, and so are stored numbers that could not be read.
    /// A file of at least backgroundReadBytes() is read and sorted on a worker thread while
    /// this thread keeps handling its events (the splash keeps ticking and painting); nothing
    /// else touches the catalogue until load() returns. The "test" command line always reads
    /// here, as its boxes must.
    CatalogueReadResult load();

    /// Files of this size or more are read on a worker thread (4 MB, about 10,000 products).
    qint64 backgroundReadBytes() const { return m_backgroundReadBytes; }
    void setBackgroundReadBytes(qint64 bytes) { m_backgroundReadBytes = bytes; }

    /// Writes the catalogue back, first keeping an unread catalogue file as a copy. When the
    /// result is not ok the file on disk is unchanged; the caller tells the user.
    CatalogueWriteResult save();

    /// Shut-down: saves, and when the save fails asks whether to close all the same. Returns
    /// true when the program may close (saved, or the user accepted losing the changes).
    bool saveBeforeClose();

    /// The message shown when the catalogue file could not be read completely.
    static QString unreadMessage(const QString &dataFile, const CatalogueReadResult &result);
    /// The message shown when the catalogue could not be saved.
    static QString saveFailedMessage(const QString &dataFile, const QString &detail);
    static QString keptCopyMessage(const QString &copyPath);
    /// The message listing stored numbers that could not be read: product and field of each.
    static QString unreadNumbersMessage(const QList<CatalogueReadResult::UnreadNumber> &numbers);

private:
    /// ReadProds, cut to Count, sort on the part number.
    CatalogueReadResult readAndSort();
    bool readsInBackground() const;

    Module1 &m_module;
    IPrompts &m_prompts;
    bool m_readFailed = false;
    bool m_unreadFileKept = false;
    qint64 m_backgroundReadBytes = 4 * 1024 * 1024;
};

} // namespace tarnwick
