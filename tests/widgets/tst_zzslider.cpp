#include "basic/RuntimeError.h"
#include "doubles/ScriptedPlatform.h"
#include "widgets/PropertyBag.h"
#include "widgets/zzSlider.h"

#include <QLabel>
#include <QTest>

// A slider with a log of what it tells the host, in order.
struct Rig {
    ScriptedDialogs dialogs;
    ScriptedProcess process;
    zzSlider slider{dialogs, process};
    QStringList log;

    Rig(float min, float max)
    {
        slider.setMinValue(min);
        slider.setMaxValue(max);
        QObject::connect(&slider, &zzSlider::Change, [this] { log << "Change"; });
        QObject::connect(&slider, &zzSlider::SliderScroll, [this] { log << "SliderScroll"; });
        QObject::connect(&slider, &zzSlider::Click, [this] { log << "Click"; });
        QObject::connect(&slider, &zzSlider::PropertyChanged, [this](const QString &key) { log << key; });
    }
    // Standing, as set up in a form designer: the control turns to 41 x 321 px.
    void stand()
    {
        slider.setUserMode(false);
        slider.setSliderStyle(1);
        slider.setUserMode(true);
    }
    QWidget *part(const char *name) { return slider.findChild<QWidget *>(QLatin1String(name)); }
    float press(double x, double y = 300)
    {
        slider.TrackMouse(1, x, y);
        return slider.Value();
    }
    float let(float value)
    {
        slider.setValue(value);
        return slider.Value();
    }
};

static int raisedBy(const std::function<void()> &f)
{
    try {
        f();
    } catch (const basic::RuntimeError &e) {
        return e.number();
    }
    return 0;
}

class TestZzSlider : public QObject {
    Q_OBJECT
private slots:
    void valueIsClampedAndRoundedHalfToEven()
    {
        Rig r(1, 100);
        QCOMPARE(r.let(-5), 1.0f);
        QCOMPARE(r.let(1e30f), 100.0f);
        // 99 * 0.375 + 1 = 38.125 on the default 4815-twip track.
        QCOMPARE(r.press(0.375 * 4815), 38.0f);
        QCOMPARE(r.part("lblSlider")->toolTip(), QString("38"));

        r.slider.setMinValue(0);
        r.slider.setMaxValue(10);
        QCOMPARE(r.press(0.25 * 4815), 2.0f); // 2.5
        QCOMPARE(r.press(0.75 * 4815), 8.0f); // 7.5
        r.slider.setRoundValue(1);
        QCOMPARE(r.let(0.25f), 0.2f);
        QCOMPARE(r.let(0.75f), 0.8f);
    }

    void fillFollowsValueInBothStyles()
    {
        Rig r(0, 10);
        r.slider.setValue(2.5f); // rounds to 2
        QCOMPARE(r.slider.fillWidth(), 0.2 * 4815);
        QCOMPARE(r.slider.fillHeight(), 615.0);
        r.slider.setValue(10);
        QCOMPARE(r.slider.fillWidth(), 4815.0);
        r.slider.setValue(11);
        QCOMPARE(r.slider.fillWidth(), 4815.0);
        QCOMPARE(r.part("lblSlider")->geometry(), QRect(0, 0, 321, 41));

        r.stand();
        r.slider.setRoundValue(1);
        r.slider.setValue(2.5f); // a quarter of 4815 twips
        QCOMPARE(r.slider.fillTop(), 4815 - 0.25 * 4815);
        QCOMPARE(r.slider.fillHeight(), 0.25 * 4815);
        QCOMPARE(r.slider.fillWidth(), 615.0);
        // Edges 240.75 and 321 px round to 241 and 321.
        QCOMPARE(r.part("lblSlider")->geometry(), QRect(0, 241, 41, 80));
        r.slider.setValue(10);
        QCOMPARE(r.slider.fillTop(), 0.0);
    }

    void mouseRulesOfBothStyles()
    {
        Rig r(1, 100);
        QCOMPARE(r.press(10), 10.0f); // first pixel: the raw twips
        QCOMPARE(r.log, QStringList({"Value", "Change", "SliderScroll"}));
        QCOMPARE(r.press(10.5), 10.0f); // as a 32-bit integer, half to even
        QCOMPARE(r.press(11.5), 12.0f);
        QCOMPARE(r.press(-300), 1.0f);
        QCOMPARE(r.press(20), 1.0f); // past the first pixel: 99 * 20 / 4815 + 1
        QCOMPARE(r.press(5000), 100.0f);

        r.log.clear();
        r.slider.TrackMouse(2, 100, 300);
        r.slider.TrackMouse(0, 100, 300);
        QVERIFY(r.log.isEmpty());

        r.stand();
        r.slider.setMaxValue(1000);
        r.slider.setValue(500);
        r.log.clear();
        QCOMPARE(r.press(0, 10), 500.0f); // no first-pixel rule standing
        QCOMPARE(r.log, QStringList({"SliderScroll"}));
        QCOMPARE(r.press(0, 16), 997.0f); // 4799 / 4815 * 999 + 1
        QCOMPARE(r.press(0, 4815 - 0.25 * 4815), 251.0f); // 999 / 4 + 1 = 250.75
        QCOMPARE(r.press(0, 4816), 1.0f);
        QCOMPARE(r.press(0, -1), 1000.0f);
    }

