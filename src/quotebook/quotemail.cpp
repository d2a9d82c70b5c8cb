#include "quotebook/quotemail.h"

#include "platform/iprocesslauncher.h"

#include <QUrl>

namespace tarnwick::QuoteMailer {

QuoteMail mailFor(const QuoteHeader &header, const QString &pdfPath)
{
    QuoteMail mail;
    mail.to = header.customer.email.trimmed();
    mail.subject = QStringLiteral("Quote ") + header.numberAndRevision();
    if (!header.customer.reference.trimmed().isEmpty())
        mail.subject +=
            QStringLiteral(" (your reference: %1)").arg(header.customer.reference.trimmed());
    mail.body =
        QStringLiteral("Please find our quote %1 attached.").arg(header.numberAndRevision());
    mail.attachment = pdfPath;
    return mail;
}

QStringList xdgEmailArguments(const QuoteMail &mail)
{
    QStringList arguments { QStringLiteral("--utf8"), QStringLiteral("--subject"), mail.subject,
        QStringLiteral("--body"), mail.body, QStringLiteral("--attach"), mail.attachment };
    if (!mail.to.isEmpty())
        arguments << mail.to;
    return arguments;
}

QString mailtoUrl(const QuoteMail &mail)
{
    const auto encoded = [](const QString &text, const QByteArray &keep = QByteArray()) {
        return QString::fromLatin1(QUrl::toPercentEncoding(text, keep));
    };
    return QStringLiteral("mailto:%1?subject=%2&body=%3")
        .arg(encoded(mail.to, "@"), encoded(mail.subject), encoded(mail.body));
}

Way send(IProcessLauncher &launcher, const QuoteMail &mail)
{
    const QString program = launcher.findProgram(QStringLiteral("xdg-email"));
    if (!program.isEmpty() && launcher.startShown(program, xdgEmailArguments(mail)))
        return Way::MailProgram;
    if (launcher.openUrl(mailtoUrl(mail)))
        return Way::MailtoLink;
    return Way::Failed;
}

} // namespace tarnwick::QuoteMailer
