#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace lumiscan::desktop {

/// The engine's trained data on this machine, by BCP 47 language tags. Looks at the folder anew each time,
/// so that data installed meanwhile is found. Any thread.
class LanguageData {
 public:
  /// `folder` holds the `.traineddata` files; empty means the one of the installed engine.
  explicit LanguageData(std::filesystem::path folder = {});

  const std::filesystem::path& folder() const { return folder_; }
  bool isInstalled(std::string_view tag) const;

  /// The Debian package that brings the data for a tag; nothing when it is installed, or none is known.
  std::optional<std::string> missingPackage(std::string_view tag) const;

  struct Selection {
    std::vector<std::string> names;    ///< Of trained data, each once, in the order of the tags.
    std::vector<std::string> missing;  ///< The tags whose data isn't installed.
  };
  /// What is there for `tags`; for no tags English, or else the first in the folder.
  Selection select(const std::vector<std::string>& tags) const;

  /// Whether the data's file is whole, as far as its table of contents tells; the engine would end the
  /// process over one that isn't.
  bool isWhole(const std::string& name) const;

 private:
  std::filesystem::path file(std::string_view name) const;
  std::filesystem::path folder_;
};

}  // namespace lumiscan::desktop
