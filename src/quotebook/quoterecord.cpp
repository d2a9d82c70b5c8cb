#include "quotebook/quoterecord.h"

#include <QRegularExpression>

#include <array>

namespace tarnwick {

namespace {

struct StatusName
{
    QuoteStatus status;
    const char *name;
};

constexpr std::array<StatusName, 4> StatusNames { {
    { QuoteStatus::Draft, "draft" },
    { QuoteStatus::Sent, "sent" },
    { QuoteStatus::Accepted, "accepted" },
    { QuoteStatus::Declined, "declined" },
} };

} // namespace

namespace QuoteStatuses {

QString name(QuoteStatus status)
{
    for (const StatusName &entry : StatusNames) {
        if (entry.status == status)
            return QString::fromLatin1(entry.name);
    }
    return QStringLiteral("draft");
}

std::optional<QuoteStatus> fromName(const QString &name)
{
    for (const StatusName &entry : StatusNames) {
        if (name == QLatin1String(entry.name))
            return entry.status;
    }
    return std::nullopt;
}

const std::vector<QuoteStatus> &all()
{
    static const std::vector<QuoteStatus> statuses { QuoteStatus::Draft, QuoteStatus::Sent,
        QuoteStatus::Accepted, QuoteStatus::Declined };
    return statuses;
}

} // namespace QuoteStatuses

namespace QuoteNumbers {

QString customerText(const QString &name, const QString &company)
{
    QString who = name.trimmed();
    QString firm = company.trimmed();
    if (who.isEmpty())
        return firm;
    if (firm.isEmpty() || firm == who)
        return who;
    return who + QLatin1String(", ") + firm;
}

QString number(int year, int sequence)
{
    return QStringLiteral("Q-%1-%2").arg(year).arg(sequence, 4, 10, QLatin1Char('0'));
}

/// Revisions count like spreadsheet columns: A … Z, then AA, AB …
QString revisionLetter(int revision)
{
    QString letters;
    for (int n = qMax(revision, 0) + 1; n > 0; n = (n - 1) / 26)
        letters.prepend(QChar(u'A' + (n - 1) % 26));
    return letters;
}

std::optional<int> revisionOf(const QString &letters)
{
    if (letters.isEmpty() || letters.size() > 3)
        return std::nullopt;
    int index = 0;
    for (const QChar letter : letters.toUpper()) {
        if (letter < u'A' || letter > u'Z')
            return std::nullopt;
        index = index * 26 + (letter.unicode() - u'A' + 1);
    }
    return index - 1;
}

bool hasExpired(const QDate &validUntil, QuoteStatus status, const QDate &today)
{
    return validUntil.isValid() && today.isValid() && validUntil < today
        && (status == QuoteStatus::Draft || status == QuoteStatus::Sent);
}

} // namespace QuoteNumbers

CustomerDetails CustomerDetails::trimmed() const
{
    return { customer.trimmed(), company.trimmed(), email.trimmed(), reference.trimmed() };
}

/// A quote is for someone: a name or a company. An e-mail address, when given, has one "@"
/// with something on either side and no blanks.
QString CustomerDetails::problem() const
{
    const CustomerDetails details = trimmed();
    if (details.customer.isEmpty() && details.company.isEmpty())
        return QStringLiteral("Enter the customer's name or company.");
    static const QRegularExpression address(QStringLiteral("^[^@\\s]+@[^@\\s]+$"));
    if (!details.email.isEmpty() && !address.match(details.email).hasMatch())
        return QStringLiteral("\"%1\" is not an e-mail address.").arg(details.email);
    return {};
}

QString QuoteHeader::number() const
{
    return isSaved() ? QuoteNumbers::number(year, sequence) : QString();
}

QString QuoteHeader::revisionLetter() const
{
    return QuoteNumbers::revisionLetter(revision);
}

QString QuoteHeader::numberAndRevision() const
{
    return isSaved() ? number() + QLatin1Char(' ') + revisionLetter() : QString();
}

QString QuoteHeader::customerText() const
{
    return QuoteNumbers::customerText(customer.customer, customer.company);
}

QString QuoteSummary::number() const
{
    return QuoteNumbers::number(year, sequence);
}

QString QuoteSummary::revisionLetter() const
{
    return QuoteNumbers::revisionLetter(revision);
}

QString QuoteSummary::customerText() const
{
    return QuoteNumbers::customerText(customer, company);
}

} // namespace tarnwick
