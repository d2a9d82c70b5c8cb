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
    session.setNoteReader([folder = services.environment.appFolder()] {
        return QuoteTexts { QuoteNote::readHeading(folder), QuoteNote::readEnding(folder) };
    });
}

void QuoteNoteFollow::quoteReplaced()
{
    const std::optional<QuoteTexts> &note = m_session.noteTexts();
    if (!note)
        return;
    const QString folder = m_services.environment.appFolder();
    if (QuoteNote::readHeading(folder) == note->heading
        && QuoteNote::readEnding(folder) == note->ending)
        return;
    const FileWriteResult written = QuoteNote::saveNotes(folder, note->heading, note->ending);
    if (!written) {
        m_services.prompts.msgBox(QStringLiteral("The heading and ending that go with the quote "
                                                 "on screen could not be written: %1. Its copy "
                                                 "and its PDF show the texts Quote Note holds.")
                                      .arg(written.reason),
            MsgStyle::Exclamation, FrmQuoteNote::SaveFailedTitle);
        return;
    }
    if (FrmQuoteNote *window = m_documents.quoteNoteWindow())
        window->reloadTexts();
}

} // namespace tarnwick
