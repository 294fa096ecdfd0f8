#pragma once

#include "platform/ModelMixer.h"

#include <memory>
#include <string>
#include <vector>

// The mixer device on ALSA's simple mixer: the first sound card's mixer when
// the machine has a card, else "default" (on a desktop, the sound server).
// Lines are simple elements:
//   speakers "Master", wave "PCM", line "Line", microphone "Mic" then
//   "Capture", CD "CD", undefined source "Aux", telephone "Phone",
//   synthesizer "Synth", digital "IEC958", PC speaker "Beep" then
//   "PC Speaker"; treble and bass of the speakers "Treble" and "Bass" or
//   their "Tone Control - " forms.
// A volume control is the element's playback volume, a mute control its
// playback switch (off reads 1, muted); the microphone takes the capture
// side instead. Each element's own range is scaled to 0..65535 and back.
// The configuration is read afresh at every open, so a sound server started
// after the program is found by the next panel that opens. alsa-lib's own
// messages are silenced: the program writes nothing.
class AlsaMixerDevice : public ModelMixer {
public:
    AlsaMixerDevice();
    ~AlsaMixerDevice() override;
    AlsaMixerDevice(const AlsaMixerDevice &) = delete;
    AlsaMixerDevice &operator=(const AlsaMixerDevice &) = delete;

    // The ALSA name an open would use now.
    static std::string deviceName();

    // An element's value to a level and back, rounded to the nearest.
    static std::uint32_t toLevel(long value, long min, long max);
    static long fromLevel(std::uint32_t level, long min, long max);

protected:
    std::uint32_t openDevice(std::uint32_t *handle) override;
    bool knows(std::uint32_t handle) const override;
    std::uint32_t findLine(std::uint32_t handle, std::uint32_t componentType, LineFacts &line) override;
    std::uint32_t findControl(std::uint32_t handle, std::uint32_t lineId, std::uint32_t controlType,
                              ControlFacts &control) override;
    std::uint32_t channelsOf(std::uint32_t handle, std::uint32_t controlId, std::uint32_t *channels) override;
    std::uint32_t read(std::uint32_t handle, std::uint32_t controlId, std::uint32_t count,
                       std::uint32_t *values) override;
    std::uint32_t write(std::uint32_t handle, std::uint32_t controlId, std::uint32_t count,
                        const std::uint32_t *values) override;

private:
    struct Opened;
    Opened *opened(std::uint32_t handle) const;
    std::vector<std::unique_ptr<Opened>> m_opened; // handle n is m_opened[n - 1]
};
