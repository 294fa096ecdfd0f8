#include "music/cIDV3.h"

#include "basic/ErrorStyles.h"
#include "basic/NumberText.h"
#include "music/CodePage.h"
#include "music/FileSlots.h"
#include "music/GenreTable.h"
#include "music/ListControl.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <concepts>

using basic::Integer;
using basic::Long;

namespace {

// Slot 1 is shared by every tag routine of every cIDV3; only the frame
// analysis asks for a free one.
constexpr int TagSlot = 1;

constexpr int FirstSearchOffset = 0;
constexpr int LastSearchOffset = 4999;
constexpr int XingOffset = 36;
constexpr int XingCountOffset = 44;
// Everything the analysis can touch: the search reads up to offset 5000,
// the "Xing" count of a frame at 4999 ends at 5046.
constexpr int HeadBytes = LastSearchOffset + XingCountOffset + 4;
// Enough for a frame at the start of the file, with its "Xing" count.
constexpr int ShortHeadBytes = 64;

constexpr int BadRecordNumber = 63;

music::FileSlots &fileSlots()
{
    return music::FileSlots::process();
}

template <std::size_t N>
void store(std::array<char16_t, N> &field, const QString &value)
{
    const std::size_t n = std::min<std::size_t>(static_cast<std::size_t>(value.size()), N);
    std::copy_n(value.utf16(), n, field.begin());
    std::fill(field.begin() + static_cast<std::ptrdiff_t>(n), field.end(), u' ');
}

template <std::size_t N>
QString text(const std::array<char16_t, N> &field)
{
    std::size_t n = N;
    while (n > 0 && field[n - 1] == u' ')
        --n;
    return QString(reinterpret_cast<const QChar *>(field.data()), static_cast<qsizetype>(n));
}

template <std::size_t N>
const std::uint8_t *decode(std::array<char16_t, N> &field, const std::uint8_t *bytes)
{
    for (auto &ch : field)
        ch = music::fromCodePage(*bytes++);
    return bytes;
}

template <std::size_t N>
std::uint8_t *encode(const std::array<char16_t, N> &field, std::uint8_t *bytes)
{
    for (char16_t ch : field)
        *bytes++ = music::toCodePage(ch);
    return bytes;
}

// A row entry by index; error 9 outside the row.
template <class T, std::size_t N>
T item(const std::array<T, N> &row, Long index)
{
    basic::checkIndex(index, 0, static_cast<long long>(N) - 1);
    return row[static_cast<std::size_t>(index)];
}

// Mid$ on the bit text: 1-based, and empty once the start lies behind it.
QStringView cut(QStringView bits, int position, int length)
{
    if (position > bits.size())
        return {};
    return bits.mid(position - 1, length);
}

// The flags index their pair with the cut text itself, so an empty cut is
// a type mismatch rather than 0.
Long flagIndex(QStringView bit)
{
    if (bit.isEmpty())
        basic::raise(basic::TypeMismatch);
    return bit == u"1" ? 1 : 0;
}

constexpr std::array<Integer, 4> VersionRow = {25, 0, 2, 1};
constexpr std::array<Integer, 4> LayerRow = {0, 3, 2, 1};
constexpr std::array<Long, 3> Mpeg1Rates = {44100, 48000, 32000};
constexpr std::array<Long, 3> Mpeg2Rates = {22050, 24000, 16000};

constexpr std::array<Integer, 15> Mpeg1Layer1 = {0, 32, 64, 96, 128, 160, 192, 224, 256, 288, 320, 352, 384, 416, 448};
constexpr std::array<Integer, 15> Mpeg1Layer2 = {0, 32, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320, 384};
constexpr std::array<Integer, 15> Mpeg1Layer3 = {0, 32, 40, 48, 56, 64, 80, 96, 112, 128, 160, 192, 224, 256, 320};
constexpr std::array<Integer, 15> Mpeg2Layer1 = {0, 32, 48, 56, 64, 80, 96, 112, 128, 144, 160, 176, 192, 224, 256};
constexpr std::array<Integer, 15> Mpeg2Layer23 = {0, 8, 16, 24, 32, 40, 48, 56, 64, 80, 96, 112, 128, 144, 160};

// InfoString's parts, gathered in one buffer before they become one
// string: the lines are short and their parts many. Numbers are written in
// plain decimal.
class InfoText {
public:
    template <std::size_t N>
    InfoText &operator<<(const char (&ascii)[N])
    {
        put(ascii, N - 1);
        return *this;
    }
    InfoText &operator<<(const QString &text)
    {
        if (char16_t *to = room(text.size()))
            std::copy_n(QStringView(text).utf16(), text.size(), to);
        return *this;
    }
    template <std::integral T>
    InfoText &operator<<(T number)
    {
        char digits[24];
        const char *end = std::to_chars(digits, digits + sizeof digits, number).ptr;
        put(digits, end - digits);
        return *this;
    }
    QString text() const { return QString(reinterpret_cast<const QChar *>(m_chars.data()), m_size); }

private:
    // Ten lines of fixed words and short values never come near the end.
    char16_t *room(qsizetype n)
    {
        if (n > qsizetype(m_chars.size()) - m_size)
            return nullptr;
        char16_t *at = m_chars.data() + m_size;
        m_size += n;
        return at;
    }
    void put(const char *ascii, qsizetype n)
    {
        if (char16_t *to = room(n))
            std::transform(ascii, ascii + n, to, [](char c) { return char16_t(static_cast<unsigned char>(c)); });
    }