    void changeHandlerCannotReenterTheMouse()
    {
        Rig r(0, 100);
        int nested = 0;
        QObject::connect(&r.slider, &zzSlider::Change, [&] {
            if (nested++ == 0)
                r.slider.TrackMouse(1, 4815, 300);
        });
        QCOMPARE(r.press(0.5 * 4815), 50.0f);
        QCOMPARE(r.log, QStringList({"Value", "Change", "SliderScroll"}));
        QCOMPARE(r.press(4815), 100.0f); // the lock is gone afterwards
    }

    void realMouseEventsReachTheRules()
    {
        Rig r(1, 100);
        QTest::mousePress(&r.slider, Qt::LeftButton, {}, QPoint(120, 20)); // 99 * 1800 / 4815 + 1
        QCOMPARE(r.slider.Value(), 38.0f);
        QTest::mouseMove(&r.slider, QPoint(240, 20));
        QCOMPARE(r.slider.Value(), 75.0f);
        QTest::mouseRelease(&r.slider, Qt::LeftButton, {}, QPoint(240, 20));
        QCOMPARE(r.log.count("Click"), 1);
        QCOMPARE(r.log.count("SliderScroll"), 2);

        QTest::mouseClick(r.part("picBackGround"), Qt::RightButton, {}, QPoint(300, 20));
        QCOMPARE(r.slider.Value(), 75.0f);
        QCOMPARE(r.log.count("Click"), 1);
        QTest::mouseClick(r.part("picBackGround"), Qt::LeftButton, {}, QPoint(300, 20));
        QTest::mouseRelease(r.part("picBackGround"), Qt::LeftButton, {}, QPoint(300, 20)); // no press: no click
        QCOMPARE(r.log.count("Click"), 2);

        r.stand();
        r.slider.setMinValue(0);
        r.slider.setValue(50); // fill top 2407.5 twips
        // On the fill y counts from the fill's top: (4815 - 3007.5) / 4815 * 100.
        QTest::mouseClick(r.part("lblSlider"), Qt::LeftButton, {}, QPoint(5, 40));
        QCOMPARE(r.slider.Value(), 38.0f);
        QCOMPARE(r.log.count("Click"), 3);

        // An error in the widget's own handler ends the program with its
        // message, without unwinding through Qt.
        r.slider.setMinValue(5);
        r.slider.setMaxValue(5);
        QTest::mouseClick(&r.slider, Qt::LeftButton, {}, QPoint(20, 100));
        QCOMPARE(r.dialogs.shown.size(), 1);
        QCOMPARE(r.dialogs.shown[0].prompt, QString("Run-time error '6':\n\nOverflow"));
        QCOMPARE(r.process.ends, 1);
    }

    void keysStepThroughValueWithoutScrolling()
    {
        Rig r(0, 100);
        r.slider.setSmallChange(2);
        r.slider.setLargeChange(10);
        r.slider.setValue(50);
        const QList<std::pair<Qt::Key, float>> steps = {{Qt::Key_Up, 52},   {Qt::Key_Right, 54},
                                                        {Qt::Key_Left, 52}, {Qt::Key_Down, 50},
                                                        {Qt::Key_PageUp, 60}, {Qt::Key_PageDown, 50}};
        for (const auto &[key, expected] : steps) {
            QTest::keyClick(&r.slider, key);
            QCOMPARE(r.slider.Value(), expected);
        }
        for (int i = 0; i < 6; ++i)
            QTest::keyClick(&r.slider, Qt::Key_PageUp);
        QCOMPARE(r.slider.Value(), 100.0f);
        QCOMPARE(r.log.count("Change"), 13);
        QVERIFY(!r.log.contains("SliderScroll"));
    }

    void negativeStepsAndDecimalsShowError380()
    {
        Rig r(0, 100);
        r.slider.setSmallChange(5);
        r.slider.setSmallChange(-1);
        r.slider.setLargeChange(-0.5f);
        r.slider.setRoundValue(3);
        r.slider.setRoundValue(-2);
        QCOMPARE(r.slider.SmallChange(), 1.0f);
        QCOMPARE(r.slider.LargeChange(), 1.0f);
        QCOMPARE(r.slider.RoundValue(), std::int16_t(0));
        QCOMPARE(r.dialogs.shown.size(), 3);
        for (const ShownBox &box : r.dialogs.shown) {
            QCOMPARE(box.prompt, QString("380 : Invalid property value"));
            QCOMPARE(box.style, 0);
            QVERIFY(box.title.isEmpty());
        }
        QCOMPARE(r.log, QStringList({"SmallChange", "SmallChange", "LargeChange", "RoundValue", "RoundValue"}));
    }

