#include "platform/UserDefaults.h"

namespace lumiscan::platform {

namespace {

template <typename T>
std::optional<T> valueOfType(const std::optional<DefaultsValue>& stored) {
  if (stored)
    if (const T* value = std::get_if<T>(&*stored)) return *value;
  return std::nullopt;
}

}  // namespace

bool UserDefaults::boolForKey(std::string_view key, bool otherwise) const {
  const auto stored = object(key);
  if (const auto number = valueOfType<double>(stored)) return *number != 0;
  return valueOfType<bool>(stored).value_or(otherwise);
}

std::optional<std::string> UserDefaults::stringForKey(std::string_view key) const {
  return valueOfType<std::string>(object(key));
}

std::optional<std::vector<std::string>> UserDefaults::stringArrayForKey(std::string_view key) const {
  return valueOfType<std::vector<std::string>>(object(key));
}

std::optional<Data> UserDefaults::dataForKey(std::string_view key) const {
  return valueOfType<Data>(object(key));
}

}  // namespace lumiscan::platform
