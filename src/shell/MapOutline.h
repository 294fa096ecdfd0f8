#pragma once

#include <QPolygon>

// The outline of South India that the map's window is cut to: 94 vertices in
// pixels from the window's top-left, down the west coast, round the tip and
// up the east coast; the closing edge is the northern border.
QPolygon mapOutline();
