// Files per second for cIDV3 (filename set, HasTag, every member) beside
// TagLib reading the ID3v1 fields and the audio properties of the same
// files, and a bare reader (one 5 KB read, one 128-byte read) as the floor.
//   bench_cidv3 [files] [passes]
// Needs sox and lame to make the files; the cache is warm before timing.

#include "music/cIDV3.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <taglib/id3v1tag.h>
#include <taglib/mpegfile.h>
#include <taglib/mpegproperties.h>
#include <taglib/taglib.h>
#include <taglib/xingheader.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <unistd.h>
#include <vector>

namespace {

bool run(const QString &program, const QStringList &args)
{
    QProcess p;
    p.start(program, args);
    if (!p.waitForFinished(60000) || p.exitStatus() != QProcess::NormalExit || p.exitCode() != 0) {
        std::fprintf(stderr, "%s failed: %s\n", qPrintable(program), p.readAllStandardError().constData());
        return false;
    }
    return true;
}

QByteArray block(int i)
{
    QByteArray b("TAG");
    const auto field = [&](const QByteArray &text, int width) { b += text.leftJustified(width, ' ', true); };
    field("Title " + QByteArray::number(i), 30);
    field("Artist", 30);
    field("Album", 30);
    field("2024", 4);
    field("generated", 30);
    b += char(i % 148);
    return b;
}

// Every member of cIDV3 a caller can read, after filename and HasTag.
long long readWithCIDV3(cIDV3 &t, const QString &path)
{
    t.setfilename(path);
    long long s = t.HasTag() ? 1 : 0;
    s += t.InfoString().size() + t.FileBytes() + t.Seconds() + t.MpegVersion() + t.LayerVersion() + t.Kbits() + t.Frames()
        + t.Hz() + t.Mode().size() + t.PrivateBit().size() + t.CRCs().size() + t.Copyrighted().size()
        + t.Original().size() + t.Emphasis().size() + t.Channels() + t.filename().size() + t.Comments().size()
        + t.Year().size() + t.Album().size() + t.Artist().size() + t.Title().size() + t.Genre()
        + t.GenreText(basic::Integer(t.Genre())).size();
    return s;
}

long long readWithTagLib(const QByteArray &path)
{
    TagLib::MPEG::File f(path.constData(), true, TagLib::AudioProperties::Average);
    long long s = 0;
    if (TagLib::ID3v1::Tag *tag = f.ID3v1Tag(false)) {
        s += tag->title().size() + tag->artist().size() + tag->album().size() + tag->comment().size()
            + tag->genre().size() + tag->year();
    }
    if (const TagLib::MPEG::Properties *p = f.audioProperties()) {
        s += p->lengthInSeconds() + p->bitrate() + p->sampleRate() + p->channels() + p->version() + p->layer()
            + p->channelMode() + p->protectionEnabled() + p->isCopyrighted() + p->isOriginal()
            + (p->xingHeader() ? p->xingHeader()->totalFrames() : 0);
    }
    return s;
}

long long readBare(const QByteArray &path)
{
    static unsigned char head[5047];
    static unsigned char tail[128];
    const int fd = ::open(path.constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return 0;
    long long s = ::pread(fd, head, sizeof head, 0);
    const off_t size = ::lseek(fd, 0, SEEK_END);
    if (size >= 128)
        s += ::pread(fd, tail, sizeof tail, size - 128);
    ::close(fd);
    return s + head[0] + tail[0];
}

// Files per second of one pass over all files.
double pass(int files, const std::function<long long(int)> &read, long long &check)
{
    const auto t0 = std::chrono::steady_clock::now();
    for (int i = 0; i < files; ++i)
        check += read(i);
    const double s = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
    return files / s;
}

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int files = argc > 1 ? std::max(4, std::atoi(argv[1])) : 2000;
    const int passes = argc > 2 ? std::max(1, std::atoi(argv[2])) : 7;

    QTemporaryDir dir;
    if (!dir.isValid())
        return 1;
    const QDir d(dir.path());

    // Four encodings of a one-second tone.
    const QList<QStringList> encodings = {{"-b", "128"}, {"-V", "2"}, {"-b", "64", "-m", "m"}, {"-b", "192", "-m", "s"}};
    const QString wav = d.filePath("tone.wav");
    if (!run("sox", {"-n", "-r", "44100", "-c", "2", wav, "synth", "1", "sine", "440", "vol", "0.5"}))
        return 1;
    QList<QByteArray> bases;
    for (int e = 0; e < encodings.size(); ++e) {
        const QString mp3 = d.filePath(QStringLiteral("base%1.mp3").arg(e));
        if (!run("lame", QStringList{"--quiet"} + encodings[e] + QStringList{wav, mp3}))
            return 1;
        QFile f(mp3);
        f.open(QIODevice::ReadOnly);
        bases << f.readAll();
    }

    QStringList paths;
    QList<QByteArray> names;
    long long bytes = 0;
    for (int i = 0; i < files; ++i) {
        const QString p = d.filePath(QStringLiteral("f%1.mp3").arg(i, 4, 10, QLatin1Char('0')));
        QFile f(p);
        f.open(QIODevice::WriteOnly);
        QByteArray content = bases[i % bases.size()];
        if (i % 2 == 0)
            content += block(i);
        f.write(content);
        bytes += content.size();
        paths << p;
        names << QFile::encodeName(p);
    }

    cIDV3 t;
    long long check = 0;
    const auto cidv3 = [&](int i) { return readWithCIDV3(t, paths[i]); };
    const auto taglib = [&](int i) { return readWithTagLib(names[i]); };
    const auto bare = [&](int i) { return readBare(names[i]); };

    // Warm the cache and both readers.
    pass(files, bare, check);
    pass(files, cidv3, check);
    pass(files, taglib, check);

    std::vector<double> rc, rt, rb;
    for (int p = 0; p < passes; ++p) {
        rc.push_back(pass(files, cidv3, check));
        rt.push_back(pass(files, taglib, check));
        rb.push_back(pass(files, bare, check));
    }
    const double c = median(rc), tl = median(rt), b = median(rb);
    std::printf("bench_cidv3: %d generated MP3s (%d encodings, half with an ID3v1 block, %.1f MB), warm cache, median of %d passes\n",
                files, int(encodings.size()), bytes / 1e6, passes);
    std::printf("  cIDV3  filename + HasTag + all members      %8.0f files/s  (%5.1f us/file)\n", c, 1e6 / c);
    std::printf("  TagLib %d.%d ID3v1 fields + audio properties %8.0f files/s  (%5.1f us/file)\n", TAGLIB_MAJOR_VERSION,
                TAGLIB_MINOR_VERSION, tl, 1e6 / tl);
    std::printf("  bare reader, one 5 KB + one 128-byte read  %8.0f files/s  (%5.1f us/file)\n", b, 1e6 / b);
    std::printf("  cIDV3 / TagLib = %.2f (target: at least 2)   [check %lld]\n", c / tl, check % 1000);
    return 0;
}
