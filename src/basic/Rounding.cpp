#include "basic/Rounding.h"

#include <cfenv>
#include <cmath>

namespace basic {

double roundHalfEven(double value)
{
    if (!std::isfinite(value))
        return value;
    // nearbyint follows the current rounding mode, which is to-nearest-even
    // unless someone changed it; make it explicit instead of trusting that.
    const int old = std::fegetround();
    std::fesetround(FE_TONEAREST);
    const double r = std::nearbyint(value);
    std::fesetround(old);
    return r;
}

double roundHalfEven(double value, int decimals)
{
    if (decimals <= 0)
        return roundHalfEven(value);
    if (decimals > 15)
        decimals = 15;
    const double scale = std::pow(10.0, decimals);
    const double scaled = value * scale;
    if (!std::isfinite(scaled))
        return value;
    return roundHalfEven(scaled) / scale;
}

} // namespace basic
