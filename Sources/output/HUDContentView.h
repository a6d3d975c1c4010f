#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/Appearance.h"
#include "platform/View.h"

namespace lumiscan {

/// What the result panel shows: a symbol and a title, and a preview below. Its values are fixed once made;
/// it looks as the desktop does at that moment.
class HUDContentView : public platform::View {
 public:
  /// `preview` shows when it isn't empty. `icon` names a symbol; absent, it is the one for errors or
  /// successes.
  HUDContentView(const std::string& title, const std::optional<std::string>& preview, bool isError,
                 const std::optional<std::string>& icon);

  /// The size that the content needs, in points, at most 410 wide.
  platform::Size fittingSize() const;

  void draw(platform::GraphicsContext& context, const platform::Rect& dirtyRect) override;

 private:
  double titleHeight() const;
  double rowHeight() const;

  platform::Appearance appearance_;
  std::string icon_;
  platform::Color iconColor_;
  std::vector<std::string> titleLines_;
  std::string preview_;  ///< One line, truncated.
};

}  // namespace lumiscan
