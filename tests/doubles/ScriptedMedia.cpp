#include "doubles/ScriptedMedia.h"

std::unique_ptr<StationEngine> ScriptedMedia::createStationEngine()
{
    auto e = std::make_unique<ScriptedStationEngine>();
    stations.append(e.get());
    return e;
}

std::unique_ptr<LocalEngine> ScriptedMedia::createLocalEngine()
{
    auto e = std::make_unique<ScriptedLocalEngine>();
    locals.append(e.get());
    return e;
}

std::unique_ptr<AnimationSurface> ScriptedMedia::createAnimationSurface(QWidget *parent)
{
    auto a = std::make_unique<ScriptedAnimation>(parent);
    animations.append(a.get());
    return a;
}
