#include "basic/NumberText.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace basic {

QString generalText(double value, int significant)
{
    if (std::isnan(value))
        return QStringLiteral("NaN");
    if (std::isinf(value))
        return value < 0 ? QStringLiteral("-Infinity") : QStringLiteral("Infinity");
    if (value == 0.0)
        return QStringLiteral("0");
    if (significant < 1)
        significant = 1;
    if (significant > 17)
        significant = 17;

    char buf[64];
    std::snprintf(buf, sizeof buf, "%.*e", significant - 1, std::fabs(value));
    // buf is "d.ddddde[+-]XX"
    QString digits;
    const char *p = buf;
    for (; *p && *p != 'e'; ++p) {
        if (*p >= '0' && *p <= '9')
            digits.append(QLatin1Char(*p));
    }
    const int exponent = (*p == 'e') ? std::atoi(p + 1) : 0;
    while (digits.size() > 1 && digits.endsWith(QLatin1Char('0')))
        digits.chop(1);
    const int count = static_cast<int>(digits.size());

    QString text;
    if (value < 0)
        text.append(QLatin1Char('-'));

    const bool scientific = exponent >= significant || exponent < -4 || (exponent < 0 && count - exponent - 1 > significant);
    if (scientific) {
        text.append(digits.at(0));
        if (count > 1) {
            text.append(QLatin1Char('.'));
            text.append(QStringView(digits).mid(1));
        }
        text.append(exponent < 0 ? QLatin1String("E-") : QLatin1String("E+"));
        text.append(QString::number(std::abs(exponent)).rightJustified(2, QLatin1Char('0')));
        return text;
    }

    if (exponent >= 0) {
        if (count <= exponent + 1) {
            text.append(digits);
            text.append(QString(exponent + 1 - count, QLatin1Char('0')));
        } else {
            text.append(QStringView(digits).left(exponent + 1));
            text.append(QLatin1Char('.'));
            text.append(QStringView(digits).mid(exponent + 1));
        }
    } else {
        text.append(QLatin1String("0."));
        text.append(QString(-exponent - 1, QLatin1Char('0')));
        text.append(digits);
    }
    return text;
}

QString formatNumber(double value, QStringView picture)
{
    const qsizetype point = picture.indexOf(QLatin1Char('.'));
    const QStringView intPicture = point < 0 ? picture : picture.left(point);
    const QStringView fracPicture = point < 0 ? QStringView() : picture.mid(point + 1);

    int decimals = 0;
    for (QChar c : fracPicture)
        if (c == QLatin1Char('0') || c == QLatin1Char('#'))
            ++decimals;

    double magnitude = std::fabs(value);
    if (!std::isfinite(magnitude))
        magnitude = 0;
    const double scaled = std::round(magnitude * std::pow(10.0, decimals));
    char buf[400];
    std::snprintf(buf, sizeof buf, "%.0f", scaled);
    QString all = QString::fromLatin1(buf);
    if (all.size() <= decimals)
        all = QString(decimals - all.size() + 1, QLatin1Char('0')) + all;
    QString intDigits = all.left(all.size() - decimals);
    const QString fracDigits = all.right(decimals);
    if (intDigits == QLatin1String("0"))
        intDigits.clear();

    // Integer part: placeholders take digits from the right. From the first
    // "0" on, every placeholder shows a digit, so "0#" pads to two ("00").
    QString intText;
    qsizetype next = intDigits.size() - 1;
    qsizetype leftmost = -1;
    qsizetype firstZero = -1;
    for (qsizetype i = 0; i < intPicture.size(); ++i) {
        const bool placeholder = intPicture[i] == QLatin1Char('0') || intPicture[i] == QLatin1Char('#');
        if (placeholder && leftmost < 0)
            leftmost = i;
        if (intPicture[i] == QLatin1Char('0') && firstZero < 0)
            firstZero = i;
    }
    for (qsizetype i = intPicture.size() - 1; i >= 0; --i) {
        const QChar c = intPicture[i];
        if (c == QLatin1Char('0') || c == QLatin1Char('#')) {
            QString piece;
            if (next >= 0) {
                piece = intDigits.at(next--);
                if (i == leftmost && next >= 0) {
                    piece.prepend(intDigits.left(next + 1));
                    next = -1;
                }
            } else if (firstZero >= 0 && i >= firstZero) {
                piece = QStringLiteral("0");
            }
            intText.prepend(piece);
        } else {
            intText.prepend(c);
        }
    }
    if (leftmost < 0 && next >= 0)
        intText.prepend(intDigits.left(next + 1));

    // Fraction part: left to right; "#" drops trailing zeros.
    QString fracText;
    if (point >= 0) {
        int lastSignificant = -1;
        for (int k = 0; k < decimals; ++k)
            if (fracDigits.at(k) != QLatin1Char('0'))
                lastSignificant = k;
        int k = 0;
        for (QChar c : fracPicture) {
            if (c == QLatin1Char('0') || c == QLatin1Char('#')) {
                if (c == QLatin1Char('0') || k <= lastSignificant)
                    fracText.append(fracDigits.at(k));
                ++k;
            } else {
                fracText.append(c);
            }
        }
    }

    QString text;
    if (value < 0 && scaled != 0)
        text.append(QLatin1Char('-'));
    text.append(intText);
    if (point >= 0) {
        text.append(QLatin1Char('.'));
        text.append(fracText);
    }
    return text;
}

} // namespace basic
