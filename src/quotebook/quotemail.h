#pragma once

#include "quotebook/quoterecord.h"

#include <QString>
#include <QStringList>

namespace tarnwick {

class IProcessLauncher;

/// A quote on its way to the customer: the address, the subject, a short text and the PDF.
struct QuoteMail
{
    QString to;
    QString subject;
    QString body;
    QString attachment; ///< the PDF's full path
};

/// Hands a quote to the desktop's mail program: xdg-email with the PDF attached where it is
/// installed, otherwise a "mailto:" link (which cannot carry the attachment).
namespace QuoteMailer {

/// How the mail went out.
enum class Way {
    MailProgram, ///< the mail program opened with the PDF attached
    MailtoLink, ///< a "mailto:" link opened: the user attaches the PDF
    Failed, ///< neither could be started
};

/// The mail of a saved quote: to the customer's e-mail, the subject "Quote Q-2026-0001 A"
/// (with the customer's reference when there is one).
QuoteMail mailFor(const QuoteHeader &header, const QString &pdfPath);
/// xdg-email's arguments: "--utf8", the subject, the body, "--attach" and the PDF, the address.
QStringList xdgEmailArguments(const QuoteMail &mail);
/// "mailto:<address>?subject=…&body=…", every part percent-encoded.
QString mailtoUrl(const QuoteMail &mail);
/// Opens the mail program (see the namespace).
Way send(IProcessLauncher &launcher, const QuoteMail &mail);

} // namespace QuoteMailer

} // namespace tarnwick
