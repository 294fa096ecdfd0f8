#pragma once

// Integer and floating arithmetic that fails the way the program's runtime
// does: an out-of-range result is run-time error 6, a zero divisor error 11,
// a bad index error 9. Nothing here wraps, saturates or invokes undefined
// behaviour.

#include "basic/Rounding.h"
#include "basic/RuntimeError.h"

#include <cmath>
#include <concepts>
#include <cstdint>
#include <limits>

namespace basic {

using Integer = std::int16_t; // the 16-bit integer of the forms
using Long = std::int32_t;    // the 32-bit integer of the forms

template <std::signed_integral T>
T add(T a, T b)
{
    T r;
    if (__builtin_add_overflow(a, b, &r))
        raise(Overflow);
    return r;
}

template <std::signed_integral T>
T sub(T a, T b)
{
    T r;
    if (__builtin_sub_overflow(a, b, &r))
        raise(Overflow);
    return r;
}

template <std::signed_integral T>
T mul(T a, T b)
{
    T r;
    if (__builtin_mul_overflow(a, b, &r))
        raise(Overflow);
    return r;
}

// Integer division (the backslash operator): truncates toward zero.
template <std::signed_integral T>
T idiv(T a, T b)
{
    if (b == 0)
        raise(DivisionByZero);
    if (a == std::numeric_limits<T>::min() && b == -1)
        raise(Overflow);
    return static_cast<T>(a / b);
}

template <std::signed_integral T>
T mod(T a, T b)
{
    if (b == 0)
        raise(DivisionByZero);
    if (b == -1)
        return 0;
    return static_cast<T>(a % b);
}

template <std::signed_integral T>
T neg(T a)
{
    return sub<T>(0, a);
}

// A double into an integer type: rounded half to even, error 6 outside the
// type's range (also for NaN and infinities).
template <std::signed_integral T>
T toInteger(double v)
{
    if (!std::isfinite(v))
        raise(Overflow);
    const double r = roundHalfEven(v);
    if (r < static_cast<double>(std::numeric_limits<T>::min())
        || r > static_cast<double>(std::numeric_limits<T>::max()))
        raise(Overflow);
    return static_cast<T>(r);
}

inline Integer CInt(double v) { return toInteger<Integer>(v); }
inline Long CLng(double v) { return toInteger<Long>(v); }

// An integer of a wider type narrowed with a range check.
template <std::signed_integral To, std::integral From>
To narrow(From v)
{
    if (!std::in_range<To>(v))
        raise(Overflow);
    return static_cast<To>(v);
}

// Into a 32-bit float: a finite double beyond its range is error 6.
inline float CSng(double v)
{
    if (std::isnan(v))
        raise(Overflow);
    if (std::isfinite(v) && std::fabs(v) > static_cast<double>(std::numeric_limits<float>::max()))
        raise(Overflow);
    return static_cast<float>(v);
}

// Floating division: a zero divisor is error 11, except 0/0, which the
// runtime reports as an overflow (6). An infinite quotient is an overflow.
inline double fdiv(double a, double b)
{
    if (b == 0.0)
        raise(a == 0.0 || std::isnan(a) ? Overflow : DivisionByZero);
    const double r = a / b;
    if (!std::isfinite(r))
        raise(Overflow);
    return r;
}

// Error 9 when i is outside lo..hi.
template <std::integral I>
void checkIndex(I i, long long lo, long long hi)
{
    if (static_cast<long long>(i) < lo || static_cast<long long>(i) > hi)
        raise(SubscriptOutOfRange);
}

} // namespace basic
