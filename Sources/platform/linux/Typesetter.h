#pragma once

#include "platform/Typesetter.h"

namespace lumiscan::desktop {

/// Measures and breaks text with Qt, which knows every script. Precondition: there is an application object.
class QtTypesetter : public platform::Typesetter {
 public:
  platform::Size sizeOf(std::string_view text, const platform::Font& font) override;
  std::vector<std::string> lines(std::string_view text, const platform::Font& font, double width) override;
  std::string truncatedInMiddle(std::string_view text, const platform::Font& font, double width) override;
};

}  // namespace lumiscan::desktop
