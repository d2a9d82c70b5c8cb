#include "shell/gridview.h"

namespace tarnwick {

QWidget *GridView::openEditor() const
{
    if (!isEditing())
        return nullptr;
    // Cell editors are the viewport's own child widgets.
    const QList<QWidget *> children =
        viewport()->findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
    for (QWidget *child : children) {
        if (!child->isHidden())
            return child;
    }
    return nullptr;
}

void GridView::commitPendingEdit()
{
    if (QWidget *editor = openEditor()) {
        commitData(editor);
        closeEditor(editor, QAbstractItemDelegate::NoHint);
    }
}

void GridView::discardPendingEdit()
{
    if (QWidget *editor = openEditor())
        closeEditor(editor, QAbstractItemDelegate::RevertModelCache);
}

} // namespace tarnwick
