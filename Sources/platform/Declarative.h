#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "platform/Geometry.h"

// Content that is described rather than drawn: the desktop shows it with its own controls, in its own looks
// and metrics. Descriptions are plain values; texts are UTF-8. Handlers are called on the main thread, after
// the user has changed something, and never for a change of the description.

namespace lumiscan::platform {

class TextField;

/// A text, in lines as wide as there is room.
struct Text {
  std::string text;
  bool isCaption = false;    ///< In the small type of notes.
  bool isSecondary = false;  ///< Dimmed.
};

/// Takes what room the other items of a row leave.
struct Spacer {};

struct Button {
  std::string title;
  std::function<void()> action;
};

/// Something that is on or off.
struct Switch {
  std::string label;
  bool isOn = false;
  std::function<void(bool)> setOn;
  /// Shows when the user asks about the switch, by pointing at it for a while; may be empty.
  std::string help;
};

/// One of several options.
struct Choice {
  std::string label;
  std::vector<std::string> options;
  std::size_t selection = 0;
  std::function<void(std::size_t)> select;
};

/// Brings a text field of the program's own into a description.
class TextFieldAdapter {
 public:
  virtual ~TextFieldAdapter() = default;
  /// What the field is for, to those who can't see it.
  virtual std::string accessibilityLabel() const = 0;
  /// Makes the field; called once for each row that has the adapter.
  virtual std::shared_ptr<TextField> makeView() const = 0;
  /// Called when the description was made anew while the row stays.
  virtual void updateView(TextField& field) const = 0;
};

/// Items from the leading to the trailing edge, centred vertically. A row whose identity changes is made
/// anew with everything in it; the keyboard focus stays with the item of the same place. As long as the
/// identity stays, so do the kinds of the items.
struct Row {
  using Item = std::variant<Text, Spacer, Button, std::shared_ptr<const TextFieldAdapter>>;
  std::string identity;
  std::vector<Item> items;
};

/// A group of items below its title.
struct Section {
  using Item = std::variant<Switch, Choice, Text, Row>;
  std::string header;
  std::vector<Item> items;
};

/// Groups of controls from top to bottom; scrolls where there isn't room for all.
struct Form {
  Size minimumSize;  ///< Points.
  std::vector<Section> sections;
};

}  // namespace lumiscan::platform
