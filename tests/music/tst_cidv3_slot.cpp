// A file shorter than 128 bytes takes file slot 1 until the process ends.
// This binary holds that one story, since nothing can give the slot back.

#include "TagFiles.h"

#include "music/FileSlots.h"
#include "music/cIDV3.h"

#include <QTemporaryDir>
#include <QTest>

using namespace tagfiles;

class tst_cidv3_slot : public QObject {
    Q_OBJECT
private slots:
    void shortFileTakesTheSlotForGood();
};

void tst_cidv3_slot::shortFileTakesTheSlotForGood()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QByteArray audio = filler(1000);
    audio.replace(0, 4, QByteArray::fromHex("fffb9000"));
    const QByteArray tagged = audio + block("TAG", "Before", "", "", "", "", 5);
    const QString good = write(dir.path(), "good.mp3", tagged);

    cIDV3 a;
    a.setfilename(good);
    QCOMPARE(a.Title(), QStringLiteral("Before"));
    QVERIFY(a.HasTag());
    const int handles = openHandles();
    QVERIFY(!music::FileSlots::process().IsOpen(1));

    // 100 bytes: it exists, so it is kept and analysed, but the seek to
    // -28 fails after the open and slot 1 stays taken.
    const QString shortFile = write(dir.path(), "short.mp3", QByteArray::fromHex("fffb9000") + filler(96));
    cIDV3 b;
    b.setfilename(shortFile);
    QCOMPARE(b.filename(), shortFile);
    QCOMPARE(b.FileBytes(), 100);
    QCOMPARE(b.Kbits(), 128); // the analysis took the next free slot
    QCOMPARE(b.Title(), QString());
    QVERIFY(music::FileSlots::process().IsOpen(1));
    QCOMPARE(openHandles(), handles + 1);

    // From now on every tag routine of every object answers false, and
    // nothing reaches the disk.
    QVERIFY(!a.HasTag());
    a.setTitle(QStringLiteral("After"));
    QVERIFY(!a.WriteTag());
    QVERIFY(!a.ClearTag());
    QCOMPARE(read(good), tagged);

    cIDV3 c;
    c.setfilename(good);
    QCOMPARE(c.filename(), good);
    QCOMPARE(c.Title(), QString()); // no tag read, since HasTag said no
    QCOMPARE(c.Genre(), 12);
    QCOMPARE(c.Kbits(), 128);       // the analysis still runs
    QCOMPARE(c.FileBytes(), 1128);
    QVERIFY(c.InfoString().startsWith(QStringLiteral("Size: 1128 bytes")));

    // A file of 0 bytes exists too, and fares no better.
    const QString empty = write(dir.path(), "empty.mp3", QByteArray());
    c.setfilename(empty);
    QCOMPARE(c.filename(), empty);
    QCOMPARE(c.FileBytes(), 0);
    QVERIFY(!c.WriteTag());
    QCOMPARE(read(empty), QByteArray());

    // The slot holds its one handle and no more, however often we come.
    for (int i = 0; i < 40; ++i) {
        c.setfilename(i % 2 ? good : shortFile);
        c.WriteTag();
        c.ClearTag();
    }
    QCOMPARE(openHandles(), handles + 1);
    QCOMPARE(read(good), tagged);
    QCOMPARE(read(shortFile).size(), 100);
}

QTEST_GUILESS_MAIN(tst_cidv3_slot)
#include "tst_cidv3_slot.moc"
