#pragma once

#include <QString>

class Shell {
public:
    virtual ~Shell() = default;
    // Hands a URL or a file to the desktop's handler; the result is not ours to judge.
    virtual void open(const QString &target) = 0;
};
