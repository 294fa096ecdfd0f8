// libFuzzer target: arbitrary bytes as an MP3 file, then every public
// member of cIDV3. Besides crashes and sanitizer reports it stops on a
// broken promise of the class: the file never changes length, a block
// written reads back as a tag, a cleared block keeps its genre byte.

#include "basic/RuntimeError.h"
#include "music/FileSlots.h"
#include "music/ListControl.h"
#include "music/cIDV3.h"

#include <QFile>
#include <QString>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

struct CountingList : ListControl {
    long long seen = 0;
    int index = -1;
    void Clear() override { seen = 0; }
    void AddItem(const QString &item) override { seen += item.size(); }
    void setListIndex(int i) override { index = i; }
};

void require(bool condition, const char *what)
{
    if (!condition) {
        std::fprintf(stderr, "broken promise: %s\n", what);
        std::abort();
    }
}

std::string workDir;

void removeWorkDir()
{
    if (workDir.empty())
        return;
    ::unlink((workDir + "/input.mp3").c_str());
    ::rmdir(workDir.c_str());
}

const std::string &inputPath()
{
    static const std::string path = [] {
        char shm[] = "/dev/shm/cidv3-fuzz-XXXXXX";
        char tmp[] = "/tmp/cidv3-fuzz-XXXXXX";
        const char *dir = ::mkdtemp(shm);
        if (!dir)
            dir = ::mkdtemp(tmp);
        if (!dir) {
            std::perror("mkdtemp");
            std::abort();
        }
        workDir = dir;
        std::atexit(removeWorkDir);
        return workDir + "/input.mp3";
    }();
    return path;
}

void writeInput(const std::string &path, const std::uint8_t *data, std::size_t size)
{
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    require(fd >= 0, "the input file can be written");
    std::size_t done = 0;
    while (done < size) {
        const ssize_t n = ::write(fd, data + done, size - done);
        require(n > 0, "the input file can be written");
        done += std::size_t(n);
    }
    ::close(fd);
}

std::string readAll(const std::string &path)
{
    std::string bytes;
    FILE *f = std::fopen(path.c_str(), "rb");
    if (!f)
        return bytes;
    char buf[4096];
    std::size_t n;
    while ((n = std::fread(buf, 1, sizeof buf, f)) > 0)
        bytes.append(buf, n);
    std::fclose(f);
    return bytes;
}

volatile long long sink;

void touchEverything(cIDV3 &t)
{
    long long s = t.InfoString().size() + t.FileBytes() + t.Seconds() + t.MpegVersion() + t.LayerVersion() + t.Kbits()
        + t.Frames() + t.Hz() + t.Mode().size() + t.PrivateBit().size() + t.CRCs().size() + t.Copyrighted().size()
        + t.Original().size() + t.Emphasis().size() + t.Channels() + t.filename().size() + t.Comments().size()
        + t.Year().size() + t.Album().size() + t.Artist().size() + t.Title().size() + t.Genre();
    sink = sink + s;

    // A run that reached its end leaves ten lines that start with the length.
    if (t.MpegVersion() == 1 && t.Kbits() != 1 && !t.filename().isEmpty()) {
        require(t.InfoString().count(QStringLiteral("\r\n")) == 9, "a complete InfoString has ten lines");
        require(t.InfoString().startsWith(QStringLiteral("Size: %1 bytes\r\n").arg(t.FileBytes())),
                "InfoString starts with the length");
    }
    require(t.Channels() == 0 || t.Channels() == 1 || t.Channels() == 2, "Channels is 0, 1 or 2");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string &path = inputPath();
    writeInput(path, data, size);
    const QString file = QFile::decodeName(path.c_str());

    cIDV3 t;
    t.setfilename(file);
    require(t.filename() == file, "an existing file is kept");
    require(t.FileBytes() == 0 || t.FileBytes() == basic::Long(size), "FileBytes is the length");
    touchEverything(t);

    // Text from the input itself, as UTF-16 with lone surrogates and zeros.
    std::u16string units(size / 2, u'\0');
    std::memcpy(units.data(), data, units.size() * 2);
    const QString text = QString::fromUtf16(units.data(), qsizetype(units.size()));
    t.setTitle(text);
    t.setArtist(text.mid(1));
    t.setAlbum(text.left(7));
    t.setYear(text.mid(2, 5));
    t.setComments(text.mid(5));

    basic::Long genre = 0;
    if (size >= 4)
        std::memcpy(&genre, data, 4);
    try {
        t.setGenre(genre);
        require(genre >= 0 && genre <= 255 && t.Genre() == genre, "a genre in range is stored");
    } catch (const basic::RuntimeError &e) {
        require(e.number() == basic::Overflow && (genre < 0 || genre > 255), "only a genre out of range raises 6");
    }

    const bool hadTag = t.HasTag();
    (void)hadTag;
    const bool wrote = t.WriteTag();
    std::string after = readAll(path);
    require(after.size() == size, "WriteTag never changes the length");
    if (wrote) {
        require(size >= 128 && after.compare(size - 128, 3, "TAG") == 0, "a written block starts with TAG");
        require(t.HasTag(), "a written block is a tag");
        cIDV3 r;
        r.setfilename(file);
        require(r.Genre() == t.Genre(), "the genre byte reads back");
        require(r.Title().size() <= 30 && r.Year().size() <= 4, "fields keep their width");
        touchEverything(r);
    }

    const char lastByte = after.empty() ? 0 : after.back();
    const bool cleared = t.ClearTag();
    after = readAll(path);
    require(after.size() == size, "ClearTag never changes the length");
    if (cleared) {
        require(size >= 128 && after.compare(size - 128, 127, std::string(127, '\0')) == 0 && after.back() == lastByte,
                "a cleared block is 127 zero bytes and the old genre");
        require(!t.HasTag(), "a cleared block is no tag");
    }
    touchEverything(t);

    const basic::Integer index = size >= 6 ? basic::Integer(data[4] | data[5] << 8) : basic::Integer(size);
    sink = sink + t.GenreText(index).size();
    CountingList list;
    basic::Integer chosen = index;
    t.FillComboGenre(list, chosen);
    require(chosen >= 0 && chosen <= 147 && list.index == chosen, "the list selects an entry of the table");

    // The same object on a path that is not there.
    t.setfilename(file + QStringLiteral(".gone"));
    require(t.filename().isEmpty(), "a missing file reads back empty");
    require(!t.HasTag() && !t.WriteTag() && !t.ClearTag(), "a missing file answers false");
    touchEverything(t);

    // A short input leaves slot 1 taken for good; start the next afresh.
    music::FileSlots::process().Reset();
    return 0;
}
