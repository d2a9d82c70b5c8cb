#pragma once

#include "quotebook/quotebook.h"

#include <QList>
#include <QLocale>
#include <QString>

namespace tarnwick {

struct QuoteHeader;
class Table;

/// The texts the quote book's commands show, in one place so that tests assert them exactly.
namespace QuoteBookMessages {

/// What start-up says about the book it opened: nothing for a sound or a new book; the damage
/// (where the file was kept, and lastCopy, the file name of the copy made at the last close,
/// when there is one), a book of a later version, or why there is no book.
QString opened(const QuoteBook::OpenResult &result, const QString &path, const QString &lastCopy);
/// At close, when the quote on screen had no book to be kept in.
QString notKept(const QString &why);
/// At close, when the book is there but would not take the quote on screen.
QString notKeptInBook(const QString &why);
/// "The quote book is not available: <why>."
QString unavailable(const QString &why);

/// "3 lines have other prices in today's catalogue. Update them?", the same words for one line.
QString otherPrices(int lines);
/// After "Quote … opened." and at the start: the lines (rows, 1-based, at least one) whose part
/// numbers today's catalogue does not hold (a product deleted since, or a line that was never
/// one, such as freight), which keep their prices until a quantity typed there prices them from
/// the catalogue (at 0).
QString withoutProduct(const Table &quote, const QList<int> &rows, const QLocale &locale);
/// The same for the lines of quote that PriceSources::pricedLinesWithoutProduct finds in
/// catalogue; empty when there are none.
QString linesWithoutProduct(const Table &quote, const Table &catalogue, const QLocale &locale);
/// Before the quote in hand is replaced (New, Open Quote): the question to save it first.
QString saveFirst(const QuoteHeader &header);
/// A quote past its last valid day about to go to the customer: send (or write as PDF) it as it
/// is? what is "Send" or "Save the PDF of".
QString expiredQuestion(const QuoteHeader &header, const QString &what, const QLocale &locale);
/// A quote sent, accepted or declined that is saved again: make it the next revision,
/// nextRevision (the one after the highest of its number, which need not be the one after
/// header's)?
QString sentQuestion(const QuoteHeader &header, int nextRevision);
/// "Quote Q-2026-0001 A saved for ACME Plumbing."
QString saved(const QuoteHeader &header);
/// Saving failed: "The quote could not be saved: <why>. Nothing in the quote book changed."
QString saveFailed(const QString &why);
QString nothingToSave();
/// Before a saved quote whose lines were all removed is saved: "Quote <n> has no lines now…".
QString emptiedQuestion(const QuoteHeader &header);
QString revisionNeedsSave();
/// The mail program could take no attachment: attach the file by hand.
QString attachByHand(const QString &pdfPath);
/// No mail program could be started.
QString noMailProgram(const QString &pdfPath);
QString pdfFailed(const QString &path, const QString &why);
/// Send could not make the folder its PDF is written to, in folder (the one for temporary
/// files), for the reason why.
QString noTemporaryFolder(const QString &folder, const QString &why);
QString backupFailed(const QString &path, const QString &why);
/// The question at the start when the book at path is missing (or an empty file: bookEmpty)
/// and the copy of its last close (backup, saved when) holds quotes.
QString lastCopyQuestion(const QString &path, const QString &backup, const QString &when,
    int quotes, bool bookEmpty = false);
/// Why that copy could not be opened in the book's place.
QString lastCopyNotOpened(const QString &path, const QString &backup);
/// A new book started beside the copy of an earlier one, which was moved aside as keptAs (the
/// copy's own name when it could not move: then it is left as it is).
QString newBookBesideLastCopy(const QString &keptAs);

} // namespace QuoteBookMessages

} // namespace tarnwick
