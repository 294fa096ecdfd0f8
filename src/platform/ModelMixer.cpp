#include "platform/ModelMixer.h"

#include <algorithm>
#include <cstring>

namespace {

template <std::size_t N>
void copyName(char (&to)[N], const std::string &name)
{
    std::memset(to, 0, N);
    std::memcpy(to, name.data(), std::min(name.size(), N - 1));
}

} // namespace

std::uint32_t ModelMixer::mixerOpen(std::uint32_t *handle, std::uint32_t device)
{
    if (!handle)
        return mixer::InvalidParameter;
    if (device != 0)
        return mixer::BadDeviceId;
    return openDevice(handle);
}

std::uint32_t ModelMixer::mixerGetLineInfo(std::uint32_t handle, mixer::Line *line, std::uint32_t flags)
{
    if (!knows(handle))
        return mixer::InvalidHandle;
    if (flags != mixer::LineByComponentType)
        return mixer::InvalidFlag;
    if (!line || line->cbStruct < sizeof(mixer::Line))
        return mixer::InvalidParameter;
    LineFacts facts;
    if (const std::uint32_t rc = findLine(handle, line->dwComponentType, facts); rc != mixer::NoError)
        return rc;
    const std::uint32_t cbStruct = line->cbStruct;
    const std::uint32_t component = line->dwComponentType;
    std::memset(line, 0, sizeof(mixer::Line));
    line->cbStruct = cbStruct;
    line->dwComponentType = component;
    line->dwLineID = facts.lineId;
    line->fdwLine = mixer::LineActive;
    line->cChannels = facts.channels;
    line->cControls = facts.controls;
    copyName(line->szShortName, facts.name);
    copyName(line->szName, facts.name);
    return mixer::NoError;
}

std::uint32_t ModelMixer::mixerGetLineControls(std::uint32_t handle, mixer::LineControls *controls,
                                               std::uint32_t flags)
{
    if (!knows(handle))
        return mixer::InvalidHandle;
    if (flags != mixer::OneControlByType)
        return mixer::InvalidFlag;
    if (!controls || controls->cControls != 1 || controls->cbmxctrl < sizeof(mixer::Control) || !controls->pamxctrl)
        return mixer::InvalidParameter;
    ControlFacts facts;
    if (const std::uint32_t rc = findControl(handle, controls->dwLineID, controls->dwControlType, facts);
        rc != mixer::NoError)
        return rc;
    mixer::Control &c = *controls->pamxctrl;
    std::memset(&c, 0, sizeof c);
    c.cbStruct = sizeof(mixer::Control);
    c.dwControlID = facts.id;
    c.dwControlType = controls->dwControlType;
    c.fdwControl = facts.channels == 1 ? mixer::UniformControl : 0;
    copyName(c.szShortName, facts.name);
    copyName(c.szName, facts.name);
    c.dwMaximum = facts.onOff ? 1 : mixer::LevelMaximum;
    c.cSteps = facts.steps;
    return mixer::NoError;
}

std::uint32_t ModelMixer::checkDetails(std::uint32_t handle, const mixer::ControlDetails *details,
                                       std::uint32_t flags)
{
    if (!knows(handle))
        return mixer::InvalidHandle;
    if (flags != mixer::DetailsValue)
        return mixer::InvalidFlag;
    if (!details || details->cbDetails != sizeof(std::uint32_t) || !details->paDetails || details->cMultipleItems != 0)
        return mixer::InvalidParameter;
    std::uint32_t channels = 0;
    if (const std::uint32_t rc = channelsOf(handle, details->dwControlID, &channels); rc != mixer::NoError)
        return rc;
    if (details->cChannels != 1 && details->cChannels != channels)
        return mixer::InvalidParameter;
    return mixer::NoError;
}

std::uint32_t ModelMixer::mixerGetControlDetails(std::uint32_t handle, mixer::ControlDetails *details,
                                                 std::uint32_t flags)
{
    if (const std::uint32_t rc = checkDetails(handle, details, flags); rc != mixer::NoError)
        return rc;
    return read(handle, details->dwControlID, details->cChannels, details->paDetails);
}

std::uint32_t ModelMixer::mixerSetControlDetails(std::uint32_t handle, const mixer::ControlDetails *details,
                                                 std::uint32_t flags)
{
    if (const std::uint32_t rc = checkDetails(handle, details, flags); rc != mixer::NoError)
        return rc;
    return write(handle, details->dwControlID, details->cChannels, details->paDetails);
}
