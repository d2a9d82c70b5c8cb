#pragma once

#include <QLabel>

namespace tarnwick {

/// The status bar's first panel: a line of plain text that, when the panel is too narrow for
/// it, ends in "…" instead of being cut in the middle of a word, and shows the whole of it as
/// its tool tip (unless a tool tip of its own was given).
class StatusText : public QLabel
{
    Q_OBJECT

public:
    explicit StatusText(QWidget *parent = nullptr);

    /// The text as the panel shows it at its present width.
    QString shownText() const;
    /// Empties the panel when it still shows message, which no longer holds ("Catalogue saved"
    /// once the catalogue changes); another message shown since stays.
    void takeBack(const QString &message);

protected:
    void paintEvent(QPaintEvent *event) override;
    bool event(QEvent *event) override;
};

} // namespace tarnwick
