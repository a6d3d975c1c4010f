// Compiled alone, so that the build sees that it keeps to its layer.
#include "support/SimulatedDesktop.h"

#include "support/SimulatedForm.h"
