#include "shell/documentscontroller.h"

#include "catalogue/module1.h"
#include "platform/appenvironment.h"
#include "platform/appservices.h"
#include "platform/iclipboard.h"
#include "platform/iprompts.h"
#include "quotes/documentclipboard.h"
#include "quotes/pricelist.h"
#include "quotes/productreport.h"
#include "quotes/quotedocument.h"
#include "quotes/quoteline.h"
#include "quotes/quotenote.h"
#include "shell/frmquotenote.h"
#include "shell/mainwindowui.h"
#include "shell/printservice.h"
#include "shell/productgridcontroller.h"

#include <QLineEdit>
#include <QTextDocument>

namespace tarnwick {

DocumentsController::DocumentsController(const AppServices &services, Module1 &module,
    const MainWindowUi &ui, const ProductGridController &grid, QWidget *owner)
    : QObject(owner), m_services(services), m_module(module), m_ui(ui), m_grid(grid),
      m_owner(owner), m_print(std::make_unique<QtPrintService>())
{
}

DocumentsController::~DocumentsController() = default;

QString DocumentsController::copyQuote()
{
    const QString folder = m_services.environment.appFolder();
    QuoteDocumentInput input;
    input.heading = QuoteNote::readHeading(folder);
    input.ending = QuoteNote::readEnding(folder);
    input.noIncludes = QuoteNote::noIncludes(m_services.settings);
    input.volumePrices = QuoteNote::volumePrices(m_services.settings);
    input.catalogue = &m_module.Catalogue();
    input.discountBox = m_ui.TxtDisc->text();
    input.totalBox = m_ui.TxtTotal->text();
    const auto document = QuoteDocument::build(m_module.QuoteTable(), input, m_module.locale());
    m_services.clipboard.clear();
    m_services.clipboard.setRichDocument(clipboardForms(*document));
    // The copy shows nowhere else: the status bar says it happened, and what it holds when the
    // quote has no lines yet.
    QString copied = QuoteLine::lineCount(m_module.QuoteTable()) > 0
        ? tr("Quote copied to the clipboard.")
        : tr("The quote has no lines: the clipboard holds an empty quote. Add products to the "
             "quote first.");
    m_ui.sbPanel1->setText(copied);
    return copied;
}

void DocumentsController::copyProductInfo()
{
    // After a delete no product is current: a report of nothing would only push out what the
    // clipboard held.
    if (m_grid.currentBookmark() <= 0) {
        m_ui.sbPanel1->setText(tr("No product is selected: select one to copy its report."));
        return;
    }
    const auto document =
        ProductReport::build(m_module.Catalogue(), m_grid.currentBookmark(), m_module.locale());
    m_services.clipboard.clear();
    m_services.clipboard.setRichDocument(clipboardForms(*document));
    m_ui.sbPanel1->setText(tr("Product information copied to the clipboard."));
}

void DocumentsController::showQuoteNote()
{
    if (!m_quoteNote) {
        m_quoteNote = new FrmQuoteNote(
            m_services.settings, m_services.prompts, m_services.environment.appFolder(), m_owner);
    }
    m_quoteNote->show();
    m_quoteNote->raise();
    m_quoteNote->activateWindow();
}

void DocumentsController::previewPriceList()
{
    // Laid out page by page as the preview asks: the first page shows at once at any size.
    PriceListDocument document(m_module.Catalogue(), m_module.locale());
    m_print->previewDocument(m_owner, PriceListTitle, document);
}

void DocumentsController::printPriceList()
{
    PriceListDocument document(m_module.Catalogue(), m_module.locale());
    // The printer's own queue takes it from here: the status bar says it has gone there.
    if (m_print->printDocument(m_owner, PriceListTitle, document))
        m_ui.sbPanel1->setText(tr("Price list printed."));
}

bool DocumentsController::settleQuoteNote(const QString &title)
{
    if (!m_quoteNote || !m_quoteNote->isVisible() || !m_quoteNote->hasTyping())
        return true;
    const int answer = m_services.prompts.msgBox(
        tr("Quote Note holds changes to the heading or ending that are not saved. Save them "
           "for the quote on screen first?"),
        MsgStyle::YesNoCancel | MsgStyle::Question, title);
    if (answer == MsgResult::Cancel)
        return false;
    if (answer == MsgResult::Yes)
        return m_quoteNote->saveTexts();
    m_quoteNote->dropTyping();
    return true;
}

void DocumentsController::keepQuoteNoteTyping()
{
    if (m_quoteNote && m_quoteNote->isVisible() && m_quoteNote->hasTyping())
        m_quoteNote->saveTexts(FrmQuoteNote::Report::Quietly);
}

FrmQuoteNote *DocumentsController::quoteNoteWindow() const
{
    return m_quoteNote.data();
}

void DocumentsController::setPrintService(std::unique_ptr<IPrintService> service)
{
    m_print = std::move(service);
}

} // namespace tarnwick
