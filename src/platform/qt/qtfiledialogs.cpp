#include "platform/qt/qtfiledialogs.h"

#include "platform/filefilter.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QUrl>

namespace tarnwick {

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

void prepareOpenDialog(QFileDialog &dialog, const FileDialogRequest &request)
{
    const QStringList filters = toQtNameFilters(request.filter);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setNameFilters(filters);
    dialog.selectNameFilter(nameFilterAt(filters, request.filterIndex));
    if (request.places.isEmpty())
        return;
    QList<QUrl> places;
    for (const QString &folder : request.places)
        places << QUrl::fromLocalFile(folder);
    dialog.setSidebarUrls(places);
}

QtFileDialogs::QtFileDialogs(std::function<QWidget *()> parentProvider)
    : m_parentProvider(std::move(parentProvider))
{
}

std::optional<FileDialogResult> QtFileDialogs::getOpenFile(const FileDialogRequest &request)
{
    return runOpen(request);
}

std::optional<FileDialogResult> QtFileDialogs::getSaveFile(const FileDialogRequest &request)
{
    return runSave(request);
}

std::optional<FileDialogResult> QtFileDialogs::runSave(const FileDialogRequest &request) const
{
    const QStringList filters = toQtNameFilters(request.filter);
    const QString filterText = filters.join(QStringLiteral(";;"));
    QString selected = nameFilterAt(filters, request.filterIndex);
    const QString start = initialDialogPath(request);
    const QString path =
        QFileDialog::getSaveFileName(parentWidget(), request.title, start, filterText, &selected,
            request.confirmOverwrite ? QFileDialog::Options() : QFileDialog::DontConfirmOverwrite);
    if (path.isEmpty())
        return std::nullopt;
    // The filter that was offered first stands when the dialog names none of the offered ones.
    const bool inRange = request.filterIndex >= 1 && request.filterIndex <= filters.size();
    const int fallback = inRange ? request.filterIndex : 1;
    return FileDialogResult { QDir::toNativeSeparators(path),
        nameFilterIndex(filters, selected, fallback) };
}

std::optional<FileDialogResult> QtFileDialogs::runOpen(const FileDialogRequest &request) const
{
    QFileDialog dialog(parentWidget(), request.title, initialDialogPath(request));
    prepareOpenDialog(dialog, request);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    const QStringList filters = toQtNameFilters(request.filter);
    const bool inRange = request.filterIndex >= 1 && request.filterIndex <= filters.size();
    return FileDialogResult { QDir::toNativeSeparators(dialog.selectedFiles().constFirst()),
        nameFilterIndex(filters, dialog.selectedNameFilter(), inRange ? request.filterIndex : 1) };
}

QWidget *QtFileDialogs::parentWidget() const
{
    return m_parentProvider ? m_parentProvider() : QApplication::activeWindow();
}

} // namespace tarnwick
