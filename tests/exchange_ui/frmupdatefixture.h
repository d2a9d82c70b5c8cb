#pragma once

#include "catalogue/module1.h"
#include "catalogue/products.h"
#include "catalogue/table.h"
#include "commands/edithistory.h"
#include "exchange/ui/frmupdate.h"
#include "exchange/workbookreaderprocess.h"
#include "support/fakeservices.h"
#include "support/tempappfolder.h"

#include <QComboBox>
#include <QLocale>
#include <QPointer>

#include <gtest/gtest.h>

#include <memory>

namespace tarnwick::test {

/// The reader program of the tests (the program's own reader in a test executable).
WorkbookReaderOptions testReader();
/// A workbook of the exchange tests (made by LibreOffice).
QString workbook(const QString &name);

/// The "Update" window over a catalogue of one product ("OLD-1"), with fake services in a
/// temporary application folder. What an import does becomes a step of the history of changes,
/// as in the program.
class FrmUpdateTest : public ::testing::Test
{
protected:
    FrmUpdateTest();
    ~FrmUpdateTest() override;

    /// Reads the file through the reader process, builds the window on it (running its load and
    /// column listing) and shows it, in place of the window opened before.
    FrmUpdate &open(const QString &file);
    QComboBox *list(int index) const;
    /// Selects position in list index with the keyboard, as a user would: the list gets the
    /// focus, Home goes to its first entry and Down moves on.
    void choose(int index, int position) const;
    /// Part number A, name B, price C, notes D, includes E, first price point F and price G.
    void mapSample() const;
    void clickOk() const;
    /// Waits until the window is gone (closed).
    bool waitUntilClosed() const;

    QLocale locale { QLocale::English, QLocale::UnitedStates };
    TempAppFolder folder;
    FakeServices fakes { folder.environment() };
    AppServices services { fakes.services() };
    Module1 module { fakes.prompts, fakes.environment, locale };
    Table &catalogue = module.Catalogue();
    Products &products = module.AllProducts();
    EditHistory history { module };
    QPointer<FrmUpdate> window;
    int catalogueChanges = 0;
    int unloads = 0;
};

} // namespace tarnwick::test
