#pragma once

#include <memory>

class AnimationSurface;
class LocalEngine;
class StationEngine;
class QWidget;

// Makes the media engines a panel owns: the station engine of a station
// panel, the local engine of Mp3, and the animation surface of every panel.
class Media {
public:
    virtual ~Media() = default;
    virtual std::unique_ptr<StationEngine> createStationEngine() = 0;
    virtual std::unique_ptr<LocalEngine> createLocalEngine() = 0;
    virtual std::unique_ptr<AnimationSurface> createAnimationSurface(QWidget *parent) = 0;
};
