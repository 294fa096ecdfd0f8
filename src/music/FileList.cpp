#include "music/FileList.h"

#include "basic/RuntimeError.h"
#include "music/DrivePaths.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QItemSelectionModel>
#include <QStringListModel>

#include <algorithm>

namespace {

constexpr int PathNotFound = 76;

} // namespace

FileList::FileList(QWidget *parent)
    : QListView(parent)
    , m_model(new QStringListModel(this))
{
    setObjectName(QStringLiteral("file"));
    setToolTip(QStringLiteral("List Of Mp3"));
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setSelectionMode(QAbstractItemView::SingleSelection);
    // Ten thousand rows of one height lay out without measuring each.
    setUniformItemSizes(true);
    setModel(m_model);
    // Only a click on an entry starts it, the selected one included. The
    // keyboard and focus move the highlight alone: tabbing into the list or
    // coming back to the window must not start the first song.
    connect(selectionModel(), &QItemSelectionModel::selectionChanged, this, [this] {
        if (m_selecting)
            return;
        const QModelIndexList rows = selectionModel()->selectedRows();
        m_index = static_cast<basic::Integer>(rows.isEmpty() ? -1 : rows.first().row());
    });
    connect(this, &QAbstractItemView::clicked, this, [this](const QModelIndex &at) {
        if (!at.isValid())
            return;
        m_index = static_cast<basic::Integer>(at.row());
        emit Click();
    });
    m_path = QDir::currentPath();
    read();
}

void FileList::setPath(const QString &path)
{
    const QString local = drives::localPath(path);
    if (local.isEmpty())
        throw basic::RuntimeError(basic::DeviceUnavailable);
    const QFileInfo info(local);
    if (!info.isDir())
        throw basic::RuntimeError(PathNotFound, QStringLiteral("Path not found"));
    // A root keeps its separator; anything else is kept without one, so the
    // panel's joins behave as they were written.
    QString clean = QDir::cleanPath(info.absoluteFilePath());
    m_path = clean;
    m_index = -1;
    read();
}

QString FileList::FileName() const
{
    return List(m_index);
}

void FileList::setFileName(const QString &path)
{
    if (path.isEmpty())
        return;
    const QString local = drives::localPath(path);
    if (!local.isEmpty() && QFileInfo(local).isFile())
        setPath(QFileInfo(local).absolutePath());
    else
        setPath(path);
}

basic::Integer FileList::ListCount() const
{
    return basic::narrow<basic::Integer>(m_names.size());
}

void FileList::setListIndex(int index)
{
    if (index < -1 || index >= m_names.size())
        basic::raise(basic::InvalidPropertyValue);
    if (index == m_index)
        return;
    m_index = static_cast<basic::Integer>(index);
    select(index);
    emit Click();
}

QString FileList::List(int index) const
{
    return index >= 0 && index < m_names.size() ? m_names.at(index) : QString();
}

void FileList::Refresh()
{
    const QString selected = FileName();
    read();
    m_index = static_cast<basic::Integer>(selected.isEmpty() ? -1 : m_names.indexOf(selected));
    select(m_index);
}

void FileList::read()
{
    // A plain walk of the folder and one sort: far quicker on a large folder
    // than a sorted QDir listing or a file system model.
    QStringList names;
    QDirIterator it(m_path, {Pattern()}, QDir::Files);
    while (it.hasNext()) {
        it.next();
        names.append(it.fileName());
    }
    std::sort(names.begin(), names.end(), [](const QString &a, const QString &b) {
        const int c = a.compare(b, Qt::CaseInsensitive);
        return c != 0 ? c < 0 : a < b;
    });
    m_names = names;
    m_selecting = true;
    m_model->setStringList(m_names);
    m_selecting = false;
}

void FileList::select(int index)
{
    m_selecting = true;
    if (index < 0) {
        selectionModel()->clearSelection();
        selectionModel()->setCurrentIndex(QModelIndex(), QItemSelectionModel::Clear);
    } else {
        const QModelIndex at = m_model->index(index);
        selectionModel()->setCurrentIndex(at, QItemSelectionModel::ClearAndSelect);
        scrollTo(at);
    }
    m_selecting = false;
}
