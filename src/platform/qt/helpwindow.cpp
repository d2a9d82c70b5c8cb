#include "platform/qt/helpwindow.h"

#include "help/helpmanual.h"
#include "help/helprequest.h"
#include "platform/qt/currentitem.h"
#include "platform/qt/windowsize.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFontMetricsF>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QSplitter>
#include <QStyle>
#include <QTabWidget>
#include <QTextBrowser>
#include <QToolBar>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace tarnwick {

namespace {

/// The entry the program moves to while the keyboard is elsewhere (the keyword box above the
/// index, the page shown for the contents) is announced to assistive tools only when the list
/// itself has the keyboard: Qt's own lists announce every current entry, so a screen reader
/// read out the index entries while the user typed in the box.
template <typename List> class QuietList : public List
{
public:
    using List::List;

protected:
    void currentChanged(const QModelIndex &current, const QModelIndex &previous) override
    {
        if (this->hasFocus()) {
            List::currentChanged(current, previous);
            return;
        }
        // NOLINTNEXTLINE(bugprone-parent-virtual-call): the list's own only adds the announcement
        QAbstractItemView::currentChanged(current, previous);
    }
    void focusInEvent(QFocusEvent *event) override
    {
        List::focusInEvent(event);
        announceCurrentItem(this);
    }
};

} // namespace

namespace {

constexpr int FileRole = Qt::UserRole;

void name(QWidget *widget, const QString &objectName, const QString &accessibleName)
{
    widget->setObjectName(objectName);
    widget->setAccessibleName(accessibleName);
}

} // namespace

HelpWindow::HelpWindow(const HelpManual &manual, QWidget *parent)
    : QWidget(parent, Qt::Window), m_manual(manual)
{
    setObjectName(QStringLiteral("frmHelp"));
    setWindowTitle(tr("Tarnwick Help"));
    auto *layout = new QVBoxLayout(this);
    auto *bar = new QWidget(this);
    layout->addWidget(bar);
    auto *splitter = new QSplitter(this);
    layout->addWidget(splitter, 1);
    m_tabs = new QTabWidget(splitter);
    name(m_tabs, QStringLiteral("tabHelpNavigation"), tr("Help navigation"));
    m_tabs->addTab(createContentsPage(), tr("&Contents"));
    m_tabs->addTab(createIndexPage(), tr("&Index"));
    m_tabs->addTab(createSearchPage(), tr("&Search"));
    // A tab chosen by its letter (Alt+I, Alt+S) or a click takes the keyboard to its box, so
    // the word typed next goes there.
    connect(m_tabs, &QTabWidget::currentChanged, this, [this](int index) {
        QWidget *box = index == 1 ? static_cast<QWidget *>(m_indexBox)
            : index == 2          ? static_cast<QWidget *>(m_searchBox)
                                  : static_cast<QWidget *>(m_contents);
        box->setFocus();
    });
    m_browser = new QTextBrowser(splitter);
    name(m_browser, QStringLiteral("txtHelpTopic"), tr("Help topic"));
    m_browser->setOpenExternalLinks(false);
    m_browser->setSearchPaths({ m_manual.folder() });
    splitter->addWidget(m_browser);
    splitter->setStretchFactor(1, 1);
    // The topic pane holds the manual's pictures (620 pixels wide) without scrolling sideways.
    splitter->setSizes({ 300, 700 });
    m_browser->document()->setDocumentMargin(12);
    createToolBar(bar);
    connect(m_browser, &QTextBrowser::sourceChanged, this, &HelpWindow::topicChanged);
    // Escape puts the help away, as it closes a dialog.
    auto *hide = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(hide, &QShortcut::activated, this, &QWidget::close);
    m_indexBox->installEventFilter(this);
    m_searchBox->installEventFilter(this);
    // Bounded by the screen when first shown.
    resize(WindowSize::scaled(QSize(1000, 680), QFontMetricsF(font()).height()));
}

QWidget *HelpWindow::createContentsPage()
{
    m_contents = new QuietList<QTreeWidget>;
    name(m_contents, QStringLiteral("treeHelpContents"), tr("Contents"));
    m_contents->setHeaderHidden(true);
    QList<QTreeWidgetItem *> parents;
    for (const HelpTopic &topic : m_manual.topics()) {
        parents.resize(qMin(parents.size(), qsizetype(topic.level)));
        auto *item = parents.isEmpty() ? new QTreeWidgetItem(m_contents)
                                       : new QTreeWidgetItem(parents.last());
        item->setText(0, topic.title);
        item->setToolTip(0, topic.title);
        item->setData(0, FileRole, topic.file);
        parents.append(item);
    }
    m_contents->expandAll();
    connect(m_contents, &QTreeWidget::itemActivated, this,
        [this](QTreeWidgetItem *item) { openItemTopic(item->data(0, FileRole).toString()); });
    connect(m_contents, &QTreeWidget::itemClicked, this,
        [this](QTreeWidgetItem *item) { openItemTopic(item->data(0, FileRole).toString()); });
    // The arrow keys open the topic they move to: the page never stays on another one than
    // the contents show as chosen.
    connect(m_contents, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem *item) {
        if (item && m_contents->hasFocus())
            openItemTopic(item->data(0, FileRole).toString());
    });
    return m_contents;
}

