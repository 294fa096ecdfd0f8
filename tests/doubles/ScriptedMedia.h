#pragma once

#include "platform/AnimationSurface.h"
#include "platform/LocalEngine.h"
#include "platform/Media.h"
#include "platform/StationEngine.h"

#include <QLabel>
#include <QStringList>

#include <functional>

// Engines whose state the test sets and whose calls it reads back.
class ScriptedStationEngine : public StationEngine {
public:
    QString URL() const override { return url; }
    void setURL(const QString &u) override { url = u; calls << QStringLiteral("URL=") + u; }
    int playState() const override { return state; }
    void stop() override
    {
        calls << QStringLiteral("stop");
        state = 1;
        if (onStop)
            onStop();
    }
    QString currentPositionString() const override { return position; }
    bool mute() const override { return muted; }
    void setMute(bool m) override { muted = m; calls << QStringLiteral("mute=%1").arg(m); }
    int volume() const override { return vol; }
    void setVolume(int v) override { vol = v; }

    QString url, position;
    int state = 0, vol = 50;
    bool muted = false;
    QStringList calls;
    std::function<void()> onStop; // lets a test look at the world at the moment of a stop
};

class ScriptedLocalEngine : public LocalEngine {
public:
    QString FileName() const override { return file; }
    void setFileName(const QString &f) override
    {
        file = f;
        calls << QStringLiteral("FileName=") + f;
        state = f.isEmpty() ? 6 : 2;
        position = 0;
    }
    int PlayState() const override { return state; }
    double CurrentPosition() const override { return position; }
    void setCurrentPosition(double s) override { position = s; calls << QStringLiteral("CurrentPosition=%1").arg(s); }
    double Duration() const override { return duration; }
    void Play() override { calls << QStringLiteral("Play"); if (!file.isEmpty()) state = 2; }
    void Pause() override { calls << QStringLiteral("Pause"); if (state == 2) state = 1; }
    void Stop() override { calls << QStringLiteral("Stop"); if (state != 6) state = 0; }
    bool Mute() const override { return muted; }
    void setMute(bool m) override { muted = m; }
    long Volume() const override { return vol; }
    void setVolume(long v) override { vol = v; }

    QString file;
    int state = 6;
    double position = 0, duration = 0;
    bool muted = false;
    long vol = 0;
    QStringList calls;
};

class ScriptedAnimation : public AnimationSurface {
public:
    explicit ScriptedAnimation(QWidget *parent) : label(new QLabel(parent)) {}
    QWidget *widget() override { return label; }
    QString FileName() const override { return file; }
    void setFileName(const QString &f) override { file = f; state = 0; }
    void Play() override { state = 2; }
    void Pause() override { if (state == 2) state = 1; }
    void Stop() override { state = 0; }
    int PlayState() const override { return state; }

    QLabel *label;
    QString file;
    int state = 0;
};

// Hands out scripted engines and keeps a pointer to each for the test.
class ScriptedMedia : public Media {
public:
    std::unique_ptr<StationEngine> createStationEngine() override { return made(stations); }
    std::unique_ptr<LocalEngine> createLocalEngine() override { return made(locals); }
    std::unique_ptr<AnimationSurface> createAnimationSurface(QWidget *parent) override
    {
        return std::make_unique<ScriptedAnimation>(parent);
    }

    QList<ScriptedStationEngine *> stations;
    QList<ScriptedLocalEngine *> locals;

private:
    template <class Engine>
    static std::unique_ptr<Engine> made(QList<Engine *> &list)
    {
        auto e = std::make_unique<Engine>();
        list.append(e.get());
        return e;
    }
};