    std::array<char16_t, 512> m_chars;
    qsizetype m_size = 0;
};

// The bitrate key: the decimal text of the version followed by that of the
// layer, taken as a number.
Long joinedDecimals(Integer version, Integer layer)
{
    char digits[16];
    char *end = std::to_chars(digits, digits + sizeof digits, version).ptr;
    end = std::to_chars(end, digits + sizeof digits, layer).ptr;
    long long key = 0;
    std::from_chars(digits, end, key);
    return basic::narrow<Long>(key);
}

// The version in the picture "#.0"; only version 1 ever gets this far, so
// the text is made once and kept.
QString versionText(Integer version)
{
    static Integer lastVersion = 1;
    static QString lastText = basic::formatNumber(1, u"#.0");
    if (version != lastVersion) {
        lastText = basic::formatNumber(version, u"#.0");
        lastVersion = version;
    }
    return lastText;
}

const std::array<QString, 4> &modeRow()
{
    static const std::array<QString, 4> row = {QStringLiteral("Stereo"), QStringLiteral("Joint Stereo"),
                                               QStringLiteral("Dual Channel"), QStringLiteral("Single Channel")};
    return row;
}

const std::array<QString, 4> &emphasisRow()
{
    static const std::array<QString, 4> row = {QStringLiteral("None"), QStringLiteral("50/15"),
                                               QStringLiteral("Reserved"), QStringLiteral("CCITT J 17")};
    return row;
}

const std::array<QString, 2> &noYes()
{
    static const std::array<QString, 2> row = {QStringLiteral("No"), QStringLiteral("Yes")};
    return row;
}

const std::array<QString, 2> &yesNo()
{
    static const std::array<QString, 2> row = {QStringLiteral("Yes"), QStringLiteral("No")};
    return row;
}

} // namespace

cIDV3::cIDV3()
{
    ClearFields();
}

void cIDV3::setfilename(const QString &path)
{
    const music::FileSlots::Batch batch(fileSlots());
    ClearFields();
    bool exists = false;
    FileExists(path, exists);
    if (exists) {
        m_filename = path;
        LoadTag();
    } else {
        m_filename = QString();
    }
}

void cIDV3::setComments(const QString &value) { store(m_tag.Comment, value); }
QString cIDV3::Comments() const { return text(m_tag.Comment); }
void cIDV3::setYear(const QString &value) { store(m_tag.Year, value); }
QString cIDV3::Year() const { return text(m_tag.Year); }
void cIDV3::setAlbum(const QString &value) { store(m_tag.Album, value); }
QString cIDV3::Album() const { return text(m_tag.Album); }
void cIDV3::setArtist(const QString &value) { store(m_tag.Artist, value); }
QString cIDV3::Artist() const { return text(m_tag.Artist); }
void cIDV3::setTitle(const QString &value) { store(m_tag.Title, value); }
QString cIDV3::Title() const { return text(m_tag.Title); }

void cIDV3::setGenre(Long value)
{
    if (value < 0 || value > 255)
        basic::raise(basic::Overflow);
    m_tag.Genre = static_cast<std::uint8_t>(value);
}

