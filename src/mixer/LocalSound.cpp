#include "mixer/LocalSound.h"

#include "basic/Checked.h"
#include "platform/LocalEngine.h"

void LocalSound::setVolume(int faderValue)
{
    using basic::Long;
    m_engine.setVolume(basic::sub<Long>(basic::mul<Long>(faderValue, 25), 2500));
}

bool LocalSound::mute() const
{
    return m_engine.Mute();
}

void LocalSound::setMute(bool mute)
{
    m_engine.setMute(mute);
}
