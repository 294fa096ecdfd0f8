// The engines' one-place mappings: no libvlc instance, no services.
#include "platform/vlc/VlcLocalEngine.h"
#include "platform/vlc/VlcStationEngine.h"

#include <QTest>

class tst_vlc_states : public QObject {
    Q_OBJECT
private slots:
    void playStates()
    {
        QList<int> station, local;
        for (int s = libvlc_NothingSpecial; s <= libvlc_Error; ++s) {
            const auto state = libvlc_state_t(s);
            // A full cache and nothing opened, then an opened media still filling its cache.
            station << VlcStationEngine::playStateOf(state, 100, false) << VlcStationEngine::playStateOf(state, 99.9f, true);
            local << VlcLocalEngine::playStateOf(state, true) << VlcLocalEngine::playStateOf(state, false);
        }
        QCOMPARE(station, (QList<int>{0, 10, 9, 9, 6, 6, 3, 6, 2, 2, 1, 1, 8, 8, 0, 0}));
        QCOMPARE(local, (QList<int>{0, 6, 3, 6, 3, 6, 2, 6, 1, 6, 0, 6, 0, 6, 6, 6}));
        QCOMPARE(VlcStationEngine::playStateOf(libvlc_state_t(42), 100, true), 0); // a newer libvlc's state
    }

    void positionTextAndVolume()
    {
        QStringList texts;
        for (qint64 ms : {-1, 0, 999, 1000, 59999, 60000, 3599999, 3600000, 6000000})
            texts << VlcStationEngine::positionText(ms);
        // Whole seconds, never rounded up; minutes go on past the hour.
        QCOMPARE(texts, (QStringList{"", "00:00", "00:00", "00:01", "00:59", "01:00", "59:59", "60:00", "100:00"}));
        QList<int> percent;
        for (long db : {0L, -2000L, -4000L, -2500L, -602L, -10000L, -2147483647L, 1500L})
            percent << VlcLocalEngine::volumePercent(db);
        QCOMPARE(percent, (QList<int>{100, 10, 1, 6, 50, 0, 0, 100})); // -20 dB a tenth, -6.02 dB a half
    }
};

QTEST_GUILESS_MAIN(tst_vlc_states)
#include "tst_vlc_states.moc"
