#pragma once

#include <filesystem>

#include "platform/LoginItem.h"

namespace lumiscan::desktop {

/// The login item as a desktop entry in the user's autostart folder. An entry of our name that the user has
/// switched off, or that starts another program, is none; one for another program is replaced, but never
/// removed.
class AutostartEntry : public platform::LoginItem {
 public:
  /// `file` is the entry's, `program` the absolute path of what it starts.
  AutostartEntry(std::filesystem::path file, std::filesystem::path program);
  /// That of the running program.
  static AutostartEntry ofThisProgram();

  platform::LoginItemStatus status() const override;
  bool registerItem() override;
  bool unregisterItem() override;

 private:
  std::filesystem::path file_;
  std::filesystem::path program_;
};

}  // namespace lumiscan::desktop
