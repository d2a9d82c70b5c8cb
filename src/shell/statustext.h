#pragma once

#include <QLabel>
#include <QMap>

class QStatusBar;

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

/// The status bar's lasting warning that changes are not kept safe (the catalogue's recovery
/// file or the quote on screen could not be written): shown while any source has a reason,
/// which the tool tip and the accessible description give, so a hint in the first panel never
/// hides it. It is one of the status bar's panels only while it is shown: a hidden panel is
/// still read out by assistive tools, which would add "Warning" to every status text.
class UnsafeMark : public QLabel
{
    Q_OBJECT

public:
    /// A mark for bar, kept by the bar's window while it is hidden.
    explicit UnsafeMark(QStatusBar *bar);

    /// Shows the mark for source ("catalogue", "quote") with text as its reason.
    void setReason(const QString &source, const QString &text);
    /// The source is kept safe again; the mark goes when no source is left.
    void clearReason(const QString &source);

private:
    void showReasons();

    QStatusBar *m_bar;
    QMap<QString, QString> m_reasons;
};

} // namespace tarnwick
