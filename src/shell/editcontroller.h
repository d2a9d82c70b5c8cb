#pragma once

#include <QList>
#include <QMetaObject>
#include <QObject>
#include <QPointer>
#include <QString>

class QAbstractItemView;
class QLineEdit;
class QWidget;

namespace tarnwick {

class IClipboard;

/// Edit → "Cu&t", "&Copy" and "&Paste" of the main window. They work on the control the user
/// was in before the menu took the keyboard: a text box (its selection; a box that is locked
/// only copies) or a grid (its current cell; Cut and Paste open the cell's editor, so the
/// change is stored as if it had been typed, and do nothing where the cell cannot be edited).
/// A text box drops its selection when the menu bar takes the keyboard (Alt), so the last
/// selection made in a one-line box is kept until the user types or clicks in it again.
class EditController : public QObject
{
    Q_OBJECT

public:
    EditController(IClipboard &clipboard, QWidget *window);
    ~EditController() override;

    /// Starts following the focus and the selections of the window's one-line boxes.
    void watch();
    /// Stops following them (before the window's children go).
    void stop();

    void copy();
    void cut();
    void paste();

    /// The control the commands work on.
    QWidget *activeControl() const;

    /// As it goes into a text box of several lines: only the trailing line break is dropped.
    static QString withoutTrailingLineBreak(const QString &text);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void rememberActiveControl(QWidget *now);
    void rememberSelection(QLineEdit *box);
    QString selectedTextOf(QWidget *control) const;
    /// Selects again what the user selected last in box, if the box lost it to the menu.
    void restoreSelection(QLineEdit *box) const;
    void putOnClipboard(const QString &text);
    bool cutFromBox(QWidget *control);
    bool pasteIntoBox(QWidget *control, const QString &text);
    /// Opens the editor of the grid's current cell; nullptr when it cannot be edited.
    static QLineEdit *openCellEditor(QAbstractItemView *grid);

    IClipboard &m_clipboard;
    QWidget *m_window;
    QMetaObject::Connection m_focusConnection;
    /// The one-line boxes whose selections are followed.
    QList<QPointer<QLineEdit>> m_boxes;
    QPointer<QWidget> m_activeControl;
    QPointer<QLineEdit> m_selectionOwner;
    QString m_selection;
    int m_selectionStart = -1;
};

} // namespace tarnwick
