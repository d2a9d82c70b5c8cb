#include "platform/qt/qtfiledialogs.h"

#include "platform/desktopplaces.h"
#include "platform/filefilter.h"
#include "support/folderlisting.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QLineEdit>
#include <QMessageBox>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QUrl>

#include <gtest/gtest.h>

#include <functional>

#if defined(Q_OS_LINUX)
#include <sys/inotify.h>
#include <unistd.h>
#endif

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

TEST(FileDialogFilters, TheListOfTypesShowsEachDescriptionAsWrittenAndListsItsFiles)
{
    QFileDialog dialog;
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    FileDialogRequest request;
    request.filter =
        QStringLiteral("All Files (*.*)|*.*|Text Files(*.txt)|*.txt|Excel Files (*.xls)|*.xls");
    request.filterIndex = 3;
    prepareOpenDialog(dialog, request);
    auto *types = dialog.findChild<QComboBox *>(QStringLiteral("fileTypeCombo"));
    ASSERT_NE(types, nullptr);
    QStringList shown;
    for (int i = 0; i < types->count(); ++i)
        shown << types->itemText(i);
    EXPECT_EQ(shown,
        QStringList({ QStringLiteral("All Files (*.*)"), QStringLiteral("Text Files(*.txt)"),
            QStringLiteral("Excel Files (*.xls)") }));
    EXPECT_EQ(chosenFilterIndex(dialog, 0), 3);
    const auto *files = dialog.findChild<QFileSystemModel *>();
    ASSERT_NE(files, nullptr);
    EXPECT_EQ(files->nameFilters(), QStringList { QStringLiteral("*.xls") });

    // Choosing a type by its shown text still lists that type's files.
    types->setCurrentIndex(0);
    Q_EMIT types->activated(0);
    EXPECT_EQ(files->nameFilters(), QStringList { QStringLiteral("*") });
    EXPECT_EQ(chosenFilterIndex(dialog, 0), 1);
    types->setCurrentIndex(1);
    Q_EMIT types->activated(1);
    EXPECT_EQ(files->nameFilters(), QStringList { QStringLiteral("*.txt") });
    EXPECT_EQ(chosenFilterIndex(dialog, 0), 2);
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

/// What the program's dialogs are like while they are open: runs the dialog and answers it
/// with Cancel once it has been looked at.
struct SeenDialog
{
    bool own = false; ///< Qt's own dialog, not the desktop's
    bool typesByName = false;
    bool saves = false;
    bool asksBeforeOverwriting = false;
    QString defaultSuffix;
    QList<QUrl> places;
};

SeenDialog lookAtTheDialog(const std::function<void()> &run)
{
    SeenDialog seen;
    QTimer::singleShot(0, [&seen] {
        auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
        if (!dialog)
            return;
        seen.own = dialog->testOption(QFileDialog::DontUseNativeDialog);
        seen.typesByName = dynamic_cast<FileIconsByName *>(dialog->iconProvider()) != nullptr;
        seen.saves = dialog->acceptMode() == QFileDialog::AcceptSave;
        seen.asksBeforeOverwriting = !dialog->testOption(QFileDialog::DontConfirmOverwrite);
        seen.places = dialog->sidebarUrls();
        seen.defaultSuffix = dialog->defaultSuffix();
        dialog->reject();
    });
    run();
    return seen;
}

TEST(FileDialogContents, OpenAndSaveDialogsKnowFilesByTheirNamesOnly)
{
    QTemporaryDir folder;
    QtFileDialogs dialogs;
    FileDialogRequest request;
    request.initialFolder = folder.path();
    request.confirmOverwrite = true;
    std::optional<FileDialogResult> result { FileDialogResult {} };
    SeenDialog seen = lookAtTheDialog([&] { result = dialogs.getOpenFile(request); });
    EXPECT_TRUE(seen.own);
    EXPECT_TRUE(seen.typesByName);
    EXPECT_FALSE(seen.saves);
    EXPECT_FALSE(result.has_value());

    result = FileDialogResult {};
    seen = lookAtTheDialog([&] { result = dialogs.getSaveFile(request); });
    EXPECT_TRUE(seen.own);
    EXPECT_TRUE(seen.typesByName);
    EXPECT_TRUE(seen.saves);
    EXPECT_TRUE(seen.asksBeforeOverwriting);
    EXPECT_FALSE(result.has_value());

    request.confirmOverwrite = false;
    seen = lookAtTheDialog([&] { result = dialogs.getSaveFile(request); });
    EXPECT_FALSE(seen.asksBeforeOverwriting);
    EXPECT_TRUE(seen.defaultSuffix.isEmpty());

    // A name typed without an extension gets the one asked for, before the overwrite question.
    request.defaultSuffix = QStringLiteral("dat");
    seen = lookAtTheDialog([&] { result = dialogs.getSaveFile(request); });
    EXPECT_EQ(seen.defaultSuffix, QStringLiteral("dat"));
}

// Typed as a user types it: a name holding a double quote is refused with a word over the
// dialog, which stays open with the name for the user to change.
TEST(FileDialogContents, ASaveDialogRefusesANameWithADoubleQuoteAndStaysOpen)
{
    QTemporaryDir folder;
    QtFileDialogs dialogs;
    FileDialogRequest request;
    request.title = QStringLiteral("Export");
    request.initialFolder = folder.path();
    QString refusal;
    QString refusalTitle;
    bool stayedOpen = false;
    QTimer::singleShot(0, [&] {
        auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
        auto *name =
            dialog ? dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit")) : nullptr;
        if (name == nullptr)
            return;
        // Looks for the refusal until it is up (typed keys may take their time), answers it,
        // then looks at the dialog once it has the keyboard again.
        auto *watch = new QTimer(dialog);
        QObject::connect(watch, &QTimer::timeout, dialog, [&, dialog, name, watch] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (box == nullptr && !refusal.isEmpty()) {
                watch->stop();
                stayedOpen = QApplication::activeModalWidget() == dialog && dialog->isVisible()
                    && name->text() == QStringLiteral("Valves 12\" list.xls");
                dialog->reject();
            } else if (box != nullptr) {
                refusal = box->text();
                refusalTitle = box->windowTitle();
                box->accept();
            }
        });
        watch->start(0);
        QTest::keyClicks(name, QStringLiteral("Valves 12\" list.xls"));
        QTest::keyClick(name, Qt::Key_Return);
        if (refusal.isEmpty()) {
            watch->stop(); // no refusal came: the dialog took the name
            dialog->reject();
        }
    });
    const std::optional<FileDialogResult> result = dialogs.getSaveFile(request);
    EXPECT_EQ(refusalTitle, QStringLiteral("Export"));
    EXPECT_EQ(refusal, QString::fromLatin1(QuoteInFileNameMessage));
    EXPECT_TRUE(stayedOpen);
    EXPECT_FALSE(result.has_value());
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

TEST(FileDialogPlaces, TheHomeFolderIsCalledHomeAndStaysSo)
{
    QFileDialog dialog;
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    showPlaces(dialog, { QDir::homePath(), QDir::tempPath() });
    auto *panel = dialog.findChild<QAbstractItemView *>(QStringLiteral("sidebar"));
    ASSERT_NE(panel, nullptr);
    QAbstractItemModel *places = panel->model();
    ASSERT_EQ(places->rowCount(), 2);
    EXPECT_EQ(places->index(0, 0).data().toString(), QStringLiteral("Home"));
    EXPECT_EQ(places->index(1, 0).data().toString(), QFileInfo(QDir::tempPath()).fileName());
    // The panel names its places again once it has read their details: Home stays Home.
    places->setData(places->index(0, 0), QFileInfo(QDir::homePath()).fileName(), Qt::DisplayRole);
    EXPECT_EQ(places->index(0, 0).data().toString(), QStringLiteral("Home"));
}

TEST(FileDialogPlaces, TheSidePanelShowsThePlacesNamesWhole)
{
    FileIconsByName icons;
    QFileDialog dialog;
    listFilesByName(dialog, icons);
    const auto *places = dialog.findChild<QWidget *>(QStringLiteral("sidebar"));
    ASSERT_NE(places, nullptr);
    EXPECT_GT(places->minimumWidth(),
        dialog.fontMetrics().horizontalAdvance(QStringLiteral("Downloads")));
}

TEST(FileDialogPlaces, EveryDialogOffersTheDesktopsPlacesWhenTheRequestNamesNone)
{
    QList<QUrl> desktop;
    for (const QString &place : desktopPlaces())
        desktop << QUrl::fromLocalFile(place);
    QtFileDialogs dialogs;
    EXPECT_EQ(lookAtTheDialog([&] { dialogs.getSaveFile(FileDialogRequest {}); }).places, desktop);
    EXPECT_EQ(lookAtTheDialog([&] { dialogs.getOpenFile(FileDialogRequest {}); }).places, desktop);
    QTemporaryDir folder;
    FileDialogRequest request;
    request.places = QStringList { folder.path() };
    EXPECT_EQ(lookAtTheDialog([&] { dialogs.getSaveFile(request); }).places,
        QList<QUrl> { QUrl::fromLocalFile(folder.path()) });
}

TEST(FileDialogContents, ATypeComesFromTheNameNotFromTheBytes)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("letter.unknownkind"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("%PDF-1.4\n%\xe2\xe3\xcf\xd3\n1 0 obj\n");
    file.close();
    FileIconsByName icons;
    EXPECT_FALSE(icons.type(QFileInfo(path)).contains(QLatin1String("PDF")))
        << icons.type(QFileInfo(path)).toStdString();
    const QString pdf = folder.filePath(QStringLiteral("quote.pdf"));
    EXPECT_TRUE(QFile::copy(path, pdf));
    EXPECT_TRUE(icons.type(QFileInfo(pdf)).contains(QLatin1String("PDF")))
        << icons.type(QFileInfo(pdf)).toStdString();
    EXPECT_FALSE(icons.icon(QFileInfo(pdf)).isNull());
    EXPECT_FALSE(icons.icon(QFileInfo(folder.path())).isNull());
}

#if defined(Q_OS_LINUX)
/// The names of the files in folder that were opened since the watch began.
class OpenWatch
{
public:
    explicit OpenWatch(const QString &folder)
        : m_fd(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)),
          m_watch(inotify_add_watch(m_fd, QFile::encodeName(folder).constData(), IN_OPEN))
    {
    }
    ~OpenWatch() { ::close(m_fd); }
    OpenWatch(const OpenWatch &) = delete;
    OpenWatch &operator=(const OpenWatch &) = delete;

    bool isWatching() const { return m_fd >= 0 && m_watch >= 0; }

    QStringList openedFiles()
    {
        alignas(inotify_event) char buffer[8192];
        QStringList names;
        for (;;) {
            const ssize_t got = ::read(m_fd, buffer, sizeof buffer);
            if (got <= 0)
                return names;
            for (ssize_t at = 0; at < got;) {
                const auto *event = reinterpret_cast<const inotify_event *>(buffer + at);
                if (event->len > 0 && !(event->mask & IN_ISDIR))
                    names << QFile::decodeName(event->name);
                at += ssize_t(sizeof(inotify_event) + event->len);
            }
        }
    }

private:
    int m_fd;
    int m_watch;
};

