#pragma once

#include <vlc/vlc.h>

#include <atomic>
#include <initializer_list>
#include <vector>

// What both engines do with libvlc's events.

// libvlc says Stopped also when an input that ended or failed goes away; to
// the panels that stays Ended or Error. A stop of the engine's own sets
// Stopped itself.
inline void stopUnlessFinished(std::atomic<int> &state)
{
    int now = state.load();
    while (now != libvlc_Ended && now != libvlc_Error && !state.compare_exchange_weak(now, libvlc_Stopped)) {
    }
}

// The events an engine watches on its player, attached once and detached
// before anything else of the engine goes: libvlc holds the event lock while
// it calls out, so no callback runs into a half-destroyed engine afterwards.
class VlcEventHook {
public:
    VlcEventHook() = default;
    VlcEventHook(const VlcEventHook &) = delete;
    VlcEventHook &operator=(const VlcEventHook &) = delete;
    ~VlcEventHook() { detach(); }

    void attach(libvlc_media_player_t *player, std::initializer_list<libvlc_event_e> types, libvlc_callback_t callback,
                void *opaque)
    {
        detach();
        m_manager = libvlc_media_player_event_manager(player);
        m_types.assign(types.begin(), types.end());
        m_callback = callback;
        m_opaque = opaque;
        for (libvlc_event_e type : m_types)
            libvlc_event_attach(m_manager, type, m_callback, m_opaque);
    }

    void detach()
    {
        if (!m_manager)
            return;
        for (libvlc_event_e type : m_types)
            libvlc_event_detach(m_manager, type, m_callback, m_opaque);
        m_manager = nullptr;
    }

private:
    libvlc_event_manager_t *m_manager = nullptr;
    std::vector<libvlc_event_e> m_types;
    libvlc_callback_t m_callback = nullptr;
    void *m_opaque = nullptr;
};
