#pragma once

#include <string>
#include <utility>
#include <variant>

namespace lumiscan::platform {

/// Why an operation failed, in words for a developer; never captured text.
struct Error {
  std::string text;
};

/// A value or the error that stands in its place. Expected failures travel in results; exceptions never
/// cross the layer's edge.
template <typename T>
class Result {
 public:
  Result(T value) : content_(std::in_place_index<0>, std::move(value)) {}
  Result(Error error) : content_(std::in_place_index<1>, std::move(error)) {}

  bool ok() const { return content_.index() == 0; }
  /// Precondition: `ok()`.
  const T& value() const& { return std::get<0>(content_); }
  T&& value() && { return std::get<0>(std::move(content_)); }
  /// Precondition: not `ok()`.
  const Error& error() const { return std::get<1>(content_); }

  T valueOr(T fallback) && { return ok() ? std::get<0>(std::move(content_)) : std::move(fallback); }

 private:
  std::variant<T, Error> content_;
};

}  // namespace lumiscan::platform
