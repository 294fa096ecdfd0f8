#pragma once

#include "platform/Shell.h"

class RealShell : public Shell {
public:
    void open(const QString &target) override;
};