QWidget *HelpWindow::createIndexPage()
{
    auto *page = new QWidget;
    auto *layout = new QVBoxLayout(page);
    auto *label = new QLabel(tr("&Type a keyword:"), page);
    m_indexBox = new QLineEdit(page);
    name(m_indexBox, QStringLiteral("txtHelpIndex"), tr("Index keyword"));
    label->setBuddy(m_indexBox);
    m_index = new QuietList<QListWidget>(page);
    name(m_index, QStringLiteral("lstHelpIndex"), tr("Index"));
    layout->addWidget(label);
    layout->addWidget(m_indexBox);
    layout->addWidget(m_index, 1);
    fillIndex(QString());
    connect(m_indexBox, &QLineEdit::textChanged, this, &HelpWindow::fillIndex);
    connect(m_indexBox, &QLineEdit::returnPressed, this, [this] {
        if (QListWidgetItem *item = m_index->currentItem())
            openItemTopic(item->data(FileRole).toString());
    });
    connect(m_index, &QListWidget::itemActivated, this,
        [this](QListWidgetItem *item) { openItemTopic(item->data(FileRole).toString()); });
    connect(m_index, &QListWidget::itemClicked, this,
        [this](QListWidgetItem *item) { openItemTopic(item->data(FileRole).toString()); });
    return page;
}

QWidget *HelpWindow::createSearchPage()
{
    auto *page = new QWidget;
    auto *layout = new QVBoxLayout(page);
    auto *label = new QLabel(tr("&Words to find:"), page);
    m_searchBox = new QLineEdit(page);
    name(m_searchBox, QStringLiteral("txtHelpSearch"), tr("Words to find"));
    label->setBuddy(m_searchBox);
    auto *find = new QPushButton(tr("&Find"), page);
    name(find, QStringLiteral("cmdHelpFind"), tr("Find"));
    auto *row = new QHBoxLayout;
    row->addWidget(m_searchBox, 1);
    row->addWidget(find);
    m_searchStatus = new QLabel(page);
    m_searchStatus->setTextFormat(Qt::PlainText); // it repeats the words typed
    m_searchStatus->setWordWrap(true);
    m_results = new QuietList<QListWidget>(page);
    name(m_results, QStringLiteral("lstHelpSearchResults"), tr("Pages found"));
    layout->addWidget(label);
    layout->addLayout(row);
    layout->addWidget(m_searchStatus);
    layout->addWidget(m_results, 1);
    connect(find, &QPushButton::clicked, this, [this] { search(m_searchBox->text()); });
    connect(m_searchBox, &QLineEdit::returnPressed, this, [this] { search(m_searchBox->text()); });
    connect(m_results, &QListWidget::itemActivated, this,
        [this](QListWidgetItem *item) { openItemTopic(item->data(FileRole).toString()); });
    connect(m_results, &QListWidget::itemClicked, this,
        [this](QListWidgetItem *item) { openItemTopic(item->data(FileRole).toString()); });
    return page;
}

void HelpWindow::createToolBar(QWidget *bar)
{
    auto *layout = new QHBoxLayout(bar);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *tools = new QToolBar(bar);
    tools->setObjectName(QStringLiteral("tbHelp"));
    tools->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    layout->addWidget(tools);
    m_back = tools->addAction(style()->standardIcon(QStyle::SP_ArrowBack), tr("&Back"));
    m_back->setShortcut(QKeySequence::Back);
    m_back->setToolTip(tr("Back (Alt+Left)"));
    m_back->setEnabled(false);
    m_forward = tools->addAction(style()->standardIcon(QStyle::SP_ArrowForward), tr("&Forward"));
    m_forward->setShortcut(QKeySequence::Forward);
    m_forward->setToolTip(tr("Forward (Alt+Right)"));
    m_forward->setEnabled(false);
    QAction *home =
        tools->addAction(style()->standardIcon(QStyle::SP_DirHomeIcon), tr("C&ontents"));
    home->setToolTip(tr("The first page and the contents"));
    connect(m_back, &QAction::triggered, m_browser, &QTextBrowser::backward);
    connect(m_forward, &QAction::triggered, m_browser, &QTextBrowser::forward);
    connect(home, &QAction::triggered, this, &HelpWindow::showContents);
    connect(m_browser, &QTextBrowser::backwardAvailable, m_back, &QAction::setEnabled);
    connect(m_browser, &QTextBrowser::forwardAvailable, m_forward, &QAction::setEnabled);
}

