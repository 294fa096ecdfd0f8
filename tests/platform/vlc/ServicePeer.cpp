#include "ServicePeer.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

ServicePeer::ServicePeer(const QString &script, const QStringList &args, int lifetimeSeconds)
    : m_script(script)
{
    QString out;
    if (!m_dir.isValid()) {
        m_error = QStringLiteral("no temporary folder");
        return;
    }
    m_ok = run(script, QStringList{QStringLiteral("start"), m_dir.path()} << args << QString::number(lifetimeSeconds), &out);
    for (const QString &line : out.split(u'\n', Qt::SkipEmptyParts)) {
        const qsizetype eq = line.indexOf(u'=');
        if (eq > 0)
            m_values.insert(line.left(eq).trimmed(), line.mid(eq + 1).trimmed());
    }
    if (!m_ok)
        m_error = out;
}

ServicePeer::~ServicePeer()
{
    run(m_script, {QStringLiteral("stop"), m_dir.path()});
}

QString ServicePeer::file(const QString &name) const
{
    QFile f(m_dir.filePath(name));
    return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
}

QString ServicePeer::scriptsDir()
{
    QString top = qEnvironmentVariable("ZARVENT_SOURCE_DIR");
    if (top.isEmpty())
        top = QStringLiteral(ZARVENT_SOURCE_DIR_DEFAULT);
    return QDir(top).filePath(QStringLiteral("scripts/services"));
}

bool ServicePeer::haveTool(const QString &program)
{
    return !QStandardPaths::findExecutable(program).isEmpty();
}

bool ServicePeer::run(const QString &script, const QStringList &args, QString *output)
{
    QProcess p;
    p.setProcessChannelMode(QProcess::MergedChannels);
    p.start(QStringLiteral("bash"), QStringList{QDir(scriptsDir()).filePath(script)} << args);
    // The scripts wait at most a few seconds for their peer; bound them anyway.
    if (!p.waitForFinished(20000)) {
        p.kill();
        p.waitForFinished(2000);
        return false;
    }
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
    ::bind(fd, reinterpret_cast<sockaddr *>(&addr), sizeof addr);
    socklen_t len = sizeof addr;
    ::getsockname(fd, reinterpret_cast<sockaddr *>(&addr), &len);
    ::close(fd);
    return ntohs(addr.sin_port);
}
