#pragma once

class Process {
public:
    virtual ~Process() = default;
    // The end of the program, at once: no handlers, no clean-up, hidden forms
    // and all. The real implementation does not return.
    virtual void end(int exitCode = 0) = 0;
};
