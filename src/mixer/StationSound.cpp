#include "mixer/StationSound.h"

#include "platform/StationEngine.h"

void StationSound::setVolume(int faderValue)
{
    m_engine.setVolume(faderValue);
}

bool StationSound::mute() const
{
    return m_engine.mute();
}

void StationSound::setMute(bool mute)
{
    m_engine.setMute(mute);
}
