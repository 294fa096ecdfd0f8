#pragma once

#include "basic/Checked.h"

#include <array>

// One flake of the About window, in pixels of its surface.
struct Particle {
    basic::Integer X = 0;
    basic::Integer Y = 0;
    basic::Integer OldX = 0; // where it was last drawn
    basic::Integer OldY = 0;
    basic::Integer Stuck = 0; // frames it has been held up
};

// The flakes, 0 to 400. The table outlives the window: a new load places
// X and Y again and leaves the rest as the last frame left it.
inline constexpr int SnowLast = 400;
extern std::array<Particle, SnowLast + 1> Snow;
