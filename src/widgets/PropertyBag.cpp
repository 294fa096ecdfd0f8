#include "widgets/PropertyBag.h"

QVariant PropertyBag::ReadProperty(const QString &key, const QVariant &defaultValue) const
{
    const qsizetype i = indexOf(key);
    return i < 0 ? defaultValue : m_entries.at(i).second;
}

void PropertyBag::WriteProperty(const QString &key, const QVariant &value, const QVariant &defaultValue)
{
    if (value == defaultValue) {
        // Also forget an older stored value, or it would come back on reading.
        const qsizetype i = indexOf(key);
        if (i >= 0)
            m_entries.removeAt(i);
        return;
    }
    set(key, value);
}

void PropertyBag::set(const QString &key, const QVariant &value)
{
    const qsizetype i = indexOf(key);
    if (i < 0)
        m_entries.append({key, value});
    else
        m_entries[i].second = value;
}

QStringList PropertyBag::keysInOrder() const
{
    QStringList keys;
    for (const auto &entry : m_entries)
        keys.append(entry.first);
    return keys;
}

qsizetype PropertyBag::indexOf(const QString &key) const
{
    for (qsizetype i = 0; i < m_entries.size(); ++i)
        if (m_entries.at(i).first == key)
            return i;
    return -1;
}
