#include "basic/RuntimeError.h"
#include "doubles/ScriptedPlatform.h"
#include "widgets/PropertyBag.h"
#include "widgets/zzSlider.h"

#include <QTest>

// A slider with a log of what it tells the host; at every press its Change handler tries to re-enter the mouse.
struct Rig {
    ScriptedPlatform sp;
    zzSlider slider{sp.dialogs, sp.process};
    QStringList log;
    bool reenter = false;

    Rig(float min, float max)
    {
        slider.setMinValue(min);
        slider.setMaxValue(max);
        QObject::connect(&slider, &zzSlider::Change, [this] {
            log << "Change";
            if (std::exchange(reenter, false))
                slider.TrackMouse(1, 2400, 2400);
        });
        QObject::connect(&slider, &zzSlider::SliderScroll, [this] { log << "SliderScroll"; });
        QObject::connect(&slider, &zzSlider::Click, [this] { log << "Click"; });
    }
    // As a form designer does it: the control turns to 41 x 321 px.
    void stand() { slider.setUserMode(false), slider.setSliderStyle(1), slider.setUserMode(true); }
    float press(double x, double y) { return reenter = true, slider.TrackMouse(1, x, y), reenter = false, slider.Value(); }
    float let(float value) { return slider.setValue(value), slider.Value(); }
    QList<double> fill() const { return {slider.fillTop(), slider.fillWidth(), slider.fillHeight()}; }
};

class TestZzSlider : public QObject {
    Q_OBJECT
private slots:
    void letsStylesAndStoredSettings()
    {
        Rig r(0, 10);
        QList<double> got; // value kept, fill width and height
        for (float value : {-5.0f, 2.5f, 1e30f})
            got << r.let(value) << r.fill()[1] << r.fill()[2];
        QCOMPARE(got, (QList<double>{0, 0, 615, 2, 0.2 * 4815, 615, 10, 4815, 615}));
        // Negative steps and decimals become 1 and 0, with the message of error 380.
        for (float change : {0.0f, -1.0f})
            r.slider.setSmallChange(change), r.slider.setLargeChange(change);
        for (std::int16_t decimals : {0, -2, 1})
            r.slider.setRoundValue(decimals);
        QCOMPARE((QList<float>{r.slider.SmallChange(), r.slider.LargeChange(), float(r.slider.RoundValue()),
                               r.let(0.25f), r.let(0.75f)}),
                 (QList<float>{1, 1, 1, 0.2f, 0.8f}));
        QCOMPARE(std::pair(r.sp.dialogs.shown.size(), r.sp.dialogs.shown[2].prompt), std::pair(qsizetype(3), QString("380 : Invalid property value")));

        // The style changes only in a form designer; each change turns the control.
        QVERIFY_THROWS_EXCEPTION(basic::RuntimeError, r.slider.setSliderStyle(1));
        QCOMPARE(r.slider.size(), QSize(321, 41));
        r.stand();
        QCOMPARE(r.fill(), (QList<double>{4815, 615, 0}));
        r.slider.setValue(2.5f);
        QCOMPARE(r.fill(), (QList<double>{3611.25, 615, 1203.75}));
        QCOMPARE(r.slider.findChild<QWidget *>("lblSlider")->geometry(), QRect(0, 241, 41, 80)); // edges 240.75 and 321 px

        // Defaults are left out; an unchanged fill colour comes back as the button face, not as the
        // colour it was written against. The stored value waits for the next let.
        r.slider.setBackColor(0x123456);
        r.slider.setToolTipText("Time Line");
        PropertyBag bag, again;
        r.slider.WriteProperties(bag);
        zzSlider back(r.sp.dialogs, r.sp.process);
        back.ReadProperties(bag);
        back.WriteProperties(again);
        QCOMPARE(again.keysInOrder(), QStringList({"BackColor", "SliderColor", "MaxValue", "Value", "SliderStyle",
                                                   "ToolTipText", "RoundValue"}));
        QCOMPARE(again.ReadProperty("SliderColor", {}), QVariant(0x8000000Fu));
        for (const QString &key : bag.keysInOrder())
            QCOMPARE(again.ReadProperty(key, {}), bag.ReadProperty(key, {}));
        QCOMPARE((QList<double>{back.fillWidth(), back.fillHeight()}), (QList<double>{4815, 0}));

        r.slider.setUserMode(false), r.slider.setSliderStyle(1), r.slider.setSliderStyle(0); // turns once
        QCOMPARE(r.fill(), (QList<double>{3611.25, 0, 615})); // the top stays where standing left it
        Rig upside(10, 0); // below MinValue, else above MaxValue; the mouse does nothing
        QCOMPARE((QList<float>{upside.let(5), upside.let(20), upside.press(2000, 300)}), (QList<float>{10, 0, 0}));
        QCOMPARE(upside.fill(), (QList<double>{0, 0, 615}));
    }

