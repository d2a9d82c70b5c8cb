// The main window's layout rule, the splitter drag and the status-bar hints given on mouse
// movement. The arithmetic is in mainlayout.cpp; this file measures the window in twips and
// places the widgets.
#include "shell/frmmain.h"

#include "shell/gridview.h"
#include "shell/mainwindowactions.h"
#include "shell/twips.h"
#include "shell/windowsettings.h"

#include <QFrame>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QScreen>
#include <QStatusBar>
#include <QTabWidget>
#include <QToolBar>

namespace tarnwick {

namespace {

const QString QuoteHint = QStringLiteral("Right click for quote options.");

} // namespace

int frmMain::toolbarHeight() const
{
    // Before the window is shown the toolbar is not visible yet, but it will be.
    const QToolBar *toolBar = m_actions->toolBar();
    return toolBar->isVisible() || !isVisible() ? toolBar->sizeHint().height() : 0;
}

MainLayoutInput frmMain::layoutInput() const
{
    // The rule measures the window below its menu bar: toolbar, panes and status bar. What it
    // keeps free for toolbar and status bar is their real height here, so the panes fill the
    // space between them whatever the style's toolbar height.
    const double tpp = twipsPerPixel();
    const int toolbar = toolbarHeight();
    const int status = statusBar()->sizeHint().height();
    MainLayoutInput in;
    in.innerWidth = m_ui.Client->width() * tpp;
    in.innerHeight = (toolbar + m_ui.Client->height() + status) * tpp;
    in.toolbarBottom = toolbar * tpp;
    in.reservedHeight = (toolbar + status) * tpp;
    in.screenSplit = m_screenSplit;
    in.grid = m_gridRect;
    in.frame1 = m_frame1Rect;
    return in;
}

void frmMain::Form_Resize()
{
    // Painting of the tab control is held while the panes move (hiding it would take the
    // keyboard focus away from a side box being edited).
    m_ui.SSTabmain->setUpdatesEnabled(false);
    const MainLayout layout = layoutMainWindow(layoutInput());
    m_screenSplit = layout.screenSplit;
    applyPlacement(layout.grid, layout.frame1, layout.tab);
    m_ui.SSTabmain->setUpdatesEnabled(true);
}

void frmMain::applyPlacement(const TwipRect &grid, const TwipRect &frame1, const TwipRect &tab)
{
    m_gridRect = grid;
    m_frame1Rect = frame1;
    m_tabRect = tab;
    const double tpp = twipsPerPixel();
    // The rule's coordinates start above the toolbar; the panes' start below it.
    const double top = toolbarHeight() * tpp;
    const auto toClient = [&](const TwipRect &r) {
        return QRect(Twips::toPixels(r.left, tpp), Twips::toPixels(r.top - top, tpp),
            Twips::toPixels(r.width, tpp), Twips::toPixels(r.height, tpp));
    };
    m_ui.GrdMain->setGeometry(toClient(grid));
    m_ui.Frame1->setGeometry(toClient(frame1));
    // The tab control is kept inside the window, so its right edge is never cut off.
    QRect tabRect = toClient(tab);
    tabRect.setRight(qMin(tabRect.right(), m_ui.Client->width() - 1));
    m_ui.SSTabmain->setGeometry(tabRect);
}

void frmMain::resizeEvent(QResizeEvent *event)
{
    QMainWindow::resizeEvent(event);
    Form_Resize();
    keepFrameOnScreen();
}

void frmMain::moveEvent(QMoveEvent *event)
{
    QMainWindow::moveEvent(event);
    keepFrameOnScreen();
}

void frmMain::keepFrameOnScreen()
{
    // Once, as soon as the desktop has framed the window just opened (at the show, or when it
    // moves the window into its frame a moment later): its place and size were
    // worked out for the inner area, and the title bar would push the status bar (where the
    // program says what it did) below the screen or behind the taskbar.
    if (!m_fitFramePending || !isVisible() || !screen()
        || (windowState() & (Qt::WindowMaximized | Qt::WindowFullScreen)))
        return;
    const QRect inner = geometry();
    const QRect outer = frameGeometry();
    if (outer == inner)
        return; // no frame yet, or none at all
    m_fitFramePending = false;
    const QMargins frame(inner.left() - outer.left(), inner.top() - outer.top(),
        outer.right() - inner.right(), outer.bottom() - inner.bottom());
    const QRect fitted = fitFrameOnScreen(inner, frame, screen()->availableGeometry());
    if (fitted.size() != inner.size())
        resize(fitted.size());
    if (fitted.topLeft() != inner.topLeft())
        move(fitted.topLeft() - QPoint(frame.left(), frame.top()));
    followFittedPlacement(m_startStored, m_startApplied, currentSettings());
}

void frmMain::Frame1_MouseDown(Qt::MouseButton Button)
{
    if (Button == Qt::LeftButton)
        m_dragging = true;
}

void frmMain::Frame1_MouseMove(int X)
{
    if (!m_dragging)
        return;
    m_ui.SSTabmain->hide();
    const double tpp = twipsPerPixel();
    const auto drag =
        dragSplitter(X * tpp, m_ui.Client->width() * tpp, m_gridRect, m_frame1Rect, m_tabRect);
    if (!drag)
        return;
    m_screenSplit = drag->screenSplit;
    applyPlacement(drag->grid, drag->frame1, drag->tab);
}

void frmMain::Frame1_MouseUp()
{
    m_dragging = false;
    m_ui.SSTabmain->show();
    Form_Resize();
}

void frmMain::Form_MouseMove()
{
    if (!isMinimized())
        m_ui.sbPanel1->clear();
}

void frmMain::FraQuote_MouseMove()
{
    m_ui.sbPanel1->setText(QuoteHint);
}

void frmMain::FraQuote_MouseDown(Qt::MouseButton Button, const QPoint &globalPosition)
{
    // A press that the quote grid let through (its corner button ignores right clicks) is
    // not a click on the frame.
    const QWidget *under = m_ui.FraQuote->childAt(m_ui.FraQuote->mapFromGlobal(globalPosition));
    if (under && (under == m_ui.GrdQuote || m_ui.GrdQuote->isAncestorOf(under)))
        return;
    if (Button == Qt::RightButton)
        m_actions->mnuQuote()->popup(globalPosition);
}

void frmMain::tbToolBar_MouseMove()
{
    m_ui.sbPanel1->clear();
}

bool frmMain::eventFilter(QObject *watched, QEvent *event)
{
    const QEvent::Type type = event->type();
    const bool isMouse = type == QEvent::MouseButtonPress || type == QEvent::MouseMove
        || type == QEvent::MouseButtonRelease;
    // Only a mouse event is read as one.
    const auto *mouse = isMouse ? static_cast<QMouseEvent *>(event) : nullptr;
    if (watched == m_ui.Client && type == QEvent::Resize) {
        Form_Resize();
    } else if (watched == m_ui.Frame1 && type == QEvent::MouseButtonPress) {
        Frame1_MouseDown(mouse->button());
    } else if (watched == m_ui.Frame1 && type == QEvent::MouseMove) {
        Frame1_MouseMove(mouse->position().toPoint().x());
    } else if (watched == m_ui.Frame1 && type == QEvent::MouseButtonRelease) {
        Frame1_MouseUp();
    } else if (type == QEvent::MouseMove) {
        if (watched == m_ui.Client)
            Form_MouseMove();
        else if (watched == m_ui.FraQuote)
            FraQuote_MouseMove();
        else if (watched == m_actions->toolBar() || watched->parent() == m_actions->toolBar())
            tbToolBar_MouseMove();
    } else if (watched == m_ui.FraQuote && type == QEvent::MouseButtonPress) {
        FraQuote_MouseDown(mouse->button(), mouse->globalPosition().toPoint());
    }
    return QMainWindow::eventFilter(watched, event);
}

} // namespace tarnwick
