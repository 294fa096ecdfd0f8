#include "platform/vlc/VlcInstance.h"

#include <QByteArray>

#include <dlfcn.h>

#include <cstdarg>
#include <mutex>
#include <vector>

namespace {

std::mutex s_lock;
std::weak_ptr<libvlc_instance_t> s_instance;
QStringList s_options;

void discardLog(void *, int, const libvlc_log_t *, const char *, va_list)
{
}

void discardAlsaError(const char *, int, const char *, int, const char *, ...)
{
}

// libvlc's ALSA output goes through libasound, which prints its own errors
// ("ALSA lib ... cannot find card") to stderr, past libvlc's log. Its error
// handler is one for the process: set it on the library that the plugin
// will load, and keep that library loaded so the setting stays. Looked up
// at run time because the program does not otherwise link libasound.
void silenceAlsa()
{
    static std::once_flag once;
    std::call_once(once, [] {
        void *lib = dlopen("libasound.so.2", RTLD_LAZY | RTLD_LOCAL);
        if (!lib)
            return; // then libvlc has no ALSA output either
        using Handler = void (*)(const char *, int, const char *, int, const char *, ...);
        using SetHandler = int (*)(Handler);
        if (void *set = dlsym(lib, "snd_lib_error_set_handler"))
            reinterpret_cast<SetHandler>(set)(&discardAlsaError);
    });
}

} // namespace

VlcInstancePtr vlcInstance(const QStringList &options)
{
    std::lock_guard<std::mutex> hold(s_lock);
    if (VlcInstancePtr live = s_instance.lock())
        return live; // with its own options; the caller's are ignored
    silenceAlsa();
    // Never a video window: the panels only listen. Never a word on the
    // terminal: the program keeps no log.
    QList<QByteArray> args{QByteArrayLiteral("--no-video"), QByteArrayLiteral("--quiet")};
    for (const QString &o : options)
        args << o.toUtf8();
    std::vector<const char *> argv;
    for (const QByteArray &a : args)
        argv.push_back(a.constData());
    VlcPtr<libvlc_instance_t> made(libvlc_new(static_cast<int>(argv.size()), argv.data()));
    if (!made)
        return {};
    // --quiet keeps the console quiet while libvlc starts; from here on
    // its log goes nowhere at all.
    libvlc_log_set(made.get(), &discardLog, nullptr);
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