bool cIDV3::ClearTag()
{
    const music::FileSlots::Batch batch(fileSlots(), music::FileSlots::Write);
    bool exists = false;
    FileExists(m_filename, exists);
    if (!exists)
        return false;
    // A failure after the open leaves slot 1 taken: kept as it stands.
    return basic::falseOnError([&] {
        music::FileSlots &s = fileSlots();
        s.Open(TagSlot, m_filename, music::FileSlots::Write);
        s.Seek(TagSlot, s.LOF(TagSlot) - BlockBytes);
        // The genre byte at the very end is left as it was.
        const std::array<std::uint8_t, BlockBytes - 1> zeros{};
        s.Put(TagSlot, zeros.data(), zeros.size());
        s.Close(TagSlot);
        return true;
    });
}

void cIDV3::LoadTag()
{
    basic::ResumeNext next;
    bool exists = false;
    FileExists(m_filename, exists);
    if (!exists)
        return;
    bool tagged = false;
    next([&] { tagged = HasTag(); });
    if (tagged) {
        music::FileSlots &s = fileSlots();
        next([&] { s.Open(TagSlot, m_filename, music::FileSlots::Read); });
        next([&] {
            std::array<std::uint8_t, RecordBytes> bytes;
            s.Get(TagSlot, s.LOF(TagSlot) - RecordBytes, bytes.data(), bytes.size());
            readRecord(bytes.data());
        });
        next([&] { s.Close(TagSlot); });
    }
    // A file without a tag is still analysed.
    ReadMpegInfo();
}

