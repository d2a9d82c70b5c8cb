#pragma once

#include "exchange/columnmapping.h"

#include <array>

class QCheckBox;
class QComboBox;
class QDialog;
class QGroupBox;
class QLabel;
class QPushButton;
class QRadioButton;
class QScrollArea;
class QTableWidget;
class QTimer;

namespace tarnwick {

/// The widgets of the "Update" window, each under its control name: the fifteen field lists
/// CmbField(0) … CmbField(14) with their labels in the frames "Product Information" and
/// "Discount Schedule", the mapping helpers CmdMatch and CmdLast, the sample of the sheet's first
/// rows GrdSample with its label LblSample, ChkIgnore, OptAdd and OptUpdate in the frame
/// "Actions", Label1, Label2, the buttons and Timer1.
struct FrmUpdateUi
{
    /// Creates the widgets inside window and lays them out.
    void setupUi(QDialog *window);

    std::array<QComboBox *, ColumnMapping::ListCount> CmbField {};
    std::array<QLabel *, ColumnMapping::ListCount> LblField {};
    QGroupBox *FraProductInformation = nullptr;
    QGroupBox *FraDiscountSchedule = nullptr;
    QGroupBox *FraActions = nullptr;
    QLabel *Label1 = nullptr;
    QLabel *Label2 = nullptr;
    QCheckBox *ChkIgnore = nullptr;
    QRadioButton *OptAdd = nullptr;
    QRadioButton *OptUpdate = nullptr;
    QPushButton *CmdMatch = nullptr;
    QPushButton *CmdLast = nullptr;
    QLabel *LblSample = nullptr;
    QTableWidget *GrdSample = nullptr;
    /// The frames, mapping helpers and sample rows: they scroll where a large font makes them
    /// bigger than the screen, while the buttons and actions beside them stay in view.
    QScrollArea *MappingArea = nullptr;
    QPushButton *CmdOK = nullptr;
    QPushButton *CmdCancel = nullptr;
    QPushButton *CmdHelp = nullptr;
    QTimer *Timer1 = nullptr;

    /// The name of one list of the control array: "CmbField(3)".
    static QString fieldListName(int index);

private:
    void createLists(QDialog *window);
    QGroupBox *createProductFrame(QDialog *window);
    QGroupBox *createDiscountFrame(QDialog *window);
    QGroupBox *createActionsFrame(QDialog *window);
    void createMappingHelpers(QDialog *window);
    void orderTabs();
};

} // namespace tarnwick
