#pragma once

#include "platform/Process.h"

class RealProcess : public Process {
public:
    [[noreturn]] void end(int exitCode = 0) override;
};
