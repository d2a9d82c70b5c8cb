#pragma once

#include "exchange/workbookreaderprocess.h"

#include <QDialog>
#include <QString>
#include <QTimer>

class QLabel;
class QProgressBar;
class QPushButton;

namespace tarnwick {

/// The small window "Tarnwick" shown while a workbook is read in its reader process: the file,
/// a busy bar, the rows read so far and Cancel ("CmdCancelRead"), which stops the read at once.
/// It appears only when a read takes longer than ShowAfter, and is application modal then, so
/// the main window stays painted but takes no input. done() reports the end of the read; the
/// result is taken from reader().
class WorkbookReadDialog : public QDialog
{
    Q_OBJECT

public:
    /// Milliseconds of reading before the window appears.
    static constexpr int ShowAfter = 400;

    WorkbookReadDialog(
        const WorkbookReaderOptions &options, const QString &path, QWidget *parent = nullptr);
    ~WorkbookReadDialog() override;

    /// Starts the read.
    void start();
    WorkbookReaderProcess &reader() { return m_reader; }
    QPushButton *cancelButton() const { return m_cancel; }

    /// The texts of the window.
    static QString readingText(const QString &path);
    static QString rowsText(int rows);

public Q_SLOTS:
    /// Escape and the window's close button cancel like Cancel.
    void reject() override;

Q_SIGNALS:
    /// The read is over (read, unreadable or cancelled); the window is hidden.
    void readOver(WorkbookReaderProcess::Outcome outcome);

private Q_SLOTS:
    void CmdCancelRead_Click();
    void readFinished();
    void showRows(int rows);

private:
    QString m_path;
    WorkbookReaderProcess m_reader;
    QTimer m_showTimer;
    QLabel *m_file = nullptr;
    QProgressBar *m_bar = nullptr;
    QLabel *m_rows = nullptr;
    QPushButton *m_cancel = nullptr;
};

} // namespace tarnwick