    void mouseRulesAndEvents()
    {
        Rig r(1, 100);
        QCOMPARE(r.press(10, 300), 10.0f); // first pixel: the raw twips become the value, kept so
        r.slider.TrackMouse(2, 100, 300);
        QCOMPARE(r.log, QStringList({"Change", "SliderScroll"}));
        // A 32-bit integer half to even in the first pixel, 99 * x / 4815 + 1 past it.
        const std::pair<double, float> lying[] = {{10.5, 10}, {11.5, 12}, {-300, 1}, {20, 1}, {1805.625, 38}, {5000, 100}};
        for (const auto &[x, value] : lying)
            QCOMPARE(r.press(x, 300), value);
        QTest::mousePress(&r.slider, Qt::LeftButton, {}, QPoint(12, 20));
        QTest::mouseMove(&r.slider, QPoint(240, 20)); // 99 * 3600 / 4815 + 1
        QCOMPARE(r.slider.Value(), 75.0f);

        r.stand();
        r.slider.setMaxValue(1000);
        r.slider.setValue(500);
        r.log.clear();
        QCOMPARE(r.press(0, 10), 500.0f); // no first-pixel rule standing
        QCOMPARE(r.log, QStringList({"SliderScroll"}));
        const std::pair<double, float> standing[] = {{16, 997}, {3611.25, 251}, {4815, 1}, {-1, 1000}, {4816, 1}};
        for (const auto &[y, value] : standing)
            QCOMPARE(r.press(0, y), value);
        r.slider.setMinValue(0);
        r.slider.setValue(500); // fill top 2407.5 twips
        // On the fill y counts from the fill's top: (4815 - 3007.5) / 4815 * 1000.
        QTest::mouseClick(r.slider.findChild<QWidget *>("lblSlider"), Qt::LeftButton, {}, QPoint(5, 40));
        QTest::mouseRelease(r.slider.findChild<QWidget *>("picBackGround"), Qt::LeftButton, {}, QPoint(5, 40)); // no press: no click
        QCOMPARE(r.slider.Value(), 375.0f);
        QCOMPARE(r.log.count("Click"), 1);

        // An error in the widget's own handler ends the program there, not through Qt.
        r.slider.setMinValue(1000);
        QTest::mouseClick(&r.slider, Qt::LeftButton, {}, QPoint(20, 100));
        QCOMPARE(std::pair(r.sp.dialogs.shown.last().prompt, r.sp.process.ends), std::pair(QString("Run-time error '6':\n\nOverflow"), 1));
    }

    void trackPainting()
    {
        Rig r(0, 100);
        auto grab = [&] { return r.slider.findChild<QWidget *>("picBackGround")->grab().toImage(); };
        const QImage plain = grab();
        QFocusEvent in(QEvent::FocusIn, Qt::TabFocusReason), out(QEvent::FocusOut, Qt::TabFocusReason);
        QApplication::sendEvent(&r.slider, &in);
        const QImage marked = grab();
        QRect mark;
        for (int x = 0; x < plain.width(); ++x)
            for (int y = 0; y < plain.height(); ++y)
                if (plain.pixel(x, y) == 0xFFFFFFFF && marked.pixel(x, y) != 0xFFFFFFFF) // dark only when focused
                    mark |= QRect(x, y, 1, 1);
        QCOMPARE(mark, QRect(3, 3, 315, 35)); // from (3, 3) to 3 pixels short of the far corner
        QApplication::sendEvent(&r.slider, &out);
        QCOMPARE(grab(), plain);
        r.slider.setBorderStyle(0);
        QCOMPARE((QList<QRgb>{plain.pixel(0, 20), grab().pixel(0, 20)}), (QList<QRgb>{0xFF000000, 0xFFFFFFFF}));
    }
};

QTEST_MAIN(TestZzSlider)
#include "tst_zzslider.moc"
