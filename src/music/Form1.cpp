#include "music/Form1.h"

#include "basic/RuntimeError.h"
#include "music/FileList.h"
#include "platform/Dialogs.h"
#include "platform/Forms.h"
#include "platform/Twips.h"

#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QPushButton>
#include <QStorageInfo>
#include <QStyle>
#include <QTreeView>

Form1::Form1(Platform &platform)
    : Form(platform, QStringLiteral("Form1"))
{
    setWindowTitle(QStringLiteral("Choose Directory"));
    setFixedSize(twips::toPixels(4800), twips::toPixels(5400));

    Drive1 = new QComboBox(this);
    Drive1->setObjectName(QStringLiteral("Drive1"));
    twips::place(Drive1, 120, 120, 4560, 315);

    m_folders = new QFileSystemModel(this);
    m_folders->setFilter(QDir::AllDirs | QDir::NoDotAndDotDot);
    m_folders->setRootPath(QDir::rootPath());
    Dir1 = new QTreeView(this);
    Dir1->setObjectName(QStringLiteral("Dir1"));
    Dir1->setModel(m_folders);
    Dir1->setHeaderHidden(true);
    for (int column = 1; column < m_folders->columnCount(); ++column)
        Dir1->hideColumn(column);
    twips::place(Dir1, 120, 555, 4560, 3960);

    cmdOk = new QPushButton(style()->standardIcon(QStyle::SP_DialogOkButton), QString(), this);
    cmdOk->setObjectName(QStringLiteral("cmdOk"));
    twips::place(cmdOk, 1320, 4680, 1095, 495);
    cmdcancel = new QPushButton(style()->standardIcon(QStyle::SP_DialogCancelButton), QString(), this);
    cmdcancel->setObjectName(QStringLiteral("cmdcancel"));
    twips::place(cmdcancel, 2520, 4680, 1095, 495);
    txtFinal = new QLineEdit(this);
    txtFinal->setObjectName(QStringLiteral("txtFinal"));
    txtFinal->hide();

    // A drive list changes only when another drive is chosen: picking the
    // one it shows leaves the folder where it is.
    on(Drive1, &QComboBox::activated, [this] {
        if (Drive1->currentIndex() != m_drive) {
            m_drive = Drive1->currentIndex();
            Drive1_Change();
        }
    });
    // Wherever the current folder goes, by mouse or by keyboard, that is the
    // result.
    on(Dir1->selectionModel(), &QItemSelectionModel::currentChanged, [this] {
        if (Dir1->currentIndex().isValid())
            m_dir1Path = m_folders->filePath(Dir1->currentIndex());
    });
    on(cmdOk, &QPushButton::clicked, [this] { cmdOk_Click(); });
    on(cmdcancel, &QPushButton::clicked, [this] { cmdcancel_Click(); });

    fresh();
}

void Form1::Load()
{
    setWindowIcon(platform().forms.form(QStringLiteral("Tafm"))->windowIcon()); // loads Tafm if need be
}

void Form1::fillDrives()
{
    Drive1->clear();
    for (const QStorageInfo &volume : QStorageInfo::mountedVolumes()) {
        if (!volume.isValid())
            continue;
        const QString name = volume.displayName();
        const QString at = volume.rootPath();
        Drive1->addItem(name == at ? at : at + QStringLiteral(" [") + name + QLatin1Char(']'), at);
    }
}

void Form1::fresh()
{
    // As a new window opens: the process's current folder and its volume.
    fillDrives();
    const QString current = QDir::currentPath();
    m_drive = Drive1->findData(QStorageInfo(current).rootPath());
    Drive1->setCurrentIndex(m_drive);
    m_dir1Path.clear();
    setDir1Path(current);
}

void Form1::setDir1Path(const QString &path)
{
    const QFileInfo info(path);
    const QStorageInfo volume(path);
    if (!info.exists() || !volume.isValid() || !volume.isReady())
        basic::raise(basic::DeviceUnavailable);
    if (!info.isDir() || !info.isReadable())
        basic::raise(basic::PathFileAccessError);
    m_dir1Path = QDir::cleanPath(info.absoluteFilePath());
    const QModelIndex at = m_folders->index(m_dir1Path);
    Dir1->setCurrentIndex(at);
    Dir1->scrollTo(at);
}

void Form1::Drive1_Change()
{
    try {
        setDir1Path(Drive1->itemData(Drive1->currentIndex()).toString());
    } catch (const basic::RuntimeError &e) {
        // The drive list keeps the drive that failed; the folder stays.
        if (e.number() == basic::DeviceUnavailable)
            platform().dialogs.MsgBox(QStringLiteral("Device Not Ready!"), MsgBox::Critical, QStringLiteral("Oops"));
    }
}

void Form1::cmdOk_Click()
{
    Form *mp3 = platform().forms.form(QStringLiteral("Mp3")); // made and loaded, not shown
    if (auto *list = mp3->findChild<FileList *>(QStringLiteral("file")))
        list->setFileName(m_dir1Path); // a folder gone since is the list's own failure
    Hide();
    fresh();
}

void Form1::cmdcancel_Click()
{
    txtFinal->setText(QStringLiteral("CANCEL"));
    Hide();
}
