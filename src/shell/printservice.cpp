#include "shell/printservice.h"

#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>

namespace tarnwick {

namespace {

void prepare(QPrinter &printer, const QString &title)
{
    printer.setDocName(title);
    printer.setPageMargins(QMarginsF(15, 15, 15, 15), QPageLayout::Millimeter);
}

} // namespace

void QtPrintService::preview(QWidget *owner, const QString &title, const PaintPages &paint)
{
    QPrinter printer(QPrinter::HighResolution);
    prepare(printer, title);
    QPrintPreviewDialog dialog(&printer, owner);
    dialog.setWindowTitle(title);
    QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog,
        [&paint](QPrinter *target) { paint(*target); });
    dialog.exec();
}

bool QtPrintService::print(QWidget *owner, const QString &title, const PaintPages &paint)
{
    QPrinter printer(QPrinter::HighResolution);
    prepare(printer, title);
    QPrintDialog dialog(&printer, owner);
    dialog.setWindowTitle(title);
    if (dialog.exec() != QDialog::Accepted)
        return false;
    paint(printer);
    return true;
}

} // namespace tarnwick
