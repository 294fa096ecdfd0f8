#include "music/TagEditor.h"

#include "music/ComboList.h"
#include "music/cIDV3.h"
#include "platform/Dialogs.h"
#include "platform/ErrorBoundary.h"
#include "platform/LocalEngine.h"
#include "platform/Platform.h"
#include "platform/Twips.h"
#include "widgets/GlowButton.h"

#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <algorithm>

namespace {

QLabel *fieldLabel(QWidget *parent, const QString &caption, int top)
{
    auto *l = new QLabel(caption, parent);
    twips::place(l, 120, top, 900, 285);
    return l;
}

QLineEdit *field(QWidget *parent, const char *name, const QString &tip, int limit, int top)
{
    auto *e = new QLineEdit(parent);
    e->setObjectName(QLatin1String(name));
    e->setToolTip(tip);
    if (limit > 0)
        e->setMaxLength(limit); // the tag block's own limits
    twips::place(e, 1080, top, 6960, 315);
    return e;
}

GlowButton *editorButton(QWidget *parent, const char *name, const QString &caption, int left)
{
    auto *b = new GlowButton(parent, QLatin1String(name));
    b->setCaption(caption);
    twips::place(b, left, 7440, 1215, 405);
    return b;
}

} // namespace

TagEditor::TagEditor(Platform &platform, QWidget *panel, QWidget *invisibles, LocalEngine *engine)
    : QObject(panel)
    , m_platform(platform)
    , m_engine(engine)
{
    Frame2 = new QGroupBox(QStringLiteral("File Info"), panel);
    Frame2->setObjectName(QStringLiteral("Frame2"));
    twips::place(Frame2, 240, 4920, 8280, 2880);
    Label3 = fieldLabel(Frame2, QStringLiteral("Path"), 300);
    Label3->setObjectName(QStringLiteral("Label3"));
    txtFilename = field(Frame2, "txtFilename", QStringLiteral("File Path"), 0, 300);
    const struct {
        const char *name;
        const char *caption;
        const char *tip;
        int limit;
    } fields[] = {{"txtTitle", "Title", "Title of the Song", 30}, {"txtArtist", "Artist", "Artist", 30},
                  {"txtAlbum", "Album", "Album", 30},             {"txtYear", "Year", "Year", 4},
                  {"txtComment", "Comment", "Comment", 30}};
    QLineEdit **boxes[] = {&txtTitle, &txtArtist, &txtAlbum, &txtYear, &txtComment};
    int top = 660;
    for (int i = 0; i < 5; ++i, top += 360) {
        QLabel *l = fieldLabel(Frame2, QLatin1String(fields[i].caption), top);
        l->setObjectName(QStringLiteral("lblFields"));
        lblFields << l;
        *boxes[i] = field(Frame2, fields[i].name, QLatin1String(fields[i].tip), fields[i].limit, top);
    }
    QLabel *genre = fieldLabel(Frame2, QStringLiteral("Genre"), top);
    genre->setObjectName(QStringLiteral("lblFields"));
    lblFields << genre;
    cboGenre = new QComboBox(Frame2);
    cboGenre->setObjectName(QStringLiteral("cboGenre"));
    cboGenre->setToolTip(QStringLiteral("Genere"));
    twips::place(cboGenre, 1080, top, 3000, 315);

    mpeginfo = new QGroupBox(QStringLiteral("MPEG Info"), panel);
    mpeginfo->setObjectName(QStringLiteral("mpeginfo"));
    mpeginfo->setToolTip(QStringLiteral("Information About Current Mp3"));
    twips::place(mpeginfo, 8640, 4920, 3960, 2400);
    lblInfo = new QLabel(QStringLiteral("Info"), mpeginfo);
    lblInfo->setObjectName(QStringLiteral("lblInfo"));
    lblInfo->setWordWrap(true);
    lblInfo->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    twips::place(lblInfo, 120, 300, 3720, 1980);

    cmdsave = editorButton(panel, "cmdsave", QStringLiteral("Save"), 8640);
    cmdcancel = editorButton(panel, "cmdcancel", QStringLiteral("Cancel All"), 9960);
    cmdremove = editorButton(panel, "cmdremove", QStringLiteral("Clear"), 11280);

    Command5 = new QPushButton(QStringLiteral("Command5"), invisibles);
    Command5->setObjectName(QStringLiteral("Command5"));

    if (!m_engine) {
        // What the station panels' Load does at its last step, for their
        // whole life; their handlers can never be reached, so none is wired.
        cmdsave->setEnabled(false);
        cmdremove->setEnabled(false);
        cmdcancel->setEnabled(false);
        return;
    }
    on(Command5, &QPushButton::clicked, [this] { Command5_Click(); });
    on(cmdsave, &GlowButton::Click, [this] { cmdsave_Click(); });
    on(cmdcancel, &GlowButton::Click, [this] { cmdcancel_Click(); });
    on(cmdremove, &GlowButton::Click, [this] { cmdremove_Click(); });
}

