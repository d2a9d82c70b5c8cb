#include "shell/panefocus.h"

#include "shell/gridview.h"
#include "shell/mainwindowui.h"

#include <QApplication>
#include <QLineEdit>
#include <QShortcut>
#include <QTabWidget>

namespace tarnwick {

namespace {
constexpr int ProductTab = 0;
constexpr int QuoteTab = 1;
} // namespace

PaneFocus::PaneFocus(MainWindowUi &ui, QWidget *window) : QObject(window), m_ui(ui)
{
    auto *forward = new QShortcut(QKeySequence(Qt::Key_F6), window);
    forward->setObjectName(QStringLiteral("keyNextPane"));
    auto *backward = new QShortcut(QKeySequence(Qt::SHIFT | Qt::Key_F6), window);
    backward->setObjectName(QStringLiteral("keyPreviousPane"));
    connect(forward, &QShortcut::activated, this, [this] { move(true); });
    connect(backward, &QShortcut::activated, this, [this] { move(false); });
    // A tab brought forward by its letter (Alt+Q, Alt+O) or a click takes the keyboard with
    // it: typing meant for the quote must not go into the product grid's current cell.
    connect(m_ui.SSTabmain, &QTabWidget::currentChanged, this, [this, window](int index) {
        QWidget *focus = QApplication::focusWidget();
        const QWidget *page = m_ui.SSTabmain->widget(index);
        if (!focus || !window->isAncestorOf(focus) || !page || page->isAncestorOf(focus))
            return;
        focusPane(index == QuoteTab ? Pane::Quote : Pane::Details);
    });
}

PaneFocus::Pane PaneFocus::next(Pane from, bool forward)
{
    constexpr int Count = 3;
    return Pane((int(from) + (forward ? 1 : Count - 1)) % Count);
}

PaneFocus::Pane PaneFocus::paneOf(const QWidget *widget) const
{
    const auto within = [widget](const QWidget *pane) {
        return widget && pane && (widget == pane || pane->isAncestorOf(widget));
    };
    if (!within(m_ui.SSTabmain))
        return Pane::Products;
    return m_ui.SSTabmain->currentIndex() == QuoteTab ? Pane::Quote : Pane::Details;
}

void PaneFocus::move(bool forward)
{
    focusPane(next(paneOf(QApplication::focusWidget()), forward));
}

void PaneFocus::focusPane(Pane pane)
{
    switch (pane) {
    case Pane::Products:
        m_ui.GrdMain->setFocus(Qt::ShortcutFocusReason);
        break;
    case Pane::Details:
        m_ui.SSTabmain->setCurrentIndex(ProductTab);
        m_ui.TxtPrice->setFocus(Qt::ShortcutFocusReason);
        break;
    case Pane::Quote:
        m_ui.SSTabmain->setCurrentIndex(QuoteTab);
        m_ui.GrdQuote->setFocus(Qt::ShortcutFocusReason);
        break;
    }
}

} // namespace tarnwick
