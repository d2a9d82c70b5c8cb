#include "shell/statustext.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStatusBar>
#include <QStyle>
#include <QToolTip>

namespace tarnwick {

StatusText::StatusText(QWidget *parent) : QLabel(parent)
{
    // The status shows customers' names, part numbers and paths: never as markup.
    setTextFormat(Qt::PlainText);
}

QString StatusText::shownText() const
{
    // One line: a line break in a message reads as a blank here.
    QString line = text();
    line.replace(QLatin1Char('\n'), QLatin1Char(' '));
    return fontMetrics().elidedText(line, Qt::ElideRight, contentsRect().width());
}

void StatusText::takeBack(const QString &message)
{
    if (!message.isEmpty() && text() == message)
        clear();
}

void StatusText::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    style()->drawItemText(&painter, contentsRect(),
        int(QStyle::visualAlignment(layoutDirection(), alignment())), palette(), isEnabled(),
        shownText(), foregroundRole());
}

bool StatusText::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty()) {
        const auto *help = static_cast<QHelpEvent *>(event);
        if (shownText() != text())
            QToolTip::showText(help->globalPos(), text(), this);
        else
            QToolTip::hideText();
        return true;
    }
    return QLabel::event(event);
}

UnsafeMark::UnsafeMark(QStatusBar *bar)
    : QLabel(tr("Changes not kept safe"), bar->parentWidget()), m_bar(bar)
{
    setStyleSheet(QStringLiteral("font-weight: bold"));
    hide();
}

void UnsafeMark::setReason(const QString &source, const QString &text)
{
    m_reasons.insert(source, text);
    showReasons();
}

void UnsafeMark::clearReason(const QString &source)
{
    if (m_reasons.remove(source) > 0)
        showReasons();
}

void UnsafeMark::showReasons()
{
    const QString reasons = QStringList(m_reasons.values()).join(QLatin1Char('\n'));
    setToolTip(reasons);
    setAccessibleDescription(reasons);
    const bool shown = !m_reasons.isEmpty();
    if (shown && parentWidget() != m_bar) {
        m_bar->addPermanentWidget(this);
    } else if (!shown && parentWidget() == m_bar) {
        m_bar->removeWidget(this);
        setParent(m_bar->parentWidget());
    }
    setVisible(shown);
}

} // namespace tarnwick
