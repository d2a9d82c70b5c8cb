// The quote in hand on paper: Save as PDF, and File → Send, which hands that PDF to the mail
// program and marks the quote as sent.
#include "shell/quotebookcontroller.h"

#include "catalogue/module1.h"
#include "platform/appservices.h"
#include "platform/ifiledialogs.h"
#include "platform/iprompts.h"
#include "quotebook/quotebookmessages.h"
#include "quotebook/quotemail.h"
#include "quotebook/quotepdf.h"
#include "quotebook/quotesession.h"
#include "quotes/quotenote.h"
#include "shell/mainwindowui.h"

#include <QDir>
#include <QLineEdit>
#include <QStandardPaths>
#include <QTemporaryDir>

namespace tarnwick {

namespace {

const QString PdfTitle = QStringLiteral("Save as PDF");
const QString SendTitle = QStringLiteral("Send Quote");
const QString PdfFilter = QStringLiteral("PDF Files (*.pdf)|*.pdf|All Files (*.*)|*.*");

} // namespace

bool QuoteBookController::writePdf(const QString &path, const QString &title)
{
    QuotePdfInput input;
    input.header = m_session->header();
    input.document.heading = input.header.heading;
    input.document.ending = input.header.ending;
    input.document.noIncludes = QuoteNote::noIncludes(m_services.settings);
    input.document.volumePrices = QuoteNote::volumePrices(m_services.settings);
    input.document.catalogue = &m_module.Catalogue();
    input.document.discountBox = m_ui.TxtDisc->text();
    input.document.totalBox = m_ui.TxtTotal->text();
    QString error;
    if (QuotePdf::write(path, m_module.QuoteTable(), input, m_module.locale(), error))
        return true;
    report(QuoteBookMessages::pdfFailed(path, error), title);
    return false;
}

bool QuoteBookController::sendsExpired(const QString &what, const QString &title)
{
    // The customer reads the validity on the PDF: an expired quote goes out only when the
    // user says so (the default keeps it back).
    const QuoteHeader &header = m_session->header();
    if (!m_today || !QuoteNumbers::hasExpired(header.validUntil, header.status, m_today()))
        return true;
    return m_services.prompts.msgBox(
               QuoteBookMessages::expiredQuestion(header, what, m_module.locale()),
               MsgStyle::YesNo | MsgStyle::Question | MsgStyle::DefaultButton2, title)
        == MsgResult::Yes;
}

void QuoteBookController::saveAsPdf()
{
    if (!ready(PdfTitle) || !ensureSaved(PdfTitle)
        || !sendsExpired(QStringLiteral("Save the PDF of"), PdfTitle))
        return;
    const QuoteHeader &header = m_session->header();
    FileDialogRequest request;
    request.title = QStringLiteral("Save Quote as PDF");
    request.filter = PdfFilter;
    request.initialFolder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    request.fileName = QStringLiteral("%1-%2.pdf").arg(header.number(), header.revisionLetter());
    const auto chosen = m_services.fileDialogs.getSaveFile(request);
    if (!chosen || chosen->path.isEmpty())
        return;
    if (writePdf(chosen->path, PdfTitle))
        status(QStringLiteral("Quote %1 saved as %2.")
                   .arg(header.numberAndRevision(), QDir::toNativeSeparators(chosen->path)));
}

void QuoteBookController::send()
{
    if (!ready(SendTitle) || !ensureSaved(SendTitle)
        || !sendsExpired(QStringLiteral("Send"), SendTitle))
        return;
    const QuoteHeader header = m_session->header();
    // The mail program reads the file after Tarnwick has handed it over, perhaps after
    // Tarnwick has ended: the folder stays. A folder for temporary files that is not there
    // (Qt then names none, which would be the working folder) or takes no new folder is said.
    const QString temporary = QDir::tempPath();
    if (temporary.isEmpty()) {
        report(QuoteBookMessages::noTemporaryFolder(
                   qEnvironmentVariable("TMPDIR"), QStringLiteral("the folder cannot be found")),
            SendTitle);
        return;
    }
    QTemporaryDir folder(QDir(temporary).filePath(QStringLiteral("tarnwick-quote-XXXXXX")));
    folder.setAutoRemove(false);
    if (!folder.isValid()) {
        report(QuoteBookMessages::noTemporaryFolder(temporary, folder.errorString()), SendTitle);
        return;
    }
    const QString path =
        folder.filePath(QStringLiteral("%1-%2.pdf").arg(header.number(), header.revisionLetter()));
    if (!writePdf(path, SendTitle)) {
        folder.remove(); // nothing in it for anyone (a full disk)
        return;
    }
    const QuoteMail mail = QuoteMailer::mailFor(header, path);
    const QuoteMailer::Way way = QuoteMailer::send(m_services.launcher, mail);
    if (way == QuoteMailer::Way::Failed) {
        report(QuoteBookMessages::noMailProgram(path), SendTitle);
        return;
    }
    if (way == QuoteMailer::Way::MailtoLink)
        m_services.prompts.msgBox(
            QuoteBookMessages::attachByHand(path), MsgStyle::Information, SendTitle);
    if (!m_session->markSent())
        report(
            QStringLiteral("The quote could not be marked as sent: %1.").arg(m_book.errorString()),
            SendTitle);
    else
        status(QStringLiteral("Quote %1 handed to the mail program and marked as sent.")
                   .arg(header.numberAndRevision()));
}

} // namespace tarnwick
