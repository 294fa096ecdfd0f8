#pragma once

#include "platform/MixerDevice.h"

#include <cstdint>
#include <string>

// The five calls over a plain model of lines and controls: the checks of a
// request and the filling of its records live here once, and a back-end only
// answers what its machine has. Control and line ids are the back-end's own;
// 0 is never a control.
class ModelMixer : public MixerDevice {
public:
    std::uint32_t mixerOpen(std::uint32_t *handle, std::uint32_t device) final;
    std::uint32_t mixerGetLineInfo(std::uint32_t handle, mixer::Line *line, std::uint32_t flags) final;
    std::uint32_t mixerGetLineControls(std::uint32_t handle, mixer::LineControls *controls, std::uint32_t flags) final;
    std::uint32_t mixerGetControlDetails(std::uint32_t handle, mixer::ControlDetails *details,
                                         std::uint32_t flags) final;
    std::uint32_t mixerSetControlDetails(std::uint32_t handle, const mixer::ControlDetails *details,
                                         std::uint32_t flags) final;

protected:
    struct LineFacts {
        std::uint32_t lineId = 0;
        std::uint32_t channels = 0;
        std::uint32_t controls = 0;
        std::string name;
    };
    struct ControlFacts {
        std::uint32_t id = 0;
        std::uint32_t channels = 0;
        bool onOff = false; // a switch: 0 or 1 rather than a level
        std::uint32_t steps = 0;
        std::string name;
    };

    virtual std::uint32_t openDevice(std::uint32_t *handle) = 0;
    virtual bool knows(std::uint32_t handle) const = 0;
    virtual std::uint32_t findLine(std::uint32_t handle, std::uint32_t componentType, LineFacts &line) = 0;
    virtual std::uint32_t findControl(std::uint32_t handle, std::uint32_t lineId, std::uint32_t controlType,
                                      ControlFacts &control) = 0;
    // The channels of a control found earlier; InvalidControl for any other id.
    virtual std::uint32_t channelsOf(std::uint32_t handle, std::uint32_t controlId, std::uint32_t *channels) = 0;
    // `count` is 1 (one value for every channel) or the control's channel count;
    // levels are 0..65535, switches 1 for muted.
    virtual std::uint32_t read(std::uint32_t handle, std::uint32_t controlId, std::uint32_t count,
                               std::uint32_t *values) = 0;
    virtual std::uint32_t write(std::uint32_t handle, std::uint32_t controlId, std::uint32_t count,
                                const std::uint32_t *values) = 0;

private:
    std::uint32_t checkDetails(std::uint32_t handle, const mixer::ControlDetails *details, std::uint32_t flags);
};
