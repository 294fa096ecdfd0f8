#include "platform/EmptyMixer.h"

#include "platform/Platform.h"

MixerDevice &emptyMixer()
{
    static EmptyMixer none;
    return none;
}
