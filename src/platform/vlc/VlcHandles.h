#pragma once

#include <vlc/vlc.h>

#include <memory>

// libvlc handles, each released by its own function.
struct VlcRelease {
    void operator()(libvlc_instance_t *p) const { libvlc_release(p); }
    void operator()(libvlc_media_t *p) const { libvlc_media_release(p); }
    void operator()(libvlc_media_player_t *p) const { libvlc_media_player_release(p); }
    void operator()(libvlc_media_list_t *p) const { libvlc_media_list_release(p); }
    void operator()(libvlc_media_list_player_t *p) const { libvlc_media_list_player_release(p); }
};

template <typename T>
using VlcPtr = std::unique_ptr<T, VlcRelease>;

// The one instance is shared by every engine; the last holder releases it.
using VlcInstancePtr = std::shared_ptr<libvlc_instance_t>;