TagEditor::~TagEditor() = default;

template <class Sender, class Signal, class Handler>
void TagEditor::on(Sender *sender, Signal signal, Handler handler)
{
    connect(sender, signal, this, [this, handler] { boundary::run(m_platform.dialogs, m_platform.process, handler); });
}

void TagEditor::fitLeftOfDeck()
{
    constexpr int FieldWidth = 2760;
    twips::place(Frame2, 240, 4920, 3960, 2880);
    for (QLineEdit *f : {txtFilename, txtTitle, txtArtist, txtAlbum, txtYear, txtComment})
        f->resize(twips::toPixels(FieldWidth), f->height());
    cboGenre->resize(std::min(cboGenre->width(), twips::toPixels(FieldWidth)), cboGenre->height());
    twips::place(mpeginfo, 4260, 4920, 2700, 2400);
    twips::place(lblInfo, 120, 300, 2460, 1980);
    twips::place(cmdsave, 4260, 7440, 780, 405);
    twips::place(cmdcancel, 5100, 7440, 1020, 405);
    twips::place(cmdremove, 6180, 7440, 780, 405);
}

cIDV3 &TagEditor::madeTag()
{
    if (!m_mTag)
        m_mTag = std::make_shared<cIDV3>();
    return *m_mTag;
}

void TagEditor::Command5_Click()
{
    cIDV3 &tag = madeTag();
    // From the file in the player, not from the list's selection.
    txtFilename->setText(m_engine->FileName());
    tag.setfilename(txtFilename->text());
    ComboList genres(*cboGenre);
    if (tag.HasTag()) {
        basic::Integer genre = basic::narrow<basic::Integer>(tag.Genre());
        tag.FillComboGenre(genres, genre);
        txtAlbum->setText(tag.Album());
        txtArtist->setText(tag.Artist());
        txtComment->setText(tag.Comments());
        txtTitle->setText(tag.Title());
        txtYear->setText(tag.Year());
    } else {
        // The boxes keep the texts of the file before, and a Save writes
        // them into this one. Kept as it stands.
        basic::Integer blues = 0;
        tag.FillComboGenre(genres, blues);
    }
    lblInfo->setText(tag.InfoString());
}

void TagEditor::cmdsave_Click()
{
    // The words go to a caption nobody sees; no message. Kept as they stand.
    switch (m_engine->PlayState()) {
    case 0: Command5->setText(QStringLiteral("stoped")); return;
    case 6: Command5->setText(QStringLiteral("Clsoed")); return;
    default: break;
    }
    cIDV3 &tag = madeTag();
    tag.setAlbum(txtAlbum->text());
    tag.setArtist(txtArtist->text());
    tag.setComments(txtComment->text());
    tag.setTitle(txtTitle->text());
    tag.setYear(txtYear->text());
    tag.setGenre(cboGenre->currentIndex()); // -1 on an empty list overflows, uncaught
    // Written over the file the engine is reading, to the file of the last
    // load; success is announced whatever the answer.
    (void)tag.WriteTag();
    m_platform.dialogs.MsgBox(QStringLiteral("Tag Saved Success Fully"));
}

void TagEditor::cmdremove_Click()
{
    (void)madeTag().ClearTag();
}

void TagEditor::cmdcancel_Click()
{
    m_platform.dialogs.MsgBox(QStringLiteral("Tag Not Saved"));
}