QUrl HelpWindow::urlOf(const QString &file) const
{
    const QString folder = m_manual.folder();
    if (folder.startsWith(QLatin1Char(':')))
        return QUrl(QStringLiteral("qrc") + folder + QLatin1Char('/') + file);
    return QUrl::fromLocalFile(QDir(folder).filePath(file));
}

void HelpWindow::showRequest(const HelpRequest &request)
{
    const std::optional<QString> page =
        request.context ? m_manual.topicForContext(*request.context) : std::nullopt;
    if (request.wantsSearch())
        showSearch();
    else if (page)
        showTopic(*page);
    else
        showContents();
    if (!isVisible() && !m_placed) {
        // First shown over the window the user works in (on a large screen the desktop would
        // put it in a corner, far from it); later where the user left it. With a large font
        // the first size can be more than a small screen holds; the desktop's frame and title
        // bar need their room too.
        const QWidget *active = QApplication::activeWindow();
        if (const QScreen *screen = active ? active->screen() : this->screen()) {
            const QRect room = screen->availableGeometry();
            resize(size().expandedTo(minimumSizeHint()).boundedTo(room.size() * 0.95));
            QRect placed(QPoint(), size());
            placed.moveCenter(active ? active->frameGeometry().center() : room.center());
            // The desktop's frame is not known before the window is shown: its title bar is
            // given about two lines of room.
            const int titleBar = 2 * fontMetrics().height();
            placed.moveLeft(qBound(room.left(), placed.left(), room.right() - placed.width()));
            placed.moveTop(
                qBound(room.top(), placed.top(), room.bottom() - placed.height() - titleBar));
            move(placed.topLeft());
        }
        m_placed = true;
    }
    showNormal();
    raise();
    activateWindow();
}

bool HelpWindow::showTopic(const QString &file)
{
    if (!m_manual.topic(file))
        return false;
    m_browser->setSource(urlOf(file));
    return true;
}

void HelpWindow::showContents()
{
    m_tabs->setCurrentIndex(0);
    showTopic(m_manual.homeTopic());
    m_contents->setFocus();
}

void HelpWindow::showIndex()
{
    m_tabs->setCurrentIndex(1);
    m_indexBox->setFocus();
}

void HelpWindow::showSearch()
{
    m_tabs->setCurrentIndex(2);
    if (currentTopic().isEmpty())
        showTopic(m_manual.homeTopic());
    m_searchBox->setFocus();
    m_searchBox->selectAll();
}

void HelpWindow::search(const QString &query)
{
    m_results->clear();
    const QList<SearchHit> hits = m_manual.search(query);
    for (const SearchHit &hit : hits) {
        auto *item = new QListWidgetItem(hit.title, m_results);
        item->setToolTip(hit.title);
        item->setData(FileRole, hit.file);
    }
    if (hits.isEmpty()) {
        m_searchStatus->setText(tr("No page contains all of these words."));
        return;
    }
    m_searchStatus->setText(
        hits.size() == 1 ? tr("1 page found.") : tr("%1 pages found.").arg(hits.size()));
    // The best match is shown at once; Down moves from the words into the list.
    m_results->setCurrentRow(0);
    openItemTopic(hits.first().file);
}

void HelpWindow::fillIndex(const QString &filter)
{
    m_index->clear();
    for (const HelpIndexEntry &entry : m_manual.index()) {
        if (!entry.keyword.startsWith(filter.trimmed(), Qt::CaseInsensitive))
            continue;
        auto *item = new QListWidgetItem(entry.label, m_index);
        item->setData(FileRole, entry.file);
        item->setToolTip(entry.title);
    }
    if (m_index->count() > 0)
        m_index->setCurrentRow(0);
}

QString HelpWindow::currentTopic() const
{
    return m_browser->source().fileName();
}

void HelpWindow::openItemTopic(const QString &file)
{
    if (file != currentTopic())
        showTopic(file);
}

// Down in the keyword or search box moves into the list below it, so the keyboard reaches
// every entry without the mouse.
bool HelpWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::KeyPress
        && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Down) {
        QListWidget *list = watched == m_indexBox ? m_index
            : watched == m_searchBox              ? m_results
                                                  : nullptr;
        if (list && list->count() > 0) {
            list->setFocus();
            if (list->currentRow() < 0)
                list->setCurrentRow(0);
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void HelpWindow::topicChanged(const QUrl &url)
{
    const HelpTopic *topic = m_manual.topic(url.fileName());
    setWindowTitle(topic ? tr("Tarnwick Help - %1").arg(topic->title) : tr("Tarnwick Help"));
    for (QTreeWidgetItemIterator it(m_contents); *it; ++it) {
        if ((*it)->data(0, FileRole).toString() == url.fileName()) {
            const QSignalBlocker blocker(m_contents);
            m_contents->setCurrentItem(*it);
            break;
        }
    }
}

} // namespace tarnwick