void cIDV3::ReadMpegInfo()
{
    basic::ResumeNext next;
    music::FileSlots &s = fileSlots();

    int ff = 0;
    next([&] { ff = s.FreeFile(); });
    next([&] { s.Open(ff, m_filename, music::FileSlots::Read); });
    next([&] { m_FileBytes = basic::narrow<Long>(s.LOF(ff)); });

    // The bytes the search and the header reads can reach, read in place of
    // one at a time; past the end they are zero, and a read of a slot that
    // failed to open fails each time. Most files have their frame at the
    // very start, so the rest of the 5 KB is read only when a read goes
    // past the first 64 bytes, and then at once: a failure of that read
    // fails every byte, as one read of it all would.
    std::array<std::uint8_t, HeadBytes> head; // filled as far as loaded
    int loaded = 0;
    bool readable = false;
    auto load = [&](int upTo) {
        s.Get(ff, loaded, head.data() + loaded, upTo - loaded);
        loaded = upTo;
    };
    next([&] {
        load(ShortHeadBytes);
        readable = true;
    });
    auto byteAt = [&](Long q) -> std::uint8_t {
        if (q < 0)
            basic::raise(BadRecordNumber);
        if (readable && q >= loaded) {
            readable = false;
            load(HeadBytes);
            readable = true;
        }
        if (!readable)
            basic::raise(basic::BadFileNameOrNumber);
        return head[static_cast<std::size_t>(q)];
    };

    // Only FF FA and FF FB count: MPEG-1 Layer III with or without CRC.
    // When the file did not open, every read fails and leaves b at 0, so
    // the search is passed over with the same outcome.
    Long frame = -1;
    std::uint8_t b = 0;
    for (Long q = FirstSearchOffset; readable && q <= LastSearchOffset; ++q) {
        next([&] { b = byteAt(q); });
        if (b == 255) {
            next([&] { b = byteAt(q + 1); });
            if (b == 250 || b == 251) {
                frame = q;
                break;
            }
        }
    }

    // The frame offset is not tested: with no frame the reads below use
    // -1, kept as it stands. The "Xing" place is fixed at 36 for every
    // channel mode, and its flags word is never looked at.
    std::array<std::uint8_t, 4> word{};
    next([&] {
        for (int i = 0; i < 4; ++i)
            word[static_cast<std::size_t>(i)] = byteAt(frame + XingOffset + i);
    });
    if (word == std::array<std::uint8_t, 4>{'X', 'i', 'n', 'g'}) {
        std::array<std::uint8_t, 4> count{};
        next([&] {
            for (int i = 0; i < 4; ++i)
                count[static_cast<std::size_t>(i)] = byteAt(frame + XingCountOffset + i);
        });
        next([&] { m_Frames = BitsToLong(BytesToBits(count)); });
    }

    std::array<std::uint8_t, 4> header{};
    for (int i = 0; i < 4; ++i)
        next([&] { header[static_cast<std::size_t>(i)] = byteAt(frame + i); });
    next([&] { s.Close(ff); });

    const QString bits = BytesToBits(header);
    auto field = [&](int position, int length) { return BitsToLong(cut(bits, position, length)); };

    next([&] { m_MpegVersion = item(VersionRow, field(12, 2)); });
    next([&] { m_LayerVersion = item(LayerRow, field(14, 2)); });
    next([&] { m_Mode = item(modeRow(), field(25, 2)); });
    next([&] { m_Channels = m_Mode == QLatin1String("Single Channel") ? 1 : 2; });
    next([&] { m_Emphasis = item(emphasisRow(), field(31, 2)); });

    // The second row can never be chosen, since the version row holds no
    // 27: kept as it stands.
    const std::array<Long, 3> *rates = nullptr;
    if (m_MpegVersion == 1) {
        rates = &Mpeg1Rates;
    } else if (m_MpegVersion == 27) {
        rates = &Mpeg2Rates;
    } else {
        m_Hz = 0;
        return;
    }
    next([&] { m_Hz = item(*rates, field(21, 2)); });

    // Key 255 is reached by no version and layer, and its second test
    // could never win over the first: kept as it stands.
    Long key = 0;
    next([&] { key = joinedDecimals(m_MpegVersion, m_LayerVersion); });
    const std::array<Integer, 15> *bitrates = nullptr;
    if (key == 11)
        bitrates = &Mpeg1Layer1;
    else if (key == 12)
        bitrates = &Mpeg1Layer2;
    else if (key == 13)
        bitrates = &Mpeg1Layer3;
    else if (key == 255)
        bitrates = &Mpeg2Layer1;
    else if (key == 255)
        bitrates = &Mpeg2Layer23;
    else {
        m_Kbits = 1;
        return;
    }
    next([&] { m_Kbits = item(*bitrates, field(17, 4)); });

    next([&] { m_Original = item(noYes(), flagIndex(cut(bits, 30, 1))); });
    next([&] { m_Copyrighted = item(noYes(), flagIndex(cut(bits, 29, 1))); });
    next([&] { m_PrivateBit = item(noYes(), flagIndex(cut(bits, 24, 1))); });
    // A protection bit of 0 announces a CRC.
    next([&] { m_CRCs = item(yesNo(), flagIndex(cut(bits, 16, 1))); });

    // From the length and the first frame's rate alone, tags and "Xing"
    // count ignored. The 32-bit product overflows from 256 MiB on, which
    // leaves 0.
    next([&] {
        const double exact = basic::fdiv(basic::fdiv(basic::mul<Long>(m_FileBytes, 8), m_Kbits), 1000);
        m_Seconds = basic::narrow<Integer>(static_cast<long long>(std::floor(exact)));
    });

    // Ten lines, numbers in plain decimal, no line end behind the last.
    InfoText info;
    info << "Size: " << m_FileBytes << " bytes\r\n";
    info << "Length: " << m_Seconds << " seconds\r\n";
    info << "MPEG " << versionText(m_MpegVersion) << " layer " << m_LayerVersion << "\r\n";
    info << m_Kbits << "kbit, " << m_Frames << " frames\r\n";
    info << m_Hz << "hz " << m_Mode << "\r\n";
    info << "Private: " << m_PrivateBit << "\r\n";
    info << "CRCs: " << m_CRCs << "\r\n";
    info << "Copyrighted: " << m_Copyrighted << "\r\n";
    info << "Original: " << m_Original << "\r\n";
    info << "Emphasis: " << m_Emphasis;
    m_InfoString = info.text();
}

void cIDV3::ClearFields()
{
    // InfoString is left alone: an analysis that ends early shows the
    // text of the file before. Kept as it stands.
    m_tag.Title.fill(u' ');
    m_tag.Artist.fill(u' ');
    m_tag.Album.fill(u' ');
    m_tag.Year.fill(u' ');
    m_tag.Comment.fill(u' ');
    m_tag.Genre = 12;
    m_FileBytes = 0;
    m_Seconds = 0;
    m_MpegVersion = 0;
    m_LayerVersion = 0;
    m_Kbits = 0;
    m_Frames = 0;
    m_Hz = 0;
    m_Mode.clear();
    m_PrivateBit.clear();
    m_CRCs.clear();
    m_Copyrighted.clear();
    m_Original.clear();
    m_Emphasis.clear();
    m_Channels = 0;
}

