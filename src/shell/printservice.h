#pragma once

#include <QString>

#include <functional>

class QPagedPaintDevice;
class QWidget;

namespace tarnwick {

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
};

/// QPrintPreviewDialog and QPrintDialog on a high-resolution QPrinter with 15 mm margins.
class QtPrintService : public IPrintService
{
public:
    void preview(QWidget *owner, const QString &title, const PaintPages &paint) override;
    bool print(QWidget *owner, const QString &title, const PaintPages &paint) override;
};

} // namespace tarnwick
