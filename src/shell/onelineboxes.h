#pragma once

#include <QObject>
#include <QString>

class QLineEdit;

namespace tarnwick {

/// Keeps the one-line boxes of the program's windows on one line, however text gets in: text
/// pasted with Ctrl+V, the box's own menu or the middle button, or dropped, has the line break a
/// spreadsheet puts after a copied cell dropped and its other line breaks and tabs made blanks,
/// as Edit → Paste does (an address block pasted into "Customer:", a cell pasted into the find
/// box). Password boxes keep what comes in as it is.
class OneLineBoxes : public QObject
{
    Q_OBJECT

public:
    /// Follows every one-line box shown while it exists (it watches the application's events).
    explicit OneLineBoxes(QObject *parent = nullptr);
    ~OneLineBoxes() override;

    /// The text as a one-line box keeps it.
    static QString oneLine(const QString &text);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void follow(QLineEdit *box);
    static void keepOnOneLine(QLineEdit *box);
};

} // namespace tarnwick
