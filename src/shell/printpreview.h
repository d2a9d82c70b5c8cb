#pragma once

#include <QDialog>
#include <QImage>

#include <functional>

class QAction;
class QLabel;
class QPrinter;
class QScrollArea;
class QSpinBox;
class QTimer;

namespace tarnwick {

class PagedDocument;

/// The print preview of a document laid out page by page: it lays out the first page, shows
/// it at once and lays out the rest in short slices while the window stays responsive, the
/// page count growing as it goes. Only the page shown is painted (in an image of the
/// printer's resolution, scaled to the screen), so a list of thousands of pages costs no more
/// memory than one. "Print" asks for a printer and prints every page.
class PrintPreview : public QDialog
{
    Q_OBJECT

public:
    /// Layout slices last about this long, so the window answers between them.
    static constexpr int SliceMilliseconds = 30;

    PrintPreview(QPrinter &printer, PagedDocument &document, const QString &title,
        QWidget *parent = nullptr);
    ~PrintPreview() override;

    /// The page shown, from 0.
    int currentPage() const { return m_page; }
    /// The pages laid out so far; all of them once isLaidOut().
    int pageCount() const;
    bool isLaidOut() const;
    /// Shows page (from 0), laying the document out that far first; a page past the end shows
    /// the last one.
    void showPage(int page);
    /// The page as shown, at the current zoom.
    QImage shownPage() const { return m_shown; }
    /// The zoom: 1 shows the paper at its real size on the screen.
    qreal zoom() const { return m_zoom; }
    void setZoom(qreal zoom);

    /// Asks where to print; true to print. By default the print dialog; tests answer it.
    std::function<bool(QPrinter &)> askForPrinter;

Q_SIGNALS:
    /// The whole document has been laid out.
    void laidOut();

private Q_SLOTS:
    void layoutSlice();
    void printAll();

private:
    void buildWindow(const QString &title);
    /// Lays out what is left of the document under a window that says how far it has got,
    /// with Cancel; false when the user cancelled (the layout then goes on in the background).
    bool layOutTheRest();
    QAction *addCommand(const QString &name, const QString &text, const QKeySequence &key);
    void render();
    void updateCount();

    QPrinter &m_printer;
    PagedDocument &m_document;
    QTimer *m_layoutTimer;
    QScrollArea *m_scroll = nullptr;
    QLabel *m_pageView = nullptr;
    QSpinBox *m_pageBox = nullptr;
    QLabel *m_countLabel = nullptr;
    QImage m_shown;
    int m_page = 0;
    qreal m_zoom = 1.0;
};

} // namespace tarnwick
