#include "platform/qt/qtfiledialogs.h"

#include "platform/desktopplaces.h"
#include "platform/filefilter.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QIcon>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeType>
#include <QStyle>
#include <QUrl>

namespace tarnwick {

FileIconsByName::FileIconsByName()
{
    setOptions(DontUseCustomDirectoryIcons);
}

QIcon FileIconsByName::icon(const QFileInfo &info) const
{
    if (!info.isFile())
        return QFileIconProvider::icon(info);
    const QMimeType type = m_types.mimeTypeForFile(info.fileName(), QMimeDatabase::MatchExtension);
    QIcon icon = QIcon::fromTheme(type.iconName());
    if (icon.isNull())
        icon = QIcon::fromTheme(type.genericIconName());
    return icon.isNull() ? QFileIconProvider::icon(QFileIconProvider::File) : icon;
}

QString FileIconsByName::type(const QFileInfo &info) const
{
    if (!info.isFile())
        return QFileIconProvider::type(info);
    return m_types.mimeTypeForFile(info.fileName(), QMimeDatabase::MatchExtension).comment();
}

void listFilesByName(QFileDialog &dialog, FileIconsByName &icons)
{
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setIconProvider(&icons);
    // A side panel wide enough for "Documents" and "Downloads" beside their icons ("Do…"
    // otherwise).
    const QFontMetrics metrics = dialog.fontMetrics();
    if (auto *places = dialog.findChild<QWidget *>(QStringLiteral("sidebar"))) {
        const int icon = places->style()->pixelMetric(QStyle::PM_SmallIconSize, nullptr, places);
        places->setMinimumWidth(metrics.horizontalAdvance(QStringLiteral("Downloads")) + 2 * icon
            + 4 * metrics.averageCharWidth());
    }
}

QString nameFilterAt(const QStringList &nameFilters, int filterIndex)
{
    if (nameFilters.isEmpty())
        return QString();
    if (filterIndex < 1 || filterIndex > nameFilters.size())
        return nameFilters.first();
    return nameFilters.at(filterIndex - 1);
}

int nameFilterIndex(
    const QStringList &nameFilters, const QString &selectedFilter, int fallbackIndex)
{
    const qsizetype position = nameFilters.indexOf(selectedFilter);
    return position < 0 ? fallbackIndex : int(position) + 1;
}

QString initialDialogPath(const FileDialogRequest &request)
{
    if (request.initialFolder.isEmpty())
        return request.fileName;
    if (request.fileName.isEmpty())
        return request.initialFolder;
    return QDir(request.initialFolder).filePath(request.fileName);
}

void showFilterDescriptions(QFileDialog &dialog, const QString &filter)
{
    auto *types = dialog.findChild<QComboBox *>(QStringLiteral("fileTypeCombo"));
    if (types == nullptr)
        return;
    // Qt picks a type by its position in the list, so the text shown is free.
    const QStringList descriptions = filterDescriptions(filter);
    for (qsizetype entry = 0; entry < descriptions.size() && entry < types->count(); ++entry) {
        if (!descriptions.at(entry).trimmed().isEmpty())
            types->setItemText(int(entry), descriptions.at(entry));
    }
}

int chosenFilterIndex(const QFileDialog &dialog, int fallbackIndex)
{
    const auto *types = dialog.findChild<QComboBox *>(QStringLiteral("fileTypeCombo"));
    if (types == nullptr || types->currentIndex() < 0)
        return fallbackIndex;
    return types->currentIndex() + 1;
}

namespace {

/// The side panel names a folder by its own name, the home folder too ("alice"): it is called
/// "Home" there, as desktops call it, also when the panel renames it again after reading the
/// folder's details.
void nameHomePlace(QFileDialog &dialog)
{
    auto *panel = dialog.findChild<QAbstractItemView *>(QStringLiteral("sidebar"));
    QAbstractItemModel *places = panel != nullptr ? panel->model() : nullptr;
    if (places == nullptr)
        return;
    const QString home = QDir::cleanPath(QDir::homePath());
    const auto rename = [places, home] {
        for (int row = 0; row < places->rowCount(); ++row) {
            const QModelIndex place = places->index(row, 0);
            const QUrl url = place.data(Qt::UserRole + 1).toUrl();
            if (url.isLocalFile() && QDir::cleanPath(url.toLocalFile()) == home
                && place.data(Qt::DisplayRole).toString() != HomePlaceName)
                places->setData(place, QString(HomePlaceName), Qt::DisplayRole);
        }
    };
    rename();
    QObject::connect(places, &QAbstractItemModel::dataChanged, &dialog, rename);
    QObject::connect(places, &QAbstractItemModel::rowsInserted, &dialog, rename);
}

} // namespace

void showPlaces(QFileDialog &dialog, const QStringList &folders)
{
    if (folders.isEmpty())
        return;
    QList<QUrl> places;
    for (const QString &folder : folders)
        places << QUrl::fromLocalFile(folder);
    dialog.setSidebarUrls(places);
    nameHomePlace(dialog);
}

void prepareOpenDialog(QFileDialog &dialog, const FileDialogRequest &request)
{
    const QStringList filters = toQtNameFilters(request.filter);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setNameFilters(filters);
    dialog.selectNameFilter(nameFilterAt(filters, request.filterIndex));
    showFilterDescriptions(dialog, request.filter);
    showPlaces(dialog, request.places);
}

namespace {

/// Qt's own dialog reads a typed name that holds double quotes as a list of names in quotes,
/// so 'Valves 12" price list.xls' would be saved as " price list.xls" in the folder shown, and
/// 'out/Smith "winter" prices.xls' as "winter.xls". Such a name is refused with a word instead
/// (Windows allows no double quote in a name); a name wholly in quotes, which some type to keep
/// a dialog from adding a suffix, is the name inside them, as Qt reads it.
class SaveDialog : public QFileDialog
{
public:
    using QFileDialog::QFileDialog;

