#pragma once

#include <QString>

class QWidget;

// pstate: a picture that moves while something plays. Load, run, hold, stop;
// PlayState 0 stopped, 1 held, 2 running. A missing file shows nothing.
class AnimationSurface {
public:
    virtual ~AnimationSurface() = default;

    virtual QWidget *widget() = 0;
    virtual QString FileName() const = 0;
    virtual void setFileName(const QString &file) = 0;
    virtual void Play() = 0;
    virtual void Pause() = 0;
    virtual void Stop() = 0;
    virtual int PlayState() const = 0;
};
