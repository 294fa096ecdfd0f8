#pragma once

#include <QString>

class Shell {
public:
    virtual ~Shell() = default;
    // Hands a URL or a file to the desktop's handler; the result is not ours to judge.
    virtual void open(const QString &target) = 0;

    // The classic shell call: a verb, a file or address with its parameters
    // and working folder, and a show command. Answers as that call did:
    // above 32 when it went, 0 when the system ran out of memory, and the
    // small codes of its failures (2 file not found, 31 no handler).
    virtual int execute(const QString &verb, const QString &file, const QString &parameters,
                        const QString &directory, int showCommand) = 0;
};
