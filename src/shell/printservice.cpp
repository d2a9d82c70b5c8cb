#include "shell/printservice.h"

#include "quotebook/quotepdf.h"
#include "quotes/pageddocument.h"
#include "shell/inputhold.h"
#include "shell/printpreview.h"

#include <QApplication>
#include <QCoreApplication>
#include <QLocale>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QProgressDialog>

#include <algorithm>

namespace tarnwick {

namespace {

void prepare(QPrinter &printer, const QString &title)
{
    QtPrintService::preparePrinter(printer, title, QLocale());
}

/// The print dialog for printer; false when the user cancelled it.
bool choosePrinter(QPrinter &printer, QWidget *owner, const QString &title)
{
    prepare(printer, title);
    QPrintDialog dialog(&printer, owner);
    dialog.setWindowTitle(title);
    return dialog.exec() == QDialog::Accepted;
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
    if (!choosePrinter(printer, owner, title))
        return false;
    paint(printer);
    return true;
}

void setUpProgressWindow(QProgressDialog &progress, const QString &name, const QString &title)
{
    progress.setObjectName(name);
    progress.setWindowTitle(title);
    progress.setAccessibleName(title);
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(500);
    progress.setRange(0, 0);
    // Counted from this first value: without one, a busy bar waits Qt's own four seconds.
    progress.setValue(0);
    progress.setMinimumWidth(progress.fontMetrics().averageCharWidth() * 48);
}

void letEventsFlow(const QProgressDialog &progress)
{
    // Until the progress window shows (after half a second), nothing holds the user's keys and
    // clicks from the window behind it, whose catalogue the work reads: a header sort halfway
    // through a printed list left products out of it. They wait for the progress window, which
    // then holds them from the window behind it as a modal window does, or for the work's end.
    QCoreApplication::processEvents(
        progress.isVisible() ? QEventLoop::AllEvents : QEventLoop::ExcludeUserInputEvents);
}

QString preparingPagesText(int pages, const QLocale &locale)
{
    return QObject::tr("Preparing the pages: %1 so far\u2026").arg(locale.toString(pages));
}

bool QtPrintService::printDocument(QWidget *owner, const QString &title, PagedDocument &document)
{
    QPrinter printer(QPrinter::HighResolution);
    return choosePrinter(printer, owner, title)
        && printWithProgress(document, printer, owner, title) >= 0;
}

int QtPrintService::printWithProgress(
    PagedDocument &document, QPrinter &printer, QWidget *owner, const QString &title)
{
    QProgressDialog progress(owner);
    setUpProgressWindow(progress, QStringLiteral("PrintProgress"), title);
    // The last page's value must not close it before the print is through.
    progress.setAutoReset(false);
    progress.setAutoClose(false);
    const QLocale locale;
    // Keys and commands an assistive tool hands over meanwhile wait for the print, as the
    // keyboard's and the mouse's do (letEventsFlow); the progress window's Cancel answers.
    const KeysHeldBack keys(&progress);
    const CommandsHeldBack commands(QApplication::topLevelWidgets());
    const int pages = paintAllPages(document, printer, [&](int done, int total) {
        if (total == 0) {
            progress.setLabelText(preparingPagesText(done, locale));
        } else {
            progress.setMaximum(total);
            progress.setValue(done);
            progress.setLabelText(
                QObject::tr("Printing page %1 of %2\u2026")
                    .arg(locale.toString(std::min(done + 1, total)), locale.toString(total)));
        }
        letEventsFlow(progress);
        // Given up while the painter still works on it, a job the printer can drop never
        // reaches it; a PDF file keeps the pages printed until then.
        if (progress.wasCanceled())
            printer.abort();
        return !progress.wasCanceled();
    });
    return pages;
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