bool cIDV3::HasTag()
{
    const music::FileSlots::Batch batch(fileSlots());
    bool exists = false;
    FileExists(m_filename, exists);
    if (!exists)
        return false;
    // A failure after the open leaves slot 1 taken: kept as it stands.
    return basic::falseOnError([&] {
        music::FileSlots &s = fileSlots();
        s.Open(TagSlot, m_filename, music::FileSlots::Read);
        std::array<std::uint8_t, 3> marker;
        s.Get(TagSlot, s.LOF(TagSlot) - BlockBytes, marker.data(), marker.size());
        s.Close(TagSlot);
        // Blind to case, although WriteTag always writes capitals.
        return QChar::toUpper(music::fromCodePage(marker[0])) == u'T'
            && QChar::toUpper(music::fromCodePage(marker[1])) == u'A'
            && QChar::toUpper(music::fromCodePage(marker[2])) == u'G';
    });
}

bool cIDV3::WriteTag()
{
    const music::FileSlots::Batch batch(fileSlots(), music::FileSlots::Write);
    bool exists = false;
    FileExists(m_filename, exists);
    if (!exists)
        return false;
    // Over the last 128 bytes whatever they hold, tag or audio; the file
    // never grows. A failure after the open leaves slot 1 taken.
    return basic::falseOnError([&] {
        music::FileSlots &s = fileSlots();
        s.Open(TagSlot, m_filename, music::FileSlots::Write);
        s.Seek(TagSlot, s.LOF(TagSlot) - BlockBytes);
        std::array<std::uint8_t, BlockBytes> block{'T', 'A', 'G'};
        writeRecord(block.data() + 3);
        s.Put(TagSlot, block.data(), block.size());
        s.Close(TagSlot);
        return true;
    });
}

QString cIDV3::GenreText(Integer index) const
{
    if (index >= 0 && index < music::GenreCount)
        return music::genreName(index);
    return QStringLiteral("Unknown");
}

void cIDV3::FillComboGenre(ListControl &list, Integer &index) const
{
    basic::ResumeNext next;
    // A genre byte of 148 or more shows as "Blues", and saving then writes 0.
    if (index < 0 || index > music::GenreCount - 1)
        index = 0;
    next([&] { list.Clear(); });
    for (Integer i = 0; i < music::GenreCount; ++i)
        next([&] { list.AddItem(GenreText(i)); });
    next([&] { list.setListIndex(index); });
}

void cIDV3::FileExists(const QString &path, bool &exists)
{
    // Whether the file system answers a length query: a file of 0 bytes
    // exists, the empty path does not.
    exists = false;
    basic::ResumeNext next;
    next([&] {
        fileSlots().FileLen(path);
        exists = true;
    });
}

QString cIDV3::BytesToBits(std::array<std::uint8_t, 4> &bytes)
{
    // Leading zero bits are left out, so an all-zero group gives the empty
    // text and a field cut by position moves; kept as it stands. The bytes
    // are used up.
    std::array<char16_t, 32> bits;
    qsizetype n = 0;
    for (auto &byte : bytes) {
        for (int bit = 7; bit >= 0; --bit) {
            const unsigned value = 1u << bit; // 128 down to 1, so the division is a shift
            if (byte / value == 1) {
                bits[static_cast<std::size_t>(n++)] = u'1';
                byte = static_cast<std::uint8_t>(byte - value);
            } else if (n > 0) {
                bits[static_cast<std::size_t>(n++)] = u'0';
            }
        }
    }
    return QString(reinterpret_cast<const QChar *>(bits.data()), n);
}

Long cIDV3::BitsToLong(QStringView bits)
{
    // Weights count from the right end; a 1 in the 32nd place overflows.
    const qsizetype n = bits.size();
    Long value = 0;
    for (qsizetype i = 1; i <= n; ++i) {
        if (bits[i - 1] != u'1')
            continue;
        if (n - i > 31)
            basic::raise(basic::Overflow);
        value = basic::narrow<Long>(static_cast<long long>(value) + (1LL << (n - i)));
    }
    return value;
}

void cIDV3::readRecord(const std::uint8_t *bytes)
{
    bytes = decode(m_tag.Title, bytes);
    bytes = decode(m_tag.Artist, bytes);
    bytes = decode(m_tag.Album, bytes);
    bytes = decode(m_tag.Year, bytes);
    bytes = decode(m_tag.Comment, bytes);
    m_tag.Genre = *bytes;
}

void cIDV3::writeRecord(std::uint8_t *bytes) const
{
    bytes = encode(m_tag.Title, bytes);
    bytes = encode(m_tag.Artist, bytes);
    bytes = encode(m_tag.Album, bytes);
    bytes = encode(m_tag.Year, bytes);
    bytes = encode(m_tag.Comment, bytes);
    *bytes = m_tag.Genre;
}
