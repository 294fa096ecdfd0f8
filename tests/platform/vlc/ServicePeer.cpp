#include "ServicePeer.h"

#include <QFile>
#include <QProcess>

#include <arpa/inet.h>
#include <unistd.h>

ServicePeer::ServicePeer(const QString &script, const QStringList &args, int lifetimeSeconds)
    : m_script(script)
{
    QString out = QStringLiteral("no temporary folder");
    m_ok = m_dir.isValid()
        && run(script, QStringList{QStringLiteral("start"), m_dir.path()} << args << QString::number(lifetimeSeconds), &out);
    for (const QString &line : out.split(u'\n', Qt::SkipEmptyParts)) {
        if (const qsizetype eq = line.indexOf(u'='); eq > 0)
            m_values.insert(line.left(eq).trimmed(), line.mid(eq + 1).trimmed());
    }
    m_error = m_ok ? QString() : out;
}

QString ServicePeer::file(const QString &name) const
{
    QFile f(m_dir.filePath(name));
    return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
}

bool ServicePeer::run(const QString &script, const QStringList &args, QString *output)
{
    const QString top = qEnvironmentVariable("ZARVENT_SOURCE_DIR", QStringLiteral(ZARVENT_SOURCE_DIR_DEFAULT));
    QProcess p; // killed on the way out if it overstays
    p.setProcessChannelMode(QProcess::MergedChannels);
    p.start(QStringLiteral("bash"), QStringList{top + QStringLiteral("/scripts/services/") + script} << args);
    // The scripts wait at most a few seconds for their peer; bound them anyway.
    if (!p.waitForFinished(20000))
        return false;
    if (output)
        *output = QString::fromUtf8(p.readAll());
    return p.exitStatus() == QProcess::NormalExit && p.exitCode() == 0;
}

int ServicePeer::closedPort()
{
    const int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in addr{};
    addr.sin_family = AF_INET;
    addr.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t len = sizeof addr;
    ::bind(fd, reinterpret_cast<sockaddr *>(&addr), len);
    ::getsockname(fd, reinterpret_cast<sockaddr *>(&addr), &len);
    ::close(fd); // bound, never listening, then gone: connections are refused
    return ntohs(addr.sin_port);
}
