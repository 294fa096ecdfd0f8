#include "basic/Checked.h"
#include "basic/ErrorStyles.h"
#include "basic/NumberText.h"
#include "basic/Rounding.h"

#include <QTest>

#include <limits>

using namespace basic;

namespace {

// The error number a statement raises, 0 when it raises none.
template <class F>
int errorOf(F &&f)
{
    try {
        f();
    } catch (const RuntimeError &e) {
        return e.number();
    }
    return 0;
}

} // namespace

class tst_runtime : public QObject {
    Q_OBJECT
private slots:
    void generalTextOfMixerFigures();
    void generalTextForms();
    void halvesGoToEven();
    void sixteenBitEdges();
    void thirtyTwoBitEdges();
    void floatingDivisionAndIndexes();
    void numberPictures();
    void errorStyles();
};

void tst_runtime::generalTextOfMixerFigures()
{
    // Levels of the mixer strips seen on their scales: full scale over a
    // step, a step below zero, and the middle of the range in percent.
    QCOMPARE(generalText(65535.0 / 6553), QStringLiteral("10.0007630093087"));
    QCOMPARE(generalText(-1.0 / 6553), QStringLiteral("-1.52601861742713E-04"));
    QCOMPARE(generalText(32768 / 655.35), QStringLiteral("50.0007629510948"));
    QCOMPARE(generalText(0.0), QStringLiteral("0"));
    QCOMPARE(generalText(-0.0), QStringLiteral("0"));
}

void tst_runtime::generalTextForms()
{
    QCOMPARE(generalText(100.0), QStringLiteral("100"));
    QCOMPARE(generalText(0.5), QStringLiteral("0.5"));
    QCOMPARE(generalText(1.0 / 3), QStringLiteral("0.333333333333333"));
    QCOMPARE(generalText(2.0 / 3), QStringLiteral("0.666666666666667"));
    QCOMPARE(generalText(0.0001), QStringLiteral("0.0001"));
    QCOMPARE(generalText(0.00001), QStringLiteral("1E-05"));
    QCOMPARE(generalText(1e15), QStringLiteral("1E+15"));
    QCOMPARE(generalText(123456789012345.0), QStringLiteral("123456789012345"));
    QCOMPARE(generalText(-2147483648.0), QStringLiteral("-2147483648"));
    // Rounding at the 15th digit may carry into a new leading digit.
    QCOMPARE(generalText(9.9999999999999999), QStringLiteral("10"));
    QCOMPARE(generalText(0.1 + 0.2), QStringLiteral("0.3"));
    // A 32-bit float keeps 7 digits.
    QCOMPARE(generalText(38.125f), QStringLiteral("38.125"));
    QCOMPARE(generalText(1.0f / 3), QStringLiteral("0.3333333"));
    QCOMPARE(generalText(100.0f / 3), QStringLiteral("33.33333"));
}

void tst_runtime::halvesGoToEven()
{
    QCOMPARE(roundHalfEven(0.5), 0.0);
    QCOMPARE(roundHalfEven(1.5), 2.0);
    QCOMPARE(roundHalfEven(2.5), 2.0);
    QCOMPARE(roundHalfEven(-2.5), -2.0);
    QCOMPARE(roundHalfEven(2.5000001), 3.0);
    QCOMPARE(roundHalfEven(38.125, 0), 38.0);
    QCOMPARE(roundHalfEven(2.25, 1), 2.2);
    QCOMPARE(roundHalfEven(2.35, 1), 2.4); // 2.35 is stored a shade above the half
    QCOMPARE(CInt(0.5), qint16(0));
    QCOMPARE(CInt(-1.5), qint16(-2));
    QCOMPARE(CLng(4.5), qint32(4));
}

void tst_runtime::sixteenBitEdges()
{
    QCOMPARE(add<Integer>(32766, 1), Integer(32767));
    QCOMPARE(errorOf([] { add<Integer>(32767, 1); }), int(Overflow));
    QCOMPARE(errorOf([] { sub<Integer>(-32768, 1); }), int(Overflow));
    QCOMPARE(mul<Integer>(-256, 128), Integer(-32768));
    QCOMPARE(errorOf([] { mul<Integer>(256, 128); }), int(Overflow));
    QCOMPARE(errorOf([] { neg<Integer>(-32768); }), int(Overflow));
    QCOMPARE(errorOf([] { idiv<Integer>(-32768, -1); }), int(Overflow));
    QCOMPARE(errorOf([] { idiv<Integer>(5, 0); }), int(DivisionByZero));
    QCOMPARE(errorOf([] { mod<Integer>(5, 0); }), int(DivisionByZero));
    QCOMPARE(idiv<Integer>(-7, 2), Integer(-3));
    QCOMPARE(mod<Integer>(-7, 2), Integer(-1));
    QCOMPARE(mod<Integer>(-32768, -1), Integer(0));

    QCOMPARE(CInt(32767.4), Integer(32767));
    QCOMPARE(errorOf([] { CInt(32767.5); }), int(Overflow)); // the half goes up to the even 32768
    QCOMPARE(CInt(-32768.5), Integer(-32768));               // and here down to the even -32768
    QCOMPARE(errorOf([] { CInt(-32769); }), int(Overflow));
    QCOMPARE(errorOf([] { CInt(std::numeric_limits<double>::quiet_NaN()); }), int(Overflow));
    QCOMPARE(errorOf([] { narrow<Integer>(40000); }), int(Overflow));
    QCOMPARE(narrow<Integer>(-32768LL), Integer(-32768));
}

