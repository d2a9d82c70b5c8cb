#include "exchange/ui/workbookreaddialog.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace tarnwick {

namespace {

/// Gives a control of the window its name as object name and accessible description.
template <typename W> W *readDialogControl(W *widget, const char *name)
{
    widget->setObjectName(QString::fromLatin1(name));
    widget->setAccessibleDescription(QString::fromLatin1(name));
    return widget;
}

} // namespace

WorkbookReadDialog::WorkbookReadDialog(
    const WorkbookReaderOptions &options, const QString &path, QWidget *parent)
    : QDialog(parent), m_path(path), m_reader(options)
{
    readDialogControl(this, "FrmReadWorkbook");
    setWindowTitle(QStringLiteral("Tarnwick"));
    setWindowModality(Qt::ApplicationModal);
    m_file = readDialogControl(new QLabel(readingText(path), this), "LblReadFile");
    m_file->setTextFormat(Qt::PlainText); // a file's name is never markup
    m_bar = readDialogControl(new QProgressBar(this), "PrgRead");
    m_bar->setRange(0, 0);
    m_bar->setAccessibleName(m_file->text());
    m_rows = readDialogControl(new QLabel(rowsText(0), this), "LblReadRows");
    m_cancel = readDialogControl(new QPushButton(QStringLiteral("Cancel"), this), "CmdCancelRead");
    m_cancel->setDefault(true);
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(m_cancel);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_file);
    layout->addWidget(m_bar);
    layout->addWidget(m_rows);
    layout->addLayout(buttons);
    setMinimumWidth(360);

    m_showTimer.setSingleShot(true);
    m_showTimer.setInterval(ShowAfter);
    connect(&m_showTimer, &QTimer::timeout, this, [this] {
        if (m_reader.isRunning())
            show();
    });
    connect(m_cancel, &QPushButton::clicked, this, &WorkbookReadDialog::CmdCancelRead_Click);
    connect(&m_reader, &WorkbookReaderProcess::progress, this, &WorkbookReadDialog::showRows);
    connect(&m_reader, &WorkbookReaderProcess::finished, this, &WorkbookReadDialog::readFinished);
}

WorkbookReadDialog::~WorkbookReadDialog() = default;

QString WorkbookReadDialog::readingText(const QString &path)
{
    return QStringLiteral("Reading %1...").arg(QFileInfo(path).fileName());
}

QString WorkbookReadDialog::rowsText(int rows)
{
    return QStringLiteral("%1 rows read").arg(rows);
}

void WorkbookReadDialog::start()
{
    m_showTimer.start();
    m_reader.start(m_path);
}

void WorkbookReadDialog::CmdCancelRead_Click()
{
    m_reader.cancel();
}

void WorkbookReadDialog::reject()
{
    m_reader.cancel();
}

void WorkbookReadDialog::showRows(int rows)
{
    m_rows->setText(rowsText(rows));
}

void WorkbookReadDialog::readFinished()
{
    m_showTimer.stop();
    hide();
    Q_EMIT readOver(m_reader.outcome());
}

} // namespace tarnwick