TEST(FileDialogContents, ListingTheApplicationFolderOpensNoneOfItsFiles)
{
    // Closing a file this process opened drops the locks it holds on that file: a dialog that
    // reads quotes.db to find its type takes the quote book's locks from SQLite.
    QTemporaryDir folder;
    for (const char *name : { "quotes.db", "quotes.db-wal", "quotes.db-shm", "twdata.dat",
             "QuoteNoteHead.txt", "README" }) {
        QFile file(folder.filePath(QString::fromLatin1(name)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(QByteArray("SQLite format 3\0", 16) + QByteArray(4080, '\1'));
    }
    OpenWatch watch(folder.path());
    ASSERT_TRUE(watch.isWatching());

    FileIconsByName icons;
    QFileDialog dialog(nullptr, QString(), folder.path());
    listFilesByName(dialog, icons);
    ASSERT_TRUE(test::showFolderListing(dialog));
    const auto *model = dialog.findChild<QFileSystemModel *>();
    // Everything the list shows of each file: its icon and its type.
    const QModelIndex root = model->index(folder.path());
    ASSERT_EQ(model->rowCount(root), 6);
    for (int row = 0; row < model->rowCount(root); ++row) {
        EXPECT_FALSE(model->data(model->index(row, 0, root), Qt::DecorationRole).isNull());
        EXPECT_FALSE(model->data(model->index(row, 2, root)).toString().isEmpty());
    }
    QApplication::processEvents();
    dialog.close();
    const QStringList opened = watch.openedFiles();
    EXPECT_TRUE(opened.isEmpty()) << opened.join(QLatin1String(", ")).toStdString();

    // The watch sees an open when there is one.
    QFile book(folder.filePath(QStringLiteral("quotes.db")));
    ASSERT_TRUE(book.open(QIODevice::ReadOnly));
    book.close();
    EXPECT_EQ(watch.openedFiles().join(QLatin1Char(',')).toStdString(), "quotes.db");
}
#endif

} // namespace
} // namespace tarnwick
