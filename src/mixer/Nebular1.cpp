#include "mixer/Nebular1.h"

#include "platform/MixerDevice.h"

#include <cstring>
#include <memory>

namespace Nebular1 {

std::uint32_t lastResult = 0;

namespace {

constexpr std::int16_t True = -1;
constexpr std::int16_t False = 0;
constexpr std::uint32_t DetailsSize = 24;

mixer::ControlDetails details(const mixer::Control &mxc, std::uint32_t channels, std::uint32_t items,
                              std::uint32_t *values)
{
    return {DetailsSize, mxc.dwControlID, channels, items, sizeof(std::uint32_t), values};
}

std::int16_t write(MixerDevice &device, std::uint32_t hmixer, const mixer::Control &mxc, std::uint32_t value)
{
    std::uint32_t block = value;
    const mixer::ControlDetails d = details(mxc, 1, 0, &block);
    lastResult = device.mixerSetControlDetails(hmixer, &d, mixer::DetailsValue);
    return lastResult == mixer::NoError ? True : False;
}

} // namespace

std::int16_t GetMixerControl(MixerDevice &device, std::uint32_t hmixer, std::uint32_t componentType,
                             std::uint32_t ctrlType, mixer::Control &mxc)
{
    mixer::Line line{};
    line.cbStruct = sizeof(mixer::Line);
    line.dwComponentType = componentType;
    lastResult = device.mixerGetLineInfo(hmixer, &line, mixer::LineByComponentType);
    if (lastResult != mixer::NoError)
        return False;

    // Scratch block for the one control; gone again on every way out.
    auto scratch = std::make_unique<mixer::Control>();
    std::memset(scratch.get(), 0, sizeof(mixer::Control));
    mixer::LineControls controls{};
    controls.cbStruct = 24;
    controls.dwLineID = line.dwLineID;
    controls.dwControlType = ctrlType;
    controls.cControls = 1;
    controls.cbmxctrl = sizeof(mixer::Control);
    controls.pamxctrl = scratch.get();

    mxc.cbStruct = sizeof(mixer::Control);
    lastResult = device.mixerGetLineControls(hmixer, &controls, mixer::OneControlByType);
    if (lastResult != mixer::NoError)
        return False;
    std::memcpy(&mxc, scratch.get(), sizeof(mixer::Control));
    return True;
}

std::int32_t GetControlValue(MixerDevice &device, std::uint32_t hmixer, const mixer::Control &mxc)
{
    std::uint32_t block = 0;
    mixer::ControlDetails d = details(mxc, 1, 0, &block);
    lastResult = device.mixerGetControlDetails(hmixer, &d, mixer::DetailsValue);
    if (lastResult != mixer::NoError)
        return -1;
    return static_cast<std::int32_t>(block);
}

std::int16_t SetControlValue(MixerDevice &device, std::uint32_t hmixer, const mixer::Control &mxc,
                             std::int32_t value)
{
    return write(device, hmixer, mxc, static_cast<std::uint32_t>(value));
}

std::int16_t SetStereoLevel(MixerDevice &device, std::uint32_t hmixer, const mixer::Control &mxc,
                            std::int32_t first, std::int32_t second)
{
    std::uint32_t block[2] = {static_cast<std::uint32_t>(first), static_cast<std::uint32_t>(second)};
    const mixer::ControlDetails d = details(mxc, 2, mxc.cMultipleItems, block);
    lastResult = device.mixerSetControlDetails(hmixer, &d, mixer::DetailsValue);
    return lastResult == mixer::NoError ? True : False;
}

std::int16_t ClearControlValue(MixerDevice &device, std::uint32_t hmixer, const mixer::Control &mxc, std::int32_t)
{
    return write(device, hmixer, mxc, 0);
}

} // namespace Nebular1
