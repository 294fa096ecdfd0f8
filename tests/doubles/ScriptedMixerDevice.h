#pragma once

#include "platform/ModelMixer.h"

#include <QList>

#include <algorithm>
#include <array>
#include <map>
#include <vector>

// A mixer whose lines and levels the test lays out, answering through the
// same request checks as the real device, and keeping every write.
class ScriptedMixerDevice : public ModelMixer {
public:
    struct Control {
        std::uint32_t id = 0;
        std::uint32_t channels = 2;
        std::array<std::uint32_t, 2> values{};
        bool failRead = false;
    };
    struct Write { std::uint32_t controlId; std::vector<std::uint32_t> values; }; // one value, or one per channel

    // Every line the panels look up: the speakers with volume, mute, treble
    // and bass, each source with volume and mute, all at `level`.
    explicit ScriptedMixerDevice(std::uint32_t level = 32768)
    {
        addLine(mixer::Speakers, 2, {mixer::Volume, mixer::Mute, mixer::Treble, mixer::Bass}, level);
        for (std::uint32_t source = mixer::UndefinedSource; source <= mixer::WaveOutSource; ++source)
            addLine(source, 2, {mixer::Volume, mixer::Mute}, level);
    }
    // Adds a line of `component` with the given control types, ids handed out in order; mutes start off.
    void addLine(std::uint32_t component, std::uint32_t channels, std::initializer_list<std::uint32_t> types,
                 std::uint32_t level)
    {
        for (std::uint32_t type : types) {
            const std::uint32_t value = type == mixer::Mute ? 0 : level;
            m_lines[component][type] = Control{.id = m_nextId++, .channels = channels, .values = {value, value}};
        }
    }
    void removeLine(std::uint32_t component) { m_lines.erase(component); }
    void removeControl(std::uint32_t component, std::uint32_t type) { m_lines.at(component).erase(type); }
    Control &control(std::uint32_t component, std::uint32_t type) { return m_lines.at(component).at(type); }

    std::uint32_t openResult = mixer::NoError;
    QList<Write> writes;

protected:
    std::uint32_t openDevice(std::uint32_t *handle) override
    {
        if (openResult == mixer::NoError)
            *handle = ++m_lastHandle;
        return openResult;
    }
    bool knows(std::uint32_t handle) const override
    {
        return handle > 0x100 && handle <= m_lastHandle && openResult == mixer::NoError;
    }
    std::uint32_t findLine(std::uint32_t, std::uint32_t componentType, LineFacts &line) override
    {
        const auto it = m_lines.find(componentType);
        if (it == m_lines.end())
            return mixer::InvalidLine;
        line.lineId = 0xFFFF0000u | componentType;
        line.channels = it->second.empty() ? 2 : it->second.begin()->second.channels;
        line.controls = static_cast<std::uint32_t>(it->second.size());
        return mixer::NoError;
    }
    std::uint32_t findControl(std::uint32_t, std::uint32_t lineId, std::uint32_t controlType,
                              ControlFacts &control) override
    {
        const auto line = m_lines.find(lineId & 0xFFFFu);
        if ((lineId & 0xFFFF0000u) != 0xFFFF0000u || line == m_lines.end())
            return mixer::InvalidLine;
        const auto it = line->second.find(controlType);
        if (it == line->second.end())
            return mixer::InvalidControl;
        control.id = it->second.id;
        control.channels = it->second.channels;
        control.onOff = controlType == mixer::Mute;
        return mixer::NoError;
    }
    std::uint32_t channelsOf(std::uint32_t, std::uint32_t controlId, std::uint32_t *channels) override
    {
        const Control *c = byId(controlId);
        if (c)
            *channels = c->channels;
        return c ? mixer::NoError : mixer::InvalidControl;
    }
    std::uint32_t read(std::uint32_t, std::uint32_t controlId, std::uint32_t count, std::uint32_t *values) override
    {
        const Control &c = *byId(controlId);
        if (c.failRead)
            return mixer::GeneralError;
        if (count == 1) // the louder channel
            values[0] = std::max(c.values[0], c.values[c.channels - 1]);
        else
            std::copy_n(c.values.begin(), count, values);
        return mixer::NoError;
    }
    std::uint32_t write(std::uint32_t, std::uint32_t controlId, std::uint32_t count, const std::uint32_t *values) override
    {
        writes.append({controlId, std::vector<std::uint32_t>(values, values + count)});
        Control &c = *byId(controlId);
        for (std::uint32_t i = 0; i < c.channels; ++i)
            c.values[i] = values[count == 1 ? 0 : i];
        return mixer::NoError;
    }

private:
    Control *byId(std::uint32_t id)
    {
        for (auto &[component, line] : m_lines) {
            for (auto &[type, c] : line) {
                if (c.id == id)
                    return &c;
            }
        }
        return nullptr;
    }
    std::map<std::uint32_t, std::map<std::uint32_t, Control>> m_lines; // component -> control type -> control
    std::uint32_t m_nextId = 1;
    std::uint32_t m_lastHandle = 0x100;
};
