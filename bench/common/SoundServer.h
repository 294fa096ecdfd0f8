#pragma once

#include "ServicePeer.h"
#include "platform/alsa/AlsaMixerDevice.h"

#include <QtGlobal>

#include <cstdio>
#include <cstdlib>
#include <memory>

// On a machine with no sound card the panels' mixer is the sound server
// through ALSA's "default": a PulseAudio null sink is started for the run
// (scripts/services/pulse.sh), so that no panel stops at the no-mixer box.
// Null when the machine has a card.
inline std::unique_ptr<ServicePeer> soundServerForTheMixer(int seconds = 540)
{
    if (AlsaMixerDevice::deviceName() != "default")
        return nullptr;
    auto pulse = std::make_unique<ServicePeer>(QStringLiteral("pulse.sh"), QStringList{}, seconds + 60);
    if (!pulse->ok()) {
        std::fprintf(stderr, "no sound server: %s\n", qPrintable(pulse->error()));
        std::exit(1);
    }
    qputenv("PULSE_SERVER", pulse->value(QStringLiteral("SERVER")).toUtf8());
    qputenv("PULSE_CLIENTCONFIG", pulse->value(QStringLiteral("CLIENTCONF")).toUtf8());
    qputenv("XDG_RUNTIME_DIR", pulse->value(QStringLiteral("RUNTIME")).toUtf8());
    return pulse;
}
