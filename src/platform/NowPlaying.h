#pragma once

#include <QString>

// The player as the desktop's sound menu and media keys meet it: the panel
// last shown, its state and title, and its own transport. Every press runs
// the panel's handlers, messages and all; nothing here plays by itself.
class NowPlaying {
public:
    enum class Status { Stopped, Playing, Paused };

    // What a press can do in the panel at hand.
    struct Abilities {
        bool play = false;
        bool pause = false;
        bool next = false;
        bool previous = false;
        bool seek = false;
        bool operator==(const Abilities &) const = default;
    };

    virtual ~NowPlaying() = default;

    virtual QString playerName() const = 0; // the panel's name; empty before any panel showed
    virtual Status status() const = 0;
    virtual QString title() const = 0;      // the station's display name, or the file's name
    virtual QString url() const = 0;        // what the engine opened; empty when nothing
    virtual double position() const = 0;    // seconds
    virtual double length() const = 0;      // seconds; 0 while unknown or endless
    virtual Abilities abilities() const = 0;

    virtual void play() = 0;
    virtual void pause() = 0;
    virtual void playPause() = 0;
    virtual void stop() = 0;
    virtual void next() = 0;
    virtual void previous() = 0;
    virtual void seekTo(double seconds) = 0; // only where abilities().seek, within 0..length()
};
