#pragma once

#include "platform/Shell.h"

class RealShell : public Shell {
public:
    void open(const QString &target) override;
    int execute(const QString &verb, const QString &file, const QString &parameters, const QString &directory,
                int showCommand) override;
};
