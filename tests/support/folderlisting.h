#pragma once

#include <QDir>
#include <QFileDialog>
#include <QFileSystemModel>
#include <QSignalSpy>
#include <QTest>

#include <utility>

namespace tarnwick::test {

/// Shows dialog in its detail view and waits until it has read the folder it starts in, with
/// each file's icon and type; false when the folder was not read within ten seconds.
inline bool showFolderListing(QFileDialog &dialog)
{
    dialog.setViewMode(QFileDialog::Detail);
    auto *model = dialog.findChild<QFileSystemModel *>();
    if (!model)
        return false;
    QSignalSpy loaded(model, &QFileSystemModel::directoryLoaded);
    const QString folder = QDir::cleanPath(dialog.directory().absolutePath());
    dialog.show();
    // The model reads the folders above it too, each reported when done: the one the dialog
    // shows is what counts.
    return QTest::qWaitFor(
        [&] {
            for (const QList<QVariant> &arguments : std::as_const(loaded)) {
                if (QDir::cleanPath(arguments.value(0).toString()) == folder)
                    return true;
            }
            return false;
        },
        10000);
}

} // namespace tarnwick::test
