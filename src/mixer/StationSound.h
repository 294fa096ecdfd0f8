#pragma once

#include "mixer/PlayerSound.h"

// A station panel's engine: settings.volume takes the fader's value as it is.
class StationSound : public PlayerSound {
public:
    explicit StationSound(StationEngine &engine) : m_engine(engine) {}

    void setVolume(int faderValue) override;
    bool mute() const override;
    void setMute(bool mute) override;

private:
    StationEngine &m_engine;
};
