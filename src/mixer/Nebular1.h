#pragma once

#include "platform/MixerRecords.h"

#include <cstdint>

class MixerDevice;

// The five mixer wrappers every panel calls. Truth values are 16-bit: -1
// true, 0 false. Every platform result lands in lastResult, which nothing
// reads.
namespace Nebular1 {

extern std::uint32_t lastResult;

// Looks the line of componentType up, then its control of ctrlType into mxc.
// The record's first field is set to 148 before the second lookup, so a
// control that is not there still leaves that mark in the record.
std::int16_t GetMixerControl(MixerDevice &device, std::uint32_t hmixer, std::uint32_t componentType,
                             std::uint32_t ctrlType, mixer::Control &mxc);
// The value of the control for the whole line; -1 on failure.
std::int32_t GetControlValue(MixerDevice &device, std::uint32_t hmixer, const mixer::Control &mxc);
std::int16_t SetControlValue(MixerDevice &device, std::uint32_t hmixer, const mixer::Control &mxc,
                             std::int32_t value);
std::int16_t SetStereoLevel(MixerDevice &device, std::uint32_t hmixer, const mixer::Control &mxc,
                            std::int32_t first, std::int32_t second);
// Writes 0 whatever the third argument says.
std::int16_t ClearControlValue(MixerDevice &device, std::uint32_t hmixer, const mixer::Control &mxc,
                               std::int32_t ignored);

} // namespace Nebular1
