#include "music/CommonDialog.h"

#include "music/DrivePaths.h"

#include <QFileDialog>
#include <QStringList>

QString CommonDialog::qtFilter(const QString &filter)
{
    // Pairs of description and patterns, all split by bars.
    const QStringList parts = filter.split(QLatin1Char('|'));
    QStringList filters;
    for (int i = 0; i + 1 < parts.size(); i += 2)
        filters << parts.at(i).trimmed() + QStringLiteral(" (") + parts.at(i + 1).trimmed() + QLatin1Char(')');
    return filters.join(QStringLiteral(";;"));
}

void CommonDialog::ShowOpen()
{
    const QString chosen = chooser ? chooser(*this)
                                   : QFileDialog::getOpenFileName(m_owner, m_title, drives::localPath(m_initDir),
                                                                  qtFilter(m_filter));
    if (!chosen.isEmpty())
        m_fileName = chosen;
}
