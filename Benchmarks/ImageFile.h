#pragma once

#include <filesystem>

#include "platform/Image.h"
#include "platform/Result.h"

namespace lumiscan::benchmark {

/// Reads a PNG file of any kind of pixel. Fails with a text when the file is no such image.
platform::Result<platform::Image> readPng(const std::filesystem::path& file);

}  // namespace lumiscan::benchmark
