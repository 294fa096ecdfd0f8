#pragma once

#include "platform/Media.h"
#include "platform/vlc/VlcHandles.h"

#include <QStringList>

// The engines on libvlc and the animation surface on QMovie. All engines of
// the process share one libvlc instance, made when the first engine is made,
// with the options of the RealMedia that made it (the program passes none;
// tests pass theirs). A second RealMedia made while that instance lives gets
// the same instance and its options are ignored; options
// take effect again only after every engine and RealMedia holding the
// instance is gone.
class RealMedia : public Media {
public:
    explicit RealMedia(QStringList options = {});
    ~RealMedia() override;

    std::unique_ptr<StationEngine> createStationEngine() override;
    std::unique_ptr<LocalEngine> createLocalEngine() override;
    std::unique_ptr<AnimationSurface> createAnimationSurface(QWidget *parent) override;

    // The shared instance, made on first call; null when libvlc cannot start.
    VlcInstancePtr instance();

private:
    QStringList m_options;
    VlcInstancePtr m_instance;
    bool m_asked = false;
};
