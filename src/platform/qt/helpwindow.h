#pragma once

#include <QUrl>
#include <QWidget>

class QAction;
class QLabel;
class QLineEdit;
class QListWidget;
class QTabWidget;
class QTextBrowser;
class QTreeWidget;
class QTreeWidgetItem;

namespace tarnwick {

class HelpManual;
struct HelpRequest;

/// The help window: the manual's contents tree, its index and its full-text search on the
/// left, the page on the right, with Back, Forward and Contents. Alt+C, Alt+I and Alt+S reach
/// the three lists; Alt+Left and Alt+Right go back and forward.
class HelpWindow : public QWidget
{
    Q_OBJECT

public:
    /// manual must outlive the window.
    explicit HelpWindow(const HelpManual &manual, QWidget *parent = nullptr);

    /// Opens what a help call asks for: the context's page, the search ("Search"), or the
    /// contents at the first page. Shows and raises the window.
    void showRequest(const HelpRequest &request);
    /// Shows a page of the manual; false when the manual has no such page.
    bool showTopic(const QString &file);
    void showContents();
    void showSearch();
    void showIndex();
    /// Fills the search results with the pages that contain the words.
    void search(const QString &query);

    /// The file name of the page shown.
    QString currentTopic() const;
    QTextBrowser *browser() const { return m_browser; }
    QTabWidget *navigation() const { return m_tabs; }
    QTreeWidget *contentsTree() const { return m_contents; }
    QListWidget *indexList() const { return m_index; }
    QLineEdit *indexBox() const { return m_indexBox; }
    QListWidget *searchResults() const { return m_results; }
    QLineEdit *searchBox() const { return m_searchBox; }
    QLabel *searchStatus() const { return m_searchStatus; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *createContentsPage();
    QWidget *createIndexPage();
    QWidget *createSearchPage();
    void createToolBar(QWidget *bar);
    QUrl urlOf(const QString &file) const;
    void fillIndex(const QString &filter);
    void topicChanged(const QUrl &url);
    void openItemTopic(const QString &file);

    const HelpManual &m_manual;
    QTabWidget *m_tabs = nullptr;
    QTreeWidget *m_contents = nullptr;
    QLineEdit *m_indexBox = nullptr;
    QListWidget *m_index = nullptr;
    QLineEdit *m_searchBox = nullptr;
    QListWidget *m_results = nullptr;
    QLabel *m_searchStatus = nullptr;
    QTextBrowser *m_browser = nullptr;
    QAction *m_back = nullptr;
    QAction *m_forward = nullptr;
    /// Placed over the active window when first shown; where the user left it ever after.
    bool m_placed = false;
};

} // namespace tarnwick
