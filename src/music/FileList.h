#pragma once

#include "basic/Checked.h"

#include <QListView>
#include <QStringList>

class QStringListModel;

// The list control `file` of Mp3: the MP3 files of one folder, by name. It
// holds no list of songs of its own; pointing it at a folder is all there is.
// Paths may be written as the panel was drawn ("c:\", "D:\"): see DrivePaths.
class FileList : public QListView {
    Q_OBJECT
public:
    explicit FileList(QWidget *parent = nullptr);

    QString Path() const { return m_path; }
    // Raises 76 for a folder that is not there and 68 for a drive with
    // nothing in it.
    void setPath(const QString &path);
    QString Pattern() const { return QStringLiteral("*.mp3"); }
    // Read: the selected entry's name. Written: a folder moves the list
    // there; a file moves it to that file's folder; the empty text does nothing.
    QString FileName() const;
    void setFileName(const QString &path);
    basic::Integer ListCount() const;
    basic::Integer ListIndex() const { return m_index; }
    // Raises 380 outside -1 .. ListCount - 1. A change runs Click.
    void setListIndex(int index);
    // The entry's name; the empty text outside the list.
    QString List(int index) const;
    // Reads the folder again. A folder that has gone leaves the list empty.
    void Refresh();

signals:
    void Click();

private:
    void read();
    void select(int index);

    QStringListModel *m_model;
    QStringList m_names;
    QString m_path;
    basic::Integer m_index = -1;
    bool m_selecting = false;
};
