#include "basic/Checked.h"
#include "basic/ErrorStyles.h"
#include "basic/NumberText.h"

#include <QTest>

#include <functional>
#include <limits>

using namespace basic;

namespace {

// The error number a statement raises, 0 when it raises none.
int errorOf(const std::function<void()> &f)
{
    try {
        f();
    } catch (const RuntimeError &e) {
        return e.number();
    }
    return 0;
}

constexpr qint64 LongMin = std::numeric_limits<Long>::min();

} // namespace

class tst_runtime : public QObject {
    Q_OBJECT
private slots:
    void generalTextForms()
    {
        // The first three are mixer levels as their scales show them.
        const std::pair<double, const char *> cases[] = {
            {65535.0 / 6553, "10.0007630093087"}, {-1.0 / 6553, "-1.52601861742713E-04"},
            {32768 / 655.35, "50.0007629510948"}, {0.0, "0"}, {-0.0, "0"}, {100.0, "100"}, {0.5, "0.5"},
            {1.0 / 3, "0.333333333333333"}, {2.0 / 3, "0.666666666666667"}, {0.0001, "0.0001"}, {0.00001, "1E-05"},
            {1e15, "1E+15"}, {123456789012345.0, "123456789012345"}, {-2147483648.0, "-2147483648"},
            {9.9999999999999999, "10"}, {0.1 + 0.2, "0.3"}};
        for (const auto &[value, text] : cases)
            QCOMPARE(generalText(value), QLatin1String(text));
        // A 32-bit float keeps 7 digits.
        QCOMPARE((QStringList{generalText(38.125f), generalText(1.0f / 3), generalText(100.0f / 3)}),
                 (QStringList{"38.125", "0.3333333", "33.33333"}));
    }

    void arithmeticValuesAndErrors()
    {
        const std::pair<qint64, qint64> values[] = {
            {add<Integer>(32766, 1), 32767}, {mul<Integer>(-256, 128), -32768}, {idiv<Integer>(-7, 2), -3},
            {mod<Integer>(-7, 2), -1}, {mod<Integer>(-32768, -1), 0}, {CInt(32767.4), 32767},
            {CInt(-32768.5), -32768}, // the half goes to the even -32768
            {CInt(0.5), 0}, {CInt(-1.5), -2}, {CLng(4.5), 4}, {CLng(2147483646.5), 2147483646},
            {CLng(-2147483648.5), LongMin}, {mul<Long>(-65536, 32768), LongMin}, {narrow<Integer>(-32768LL), -32768}};
        for (const auto &[got, want] : values)
            QCOMPARE(got, want);
        QCOMPARE((QList<double>{roundHalfEven(0.5), roundHalfEven(1.5), roundHalfEven(2.5), roundHalfEven(-2.5),
                                roundHalfEven(2.5000001), roundHalfEven(38.125, 0), roundHalfEven(2.25, 1),
                                roundHalfEven(2.35, 1)}), // 2.35 is stored a shade above the half
                 (QList<double>{0, 2, 2, -2, 3, 38, 2.2, 2.4}));
        QCOMPARE(basic::fdiv(1, 4), 0.25);
        QCOMPARE(CSng(1e38), 1e38f);

        const std::pair<std::function<void()>, int> raises[] = {
            {[] { add<Integer>(32767, 1); }, Overflow}, {[] { sub<Integer>(-32768, 1); }, Overflow},
            {[] { mul<Integer>(256, 128); }, Overflow}, {[] { neg<Integer>(-32768); }, Overflow},
            {[] { idiv<Integer>(-32768, -1); }, Overflow}, {[] { idiv<Integer>(5, 0); }, DivisionByZero},
            {[] { mod<Integer>(5, 0); }, DivisionByZero}, {[] { CInt(32767.5); }, Overflow}, // up to the even 32768
            {[] { CInt(-32769); }, Overflow}, {[] { CInt(std::numeric_limits<double>::quiet_NaN()); }, Overflow},
            {[] { narrow<Integer>(40000); }, Overflow}, {[] { add<Long>(2147483647, 1); }, Overflow},
            {[] { sub<Long>(-2147483647 - 1, 1); }, Overflow}, {[] { mul<Long>(65536, 32768); }, Overflow},
            {[] { CLng(2147483647.5); }, Overflow}, {[] { CLng(1e300); }, Overflow},
            {[] { narrow<Long>(4294967295ULL); }, Overflow}, {[] { CSng(1e39); }, Overflow},
            {[] { basic::fdiv(1, 0); }, DivisionByZero}, {[] { basic::fdiv(-3, 0); }, DivisionByZero},
            {[] { basic::fdiv(0, 0); }, Overflow}, // the runtime's own word for 0/0
            {[] { basic::fdiv(1e308, 1e-10); }, Overflow}, {[] { checkIndex(5, 0, 4); }, SubscriptOutOfRange},
            {[] { checkIndex(-1, 0, 4); }, SubscriptOutOfRange}, {[] { checkIndex(4, 0, 4); }, 0}};
        for (const auto &[statement, number] : raises)
            QCOMPARE(errorOf(statement), number);
        QCOMPARE((QStringList{errorDescription(DeviceUnavailable), errorDescription(InvalidPropertyValue),
                              errorDescription(SubscriptOutOfRange), errorDescription(DivisionByZero)}),
                 (QStringList{"Device unavailable", "Invalid property value", "Subscript out of range", "Division by zero"}));
    }

    void numberPictures()
    {
        // Halves round away from zero here; "0#" pads, so 0.4 s reads "00:00".
        const std::tuple<double, const char16_t *, const char *> cases[] = {
            {0, u"###", ""}, {42.5, u"###", "43"}, {-7.5, u"###", "-8"}, {123456, u"###", "123456"},
            {5, u"0#", "05"}, {0, u"0#", "00"}, {0, u"#0", "0"}, {59.6, u"0#", "60"}, {125, u"0#", "125"},
            {0, u"00", "00"}, {7, u"00", "07"}, {0.46, u"#.0", ".5"}, {0.46, u".0", ".5"}, {0, u"#.0", ".0"},
            {12.25, u"#.0", "12.3"}, {9.96, u"#.0", "10.0"}, {1234567, u"### ### ###", "1 234 567"},
            {1234, u"### ### ###", " 1 234"}, {0, u"### ### ###", "  "},
            {4294967295.0, u"### ### ###", "4294 967 295"}, {345678901234.0, u"### ### ### ###", "345 678 901 234"},
            {12345678901234.0, u"### ### ### ###", "12345 678 901 234"}};
        for (const auto &[value, picture, text] : cases)
            QCOMPARE(formatNumber(value, picture), QLatin1String(text));
    }

    void errorStyles()
    {
        // Skip the failed statement and go on.
        ResumeNext next;
        int ran = 0;
        for (Integer a : {1, 32767, 1})
            next([&] { add<Integer>(a, 1); ++ran; });
        QCOMPARE(ran, 2);
        QCOMPARE(next.Err(), int(Overflow));
        // One exit: the first failure leaves with the fallback; nothing after it runs.
        QCOMPARE(falseOnError([&] { basic::fdiv(1, 0); return ++ran > 0; }), false);
        QCOMPARE(ran, 2);
        QCOMPARE(falseOnError([] { return true; }), true);
        QCOMPARE(exitOnError(-1, [] { return CInt(70000.0); }), -1);
        // Faults that are not run-time errors are not swallowed.
        QVERIFY_THROWS_EXCEPTION(std::logic_error, next([] { throw std::logic_error("bug"); }));
    }
};

QTEST_APPLESS_MAIN(tst_runtime)
#include "tst_runtime.moc"