    void accept() override
    {
        const auto *name = findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
        const QString typed = name != nullptr ? name->text().trimmed() : QString();
        const bool wholly = typed.size() > 2 && typed.startsWith(QLatin1Char('"'))
            && typed.endsWith(QLatin1Char('"')) && typed.count(QLatin1Char('"')) == 2;
        if (typed.contains(QLatin1Char('"')) && !wholly) {
            QMessageBox::warning(this, windowTitle(), QString::fromLatin1(QuoteInFileNameMessage));
            return;
        }
        QFileDialog::accept();
    }
};

/// A request that names no places gets the desktop's (Home, Desktop, Documents, Downloads),
/// which a desktop's own dialog would have shown.
FileDialogRequest withPlaces(FileDialogRequest request)
{
    if (request.places.isEmpty())
        request.places = desktopPlaces();
    return request;
}

} // namespace

QtFileDialogs::QtFileDialogs(std::function<QWidget *()> parentProvider)
    : m_parentProvider(std::move(parentProvider))
{
}

std::optional<FileDialogResult> QtFileDialogs::getOpenFile(const FileDialogRequest &request)
{
    return runOpen(withPlaces(request));
}

std::optional<FileDialogResult> QtFileDialogs::getSaveFile(const FileDialogRequest &request)
{
    return runSave(withPlaces(request));
}

std::optional<FileDialogResult> QtFileDialogs::runSave(const FileDialogRequest &request) const
{
    const QStringList filters = toQtNameFilters(request.filter);
    FileIconsByName icons;
    SaveDialog dialog(parentWidget(), request.title, initialDialogPath(request));
    listFilesByName(dialog, icons);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setOption(QFileDialog::DontConfirmOverwrite, !request.confirmOverwrite);
    dialog.setDefaultSuffix(request.defaultSuffix);
    dialog.setNameFilters(filters);
    dialog.selectNameFilter(nameFilterAt(filters, request.filterIndex));
    showFilterDescriptions(dialog, request.filter);
    showPlaces(dialog, request.places);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    // The filter that was offered first stands when the dialog names none of the offered ones.
    const bool inRange = request.filterIndex >= 1 && request.filterIndex <= filters.size();
    const int fallback = inRange ? request.filterIndex : 1;
    return FileDialogResult { QDir::toNativeSeparators(dialog.selectedFiles().constFirst()),
        chosenFilterIndex(
            dialog, nameFilterIndex(filters, dialog.selectedNameFilter(), fallback)) };
}

std::optional<FileDialogResult> QtFileDialogs::runOpen(const FileDialogRequest &request) const
{
    FileIconsByName icons;
    QFileDialog dialog(parentWidget(), request.title, initialDialogPath(request));
    listFilesByName(dialog, icons);
    prepareOpenDialog(dialog, request);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    const QStringList filters = toQtNameFilters(request.filter);
    const bool inRange = request.filterIndex >= 1 && request.filterIndex <= filters.size();
    const int fallback =
        nameFilterIndex(filters, dialog.selectedNameFilter(), inRange ? request.filterIndex : 1);
    return FileDialogResult { QDir::toNativeSeparators(dialog.selectedFiles().constFirst()),
        chosenFilterIndex(dialog, fallback) };
}

QWidget *QtFileDialogs::parentWidget() const
{
    return m_parentProvider ? m_parentProvider() : QApplication::activeWindow();
}

} // namespace tarnwick
