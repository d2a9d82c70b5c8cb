#pragma once

#include "catalogue/products.h"
#include "catalogue/table.h"
#include "support/fakeprompts.h"
#include "support/tempappfolder.h"

#include <QByteArray>
#include <QList>
#include <QLocale>
#include <QString>

#include <gtest/gtest.h>

// The field end of the catalogue file, for building expected bytes by hand. Written as its
// own literal so that a following letter is never read as part of the escape.
#define FE "\x7f\x7f\x7f"

namespace tarnwick::test {

/// One product line of the catalogue file: the given fields, the missing ones of the fifteen
/// empty, each followed by the field end, then CR LF.
QByteArray productLine(const QList<QByteArray> &fields);

/// Part numbers "P1" … "Pn" with a name, a price and notes: n lines of a catalogue file.
QByteArray generatedCatalogue(int products);

/// A temporary application folder with a catalogue table sized as start-up sizes it (1000
/// rows of 15 fields) and a Products object over it, in the en-US locale.
class CatalogueFixture : public ::testing::Test
{
protected:
    explicit CatalogueFixture(const QString &commandLine = QString());

    QString dataFile() const { return folder.filePath(QStringLiteral("twdata.dat")); }
    void writeDataFile(const QByteArray &bytes) const;
    QByteArray dataFileBytes() const;
    /// Reads the data file into a fresh table of 1000 rows through a second Products object.
    CatalogueReadResult readBack(Table &into);

    TempAppFolder folder;
    FakePrompts prompts;
    AppEnvironment environment;
    QLocale locale { QLocale::English, QLocale::UnitedStates };
    Table catalogue { 1000, 15 };
    Products products { catalogue, prompts, environment, locale };
};

} // namespace tarnwick::test
