#pragma once

#include "platform/MixerRecords.h"

#include <cstdint>

// The machine's audio mixer through the five classic calls. Levels are
// 0..65535 whatever the hardware's own range, a mute control reads 1 when
// muted, and every answer is a result code (mixer::NoError on success). A
// handle once opened stays valid for the life of the process.
class MixerDevice {
public:
    virtual ~MixerDevice() = default;

    // Opens device `device` (only 0 exists) into *handle.
    virtual std::uint32_t mixerOpen(std::uint32_t *handle, std::uint32_t device) = 0;
    // Finds the line of line->dwComponentType (flags LineByComponentType).
    virtual std::uint32_t mixerGetLineInfo(std::uint32_t handle, mixer::Line *line, std::uint32_t flags) = 0;
    // Fills the one record controls->pamxctrl with the control of type
    // controls->dwControlType on line controls->dwLineID (flags OneControlByType).
    virtual std::uint32_t mixerGetLineControls(std::uint32_t handle, mixer::LineControls *controls,
                                               std::uint32_t flags) = 0;
    // Reads or writes 1 value (every channel alike) or one per channel of the
    // line (flags DetailsValue).
    virtual std::uint32_t mixerGetControlDetails(std::uint32_t handle, mixer::ControlDetails *details,
                                                 std::uint32_t flags) = 0;
    virtual std::uint32_t mixerSetControlDetails(std::uint32_t handle, const mixer::ControlDetails *details,
                                                 std::uint32_t flags) = 0;
};