void tst_runtime::thirtyTwoBitEdges()
{
    QCOMPARE(errorOf([] { add<Long>(2147483647, 1); }), int(Overflow));
    QCOMPARE(errorOf([] { sub<Long>(-2147483647 - 1, 1); }), int(Overflow));
    QCOMPARE(errorOf([] { mul<Long>(65536, 32768); }), int(Overflow));
    QCOMPARE(mul<Long>(-65536, 32768), Long(-2147483647 - 1));
    QCOMPARE(errorOf([] { CLng(2147483647.5); }), int(Overflow));
    QCOMPARE(CLng(-2147483648.5), Long(-2147483647 - 1));
    QCOMPARE(CLng(2147483646.5), Long(2147483646));
    QCOMPARE(errorOf([] { CLng(1e300); }), int(Overflow));
    QCOMPARE(errorOf([] { narrow<Long>(4294967295ULL); }), int(Overflow));
    QCOMPARE(errorOf([] { CSng(1e39); }), int(Overflow));
    QCOMPARE(CSng(1e38), 1e38f);
}

void tst_runtime::floatingDivisionAndIndexes()
{
    QCOMPARE(basic::fdiv(1, 4), 0.25);
    QCOMPARE(errorOf([] { basic::fdiv(1, 0); }), int(DivisionByZero));
    QCOMPARE(errorOf([] { basic::fdiv(-3, 0); }), int(DivisionByZero));
    QCOMPARE(errorOf([] { basic::fdiv(0, 0); }), int(Overflow)); // the runtime's own word for 0/0
    QCOMPARE(errorOf([] { basic::fdiv(1e308, 1e-10); }), int(Overflow));
    QCOMPARE(errorOf([] { checkIndex(5, 0, 4); }), int(SubscriptOutOfRange));
    QCOMPARE(errorOf([] { checkIndex(-1, 0, 4); }), int(SubscriptOutOfRange));
    QCOMPARE(errorOf([] { checkIndex(4, 0, 4); }), 0);

    const RuntimeError e(DeviceUnavailable);
    QCOMPARE(e.description(), QStringLiteral("Device unavailable"));
    QCOMPARE(RuntimeError(InvalidPropertyValue).description(), QStringLiteral("Invalid property value"));
    QCOMPARE(RuntimeError(SubscriptOutOfRange).description(), QStringLiteral("Subscript out of range"));
    QCOMPARE(RuntimeError(DivisionByZero).description(), QStringLiteral("Division by zero"));
}

void tst_runtime::numberPictures()
{
    QCOMPARE(formatNumber(0, u"###"), QString());
    QCOMPARE(formatNumber(42.5, u"###"), QStringLiteral("43")); // pictures round halves away from zero
    QCOMPARE(formatNumber(-7.5, u"###"), QStringLiteral("-8"));
    QCOMPARE(formatNumber(123456, u"###"), QStringLiteral("123456"));
    QCOMPARE(formatNumber(5, u"0#"), QStringLiteral("05"));
    QCOMPARE(formatNumber(0, u"0#"), QStringLiteral("00")); // 0.4 s reads "00:00"
    QCOMPARE(formatNumber(0, u"#0"), QStringLiteral("0"));
    QCOMPARE(formatNumber(59.6, u"0#"), QStringLiteral("60"));
    QCOMPARE(formatNumber(125, u"0#"), QStringLiteral("125"));
    QCOMPARE(formatNumber(0, u"00"), QStringLiteral("00"));
    QCOMPARE(formatNumber(7, u"00"), QStringLiteral("07"));
    QCOMPARE(formatNumber(0.46, u"#.0"), QStringLiteral(".5"));
    QCOMPARE(formatNumber(0, u"#.0"), QStringLiteral(".0"));
    QCOMPARE(formatNumber(12.25, u"#.0"), QStringLiteral("12.3"));
    QCOMPARE(formatNumber(9.96, u"#.0"), QStringLiteral("10.0"));
    QCOMPARE(formatNumber(1234567, u"### ### ###"), QStringLiteral("1 234 567"));
    QCOMPARE(formatNumber(1234, u"### ### ###"), QStringLiteral(" 1 234"));
    QCOMPARE(formatNumber(1234, u"### ### ###").trimmed(), QStringLiteral("1 234"));
    QCOMPARE(formatNumber(0, u"### ### ###"), QStringLiteral("  "));
    QCOMPARE(formatNumber(4294967295.0, u"### ### ###"), QStringLiteral("4294 967 295"));
    QCOMPARE(formatNumber(345678901234.0, u"### ### ### ###"), QStringLiteral("345 678 901 234"));
    QCOMPARE(formatNumber(12345678901234.0, u"### ### ### ###"), QStringLiteral("12345 678 901 234"));
}

void tst_runtime::errorStyles()
{
    // Skip the failed statement and go on.
    ResumeNext next;
    int ran = 0;
    next([&] { ++ran; });
    next([&] { add<Integer>(32767, 1); ++ran; });
    next([&] { ++ran; });
    QCOMPARE(ran, 2);
    QCOMPARE(next.Err(), int(Overflow));

    // One exit: the first failure leaves with the fallback; nothing after it runs.
    int after = 0;
    const bool answer = falseOnError([&] {
        basic::fdiv(1, 0);
        ++after;
        return true;
    });
    QCOMPARE(answer, false);
    QCOMPARE(after, 0);
    QCOMPARE(falseOnError([] { return true; }), true);
    QCOMPARE(exitOnError(-1, [] { return CInt(70000.0); }), -1);

    // Faults that are not run-time errors are not swallowed.
    bool escaped = false;
    try {
        next([] { throw std::logic_error("bug"); });
    } catch (const std::logic_error &) {
        escaped = true;
    }
    QVERIFY(escaped);
}

QTEST_APPLESS_MAIN(tst_runtime)
#include "tst_runtime.moc"
