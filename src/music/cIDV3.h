#pragma once

#include "basic/Checked.h"

#include <QString>

#include <array>
#include <cstdint>

class ListControl;

// The ID3v1 block of one MP3 file and the facts of its first MPEG frame.
//
// Nothing here shows a message: failures come back as false answers or
// blank members, apart from the Genre setter, which raises. The tag
// routines share file slot 1 of the process; see FileSlots. Each public
// call that touches the file runs as one FileSlots::Batch, so its several
// opens of the file cost the system one, and a call on the file the call
// before read costs a status query while the file is unchanged.
class cIDV3 {
public:
    cIDV3();

    QString InfoString() const { return m_InfoString; }
    basic::Long FileBytes() const { return m_FileBytes; }
    basic::Integer Seconds() const { return m_Seconds; }
    basic::Integer MpegVersion() const { return m_MpegVersion; }
    basic::Integer LayerVersion() const { return m_LayerVersion; }
    basic::Integer Kbits() const { return m_Kbits; }
    basic::Long Frames() const { return m_Frames; }
    basic::Long Hz() const { return m_Hz; }
    QString Mode() const { return m_Mode; }
    QString PrivateBit() const { return m_PrivateBit; }
    QString CRCs() const { return m_CRCs; }
    QString Copyrighted() const { return m_Copyrighted; }
    QString Original() const { return m_Original; }
    QString Emphasis() const { return m_Emphasis; }
    basic::Integer Channels() const { return m_Channels; }

    // Loads the file: its block when it has one, then the frame analysis.
    // A path that does not exist reads back empty.
    void setfilename(const QString &path);
    QString filename() const { return m_filename; }

    // Text setters cut at the field width or fill with blanks; getters
    // drop trailing blanks and nothing else, zero bytes included.
    void setComments(const QString &value);
    QString Comments() const;
    void setYear(const QString &value);
    QString Year() const;
    void setAlbum(const QString &value);
    QString Album() const;
    void setArtist(const QString &value);
    QString Artist() const;
    void setTitle(const QString &value);
    QString Title() const;

    // Run-time error 6 outside 0..255.
    void setGenre(basic::Long value);
    basic::Long Genre() const { return m_tag.Genre; }

    // Blanks the block on disk: 127 zero bytes, the genre byte stays.
    bool ClearTag();

private:
    void LoadTag();
    void ReadMpegInfo();
    void ClearFields();

public:
    bool HasTag();
    // Always over the last 128 bytes: the file never grows.
    bool WriteTag();
    QString GenreText(basic::Integer index) const;
    // Moves an index outside the table to 0, in the caller's variable too.
    void FillComboGenre(ListControl &list, basic::Integer &index) const;

private:
    static void FileExists(const QString &path, bool &exists);
    static QString BytesToBits(std::array<std::uint8_t, 4> &bytes);
    static basic::Long BitsToLong(QStringView bits);

    template <std::size_t N>
    using Field = std::array<char16_t, N>;

    // The 125 bytes behind the marker, in the file's order, held as text of
    // fixed width the way the setters leave it.
    struct Record {
        Field<30> Title;
        Field<30> Artist;
        Field<30> Album;
        Field<4> Year;
        Field<30> Comment;
        std::uint8_t Genre;
    };
    static constexpr int RecordBytes = 125;
    static constexpr int BlockBytes = 128;

    void readRecord(const std::uint8_t *bytes);
    void writeRecord(std::uint8_t *bytes) const;

    QString m_filename;
    Record m_tag{};
    QString m_InfoString;
    basic::Long m_FileBytes = 0;
    basic::Integer m_Seconds = 0;
    basic::Integer m_MpegVersion = 0;
    basic::Integer m_LayerVersion = 0;
    basic::Integer m_Kbits = 0;
    basic::Long m_Frames = 0;
    basic::Long m_Hz = 0;
    QString m_Mode;
    QString m_PrivateBit;
    QString m_CRCs;
    QString m_Copyrighted;
    QString m_Original;
    QString m_Emphasis;
    basic::Integer m_Channels = 0;
};
