#include "platform/VlcInstance.h"

#include <QByteArray>
#include <QtDebug>

#include <mutex>
#include <vector>

namespace {

std::mutex s_lock;
std::weak_ptr<libvlc_instance_t> s_instance;
QStringList s_options;

} // namespace

VlcInstancePtr vlcInstance(const QStringList &options)
{
    std::lock_guard<std::mutex> hold(s_lock);
    if (VlcInstancePtr live = s_instance.lock()) {
        if (options != s_options)
            qWarning("libvlc already runs with options %s; %s ignored",
                     qPrintable(s_options.join(u' ')), qPrintable(options.join(u' ')));
        return live;
    }
    // Never a video window: the panels only listen.
    QList<QByteArray> args{QByteArrayLiteral("--no-video")};
    for (const QString &o : options)
        args << o.toUtf8();
    std::vector<const char *> argv;
    for (const QByteArray &a : args)
        argv.push_back(a.constData());
    VlcPtr<libvlc_instance_t> made(libvlc_new(static_cast<int>(argv.size()), argv.data()));
    if (!made) {
        qWarning("libvlc did not start with options %s", qPrintable(options.join(u' ')));
        return {};
    }
    VlcInstancePtr shared(std::move(made));
    s_instance = shared;
    s_options = options;
    return shared;
}

QStringList vlcInstanceOptions()
{
    std::lock_guard<std::mutex> hold(s_lock);
    return s_instance.expired() ? QStringList() : s_options;
}
