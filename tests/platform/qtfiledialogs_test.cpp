#include "platform/qt/qtfiledialogs.h"

#include "platform/desktopplaces.h"
#include "platform/filefilter.h"

#include <QDir>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>

namespace tarnwick {
namespace {

const QStringList Filters = { QStringLiteral("Text (*.txt)"), QStringLiteral("Data (*.dat)"),
    QStringLiteral("All Files (*)") };

TEST(FileDialogFilters, IndexFromOneSelectsTheFilter)
{
    EXPECT_EQ(nameFilterAt(Filters, 1), QStringLiteral("Text (*.txt)"));
    EXPECT_EQ(nameFilterAt(Filters, 2), QStringLiteral("Data (*.dat)"));
    EXPECT_EQ(nameFilterAt(Filters, 3), QStringLiteral("All Files (*)"));
}

TEST(FileDialogFilters, IndexOutOfRangeSelectsTheFirstFilter)
{
    EXPECT_EQ(nameFilterAt(Filters, 0), QStringLiteral("Text (*.txt)"));
    EXPECT_EQ(nameFilterAt(Filters, -1), QStringLiteral("Text (*.txt)"));
    EXPECT_EQ(nameFilterAt(Filters, 4), QStringLiteral("Text (*.txt)"));
}

TEST(FileDialogFilters, NoFiltersSelectNothing)
{
    EXPECT_EQ(nameFilterAt(QStringList(), 1), QString());
}

TEST(FileDialogFilters, SelectedFilterGivesItsIndexFromOne)
{
    EXPECT_EQ(nameFilterIndex(Filters, QStringLiteral("Text (*.txt)"), 1), 1);
    EXPECT_EQ(nameFilterIndex(Filters, QStringLiteral("All Files (*)"), 1), 3);
}

TEST(FileDialogFilters, UnknownSelectedFilterGivesTheFallback)
{
    EXPECT_EQ(nameFilterIndex(Filters, QStringLiteral("Other (*.x)"), 2), 2);
    EXPECT_EQ(nameFilterIndex(Filters, QString(), 1), 1);
    EXPECT_EQ(nameFilterIndex(QStringList(), QString(), 1), 1);
}

TEST(FileDialogFilters, IndexSurvivesTheRoundTripThroughConversion)
{
    const QStringList converted = toQtNameFilters(
        QStringLiteral("Text (*.txt)|*.txt|Excel Files|*.xls;*.xlsx|All Files (*.*)|*.*"));
    for (int index = 1; index <= 3; ++index)
        EXPECT_EQ(nameFilterIndex(converted, nameFilterAt(converted, index), 0), index);
}

TEST(FileDialogStart, FileNameInTheInitialFolder)
{
    FileDialogRequest request;
    request.initialFolder = QStringLiteral("/data/tarnwick");
    request.fileName = QStringLiteral("export.txt");
    EXPECT_EQ(QDir::fromNativeSeparators(initialDialogPath(request)),
        QStringLiteral("/data/tarnwick/export.txt"));
}

TEST(FileDialogStart, FolderOrFileNameAlone)
{
    FileDialogRequest folderOnly;
    folderOnly.initialFolder = QStringLiteral("/data/tarnwick");
    EXPECT_EQ(initialDialogPath(folderOnly), QStringLiteral("/data/tarnwick"));

    FileDialogRequest nameOnly;
    nameOnly.fileName = QStringLiteral("export.txt");
    EXPECT_EQ(initialDialogPath(nameOnly), QStringLiteral("export.txt"));

    EXPECT_EQ(initialDialogPath(FileDialogRequest {}), QString());
}

// Qt's own dialog reads the patterns out of each converted entry: the widget dialog (never
// shown here) hands the selected entry's patterns to its file model.
QStringList patternsQtReads(const QString &nameFilter)
{
    QFileDialog dialog;
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setNameFilters({ nameFilter });
    dialog.selectNameFilter(nameFilter);
    auto *model = dialog.findChild<QFileSystemModel *>();
    return model ? model->nameFilters() : QStringList { QStringLiteral("<no model>") };
}

TEST(FileDialogFilters, QtDialogTakesThePatternsOfConvertedFilters)
{
    const QStringList converted = toQtNameFilters(QStringLiteral(
        "All Files (*.*)|*.*|Excel Files|*.xls;*.xlsx|Catalogue (old format)|*.dat"));
    ASSERT_EQ(converted.size(), 3);
    EXPECT_EQ(patternsQtReads(converted.at(0)), QStringList { QStringLiteral("*") });
    EXPECT_EQ(patternsQtReads(converted.at(1)),
        QStringList({ QStringLiteral("*.xls"), QStringLiteral("*.xlsx") }));
    EXPECT_EQ(patternsQtReads(converted.at(2)), QStringList { QStringLiteral("*.dat") });
}

TEST(FileDialogPlaces, TheOpenDialogOffersTheRequestedPlacesAndStartsInItsFolder)
{
    QTemporaryDir folder;
    ASSERT_TRUE(folder.isValid());
    FileDialogRequest request;
    request.filter = QStringLiteral("All Files (*.*)|*.*|Excel Files (*.xls)|*.xls");
    request.filterIndex = 2;
    request.initialFolder = folder.path();
    request.places = QStringList { QDir::homePath(), folder.path() };
    QFileDialog dialog(nullptr, QString(), initialDialogPath(request));
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    prepareOpenDialog(dialog, request);
    EXPECT_EQ(dialog.sidebarUrls(),
        (QList<QUrl> {
            QUrl::fromLocalFile(QDir::homePath()), QUrl::fromLocalFile(folder.path()) }));
    EXPECT_EQ(QDir(dialog.directory()), QDir(folder.path()));
    EXPECT_EQ(dialog.fileMode(), QFileDialog::ExistingFile);
    EXPECT_EQ(dialog.selectedNameFilter(), QStringLiteral("Excel Files (*.xls)"));
    EXPECT_EQ(dialog.windowTitle(), QStringLiteral("Open"));
}

TEST(FileDialogPlaces, WithoutPlacesTheDialogKeepsItsOwn)
{
    QFileDialog dialog;
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    const QList<QUrl> own = dialog.sidebarUrls();
    prepareOpenDialog(dialog, FileDialogRequest {});
    EXPECT_EQ(dialog.sidebarUrls(), own);
}

TEST(FileDialogPlaces, TheDesktopsPlacesAreFoldersThatExistEachOnce)
{
    const QStringList places = desktopPlaces();
    ASSERT_FALSE(places.isEmpty());
    EXPECT_EQ(places.first(), QDir::cleanPath(QDir::homePath()));
    EXPECT_EQ(places.size(), QSet<QString>(places.begin(), places.end()).size());
    for (const QString &place : places)
        EXPECT_TRUE(QFileInfo(place).isDir()) << place.toStdString();
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    EXPECT_EQ(places.contains(QDir::cleanPath(documents)), QFileInfo(documents).isDir());
}

} // namespace
} // namespace tarnwick
