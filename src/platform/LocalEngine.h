#pragma once

#include <QString>

// The engine of the Mp3 panel. Writing FileName loads and starts the file;
// an empty name closes it. PlayState: 0 stopped, 1 paused, 2 playing,
// 3 waiting, 6 closed. Volume in hundredths of a decibel, 0 full, -2500 is
// -25 dB.
class LocalEngine {
public:
    virtual ~LocalEngine() = default;

    virtual QString FileName() const = 0;
    virtual void setFileName(const QString &file) = 0;
    virtual int PlayState() const = 0;
    virtual double CurrentPosition() const = 0; // seconds
    virtual void setCurrentPosition(double seconds) = 0;
    virtual double Duration() const = 0;        // seconds, 0 while unknown
    virtual void Play() = 0;
    virtual void Pause() = 0;
    virtual void Stop() = 0;
    virtual bool Mute() const = 0;
    virtual void setMute(bool mute) = 0;
    virtual long Volume() const = 0;
    virtual void setVolume(long volume) = 0;
};
