#include "platform/qt/qtfiledialogs.h"

#include "platform/filefilter.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>

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

QtFileDialogs::QtFileDialogs(std::function<QWidget *()> parentProvider)
    : m_parentProvider(std::move(parentProvider))
{
}

std::optional<FileDialogResult> QtFileDialogs::getOpenFile(const FileDialogRequest &request)
{
    return run(Mode::Open, request);
}

std::optional<FileDialogResult> QtFileDialogs::getSaveFile(const FileDialogRequest &request)
{
    return run(Mode::Save, request);
}

std::optional<FileDialogResult> QtFileDialogs::run(
    Mode mode, const FileDialogRequest &request) const
{
    const QStringList filters = toQtNameFilters(request.filter);
    const QString filterText = filters.join(QStringLiteral(";;"));
    QString selected = nameFilterAt(filters, request.filterIndex);
    const QString start = initialDialogPath(request);
    const QString path = mode == Mode::Open
        ? QFileDialog::getOpenFileName(parentWidget(), request.title, start, filterText, &selected)
        : QFileDialog::getSaveFileName(parentWidget(), request.title, start, filterText, &selected);
    if (path.isEmpty())
        return std::nullopt;
    // The filter that was offered first stands when the dialog names none of the offered ones.
    const bool inRange = request.filterIndex >= 1 && request.filterIndex <= filters.size();
    const int fallback = inRange ? request.filterIndex : 1;
    return FileDialogResult { QDir::toNativeSeparators(path),
        nameFilterIndex(filters, selected, fallback) };
}

QWidget *QtFileDialogs::parentWidget() const
{
    return m_parentProvider ? m_parentProvider() : QApplication::activeWindow();
}

} // namespace tarnwick
