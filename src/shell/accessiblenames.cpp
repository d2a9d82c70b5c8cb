#include "shell/accessiblenames.h"

#include <QWidget>

namespace tarnwick {

void exposeObjectNames(QWidget *root)
{
    QList<QWidget *> widgets = root->findChildren<QWidget *>();
    widgets.prepend(root);
    for (QWidget *widget : widgets) {
        const QString name = widget->objectName();
        if (!name.isEmpty() && !name.startsWith(QLatin1String("qt_")))
            widget->setAccessibleDescription(name);
    }
}

} // namespace tarnwick
