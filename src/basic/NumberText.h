#pragma once

#include <QString>
#include <QStringView>

namespace basic {

// The general text of a number, as the runtime writes a number into a
// caption or a text box: up to `significant` digits (15 for a double, 7 for a
// 32-bit float), no fixed decimals, trailing zeros dropped, a leading "0."
// for fractions, and the E form ("-1.52601861742713E-04") when the plain
// form would need more digits than that or the value is below 1E-04.
QString generalText(double value, int significant = 15);
inline QString generalText(float value) { return generalText(static_cast<double>(value), 7); }

// A number through a picture of digit placeholders, as the forms use them:
// "0" a digit or a zero (and every placeholder after it likewise), "#" a
// digit or nothing, "." the decimal point, and
// any other character copied as it stands ("### ### ###"). Rounds halves
// away from zero; digits beyond the leftmost placeholder all go there.
QString formatNumber(double value, QStringView picture);

} // namespace basic
