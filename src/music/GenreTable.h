#pragma once

#include <QString>

namespace music {

// The genre names of the tag block's last byte, index 0 to 147.
inline constexpr int GenreCount = 148;

// index must lie in 0..GenreCount-1; cIDV3::GenreText guards it.
QLatin1String genreName(int index);

} // namespace music
