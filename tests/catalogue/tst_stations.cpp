// The four station tables as shipped: rows, URLs, the shared Malayalam and
// Kannada rows, and the shipped hosts under .invalid.
#include "catalogue/Station.h"

#include <QRect>
#include <QSet>
#include <QTest>

namespace {

const Station *find(const QString &panel, const QString &button)
{
    for (const Station &s : stationsOf(panel))
        if (s.button == button)
            return &s;
    return nullptr;
}

QString url(const char *panel, const char *button)
{
    const Station *s = find(QLatin1String(panel), QLatin1String(button));
    return s ? s->URL() : QStringLiteral("<no row>");
}

QRect rectOf(const Station &s)
{
    return QRect(s.left, s.top, s.width, Station::Height);
}

} // namespace

class tst_stations : public QObject {
    Q_OBJECT
private slots:
    void rowsAndPlaces();
    void urlsAsWritten();
    void malayalamAndKannadaShareAllButFour();
    void displayNamesKeepTheirBlanks();
};

void tst_stations::rowsAndPlaces()
{
    const struct {
        const char *panel;
        int rows;
    } sizes[] = {{"Tafm", 62}, {"Afm", 12}, {"Malfm", 16}, {"kanna", 16}, {"Mp3", 0}, {"nope", 0}};
    for (const auto &e : sizes) {
        const QList<Station> &rows = stationsOf(QLatin1String(e.panel));
        QCOMPARE(rows.size(), e.rows);
        QSet<QString> names;
        for (const Station &s : rows) {
            names << s.button;
            QVERIFY2(!s.caption.isEmpty() && !s.displayName.isEmpty(), qPrintable(s.button));
            // Every button lies inside the frame `file` (5775 x 7815).
            QVERIFY2(QRect(0, 0, 5775, 7815).contains(rectOf(s)), qPrintable(s.panel + ' ' + s.button));
            // The shipped hosts point nowhere.
            QVERIFY2(s.host.endsWith(QLatin1String(".invalid")), qPrintable(s.host));
        }
        QCOMPARE(names.size(), e.rows);
    }
    // Tamil numbering: s1..s62, ten of them written with a capital S.
    QSet<QString> capitals;
    for (int i = 1; i <= 62; ++i) {
        const QString lower = QStringLiteral("s%1").arg(i), upper = QStringLiteral("S%1").arg(i);
        QVERIFY(find(QStringLiteral("Tafm"), lower) || find(QStringLiteral("Tafm"), upper));
        if (find(QStringLiteral("Tafm"), upper))
            capitals << upper;
    }
    QCOMPARE(capitals, (QSet<QString>{"S13", "S14", "S16", "S17", "S19", "S20", "S21", "S33", "S40", "S41"}));
    // s27 lies wholly under s9 where the two panels have it.
    for (const char *panel : {"Malfm", "kanna"}) {
        const Station *s9 = find(QLatin1String(panel), QStringLiteral("s9"));
        const Station *s27 = find(QLatin1String(panel), QStringLiteral("s27"));
        QVERIFY(s9 && s27);
        QVERIFY(rectOf(*s9).contains(rectOf(*s27)));
    }
    const Station *s56 = find(QStringLiteral("Tafm"), QStringLiteral("s56"));
    QVERIFY(s56);
    QCOMPARE(rectOf(*s56), QRect(4920, 1800, 855, 615));
}

