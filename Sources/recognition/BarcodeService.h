#pragma once

#include <string>
#include <vector>

#include "platform/Image.h"
#include "platform/Result.h"

namespace lumiscan {

/// From a picture to the payloads of its QR codes and barcodes. Any thread; keeps no state.
namespace BarcodeService {

/// The text payloads of all codes of the ten symbologies, in the detector's order; a payload may be empty,
/// and two codes with the same payload give two. Blocks until done. Fails with the detector's error.
platform::Result<std::vector<std::string>> decode(const platform::Image& image);

}  // namespace BarcodeService
}  // namespace lumiscan
