#include "mixer/PlayerSound.h"

#include "mixer/LocalSound.h"
#include "mixer/StationSound.h"

std::unique_ptr<PlayerSound> PlayerSound::of(StationEngine &engine)
{
    return std::make_unique<StationSound>(engine);
}

std::unique_ptr<PlayerSound> PlayerSound::of(LocalEngine &engine)
{
    return std::make_unique<LocalSound>(engine);
}
