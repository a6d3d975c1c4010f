#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace lumiscan::platform {

/// Raw bytes as a preference; a type of its own so that they never read as a string.
struct Data {
  std::string bytes;
  friend bool operator==(const Data&, const Data&) = default;
};

/// A preference's value. Each kind stays what it is across restarts.
using DefaultsValue = std::variant<bool, double, std::string, std::vector<std::string>, Data>;

/// The user's preferences of this program: typed values by key, kept across launches. Every operation may
/// be called from any thread. What was written when a write returns outlives the program, however that ends;
/// the disk has it soon after. A write that fails is logged, and its value lives on in memory.
class UserDefaults {
 public:
  virtual ~UserDefaults() = default;

  /// That of the installed desktop.
  static UserDefaults& standard();

  /// The stored value, or nothing. Never cached: a value written by anyone is seen by the next call.
  virtual std::optional<DefaultsValue> object(std::string_view key) const = 0;
  virtual void setObject(std::string_view key, DefaultsValue value) = 0;
  /// Removing what isn't there is no error.
  virtual void removeObject(std::string_view key) = 0;

  /// The stored Boolean, or whether a stored number is other than 0; `otherwise` where anything else or
  /// nothing is stored.
  bool boolForKey(std::string_view key, bool otherwise = false) const;
  /// The stored value if it is of that very type, else nothing.
  std::optional<std::string> stringForKey(std::string_view key) const;
  std::optional<std::vector<std::string>> stringArrayForKey(std::string_view key) const;
  std::optional<Data> dataForKey(std::string_view key) const;
  void setBool(std::string_view key, bool value) { setObject(key, value); }
};

}  // namespace lumiscan::platform
