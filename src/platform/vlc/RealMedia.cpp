#include "platform/vlc/RealMedia.h"

#include "platform/MovieAnimation.h"
#include "platform/vlc/VlcInstance.h"
#include "platform/vlc/VlcLocalEngine.h"
#include "platform/vlc/VlcStationEngine.h"

RealMedia::RealMedia(QStringList options)
    : m_options(std::move(options))
{
}

RealMedia::~RealMedia() = default;

VlcInstancePtr RealMedia::instance()
{
    // Asked once: a libvlc that cannot start is not tried again for each engine.
    if (!m_asked) {
        m_asked = true;
        m_instance = vlcInstance(m_options);
    }
    return m_instance;
}

std::unique_ptr<StationEngine> RealMedia::createStationEngine()
{
    return std::make_unique<VlcStationEngine>(instance());
}

std::unique_ptr<LocalEngine> RealMedia::createLocalEngine()
{
    return std::make_unique<VlcLocalEngine>(instance());
}

std::unique_ptr<AnimationSurface> RealMedia::createAnimationSurface(QWidget *parent)
{
    return std::make_unique<MovieAnimation>(parent);
}
