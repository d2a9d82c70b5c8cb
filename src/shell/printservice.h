#pragma once

#include <QString>

#include <functional>

class QLocale;
class QPagedPaintDevice;
class QPrinter;
class QProgressDialog;
class QWidget;

namespace tarnwick {

class PagedDocument;

/// Paints a document on a paged device (a printer, a preview, a PDF file).
using PaintPages = std::function<void(QPagedPaintDevice &)>;

/// The print preview and the print dialog. The real one uses Qt Print Support; tests hand in
/// their own, which prints to a PDF file.
class IPrintService
{
public:
    virtual ~IPrintService() = default;

    /// Shows a preview of the pages; the user may print from it.
    virtual void preview(QWidget *owner, const QString &title, const PaintPages &paint) = 0;
    /// Asks for a printer and prints; false when the user cancelled.
    virtual bool print(QWidget *owner, const QString &title, const PaintPages &paint) = 0;

    /// Shows a preview of a document laid out page by page. By default every page is laid
    /// out and painted first, through preview() above.
    virtual void previewDocument(QWidget *owner, const QString &title, PagedDocument &document);
    /// Asks for a printer and prints every page of the document.
    virtual bool printDocument(QWidget *owner, const QString &title, PagedDocument &document);
};

/// Sets up the window a long print or layout shows over its owner: titled title, named name,
/// shown once the work has taken half a second, wide enough for "Printing page 12,345 of
/// 22,223…", a busy bar until it is given a maximum.
void setUpProgressWindow(QProgressDialog &progress, const QString &name, const QString &title);
/// Lets the windows paint and the progress window answer between two pieces of a long print or
/// layout; the user's keys and clicks wait while the progress window is not shown yet.
void letEventsFlow(const QProgressDialog &progress);
/// "Preparing the pages: 1,200 so far…"
QString preparingPagesText(int pages, const QLocale &locale);

/// QPrintPreviewDialog and QPrintDialog on a high-resolution QPrinter with 15 mm margins; a
/// paged document is previewed in PrintPreview, which shows its first page at once and lays
/// out the rest while it is open.
class QtPrintService : public IPrintService
{
public:
    void preview(QWidget *owner, const QString &title, const PaintPages &paint) override;
    bool print(QWidget *owner, const QString &title, const PaintPages &paint) override;
    void previewDocument(QWidget *owner, const QString &title, PagedDocument &document) override;
    /// Asks for a printer, then prints with printWithProgress.
    bool printDocument(QWidget *owner, const QString &title, PagedDocument &document) override;

    /// Prints every page of document on printer while a window over owner says how far it
    /// has got ("Printing page 120 of 5,556…") and offers Cancel, so a long price list never
    /// leaves the program silent; the pages printed, or -1 when the user stopped it (no page
    /// goes out after that; where the printer can give a job up, the job is given up).
    static int printWithProgress(
        PagedDocument &document, QPrinter &printer, QWidget *owner, const QString &title);

    /// The document's name and the margins; a printer without a paper size of its own (printing
    /// to a PDF file, no printer installed) gets the paper of the locale, as the quote's PDF
    /// does: Letter in the United States, A4 elsewhere.
    static void preparePrinter(QPrinter &printer, const QString &title, const QLocale &locale);
};

} // namespace tarnwick
