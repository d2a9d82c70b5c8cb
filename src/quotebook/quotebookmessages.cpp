#include "quotebook/quotebookmessages.h"

#include "catalogue/table.h"
#include "core/conversions.h"
#include "quotes/pricesource.h"
#include "quotes/quoteline.h"

#include <QDir>
#include <QFileInfo>

namespace tarnwick::QuoteBookMessages {

namespace {

QString native(const QString &path)
{
    return QDir::toNativeSeparators(path);
}

} // namespace

QString opened(const QuoteBook::OpenResult &result, const QString &path, const QString &lastCopy)
{
    switch (result.status) {
    case QuoteBook::OpenStatus::Opened:
    case QuoteBook::OpenStatus::Created:
        return {};
    case QuoteBook::OpenStatus::Replaced: {
        QString text =
            QStringLiteral("The quote book \"%1\" is damaged and could not be read (%2).\n\n"
                           "It has been kept as \"%3\", and a new, empty quote book has been "
                           "started.")
                .arg(native(path), result.detail, QFileInfo(result.keptAs).fileName());
        if (!lastCopy.isEmpty())
            text += QStringLiteral(" The copy made when Tarnwick was last closed is \"%1\" in "
                                   "the same folder.")
                        .arg(lastCopy);
        return text;
    }
    case QuoteBook::OpenStatus::TooNew:
        return QStringLiteral("The quote book \"%1\" was written by a later version of Tarnwick. "
                              "It has been left as it is; quotes cannot be saved or opened until "
                              "that version is used again.")
            .arg(native(path));
    case QuoteBook::OpenStatus::ReadOnly:
        return QStringLiteral("The quote book \"%1\" is in a folder that cannot be written (a "
                              "write-protected drive, a read-only share). Its quotes can be "
                              "opened, but quotes cannot be saved there and the quote on screen "
                              "is not kept for the next start.")
            .arg(native(path));
    case QuoteBook::OpenStatus::Failed:
        break;
    }
    return QStringLiteral("The quote book \"%1\" could not be opened: %2. Until it can be, quotes "
                          "cannot be saved or opened and the quote on screen is not kept for the "
                          "next start.")
        .arg(native(path), result.detail);
}

QString notKept(const QString &why)
{
    return QStringLiteral("The quote on screen could not be kept for the next start: the quote "
                          "book is not available (%1).")
        .arg(why);
}

QString notKeptInBook(const QString &why)
{
    return QStringLiteral("The quote on screen could not be kept for the next start: %1. Its "
                          "last changes are lost when Tarnwick closes; saved quotes are not "
                          "affected.")
        .arg(why);
}

QString unavailable(const QString &why)
{
    return QStringLiteral("The quote book is not available: %1.").arg(why);
}

QString otherPrices(int lines)
{
    // One sentence for every count, as the question was given ("1 lines have …" included):
    // scripts that answer it look for these words.
    return QStringLiteral("%1 lines have other prices in today's catalogue. Update them?")
        .arg(lines);
}

QString withoutProduct(const Table &quote, const QList<int> &rows, const QLocale &locale)
{
    if (rows.size() == 1) {
        return QStringLiteral("Line %1: \"%2\" is not in the catalogue; the line keeps its "
                              "price until its quantity is changed.")
            .arg(rows.first())
            .arg(conv::toText(quote.get(rows.first(), QuoteLine::PartNumber), locale));
    }
    constexpr qsizetype Named = 5;
    QStringList named;
    for (qsizetype i = 0; i < std::min(rows.size(), Named); ++i)
        named << QString::number(rows[i]);
    QString list = named.join(QStringLiteral(", "));
    if (rows.size() > Named)
        list += QStringLiteral(" and %1 more").arg(rows.size() - Named);
    return QStringLiteral("Lines %1: their part numbers are not in the catalogue; the lines keep "
                          "their prices until their quantities are changed.")
        .arg(list);
}

QString linesWithoutProduct(const Table &quote, const Table &catalogue, const QLocale &locale)
{
    const QList<int> rows = PriceSources::pricedLinesWithoutProduct(quote, catalogue, locale);
    return rows.isEmpty() ? QString() : withoutProduct(quote, rows, locale);
}

QString saveFirst(const QuoteHeader &header)
{
    if (!header.isSaved())
        return QStringLiteral("The quote on screen has not been saved. Save it first?");
    return QStringLiteral("Quote %1 has changed since it was saved. Save the changes first?")
        .arg(header.numberAndRevision());
}

QString expiredQuestion(const QuoteHeader &header, const QString &what, const QLocale &locale)
{
    return QStringLiteral("Quote %1 was valid until %2. %3 it as it is?\n\nNew Revision makes a "
                          "copy dated today, valid for another %4 days.")
        .arg(header.numberAndRevision(), locale.toString(header.validUntil, QLocale::LongFormat),
            what)
        .arg(DefaultValidDays);
}

QString sentQuestion(const QuoteHeader &header, int nextRevision)
{
    // What the customer has, or has answered, stays on record as it was.
    QString happened = QStringLiteral("has been sent to the customer");
    QString kept = QStringLiteral("sent");
    if (header.status == QuoteStatus::Accepted) {
        happened = QStringLiteral("has been accepted by the customer");
        kept = QStringLiteral("accepted");
    } else if (header.status == QuoteStatus::Declined) {
        happened = QStringLiteral("has been declined by the customer");
        kept = QStringLiteral("declined");
    }
    return QStringLiteral("Quote %1 %3. Save the changes as revision %2, keeping %1 as it was "
                          "%4?\n\nNo saves them into %1 itself.")
        .arg(
            header.numberAndRevision(), QuoteNumbers::revisionLetter(nextRevision), happened, kept);
}

QString saved(const QuoteHeader &header)
{
    const QString customer = header.customerText();
    if (customer.isEmpty())
        return QStringLiteral("Quote %1 saved.").arg(header.numberAndRevision());
    // "… for Smith & Sons Ltd.", not "Ltd..".
    const QString end = customer.endsWith(QLatin1Char('.')) ? QString() : QStringLiteral(".");
    return QStringLiteral("Quote %1 saved for %2%3").arg(header.numberAndRevision(), customer, end);
}

QString saveFailed(const QString &why)
{
    return QStringLiteral("The quote could not be saved: %1. Nothing in the quote book has "
                          "changed; the quote stays on screen.")
        .arg(why);
}

QString nothingToSave()
{
    return QStringLiteral("The quote has no lines. Add products to it first.");
}

QString emptiedQuestion(const QuoteHeader &header)
{
    return QStringLiteral("Quote %1 has no lines now. Save it without lines, in place of the "
                          "lines it was saved with?")
        .arg(header.numberAndRevision());
}

QString revisionNeedsSave()
{
    return QStringLiteral("A new revision continues a saved quote. Save the quote first.");
}

QString attachByHand(const QString &pdfPath)
{
    return QStringLiteral("The mail program opens without the attachment. Attach the quote's PDF "
                          "to the message; it is saved as \"%1\".")
        .arg(native(pdfPath));
}

QString noMailProgram(const QString &pdfPath)
{
    return QStringLiteral("No mail program could be started. The quote's PDF is saved as \"%1\"; "
                          "send it with the mail program you use.")
        .arg(native(pdfPath));
}

QString pdfFailed(const QString &path, const QString &why)
{
    return QStringLiteral("The quote could not be saved as \"%1\": %2.").arg(native(path), why);
}

QString noTemporaryFolder(const QString &folder, const QString &why)
{
    return QStringLiteral("The quote's PDF could not be written to the folder for temporary "
                          "files, \"%1\": %2. The quote was not sent; Save as PDF writes it "
                          "where you choose.")
        .arg(native(folder), why);
}

QString backupFailed(const QString &path, const QString &why)
{
    return QStringLiteral("The quote book could not be copied to \"%1\": %2. The quote book "
                          "itself is safe.")
        .arg(native(path), why);
}

QString lastCopyQuestion(
    const QString &path, const QString &backup, const QString &when, int quotes, bool bookEmpty)
{
    return QStringLiteral("The quote book \"%1\" is %6. The copy made when Tarnwick was "
                          "last closed, \"%2\", saved %3, holds %4 %5.\n\nOpen the copy? It "
                          "becomes the quote book. No starts a new quote book once a product is "
                          "added to the quote, numbered after the copy's quotes, and keeps the "
                          "copy beside it under a name of its own.")
        .arg(native(path), native(backup), when)
        .arg(quotes)
        .arg(quotes == 1 ? QStringLiteral("quote") : QStringLiteral("quotes"),
            bookEmpty ? QStringLiteral("empty") : QStringLiteral("missing"));
}

QString lastCopyNotOpened(const QString &path, const QString &backup)
{
    return QStringLiteral("The copy \"%1\" could not be copied to \"%2\". It is left as it "
                          "is; close Tarnwick and copy it there yourself to open its quotes.")
        .arg(native(backup), native(path));
}

QString newBookBesideLastCopy(const QString &keptAs)
{
    return QStringLiteral("A new quote book has been started; the copy of the earlier one is "
                          "kept as \"%1\".")
        .arg(keptAs);
}

} // namespace tarnwick::QuoteBookMessages
