#include "doubles/ScriptedMixerDevice.h"

#include <algorithm>

ScriptedMixerDevice::ScriptedMixerDevice(std::uint32_t level)
{
    addLine(mixer::Speakers, 2, {mixer::Volume, mixer::Mute, mixer::Treble, mixer::Bass}, level);
    for (std::uint32_t source = mixer::UndefinedSource; source <= mixer::WaveOutSource; ++source)
        addLine(source, 2, {mixer::Volume, mixer::Mute}, level);
}

void ScriptedMixerDevice::addLine(std::uint32_t component, std::uint32_t channels,
                                  std::initializer_list<std::uint32_t> types, std::uint32_t level)
{
    auto &line = m_lines[component];
    for (std::uint32_t type : types) {
        Control c;
        c.id = m_nextId++;
        c.channels = channels;
        c.values = {level, level};
        if (type == mixer::Mute)
            c.values = {0, 0};
        line[type] = c;
    }
}

std::uint32_t ScriptedMixerDevice::openDevice(std::uint32_t *handle)
{
    ++opens;
    if (openResult != mixer::NoError)
        return openResult;
    *handle = 0x100 + static_cast<std::uint32_t>(opens);
    return mixer::NoError;
}

bool ScriptedMixerDevice::knows(std::uint32_t handle) const
{
    return handle > 0x100 && handle <= 0x100 + static_cast<std::uint32_t>(opens) && openResult == mixer::NoError;
}

std::uint32_t ScriptedMixerDevice::findLine(std::uint32_t, std::uint32_t componentType, LineFacts &line)
{
    auto it = m_lines.find(componentType);
    if (it == m_lines.end())
        return mixer::InvalidLine;
    line.lineId = 0xFFFF0000u | componentType;
    line.channels = it->second.empty() ? 2 : it->second.begin()->second.channels;
    line.controls = static_cast<std::uint32_t>(it->second.size());
    line.name = "line";
    return mixer::NoError;
}

std::uint32_t ScriptedMixerDevice::findControl(std::uint32_t, std::uint32_t lineId, std::uint32_t controlType,
                                               ControlFacts &control)
{
    auto line = m_lines.find(lineId & 0xFFFFu);
    if ((lineId & 0xFFFF0000u) != 0xFFFF0000u || line == m_lines.end())
        return mixer::InvalidLine;
    auto it = line->second.find(controlType);
    if (it == line->second.end())
        return mixer::InvalidControl;
    control.id = it->second.id;
    control.channels = it->second.channels;
    control.onOff = controlType == mixer::Mute;
    control.name = "control";
    return mixer::NoError;
}

ScriptedMixerDevice::Control *ScriptedMixerDevice::byId(std::uint32_t id)
{
    for (auto &[component, line] : m_lines)
        for (auto &[type, c] : line)
            if (c.id == id)
                return &c;
    return nullptr;
}

std::uint32_t ScriptedMixerDevice::channelsOf(std::uint32_t, std::uint32_t controlId, std::uint32_t *channels)
{
    const Control *c = byId(controlId);
    if (!c)
        return mixer::InvalidControl;
    *channels = c->channels;
    return mixer::NoError;
}

std::uint32_t ScriptedMixerDevice::read(std::uint32_t, std::uint32_t controlId, std::uint32_t count,
                                        std::uint32_t *values)
{
    const Control &c = *byId(controlId);
    if (c.failRead)
        return mixer::GeneralError;
    if (count == 1)
        values[0] = std::max(c.values[0], c.values[c.channels - 1]);
    else
        std::copy_n(c.values.begin(), count, values);
    return mixer::NoError;
}

std::uint32_t ScriptedMixerDevice::write(std::uint32_t, std::uint32_t controlId, std::uint32_t count,
                                         const std::uint32_t *values)
{
    Control &c = *byId(controlId);
    writes.append({controlId, std::vector<std::uint32_t>(values, values + count)});
    if (c.failWrite)
        return mixer::GeneralError;
    for (std::uint32_t i = 0; i < c.channels; ++i)
        c.values[i] = values[count == 1 ? 0 : i];
    return mixer::NoError;
}
