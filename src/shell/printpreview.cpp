#include "shell/printpreview.h"

#include "platform/qt/windowsize.h"
#include "quotes/pageddocument.h"
#include "shell/accessiblenames.h"
#include "shell/inputhold.h"
#include "shell/printservice.h"

#include <QAction>
#include <QApplication>
#include <QFontMetricsF>
#include <QLabel>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QProgressDialog>
#include <QScreen>
#include <QScrollArea>
#include <QSpinBox>
#include <QTimer>
#include <QToolBar>
#include <QVBoxLayout>

#include <algorithm>
#include <array>

namespace tarnwick {

namespace {

constexpr std::array<qreal, 9> ZoomSteps { 0.25, 0.5, 0.75, 1.0, 1.25, 1.5, 2.0, 3.0, 4.0 };

} // namespace

PrintPreview::PrintPreview(
    QPrinter &printer, PagedDocument &document, const QString &title, QWidget *parent)
    : QDialog(parent), m_printer(printer), m_document(document), m_layoutTimer(new QTimer(this))
{
    askForPrinter = [this](QPrinter &target) {
        QPrintDialog dialog(&target, this);
        return dialog.exec() == QDialog::Accepted;
    };
    buildWindow(title);
    m_layoutTimer->setSingleShot(true);
    m_layoutTimer->setInterval(0);
    connect(m_layoutTimer, &QTimer::timeout, this, &PrintPreview::layoutSlice);
    m_document.beginLayout(PageGeometry::of(m_printer));
    showPage(0);
    if (!m_document.isLaidOut())
        m_layoutTimer->start();
}

PrintPreview::~PrintPreview() = default;

QAction *PrintPreview::addCommand(const QString &name, const QString &text, const QKeySequence &key)
{
    auto *action = new QAction(text, this);
    action->setObjectName(name);
    action->setShortcut(key);
    action->setShortcutContext(Qt::WindowShortcut);
    action->setToolTip(QString(text).remove(QLatin1Char('&')) + QLatin1String(" (")
        + key.toString(QKeySequence::NativeText) + QLatin1Char(')'));
    addAction(action);
    return action;
}

void PrintPreview::buildWindow(const QString &title)
{
    setObjectName(QStringLiteral("PrintPreview"));
    setWindowTitle(title);
    auto *bar = new QToolBar(this);
    bar->setObjectName(QStringLiteral("PreviewBar"));
    bar->setAccessibleName(tr("Preview commands"));
    bar->setToolButtonStyle(Qt::ToolButtonTextOnly);
    // Print and Close come first: a toolbar too wide for its window (a large font on a small
    // screen) puts its last commands behind an overflow button.
    bar->addAction(
        addCommand(QStringLiteral("PreviewPrint"), tr("P&rint..."), QKeySequence::Print));
    bar->addAction(addCommand(QStringLiteral("PreviewClose"), tr("&Close"), QKeySequence::Close));
    bar->addSeparator();
    bar->addAction(
        addCommand(QStringLiteral("PreviewFirst"), tr("&First Page"), QKeySequence(Qt::Key_Home)));
    bar->addAction(addCommand(
        QStringLiteral("PreviewPrevious"), tr("&Previous Page"), QKeySequence::MoveToPreviousPage));
    auto *pageLabel = new QLabel(tr("Pa&ge"), bar);
    m_pageBox = new QSpinBox(bar);
    m_pageBox->setObjectName(QStringLiteral("PreviewPage"));
    m_pageBox->setAccessibleName(tr("Page"));
    m_pageBox->setRange(1, 1);
    pageLabel->setBuddy(m_pageBox);
    m_countLabel = new QLabel(bar);
    m_countLabel->setObjectName(QStringLiteral("PreviewPageCount"));
    bar->addWidget(pageLabel);
    bar->addWidget(m_pageBox);
    bar->addWidget(m_countLabel);
    bar->addAction(
        addCommand(QStringLiteral("PreviewNext"), tr("&Next Page"), QKeySequence::MoveToNextPage));
    bar->addAction(
        addCommand(QStringLiteral("PreviewLast"), tr("&Last Page"), QKeySequence(Qt::Key_End)));
    bar->addSeparator();
    bar->addAction(
        addCommand(QStringLiteral("PreviewZoomOut"), tr("Zoom &Out"), QKeySequence::ZoomOut));
    bar->addAction(
        addCommand(QStringLiteral("PreviewZoomIn"), tr("Zoom &In"), QKeySequence::ZoomIn));

    m_pageView = new QLabel;
    m_pageView->setObjectName(QStringLiteral("PreviewPageView"));
    m_pageView->setAlignment(Qt::AlignCenter);
    m_scroll = new QScrollArea(this);
    m_scroll->setObjectName(QStringLiteral("PreviewPages"));
    m_scroll->setAccessibleName(tr("Page preview"));
    m_scroll->setBackgroundRole(QPalette::Dark);
    m_scroll->setAlignment(Qt::AlignCenter);
    m_scroll->setWidget(m_pageView);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(bar);
    layout->addWidget(m_scroll, 1);
    // A page and a half tall where the screen allows, wide enough for the toolbar (more with
    // a larger font); never larger than the screen.
    const QRect room = screen()->availableGeometry();
    const QSize wanted = WindowSize::scaled(QSize(900, 1000), QFontMetricsF(font()).height());
    const int width = std::max(wanted.width(), bar->sizeHint().width());
    resize(
        std::min(width, room.width() * 9 / 10), std::min(wanted.height(), room.height() * 9 / 10));
    // The pages have the keyboard, so Home and End go to the first and last page (the page
    // box would take them for its own cursor).
    m_scroll->setFocusPolicy(Qt::StrongFocus);
    m_scroll->setFocus();

    const auto find = [this](const char *name) {
        return findChild<QAction *>(QString::fromLatin1(name));
    };
    connect(find("PreviewFirst"), &QAction::triggered, this, [this] { showPage(0); });
    connect(find("PreviewPrevious"), &QAction::triggered, this, [this] { showPage(m_page - 1); });
    connect(find("PreviewNext"), &QAction::triggered, this, [this] { showPage(m_page + 1); });
    connect(find("PreviewLast"), &QAction::triggered, this, [this] {
        // The last page is known once the whole document is laid out.
        if (!layOutTheRest())
            return;
        updateCount();
        showPage(pageCount() - 1);
    });
    connect(find("PreviewZoomIn"), &QAction::triggered, this, [this] {
        const auto *next = std::upper_bound(ZoomSteps.begin(), ZoomSteps.end(), m_zoom);
        setZoom(next == ZoomSteps.end() ? ZoomSteps.back() : *next);
    });
    connect(find("PreviewZoomOut"), &QAction::triggered, this, [this] {
        const auto *below = std::lower_bound(ZoomSteps.begin(), ZoomSteps.end(), m_zoom);
        setZoom(below == ZoomSteps.begin() ? ZoomSteps.front() : *(below - 1));
    });
    connect(find("PreviewPrint"), &QAction::triggered, this, &PrintPreview::printAll);
    connect(find("PreviewClose"), &QAction::triggered, this, &QDialog::reject);
    connect(m_pageBox, &QSpinBox::valueChanged, this, [this](int value) {
        if (value - 1 != m_page)
            showPage(value - 1);
    });
    exposeObjectNames(this);
}

int PrintPreview::pageCount() const
{
    return m_document.pagesReady();
}

bool PrintPreview::isLaidOut() const
{
    return m_document.isLaidOut();
}

void PrintPreview::showPage(int page)
{
    page = std::max(page, 0);
    m_document.layoutThroughPage(page);
    m_page = std::min(page, std::max(pageCount() - 1, 0));
    updateCount();
    render();
}

void PrintPreview::setZoom(qreal zoom)
{
    m_zoom = std::clamp(zoom, ZoomSteps.front(), ZoomSteps.back());
    render();
}

void PrintPreview::layoutSlice()
{
    const bool done = m_document.layoutMore(SliceMilliseconds);
    updateCount();
    if (!done) {
        m_layoutTimer->start();
        return;
    }
    // A header or footer that counts the pages shows the final count now.
    render();
    Q_EMIT laidOut();
}

bool PrintPreview::layOutTheRest()
{
    if (m_document.isLaidOut())
        return true;
    // The background layout must not run inside this one.
    m_layoutTimer->stop();
    QProgressDialog progress(this);
    setUpProgressWindow(progress, QStringLiteral("LayoutProgress"), windowTitle());
    const KeysHeldBack keys(&progress);
    const CommandsHeldBack commands(QApplication::topLevelWidgets());
    const QLocale locale;
    while (!m_document.layoutMore(SliceMilliseconds)) {
        progress.setLabelText(preparingPagesText(pageCount(), locale));
        letEventsFlow(progress);
        if (progress.wasCanceled()) {
            updateCount();
            m_layoutTimer->start();
            return false;
        }
    }
    return true;
}

void PrintPreview::updateCount()
{
    const int pages = std::max(pageCount(), 1);
    const QSignalBlocker quiet(m_pageBox);
    m_pageBox->setRange(1, pages);
    m_pageBox->setValue(m_page + 1);
    // While the rest is laid out, the count is what is known so far.
    m_countLabel->setText(isLaidOut() ? tr("of %1").arg(pages) : tr("of %1 ...").arg(pages));
}

void PrintPreview::render()
{
    const int resolution = m_printer.resolution();
    const QPageLayout page = m_printer.pageLayout();
    const QRect paper = page.fullRectPixels(resolution);
    const QRect printable = page.paintRectPixels(resolution);
    // The image has the printer's resolution, so the document's fonts and measures are the
    // printer's; the painter scales the page down to the screen.
    const qreal scale = m_zoom * logicalDpiX() / resolution;
    QImage image(std::max(1, qRound(paper.width() * scale)),
        std::max(1, qRound(paper.height() * scale)), QImage::Format_ARGB32_Premultiplied);
    image.setDotsPerMeterX(qRound(resolution / 0.0254));
    image.setDotsPerMeterY(qRound(resolution / 0.0254));
    image.fill(Qt::white);
    {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setRenderHint(QPainter::TextAntialiasing);
        painter.scale(scale, scale);
        painter.translate(printable.topLeft() - paper.topLeft());
        m_document.paintPage(painter, m_page);
    }
    m_shown = image;
    m_pageView->setPixmap(QPixmap::fromImage(image));
    m_pageView->resize(image.size());
    m_pageView->setAccessibleName(tr("Page %1").arg(m_page + 1));
}

void PrintPreview::printAll()
{
    if (!askForPrinter || !askForPrinter(m_printer))
        return;
    // The layout timer must not lay the document out under the print's feet.
    m_layoutTimer->stop();
    QtPrintService::printWithProgress(m_document, m_printer, this, windowTitle());
    // The printer chosen may have another paper: the preview follows it.
    m_document.beginLayout(PageGeometry::of(m_printer));
    showPage(m_page);
    if (!m_document.isLaidOut())
        m_layoutTimer->start();
}

} // namespace tarnwick
