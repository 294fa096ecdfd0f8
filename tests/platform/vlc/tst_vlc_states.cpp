// The engines' one-place mappings and the animation surface: no libvlc
// instance, no services.
#include "platform/MovieAnimation.h"
#include "platform/vlc/VlcLocalEngine.h"
#include "platform/vlc/VlcStationEngine.h"

#include <QDir>
#include <QLabel>
#include <QMovie>
#include <QTest>
#include <QWidget>

class tst_vlc_states : public QObject {
    Q_OBJECT

private slots:
    void stationPlayState();
    void localPlayState();
    void positionText();
    void localVolumeInDecibels();
    void animationRunsHoldsStops();
    void animationMissingFile();
    void animationLabelLifetime();

private:
    static QString playGif()
    {
        QString top = qEnvironmentVariable("ZARVENT_SOURCE_DIR");
        if (top.isEmpty())
            top = QStringLiteral(ZARVENT_SOURCE_DIR_DEFAULT);
        return QDir(top).filePath(QStringLiteral("img/play.gif"));
    }
    static QImage shown(QLabel *label) { return label->movie() ? label->movie()->currentImage() : QImage(); }
};

void tst_vlc_states::stationPlayState()
{
    const auto map = &VlcStationEngine::playStateOf;
    // Every libvlc state once, buffering done, a media set.
    QCOMPARE(map(libvlc_NothingSpecial, 100, false), 0);
    QCOMPARE(map(libvlc_Opening, 100, true), 9);
    QCOMPARE(map(libvlc_Buffering, 100, true), 6);
    QCOMPARE(map(libvlc_Playing, 100, true), 3);
    QCOMPARE(map(libvlc_Paused, 100, true), 2);
    QCOMPARE(map(libvlc_Stopped, 100, true), 1);
    QCOMPARE(map(libvlc_Ended, 100, true), 8);
    QCOMPARE(map(libvlc_Error, 100, true), 0);
    // Ready only for a media opened and not started.
    QCOMPARE(map(libvlc_NothingSpecial, 0, true), 10);
    // Playing with the cache still filling is buffering, up to the last percent.
    QCOMPARE(map(libvlc_Playing, 0, true), 6);
    QCOMPARE(map(libvlc_Playing, 99.9f, true), 6);
    // Buffering reported while opening or paused does not turn them into 6.
    QCOMPARE(map(libvlc_Opening, 40, true), 9);
    QCOMPARE(map(libvlc_Paused, 40, true), 2);
    // Ended is not Stopped, Error is not Stopped.
    QVERIFY(map(libvlc_Ended, 100, true) != map(libvlc_Stopped, 100, true));
    QVERIFY(map(libvlc_Error, 100, true) != 1);
    // Out of range values from a newer libvlc are none of the known states.
    QCOMPARE(map(static_cast<libvlc_state_t>(42), 100, true), 0);
}

void tst_vlc_states::localPlayState()
{
    const auto map = &VlcLocalEngine::playStateOf;
    const libvlc_state_t all[] = {libvlc_NothingSpecial, libvlc_Opening, libvlc_Buffering, libvlc_Playing,
                                  libvlc_Paused, libvlc_Stopped, libvlc_Ended, libvlc_Error};
    for (libvlc_state_t s : all)
        QCOMPARE(map(s, false), 6); // no file: closed, whatever libvlc says
    QCOMPARE(map(libvlc_NothingSpecial, true), 0);
    QCOMPARE(map(libvlc_Opening, true), 3);
    QCOMPARE(map(libvlc_Buffering, true), 3);
    QCOMPARE(map(libvlc_Playing, true), 2);
    QCOMPARE(map(libvlc_Paused, true), 1);
    QCOMPARE(map(libvlc_Stopped, true), 0);
    QCOMPARE(map(libvlc_Ended, true), 0);
    QCOMPARE(map(libvlc_Error, true), 6);
}

void tst_vlc_states::positionText()
{
    const auto text = &VlcStationEngine::positionText;
    QCOMPARE(text(-1), QString());
    QCOMPARE(text(0), QStringLiteral("00:00"));
    QCOMPARE(text(999), QStringLiteral("00:00")); // whole seconds, never rounded up
    QCOMPARE(text(1000), QStringLiteral("00:01"));
    QCOMPARE(text(59999), QStringLiteral("00:59"));
    QCOMPARE(text(60000), QStringLiteral("01:00"));
    QCOMPARE(text(3599999), QStringLiteral("59:59"));
    QCOMPARE(text(3600000), QStringLiteral("60:00"));     // minutes go on past the hour
    QCOMPARE(text(6000000), QStringLiteral("100:00"));
}

