#pragma once

#include <QObject>

#include <vector>

class QShortcut;
class QWidget;

namespace tarnwick {

struct MainWindowUi;

/// F6 and Shift+F6 in the main window: the keyboard goes round its three panes, the product
/// grid, the side boxes (the product tab: list price, price schedule, includes, notes) and the
/// quote (the quote tab), the tab of the pane coming forward.
class PaneFocus : public QObject
{
    Q_OBJECT

public:
    enum class Pane { Products, Details, Quote };

    /// Adds the two keys to window, whose widgets ui holds.
    PaneFocus(MainWindowUi &ui, QWidget *window);

    /// The pane after (forward) or before from, going round.
    static Pane next(Pane from, bool forward);
    /// The pane widget lies in; the tab control's pages count as the pane they show, and
    /// anything else (the toolbar, no widget) as the product grid's.
    Pane paneOf(const QWidget *widget) const;
    /// Gives the keyboard to the next or previous pane from the one that has it.
    void move(bool forward);
    /// Gives the keyboard to pane.
    void focusPane(Pane pane);

protected:
    /// A tab's letter (Alt+O, Alt+Q) takes the keyboard to its pane, also when the tab is in
    /// front already (the tab control itself would do nothing then).
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void addProductTabLetters(QWidget *window);
    /// Takes the keyboard out of the tab page it is in, unless that page is pane's.
    void leaveTabPageFor(Pane pane);

    MainWindowUi &m_ui;
    std::vector<QShortcut *> m_productTabLetters;
};

} // namespace tarnwick
