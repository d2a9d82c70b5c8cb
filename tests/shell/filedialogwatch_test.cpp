// Which closing dialogs make the quote book take its locks again: those that read the files
// they list (the print dialog, a file dialog of Qt's usual making), not Tarnwick's own file
// dialogs, which know files by their names.
#include "platform/qt/qtfiledialogs.h"
#include "shell/filedialogwatch.h"

#include <QDialog>
#include <QFileDialog>
#include <QPrintDialog>
#include <QPrinter>

#include <gtest/gtest.h>

using namespace tarnwick;

namespace {

TEST(FileDialogWatchTest, OnlyDialogsThatReadTheFilesTheyListCount)
{
    QFileDialog usual;
    EXPECT_TRUE(FileDialogWatch::listsFilesTheUsualWay(&usual));
    QPrinter printer;
    QPrintDialog print(&printer);
    EXPECT_TRUE(FileDialogWatch::listsFilesTheUsualWay(&print));

    FileIconsByName icons;
    QFileDialog own;
    listFilesByName(own, icons);
    EXPECT_FALSE(FileDialogWatch::listsFilesTheUsualWay(&own));
    QDialog other;
    EXPECT_FALSE(FileDialogWatch::listsFilesTheUsualWay(&other));
}

} // namespace
