#pragma once

#include "mixer/PlayerSound.h"

// Mp3's engine: Volume in hundredths of a decibel, v * 25 - 2500, so the
// fader's 0 is -25 dB (and never silence) and 100 is full.
class LocalSound : public PlayerSound {
public:
    explicit LocalSound(LocalEngine &engine) : m_engine(engine) {}

    void setVolume(int faderValue) override;
    bool mute() const override;
    void setMute(bool mute) override;

private:
    LocalEngine &m_engine;
};
