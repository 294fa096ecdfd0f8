#pragma once

#include "platform/Form.h"

class QComboBox;
class QFileSystemModel;
class QLineEdit;
class QPushButton;
class QTreeView;

// "Choose Directory": picks a folder for the list of Mp3, whichever panel
// opened it. Hidden on Cancel with its drive and folder kept; on OK it is
// put back as it first opened, which stands for unloading it, since a form
// here lives to the end of the process.
class Form1 : public Form {
    Q_OBJECT
public:
    explicit Form1(Platform &platform);

    void Load() override;

    QComboBox *Drive1;
    QTreeView *Dir1;
    QPushButton *cmdOk;
    QPushButton *cmdcancel;
    QLineEdit *txtFinal;

    // The folder chosen in Dir1. Raises 68 for a volume that is not ready
    // or not there, 75 for a folder that cannot be read.
    QString Dir1Path() const { return m_dir1Path; }
    void setDir1Path(const QString &path);

    void Drive1_Change();
    void cmdOk_Click();
    void cmdcancel_Click();

private:
    void fresh();
    void fillDrives();

    QFileSystemModel *m_folders;
    QString m_dir1Path;
    int m_drive = -1; // the drive last chosen, as the list shows it
};
