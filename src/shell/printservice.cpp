#include "shell/printservice.h"

#include "quotebook/quotepdf.h"
#include "quotes/pageddocument.h"
#include "shell/printpreview.h"

#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>

namespace tarnwick {

namespace {

void prepare(QPrinter &printer, const QString &title)
{
    QtPrintService::preparePrinter(printer, title, QLocale());
}

} // namespace

void QtPrintService::preparePrinter(QPrinter &printer, const QString &title, const QLocale &locale)
{
    printer.setDocName(title);
    if (printer.outputFormat() == QPrinter::PdfFormat || printer.printerName().isEmpty())
        printer.setPageSize(QuotePdf::pageSizeFor(locale));
    printer.setPageMargins(QMarginsF(15, 15, 15, 15), QPageLayout::Millimeter);
}

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
    // Modal to its owner only: the help window F1 opens from the preview takes input beside it.
    window.setWindowModality(Qt::WindowModal);
    window.exec();
}

} // namespace tarnwick
