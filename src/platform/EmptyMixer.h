#pragma once

#include "platform/ModelMixer.h"

// A mixer that opens and has no line at all: what a bundle gets when it was
// put together without naming a mixer (emptyMixer(), Platform.h). It keeps
// no state, so one serves every such bundle.
class EmptyMixer : public ModelMixer {
protected:
    std::uint32_t openDevice(std::uint32_t *handle) override
    {
        *handle = 1;
        return mixer::NoError;
    }
    bool knows(std::uint32_t handle) const override { return handle == 1; }
    std::uint32_t findLine(std::uint32_t, std::uint32_t, LineFacts &) override { return mixer::InvalidLine; }
    std::uint32_t findControl(std::uint32_t, std::uint32_t, std::uint32_t, ControlFacts &) override
    {
        return mixer::InvalidLine;
    }
    std::uint32_t channelsOf(std::uint32_t, std::uint32_t, std::uint32_t *) override { return mixer::InvalidControl; }
    std::uint32_t read(std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t *) override
    {
        return mixer::InvalidControl;
    }
    std::uint32_t write(std::uint32_t, std::uint32_t, std::uint32_t, const std::uint32_t *) override
    {
        return mixer::InvalidControl;
    }
};
