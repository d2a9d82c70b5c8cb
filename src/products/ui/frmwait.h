#pragma once

#include <QDialog>

class QLabel;
class QTimer;

namespace tarnwick {

/// The "Processing" window shown during long operations: its label runs "Please wait",
/// "Please wait.", "Please wait..", "Please wait..." on a 250 ms timer (Timer1), then keeps
/// cycling through the dotted texts.
class FrmWait : public QDialog
{
    Q_OBJECT

public:
    explicit FrmWait(QWidget *parent = nullptr);

    static constexpr int TimerInterval = 250; ///< milliseconds between two label steps

private Q_SLOTS:
    /// One step of the label, driven by Timer1.
    void Timer1_Timer();

private:
    QLabel *m_label1 = nullptr;
    QTimer *m_timer1 = nullptr;
    int m_counter = 0;
};

} // namespace tarnwick
