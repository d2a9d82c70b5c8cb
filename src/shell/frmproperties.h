#pragma once

#include <QDialog>

class QFormLayout;
class QHBoxLayout;
class QLineEdit;
class QPushButton;

namespace tarnwick {

struct AppServices;
class Module1;

/// "Catalogue Properties" (File → Properties): where the data lives and what it holds. The
/// application folder with "&Open Folder", which shows it in the desktop's file manager, the
/// catalogue file, its size, the number of products, when it was last saved and whether the
/// backup "twdata.bak" is there. The figures are read when the window opens or is brought up
/// again.
class FrmProperties : public QDialog
{
    Q_OBJECT

public:
    static const QString Title;
    static const QString FolderNotOpenedMessage; ///< followed by the folder

    FrmProperties(const AppServices &services, Module1 &module, QWidget *parent = nullptr);

    /// Reads the figures again from the files and the catalogue.
    void Form_Load();

    QLineEdit *txtAppFolder() const { return m_appFolder; }
    QLineEdit *txtDataFile() const { return m_dataFile; }
    QLineEdit *txtFileSize() const { return m_fileSize; }
    QLineEdit *txtProductCount() const { return m_productCount; }
    QLineEdit *txtLastSaved() const { return m_lastSaved; }
    QLineEdit *txtBackup() const { return m_backup; }
    QPushButton *cmdOpenFolder() const { return m_openFolder; }
    QPushButton *cmdClose() const { return m_close; }

private Q_SLOTS:
    void CmdOpenFolder_Click();

private:
    /// Widens the boxes to the longest figure the screen has room for.
    void fitBoxes();
    /// A read-only box with its label; with row, the box goes first into that row, for a
    /// button beside it.
    QLineEdit *addRow(const char *name, const QString &caption, QHBoxLayout *row = nullptr);

    const AppServices &m_services;
    Module1 &m_module;
    QFormLayout *m_form = nullptr;
    QLineEdit *m_appFolder = nullptr;
    QLineEdit *m_dataFile = nullptr;
    QLineEdit *m_fileSize = nullptr;
    QLineEdit *m_productCount = nullptr;
    QLineEdit *m_lastSaved = nullptr;
    QLineEdit *m_backup = nullptr;
    QPushButton *m_openFolder = nullptr;
    QPushButton *m_close = nullptr;
};

} // namespace tarnwick
