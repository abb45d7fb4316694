// A drag: somebody moves the windows of layers, and the device reports each step.
#pragma once

#include "devicesim/table.h"

namespace devicesim {

/// {"layers":4,"rate":100,"seconds":3}: the first so many layers move, in rate * seconds reports, never more
/// than `rate` a second. One drag at a time.
void startDrag(Call& call);
void showDrag(Call& call);
void stopDrag(Call& call);

}  // namespace devicesim
