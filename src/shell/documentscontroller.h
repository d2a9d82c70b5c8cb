#pragma once

#include <QObject>
#include <QPointer>

#include <memory>

class QWidget;

namespace tarnwick {

struct AppServices;
struct MainWindowUi;
class FrmQuoteNote;
class IPrintService;
class Module1;
class ProductGridController;

/// The documents the main window hands out: the quote document and the product report on the
/// clipboard, the "Quote Note" window, and the price list's preview and print.
class DocumentsController : public QObject
{
    Q_OBJECT

public:
    static constexpr QLatin1String PriceListTitle { "Tarnwick Price list" };

    DocumentsController(const AppServices &services, Module1 &module, const MainWindowUi &ui,
        const ProductGridController &grid, QWidget *owner);
    ~DocumentsController() override;

    /// Quote menu "&Copy": the whole quote document goes on the clipboard. Returns what the
    /// status bar says of it.
    QString copyQuote();
    /// "&Copy Product Info" and the toolbar's "Print": the current product's report.
    void copyProductInfo();
    /// Quote menu "&Quote Note": shows the editor (one window at a time), not modal.
    void showQuoteNote();
    /// Before the quote on screen is saved or another one comes: what was typed into an open
    /// Quote Note window and not saved yet is for the quote on screen, so the user saves it now
    /// (Yes), drops it (No) or stays (Cancel, false). True at once when nothing is typed there.
    bool settleQuoteNote(const QString &title);
    /// A close from outside (a log-out, a shut-down), which waits for no answer: typing left in
    /// Quote Note is saved for the quote on screen, as Yes would, without a box; when it cannot
    /// be saved, the close goes on without it.
    void keepQuoteNoteTyping();
    /// "Print" → "Setup" and "Print Price List".
    void previewPriceList();
    void printPriceList();

    /// Replaces the print service (tests print to a PDF file).
    void setPrintService(std::unique_ptr<IPrintService> service);
    FrmQuoteNote *quoteNoteWindow() const;

private:
    const AppServices &m_services;
    Module1 &m_module;
    const MainWindowUi &m_ui;
    const ProductGridController &m_grid;
    QWidget *m_owner;
    std::unique_ptr<IPrintService> m_print;
    QPointer<FrmQuoteNote> m_quoteNote;
};

} // namespace tarnwick