    void sliderStyleChangesOnlyInTheDesigner()
    {
        Rig r(0, 100);
        r.log.clear();
        QCOMPARE(raisedBy([&] { r.slider.setSliderStyle(1); }), 382);
        QCOMPARE(r.slider.SliderStyle(), 0);
        QCOMPARE(r.slider.size(), QSize(321, 41));
        QVERIFY(r.log.isEmpty());

        r.stand();
        QCOMPARE(r.slider.size(), QSize(41, 321));
        QCOMPARE(r.slider.fillTop(), 4815.0);
        QCOMPARE(r.slider.fillHeight(), 0.0);
        QCOMPARE(r.slider.fillWidth(), 615.0);
        r.slider.setUserMode(false);
        r.slider.setSliderStyle(1);
        QCOMPARE(r.slider.size(), QSize(41, 321));
        QCOMPARE(r.log, QStringList({"SliderStyle", "SliderStyle"}));
        r.slider.setSliderStyle(0);
        QCOMPARE(r.slider.size(), QSize(321, 41));
        QCOMPARE(r.slider.fillWidth(), 0.0);
        QCOMPARE(r.slider.fillHeight(), 615.0);
    }

    void badBounds()
    {
        Rig r(5, 5);
        QCOMPARE(raisedBy([&] { r.slider.setValue(5); }), 6); // 0 / 0 in the fill
        QVERIFY(!r.log.contains("Change"));

        Rig upside(10, 0);
        QCOMPARE(upside.let(5), 10.0f); // below MinValue
        QCOMPARE(upside.let(20), 0.0f); // not below MinValue, so above MaxValue
        QCOMPARE(upside.slider.fillWidth(), 0.0);
        upside.log.clear();
        upside.slider.TrackMouse(1, 2000, 300);
        QVERIFY(upside.log.isEmpty());
    }

    void storedSettingsRoundTrip()
    {
        ScriptedDialogs dialogs;
        ScriptedProcess process;
        PropertyBag untouched;
        zzSlider(dialogs, process).WriteProperties(untouched);
        QVERIFY(untouched.keysInOrder().isEmpty());

        Rig r(1, 100);
        QFont bold = r.slider.Font();
        bold.setBold(true);
        r.slider.setBackColor(0x123456);
        r.slider.setForeColor(0x654321);
        r.slider.setEnabled(false);
        r.slider.setFont(bold);
        r.slider.setBorderStyle(0);
        r.slider.setMousePointer(2);
        r.slider.setValue(50);
        r.stand();
        r.slider.setSmallChange(2);
        r.slider.setLargeChange(5);
        r.slider.setToolTipText("Time Line");
        r.slider.setRoundValue(2);
        PropertyBag bag;
        r.slider.WriteProperties(bag);
        QCOMPARE(bag.keysInOrder(),
                 QStringList({"BackColor", "ForeColor", "Enabled", "Font", "BorderStyle", "MousePointer", "MaxValue",
                              "MinValue", "Value", "SliderStyle", "SmallChange", "LargeChange", "ToolTipText",
                              "RoundValue"}));

        zzSlider back(dialogs, process);
        back.ReadProperties(bag);
        QCOMPARE(back.MaxValue(), 100.0f);
        QCOMPARE(back.MinValue(), 1.0f);
        QCOMPARE(back.SliderColor(), 0x8000000Fu);
        QCOMPARE(back.findChild<QWidget *>("picBackGround")->toolTip(), QString("Time Line"));
        QCOMPARE(back.fillHeight(), 0.0);
        QCOMPARE(back.fillWidth(), 4815.0);
        PropertyBag again;
        back.WriteProperties(again);
        QCOMPARE(again.keysInOrder().indexOf("SliderColor"), 6);
        for (const QString &key : bag.keysInOrder())
            QCOMPARE(again.ReadProperty(key, {}), bag.ReadProperty(key, {}));

        bag.set("SliderStyle", 0);
        bag.set("Value", 1e9);
        back.ReadProperties(bag);
        QCOMPARE(back.fillWidth(), 0.0);
        QCOMPARE(back.fillHeight(), 615.0);
        bag.set("MaxValue", "lots");
        QCOMPARE(raisedBy([&] { back.ReadProperties(bag); }), 13);
        bag.set("MaxValue", 1e300);
        QCOMPARE(raisedBy([&] { back.ReadProperties(bag); }), 6);
    }

    void focusMarkIsDrawnAndCleared()
    {
        Rig r(0, 100);
        QWidget *track = r.part("picBackGround");
        auto marks = [&] {
            const QImage image = track->grab().toImage();
            int row3 = 0, row2 = 0;
            for (int x = 1; x < image.width() - 1; ++x) {
                row3 += image.pixel(x, 3) != qRgb(255, 255, 255);
                row2 += image.pixel(x, 2) != qRgb(255, 255, 255);
            }
            return std::pair(row3, row2);
        };
        QFocusEvent in(QEvent::FocusIn, Qt::TabFocusReason);
        QApplication::sendEvent(&r.slider, &in);
        QVERIFY(marks().first > 0);
        QCOMPARE(marks().second, 0);
        QFocusEvent out(QEvent::FocusOut, Qt::TabFocusReason);
        QApplication::sendEvent(&r.slider, &out);
        QCOMPARE(marks().first, 0);
    }
};

QTEST_MAIN(TestZzSlider)
#include "tst_zzslider.moc"
