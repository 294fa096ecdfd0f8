#pragma once

namespace basic {

// Nearest, halves to the even neighbour: 0.5 -> 0, 1.5 -> 2, 2.5 -> 2.
double roundHalfEven(double value);

// The same at a number of decimals (negative counts as 0). Used where a
// value is kept to a chosen precision, e.g. a slider's RoundValue.
double roundHalfEven(double value, int decimals);

} // namespace basic
