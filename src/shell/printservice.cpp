#include "shell/printservice.h"

#include "quotes/pageddocument.h"
#include "shell/printpreview.h"

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

void IPrintService::previewDocument(QWidget *owner, const QString &title, PagedDocument &document)
{
    preview(
        owner, title, [&document](QPagedPaintDevice &device) { paintAllPages(document, device); });
}

bool IPrintService::printDocument(QWidget *owner, const QString &title, PagedDocument &document)
{
    return print(
        owner, title, [&document](QPagedPaintDevice &device) { paintAllPages(document, device); });
}

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

void QtPrintService::previewDocument(QWidget *owner, const QString &title, PagedDocument &document)
{
    QPrinter printer(QPrinter::HighResolution);
    prepare(printer, title);
    PrintPreview window(printer, document, title, owner);
    window.exec();
}

} // namespace tarnwick
