#pragma once

#include <QString>

// The engine of a station panel. Writing URL replaces what plays and starts
// the new source by itself. playState: 1 stopped, 2 paused, 3 playing,
// 6 buffering, 10 ready; anything else is none of these.
class StationEngine {
public:
    virtual ~StationEngine() = default;

    virtual QString URL() const = 0;
    virtual void setURL(const QString &url) = 0;
    virtual int playState() const = 0;
    virtual void stop() = 0;                              // controls.stop
    virtual QString currentPositionString() const = 0;    // controls.currentPositionString: "mm:ss" or ""
    virtual bool mute() const = 0;                        // settings.mute
    virtual void setMute(bool mute) = 0;
    virtual int volume() const = 0;                       // settings.volume, 0..100
    virtual void setVolume(int volume) = 0;
};
