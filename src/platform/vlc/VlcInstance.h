#pragma once

#include "platform/vlc/VlcHandles.h"

#include <QStringList>

// The process's one libvlc instance, made on first use with the options of
// that first use. While it lives, later callers get the same instance and
// their options are ignored; once the last holder lets go it is released,
// and the next use makes a new one with its own options. Answers null when
// libvlc cannot start (no plugins, an option it does not know). libvlc, its
// plugins and the sound library under them print nothing.
VlcInstancePtr vlcInstance(const QStringList &options);

// The options the live instance was made with (without our own base
// options); empty when none lives.
QStringList vlcInstanceOptions();
