#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <utility>

// The stored settings a host keeps for one control, in the order the control
// wrote them. A value equal to the default it was written with is dropped, so
// a reader only ever sees the settings somebody actually changed.
class PropertyBag {
public:
    QVariant ReadProperty(const QString &key, const QVariant &defaultValue) const;
    void WriteProperty(const QString &key, const QVariant &value, const QVariant &defaultValue);

    void set(const QString &key, const QVariant &value);
    bool contains(const QString &key) const { return indexOf(key) >= 0; }
    QStringList keysInOrder() const;

private:
    qsizetype indexOf(const QString &key) const;

    QList<std::pair<QString, QVariant>> m_entries;
};
