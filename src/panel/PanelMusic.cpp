// Mp3's list of a folder, local playback, and the tag editor of every panel.

#include "panel/Panel.h"

void Panel::buildLocalMusic()
{
}
