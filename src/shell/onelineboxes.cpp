#include "shell/onelineboxes.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QEvent>
#include <QLineEdit>

#include <algorithm>

namespace tarnwick {

namespace {

const char FollowedProperty[] = "tarnwickOneLine";

/// The characters that end a line somewhere: CR and LF, the vertical tab and form feed (a word
/// processor's line and page breaks), NEL, and Unicode's line and paragraph separators.
bool endsALine(QChar c)
{
    switch (c.unicode()) {
    case u'\n':
    case u'\r':
    case 0x0B:
    case 0x0C:
    case 0x85:
    case 0x2028:
    case 0x2029:
        return true;
    default:
        return false;
    }
}

bool breaksTheLine(QChar c)
{
    return endsALine(c) || c == QLatin1Char('\t');
}

/// Line breaks (CR LF counting as one) and tabs made blanks.
QString blanksForBreaks(const QString &text)
{
    QString line;
    line.reserve(text.size());
    for (qsizetype at = 0; at < text.size(); ++at) {
        const QChar c = text.at(at);
        if (c == QLatin1Char('\r') && at + 1 < text.size() && text.at(at + 1) == QLatin1Char('\n'))
            continue;
        line += breaksTheLine(c) ? QChar(QLatin1Char(' ')) : c;
    }
    return line;
}

} // namespace

OneLineBoxes::OneLineBoxes(QObject *parent) : QObject(parent)
{
    qApp->installEventFilter(this);
}

OneLineBoxes::~OneLineBoxes()
{
    qApp->removeEventFilter(this);
}

QString OneLineBoxes::oneLine(const QString &text)
{
    qsizetype end = text.size();
    while (end > 0 && endsALine(text.at(end - 1)))
        --end;
    return blanksForBreaks(text.left(end));
}

bool OneLineBoxes::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Show && watched->isWidgetType())
        follow(qobject_cast<QLineEdit *>(watched));
    return QObject::eventFilter(watched, event);
}

void OneLineBoxes::follow(QLineEdit *box)
{
    // A spin box or a list's box has its own rules for what it takes.
    if (!box || box->property(FollowedProperty).toBool()
        || qobject_cast<QAbstractSpinBox *>(box->parentWidget())
        || qobject_cast<QComboBox *>(box->parentWidget()))
        return;
    box->setProperty(FollowedProperty, true);
    connect(box, &QLineEdit::textEdited, box, [box] { keepOnOneLine(box); });
}

void OneLineBoxes::keepOnOneLine(QLineEdit *box)
{
    if (box->echoMode() != QLineEdit::Normal)
        return;
    const QString text = box->text();
    if (std::none_of(text.cbegin(), text.cend(), breaksTheLine))
        return;
    const QString line = oneLine(text);
    const int cursor =
        int(std::min(blanksForBreaks(text.left(box->cursorPosition())).size(), line.size()));
    box->setText(line);
    box->setCursorPosition(cursor);
}

} // namespace tarnwick
