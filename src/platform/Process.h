#pragma once

class Process {
public:
    virtual ~Process() = default;
    // The end of the program, at once: no handlers, no clean-up, hidden forms
    // and all. The real implementation does not return.
    virtual void end(int exitCode = 0) = 0;

    // Set as the run-time error of an uncaught failure goes up: from then on
    // no handler runs, so nothing can fail again under that box, and the
    // process ends once it closes.
    bool failed() const { return m_failed; }
    void setFailed() { m_failed = true; }

private:
    bool m_failed = false;
};
