#pragma once

#include <string>
#include <vector>

#include "platform/LoginItem.h"

namespace lumiscan::testing {

/// A login item that does what it is asked unless a test refuses it.
class SimulatedLoginItem : public platform::LoginItem {
 public:
  platform::LoginItemStatus status() const override { return current; }
  bool registerItem() override { return change("register", platform::LoginItemStatus::enabled); }
  bool unregisterItem() override { return change("unregister", platform::LoginItemStatus::notRegistered); }

  platform::LoginItemStatus current = platform::LoginItemStatus::notRegistered;
  bool refuses = false;
  std::vector<std::string> asked;

 private:
  bool change(const char* what, platform::LoginItemStatus wanted) {
    asked.emplace_back(what);
    // What is so already can't fail.
    if (refuses && current != wanted) return false;
    current = wanted;
    return true;
  }
};

}  // namespace lumiscan::testing
