// libFuzzer target: arbitrary bytes as an MP3 file, then every public member
// of cIDV3, stopping also on a broken promise of the class.
#include "../TagFiles.h"
#include "music/FileSlots.h"

#include <cstdio>

#define REQUIRE(condition) (condition) ? void() : (std::fprintf(stderr, "broken promise: %s\n", #condition), std::abort())

namespace {

// A run that reached its end leaves ten lines that start with the length.
void checkFacts(const cIDV3 &t)
{
    const QString info = t.InfoString();
    REQUIRE(t.MpegVersion() != 1 || t.Kbits() == 1 || t.filename().isEmpty()
            || (info.count("\r\n") == 9 && info.startsWith(QString("Size: %1 bytes\r\n").arg(t.FileBytes()))));
    REQUIRE(t.Channels() >= 0 && t.Channels() <= 2 && t.Title().size() <= 30 && t.Year().size() <= 4);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char *data, std::size_t size)
{
    static QTemporaryDir dir(QStringLiteral("/dev/shm/cidv3-fuzz-XXXXXX"));
    const QByteArray input(reinterpret_cast<const char *>(data), qsizetype(size));
    const QString file = tagfiles::write(dir.path(), "input.mp3", input);
    cIDV3 t, r;
    t.setfilename(file);
    REQUIRE(t.filename() == file && (t.FileBytes() == 0 || t.FileBytes() == basic::Long(size)));
    checkFacts(t);
    // Text from the input itself, as UTF-16 with lone surrogates and zeros.
    const QString text = QString::fromUtf16(reinterpret_cast<const char16_t *>(input.constData()), qsizetype(size / 2));
    t.setTitle(text);
    t.setArtist(text.mid(1));
    t.setAlbum(text.left(7));
    t.setYear(text.mid(2, 5));
    t.setComments(text.mid(5));
    const basic::Long genre = size >= 4 ? basic::Long(data[0] | data[1] << 8 | data[2] << 16 | unsigned(data[3]) << 24) : 0;
    const int error = tagfiles::errorOf([&] { t.setGenre(genre); });
    REQUIRE(genre >= 0 && genre <= 255 ? error == 0 && t.Genre() == genre : error == basic::Overflow);

    // The file keeps its length; a block written is a tag whose genre reads
    // back, and a cleared one is no tag and keeps its genre byte.
    const bool wrote = t.WriteTag();
    const QByteArray written = tagfiles::read(file);
    REQUIRE(written.size() == input.size() && (!wrote || (written.right(128).startsWith("TAG") && t.HasTag())));
    r.setfilename(file);
    REQUIRE(!wrote || r.Genre() == t.Genre());
    checkFacts(r);
    const bool cleared = t.ClearTag();
    const QByteArray after = tagfiles::read(file);
    REQUIRE(after.size() == input.size() && (!cleared || (after.right(128) == QByteArray(127, '\0') + written.right(1) && !t.HasTag())));

    const basic::Integer index = size >= 6 ? basic::Integer(data[4] | data[5] << 8) : basic::Integer(size);
    tagfiles::RecordingList list;
    basic::Integer chosen = index;
    t.FillComboGenre(list, chosen);
    REQUIRE(!t.GenreText(index).isEmpty() && chosen >= 0 && chosen <= 147 && list.index == chosen);
    t.setfilename(file + ".gone");
    REQUIRE(t.filename().isEmpty() && !t.HasTag() && !t.WriteTag() && !t.ClearTag());
    checkFacts(t);
    // A short input leaves slot 1 taken for good; start the next afresh.
    music::FileSlots::process().Reset();
    return 0;
}
