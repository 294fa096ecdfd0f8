// Every window in its shapes, rendered offscreen and compared pixel by pixel
// with a reference picture: one look guards every place, size, colour, font
// and picture of the forms. After a deliberate change of the look, run with
// ZARVENT_UPDATE_SCREENS=1 to write the references anew, and look at them.
#include "doubles/ScriptedPlatform.h"
#include "panel/Panel.h"
#include "platform/MibIfRow.h"
#include "shell/ShellForms.h"

#include <QDir>
#include <QImage>
#include <QTest>

#include <cstring>

namespace {

// Text antialiasing may move a channel by a few counts; a layout change
// moves whole edges.
constexpr int ChannelSlack = 8;

QImage shot(QWidget *w)
{
    QImage image = w->grab().toImage().convertToFormat(QImage::Format_RGB32);
    const QRegion mask = w->mask();
    for (int y = 0; !mask.isEmpty() && y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (!mask.contains(QPoint(x, y)))
                image.setPixel(x, y, qRgb(255, 0, 255));
    return image;
}

int differing(const QImage &a, const QImage &b)
{
    int n = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
            n += qAbs(qRed(p) - qRed(q)) > ChannelSlack || qAbs(qGreen(p) - qGreen(q)) > ChannelSlack
                 || qAbs(qBlue(p) - qBlue(q)) > ChannelSlack;
        }
    return n;
}

void compare(QWidget *w, const QString &name)
{
    const QImage actual = shot(w);
    const QString ref = qEnvironmentVariable("ZARVENT_SOURCE_DIR") + QStringLiteral("/tests/screens/ref/") + name + ".png";
    if (qEnvironmentVariableIsSet("ZARVENT_UPDATE_SCREENS")) {
        QVERIFY(actual.save(ref));
        return;
    }
    const QImage expected = QImage(ref).convertToFormat(QImage::Format_RGB32);
    const QString kept = QDir::temp().filePath(QStringLiteral("zarvent-screen-") + name + ".png");
    QVERIFY2(!expected.isNull(), qPrintable("no reference " + ref));
    if (actual.size() != expected.size()) {
        actual.save(kept);
        QFAIL(qPrintable(QStringLiteral("%1: %2x%3, reference %4x%5; see %6").arg(name).arg(actual.width())
                             .arg(actual.height()).arg(expected.width()).arg(expected.height()).arg(kept)));
    }
    const int n = differing(actual, expected);
    if (n > 0)
        actual.save(kept);
    QVERIFY2(n == 0, qPrintable(QStringLiteral("%1: %2 pixels differ; see %3").arg(name).arg(n).arg(kept)));
}

// Two interfaces, as the traffic window lists them.
QByteArray twoInterfaces()
{
    QByteArray image(4, '\0');
    const std::uint32_t count = 2;
    std::memcpy(image.data(), &count, 4);
    const char *names[] = {"lo", "eth0"};
    for (std::uint32_t i = 0; i < count; ++i) {
        MIB_IFROW row{};
        for (std::size_t c = 0; names[i][c]; ++c)
            row.wszName[2 * c] = static_cast<std::uint8_t>(names[i][c]);
        row.dwIndex = i + 1;
        row.dwType = i ? 6 : 24;
        row.dwMtu = 1500;
        row.dwSpeed = 100000000;
        row.dwOperStatus = 1;
        row.dwInOctets = 123456 * (i + 1);
        row.dwOutOctets = 65432 * (i + 1);
        row.dwDescrLen = static_cast<std::uint32_t>(std::strlen(names[i]));
        std::memcpy(row.bDescr, names[i], row.dwDescrLen);
        image.append(reinterpret_cast<const char *>(&row), sizeof row);
    }
    return image;
}

} // namespace

class tst_screens : public QObject {
    Q_OBJECT
private slots:
    void windows();
    void panels();
};

void tst_screens::windows()
{
    ScriptedPlatform sp;
    sp.interfaces.image = twoInterfaces();
    defineForms(sp.platform);
    for (const char *name : {"frmSplash", "Mainmap", "frmMain", "frmInterfaces"}) {
        sp.forms.Show(QLatin1String(name));
        compare(sp.forms.form(QLatin1String(name)), QLatin1String(name));
        sp.forms.form(QLatin1String(name))->hide();
    }
}

// Each panel as it loads, and widened and unfolded as a user opens it.
void tst_screens::panels()
{
    ScriptedPlatform sp;
    defineForms(sp.platform);
    for (const char *name : {"Tafm", "Afm", "Malfm", "kanna", "Mp3"}) {
        sp.forms.Show(QLatin1String(name));
        auto *p = sp.forms.get<Panel>(QLatin1String(name));
        sp.clock.advance(16 * 400);
        compare(p, QLatin1String(name) + QStringLiteral("-folded"));
        p->Label1_Click();
        sp.clock.advance(16 * 400);
        p->Label2_Click();
        sp.clock.advance(16 * 400);
        compare(p, QLatin1String(name) + QStringLiteral("-open"));
        p->hide();
    }
}

QTEST_MAIN(tst_screens)
#include "tst_screens.moc"
