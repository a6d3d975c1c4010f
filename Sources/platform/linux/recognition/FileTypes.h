#pragma once

#include <vector>

#include "platform/linux/recognition/Engine.h"

namespace lumiscan::desktop {

/// Makes an I amid the small letters of a file's type an l, as in notes.xlsx.
void correctFileTypes(std::vector<Symbol>& symbols);

}  // namespace lumiscan::desktop
