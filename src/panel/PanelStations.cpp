// The station grid of a station panel and what a station click does.

#include "panel/Panel.h"

void Panel::buildStations()
{
}
