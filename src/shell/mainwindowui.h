#pragma once

#include "shell/statustext.h"

class QGroupBox;
class QLabel;
class QLineEdit;
class QMainWindow;
class QPlainTextEdit;
class QFrame;
class QTabWidget;
class QTableView;
class QWidget;

namespace tarnwick {

class GridView;

/// The main window's widgets, each under its control name: the product grid on the left, the
/// tab control with the side boxes and the quote on the right, the status bar below.
struct MainWindowUi
{
    /// Creates the widgets inside window and lays them out.
    void setupUi(QMainWindow *window);

    QWidget *Client =
        nullptr; ///< the area between toolbar and status bar; panes are placed by hand
    QFrame *Frame1 = nullptr; ///< the bar between the product grid and the tab control
    GridView *GrdMain = nullptr;
    QTabWidget *SSTabmain = nullptr;
    QGroupBox *FraPrice = nullptr;
    QLineEdit *TxtPrice = nullptr;
    QLabel *LblPriceSchedule = nullptr;
    GridView *PriceSchedule = nullptr;
    QGroupBox *FraMain = nullptr;
    QPlainTextEdit *Txtincludes = nullptr;
    QGroupBox *FraNotes = nullptr;
    QPlainTextEdit *Txtnotes = nullptr;
    QGroupBox *FraQuote = nullptr;
    GridView *GrdQuote = nullptr;
    QLineEdit *TxtTotal = nullptr;
    QLineEdit *TxtDisc = nullptr;
    QLineEdit *TxtQdisper = nullptr;
    QLabel *LblNextBreak = nullptr; ///< the current quote line's next price break
    StatusText *sbPanel1 = nullptr; ///< the status bar's first panel
    /// At the status bar's right end while the unsaved changes cannot be kept safe: the
    /// warning stays in view until they are (the first panel's texts come and go).
    UnsafeMark *sbUnsafe = nullptr;

private:
    QWidget *createProductPage(QWidget *parent);
    QWidget *createQuotePage(QWidget *parent);
};

} // namespace tarnwick
