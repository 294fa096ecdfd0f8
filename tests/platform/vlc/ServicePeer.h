#pragma once

#include <QHash>
#include <QStandardPaths>
#include <QStringList>
#include <QTemporaryDir>

// A test peer on 127.0.0.1 started by one of scripts/services/*.sh in a
// folder of its own, bounded in time by the script, and stopped by PID when
// this object goes.
class ServicePeer {
public:
    ServicePeer(const QString &script, const QStringList &args, int lifetimeSeconds = 60);
    ~ServicePeer() { run(m_script, {QStringLiteral("stop"), m_dir.path()}); }

    bool ok() const { return m_ok; }
    QString error() const { return m_error; }
    int port() const { return value(QStringLiteral("PORT")).toInt(); }
    QString value(const QString &key) const { return m_values.value(key); }
    QString file(const QString &name) const; // a file the peer wrote in its folder

    static bool haveTool(const QString &program) { return !QStandardPaths::findExecutable(program).isEmpty(); }
    static bool run(const QString &script, const QStringList &args, QString *output = nullptr);
    static int closedPort(); // a loopback port nobody listens on

private:
    QString m_script;
    QTemporaryDir m_dir;
    QHash<QString, QString> m_values;
    bool m_ok = false;
    QString m_error;
};
