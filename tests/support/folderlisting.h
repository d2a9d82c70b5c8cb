#pragma once

#include <QFileDialog>
#include <QFileSystemModel>
#include <QSignalSpy>

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
    dialog.show();
    return loaded.wait(10000);
}

} // namespace tarnwick::test
