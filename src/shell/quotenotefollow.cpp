#include "shell/quotenotefollow.h"

#include "platform/appenvironment.h"
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
    // What the Quote Note window holds typed and not yet saved belongs to the quote on screen
    // too: a step that leaves that quote takes it along, and coming back brings it back.
    session.setNoteReader([this] {
        const FrmQuoteNote *window = m_documents.quoteNoteWindow();
        if (window && window->isVisible() && window->hasTyping())
            return window->typedTexts();
        return QuoteNote::readTexts(m_services.environment.appFolder());
    });
}

void QuoteNoteFollow::quoteReplaced()
{
    const std::optional<QuoteTexts> &note = m_session.noteTexts();
    if (!note)
        return;
    const QString folder = m_services.environment.appFolder();
    FrmQuoteNote *window = m_documents.quoteNoteWindow();
    if (QuoteNote::readTexts(folder) == *note) {
        // Typing left in the window went with the quote that was left (the step took it).
        if (window)
            window->dropTyping();
        return;
    }
    const FileWriteResult written = QuoteNote::saveNotes(folder, note->heading, note->ending);
    if (!written) {
        m_services.prompts.msgBox(QStringLiteral("The heading and ending that go with the quote "
                                                 "on screen could not be written: %1. Its copy "
                                                 "and its PDF show the texts Quote Note holds.")
                                      .arg(written.reason),
            MsgStyle::Exclamation, FrmQuoteNote::SaveFailedTitle);
        return;
    }
    if (window)
        window->dropTyping();
}

} // namespace tarnwick