void tst_vlc_states::localVolumeInDecibels()
{
    const auto pct = &VlcLocalEngine::volumePercent;
    QCOMPARE(pct(0), 100);
    QCOMPARE(pct(-2000), 10);  // -20 dB is a tenth
    QCOMPARE(pct(-4000), 1);
    QCOMPARE(pct(-2500), 6);   // 5.62
    QCOMPARE(pct(-602), 50);   // -6.02 dB halves it
    QCOMPARE(pct(-10000), 0);
    QCOMPARE(pct(-2147483647L), 0);
    QCOMPARE(pct(1500), 100);  // nothing louder than full
}

void tst_vlc_states::animationRunsHoldsStops()
{
    QWidget parent;
    MovieAnimation pstate(&parent);
    auto *label = qobject_cast<QLabel *>(pstate.widget());
    QVERIFY(label);
    QCOMPARE(label->parentWidget(), &parent);
    QCOMPARE(pstate.PlayState(), 0);

    pstate.setFileName(playGif());
    QCOMPARE(pstate.FileName(), playGif());
    QVERIFY2(label->movie(), "img/play.gif did not load");
    QCOMPARE(label->movie()->frameRect().size(), QSize(239, 75));
    QVERIFY(label->movie()->frameCount() >= 3);
    QCOMPARE(label->movie()->loopCount(), -1); // loops for ever
    QCOMPARE(pstate.PlayState(), 0);
    const QImage first = shown(label);
    QVERIFY(!first.isNull());

    pstate.Play();
    QCOMPARE(pstate.PlayState(), 2);
    QTRY_VERIFY_WITH_TIMEOUT(shown(label) != first, 2000); // it moves
    pstate.Play(); // harmless while running
    QCOMPARE(pstate.PlayState(), 2);

    pstate.Pause();
    QCOMPARE(pstate.PlayState(), 1);
    const int held = label->movie()->currentFrameNumber();
    QTest::qWait(400);
    QCOMPARE(label->movie()->currentFrameNumber(), held);
    pstate.Pause(); // a second hold changes nothing
    QCOMPARE(pstate.PlayState(), 1);
    pstate.Play();  // runs on from the held frame
    QCOMPARE(pstate.PlayState(), 2);

    pstate.Stop();
    QCOMPARE(pstate.PlayState(), 0);
    QCOMPARE(label->movie()->currentFrameNumber(), 0);
    QCOMPARE(shown(label), first);
    pstate.Pause(); // nothing to hold when stopped
    QCOMPARE(pstate.PlayState(), 0);
}

void tst_vlc_states::animationMissingFile()
{
    QWidget parent;
    MovieAnimation pstate(&parent);
    auto *label = qobject_cast<QLabel *>(pstate.widget());
    pstate.setFileName(playGif());
    pstate.Play();
    QCOMPARE(pstate.PlayState(), 2);

    // Another name that is no picture: the old one goes, nothing shows.
    pstate.setFileName(QStringLiteral("/nonexistent/img/play.gif"));
    QCOMPARE(pstate.FileName(), QStringLiteral("/nonexistent/img/play.gif"));
    QVERIFY(!label->movie());
    QVERIFY(label->pixmap().isNull());
    pstate.Play();
    pstate.Pause();
    QCOMPARE(pstate.PlayState(), 0);
    pstate.Stop();
    QCOMPARE(pstate.PlayState(), 0);

    pstate.setFileName(QString());
    pstate.Play();
    QCOMPARE(pstate.PlayState(), 0);
    pstate.setFileName(QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("tst_vlc_states")));
    pstate.Play(); // an executable is no picture either
    QCOMPARE(pstate.PlayState(), 0);
}

void tst_vlc_states::animationLabelLifetime()
{
    // The surface goes first: it takes its label along.
    QWidget parent;
    {
        MovieAnimation pstate(&parent);
        pstate.setFileName(playGif());
        pstate.Play();
        QCOMPARE(parent.findChildren<QLabel *>().size(), 1);
    }
    QCOMPARE(parent.findChildren<QLabel *>().size(), 0);

    // The parent goes first: the surface outlives its label without harm.
    auto *window = new QWidget;
    MovieAnimation pstate(window);
    pstate.setFileName(playGif());
    pstate.Play();
    delete window;
    QVERIFY(!pstate.widget());
    pstate.Pause();
    pstate.setFileName(playGif());
    pstate.Play();
    QCOMPARE(pstate.PlayState(), 2);
    pstate.Stop();
}

QTEST_MAIN(tst_vlc_states)
#include "tst_vlc_states.moc"
