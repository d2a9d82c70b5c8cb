#pragma once

#include <QObject>

namespace tarnwick {

struct AppServices;
class DocumentsController;
class QuoteSession;

/// Quote Note holds the heading and ending of the quote on screen. When another saved quote
/// comes on screen (opened, or brought back by an undo or a redo), the texts it was saved
/// with, the ones its customer has seen, become Quote Note's again, so its copy and its PDF
/// read as they did and nothing counts as changed. A new quote keeps the texts as they stand.
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
