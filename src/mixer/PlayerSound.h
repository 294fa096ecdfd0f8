#pragma once

#include <memory>

class LocalEngine;
class StationEngine;

// What the player chain needs of its panel: the panel's own engine, reached
// the way that panel reaches it (a station panel through its settings, Mp3
// through its player's Volume and Mute).
class PlayerSound {
public:
    virtual ~PlayerSound() = default;

    // The fader's value, 0..100.
    virtual void setVolume(int faderValue) = 0;
    virtual bool mute() const = 0;
    virtual void setMute(bool mute) = 0;

    static std::unique_ptr<PlayerSound> of(StationEngine &engine);
    static std::unique_ptr<PlayerSound> of(LocalEngine &engine);
};
