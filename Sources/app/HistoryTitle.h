#pragma once

#include <string>

#include "output/CaptureRecord.h"

namespace lumiscan {

/// What the history submenu shows for a record: the time of day, where the user is now, and the start of the
/// text's first line that isn't empty. UTF-8.
std::string historyTitle(const CaptureRecord& record);

}  // namespace lumiscan
