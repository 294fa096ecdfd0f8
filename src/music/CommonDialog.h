#pragma once

#include <QString>

#include <functional>

class QWidget;

// The file-open dialog CMN. Cancel raises nothing and leaves FileName as it
// was. InitDir may be a path as the panel was drawn ("C:\My Documents").
class CommonDialog {
public:
    explicit CommonDialog(QWidget *owner) : m_owner(owner) {}

    QString InitDir() const { return m_initDir; }
    void setInitDir(const QString &dir) { m_initDir = dir; }
    QString Filter() const { return m_filter; }
    void setFilter(const QString &filter) { m_filter = filter; }
    QString DialogTitle() const { return m_title; }
    void setDialogTitle(const QString &title) { m_title = title; }
    QString FileName() const { return m_fileName; }
    void setFileName(const QString &file) { m_fileName = file; }

    void ShowOpen();

    // The name filter in Qt's form: "MP3 Files |*.mp3*" -> "MP3 Files (*.mp3*)".
    static QString qtFilter(const QString &filter);

    // Stands in for the system dialog in tests: takes the dialog, answers
    // the chosen file or the empty text for cancel.
    std::function<QString(const CommonDialog &)> chooser;

private:
    QWidget *m_owner;
    QString m_initDir;
    QString m_filter;
    QString m_title;
    QString m_fileName;
};
