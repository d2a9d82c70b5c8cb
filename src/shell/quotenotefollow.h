#pragma once

#include <QObject>

namespace tarnwick {

struct AppServices;
class DocumentsController;
class QuoteSession;

/// Quote Note holds the heading and ending of the quote on screen. When a saved quote is
/// opened, the texts it was saved with, the ones its customer has seen, become Quote Note's
/// again, so its copy and its PDF read as they did and nothing counts as changed; a new quote
/// keeps the texts as they stand. An undo or a redo of such a step gives Quote Note back the
/// texts it held with the quote it brings back, what the user had typed there included.
class QuoteNoteFollow : public QObject
{
public:
    QuoteNoteFollow(const AppServices &services, QuoteSession &session,
        DocumentsController &documents, QObject *parent);

private:
    void quoteReplaced();

    const AppServices &m_services;
    QuoteSession &m_session;
    DocumentsController &m_documents;
};

} // namespace tarnwick