void tst_stations::urlsAsWritten()
{
    // One case of every way a URL is put together, with the shipped host.
    QCOMPARE(url("Tafm", "s1"), QStringLiteral("http://stations.invalid/hi2.asx"));
    QCOMPARE(url("Tafm", "s3"), QStringLiteral("http://stations.invalid:8000/"));
    QCOMPARE(url("Tafm", "s4"), QStringLiteral("http://stations.invalid/fm/Isaitamil Fm.asx"));
    QCOMPARE(url("Tafm", "s11"), QStringLiteral("http://stations.invalid/24752/live/reflector:52729.asx"));
    QCOMPARE(url("Tafm", "s12"), QStringLiteral("http://stations.invalid:8058"));
    QCOMPARE(url("Tafm", "s28"), QStringLiteral("http://stations.invalid:10123/"));
    QCOMPARE(url("Tafm", "S21"), QStringLiteral("rtsp://stations.invalid/gtr24"));
    QCOMPARE(url("Tafm", "s49"), QStringLiteral("mms://stations.invalid/AMP_THRR"));
    QCOMPARE(url("Tafm", "s29"), url("Tafm", "s51"));
    QCOMPARE(url("Tafm", "S17"), url("Tafm", "s46"));
    QCOMPARE(url("Afm", "S14"), QStringLiteral(" http://stations.invalid:8132"));
    QCOMPARE(url("Afm", "s5"), QStringLiteral("http://stations.invalid/rmirchi?play=968771965 "));
    QCOMPARE(url("Afm", "s8"), QStringLiteral("http://stations.invalid:82:82/ramgen/yr6rjur/t/f/fools/tannulu_thinte.rm"));
    QCOMPARE(url("Afm", "S16"), QStringLiteral("http://stations.invalid:8232 "));
    QCOMPARE(url("Afm", "S16").trimmed(), url("Afm", "s6"));
    QCOMPARE(url("Malfm", "S14"), QStringLiteral("mms://stations.invalid:80/malayalam"));
    QCOMPARE(url("kanna", "s10"), QStringLiteral("hhttp://stations.invalid/listen"));
    QCOMPARE(url("kanna", "s2"), QStringLiteral("http://stations.invalid/stream/radio/kannada/radiospice.asx "));

    // Only the schemes the tables use, and blanks only where written.
    int blanks = 0;
    for (const char *panel : {"Tafm", "Afm", "Malfm", "kanna"}) {
        for (const Station &s : stationsOf(QLatin1String(panel))) {
            QVERIFY((QSet<QString>{"http", "mms", "rtsp", "hhttp"}).contains(s.scheme));
            QVERIFY(s.URL().contains(QLatin1String("://") + s.host));
            blanks += s.URL().count(QLatin1Char(' '));
        }
    }
    // s4's path, Afm's S14 lead, s5 and S16 ends, kanna's s2 end.
    QCOMPARE(blanks, 5);
}

void tst_stations::malayalamAndKannadaShareAllButFour()
{
    const QList<Station> &mal = stationsOf(QStringLiteral("Malfm"));
    const QList<Station> &kan = stationsOf(QStringLiteral("kanna"));
    QSet<QString> differ;
    for (int i = 0; i < mal.size(); ++i) {
        const Station &m = mal[i], &k = kan[i];
        QCOMPARE(m.button, k.button);
        if (m.caption != k.caption || m.displayName != k.displayName || m.URL() != k.URL() || rectOf(m) != rectOf(k))
            differ << m.button;
    }
    QCOMPARE(differ, (QSet<QString>{"s1", "s2", "s9", "s10"}));
    const Station *m10 = find(QStringLiteral("Malfm"), QStringLiteral("s10"));
    const Station *k10 = find(QStringLiteral("kanna"), QStringLiteral("s10"));
    QCOMPARE(m10->scheme + '/' + k10->scheme, QStringLiteral("http/hhttp"));
    QCOMPARE(k10->URL().mid(1), m10->URL());
    QCOMPARE(find(QStringLiteral("kanna"), QStringLiteral("s1"))->caption, QStringLiteral("Radio Grimit"));
    QCOMPARE(find(QStringLiteral("kanna"), QStringLiteral("s9"))->caption, QStringLiteral("KZSU 90.4 FM"));
}

void tst_stations::displayNamesKeepTheirBlanks()
{
    QStringList trailing;
    for (const char *panel : {"Tafm", "Afm", "Malfm", "kanna"})
        for (const Station &s : stationsOf(QLatin1String(panel)))
            if (s.displayName.endsWith(QLatin1Char(' ')))
                trailing << s.panel + '.' + s.button;
    QCOMPARE(trailing, (QStringList{"Tafm.s3", "Tafm.S16", "Tafm.s18", "Tafm.s25", "Tafm.s27", "Tafm.s28",
                                    "Malfm.s3", "Malfm.s27", "kanna.s3", "kanna.s27"}));
    // Names that belong to other stations stay.
    QCOMPARE(find(QStringLiteral("Afm"), QStringLiteral("s7"))->displayName, QStringLiteral("AAsai Fm"));
    QCOMPARE(find(QStringLiteral("Afm"), QStringLiteral("s8"))->caption, QStringLiteral("Telugu "));
    QCOMPARE(find(QStringLiteral("Tafm"), QStringLiteral("s10"))->displayName, QStringLiteral("Express Tamil Fm"));
    QCOMPARE(find(QStringLiteral("Tafm"), QStringLiteral("s53"))->displayName, QStringLiteral("Tamil News play Once"));
    QCOMPARE(find(QStringLiteral("Malfm"), QStringLiteral("s15"))->displayName, QStringLiteral("Tarnelith Fm"));
}

QTEST_GUILESS_MAIN(tst_stations)
#include "tst_stations.moc"
