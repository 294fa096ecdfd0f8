#pragma once

#include "platform/ModelMixer.h"

#include <QList>

#include <array>
#include <cstdint>
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
        bool failWrite = false;
    };
    struct Write {
        std::uint32_t controlId;
        std::vector<std::uint32_t> values; // one, or one per channel
    };

    // Every line the panels look up: the speakers with volume, mute, treble
    // and bass, each source with volume and mute, all at `level`.
    explicit ScriptedMixerDevice(std::uint32_t level = 32768);

    void clear() { m_lines.clear(); }
    // Adds a line of `component` with the given control types, ids handed out in order.
    void addLine(std::uint32_t component, std::uint32_t channels, std::initializer_list<std::uint32_t> types,
                 std::uint32_t level);
    void removeLine(std::uint32_t component) { m_lines.erase(component); }
    void removeControl(std::uint32_t component, std::uint32_t type) { m_lines.at(component).erase(type); }
    Control &control(std::uint32_t component, std::uint32_t type) { return m_lines.at(component).at(type); }

    std::uint32_t openResult = mixer::NoError;
    int opens = 0;
    QList<Write> writes;

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
    Control *byId(std::uint32_t id);
    std::map<std::uint32_t, std::map<std::uint32_t, Control>> m_lines; // component -> control type -> control
    std::uint32_t m_nextId = 1;
};
