#include "shell/Snow.h"

std::array<Particle, SnowLast + 1> Snow{};
