#include "shell/quotenotefollow.h"

#include "platform/appservices.h"
#include "platform/iprompts.h"
#include "quotebook/quotesession.h"
#include "quotes/quotenote.h"
#include "shell/documentscontroller.h"
#include "shell/frmquotenote.h"

namespace tarnwick {

QuoteNoteFollow::QuoteNoteFollow(const AppServices &services, QuoteSession &session,
    DocumentsController &documents, QObject *parent)
    : QObject(parent), m_services(services), m_session(session), m_documents(documents)
{
    connect(&session, &QuoteSession::replaced, this, &QuoteNoteFollow::quoteReplaced);
}

void QuoteNoteFollow::quoteReplaced()
{
    const QuoteHeader &header = m_session.header();
    if (!header.isSaved())
        return;
    const QString folder = m_services.environment.appFolder();
    if (QuoteNote::readHeading(folder) == header.heading
        && QuoteNote::readEnding(folder) == header.ending)
        return;
    const FileWriteResult written = QuoteNote::saveNotes(folder, header.heading, header.ending);
    if (!written) {
        m_services.prompts.msgBox(QStringLiteral("Quote Note could not take the heading and ending "
                                                 "quote %1 was saved with: %2. Its copy and its "
                                                 "PDF show the texts Quote Note holds.")
                                      .arg(header.numberAndRevision(), written.reason),
            MsgStyle::Exclamation, FrmQuoteNote::SaveFailedTitle);
        return;
    }
    if (FrmQuoteNote *window = m_documents.quoteNoteWindow())
        window->reloadTexts();
}

} // namespace tarnwick
