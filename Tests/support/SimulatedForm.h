#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

#include "platform/Declarative.h"
#include "platform/Event.h"
#include "platform/HostingView.h"
#include "platform/TextField.h"
#include "support/SimulatedDesktop.h"

namespace lumiscan::testing {

/// The form of a window in the hands of a test: what it shows, and a user who operates it, each time as an
/// event of its own. Controls are found by their labels.
class SimulatedForm {
 public:
  /// The desktop and the view outlive the form.
  SimulatedForm(SimulatedDesktop& desktop, platform::HostingView& view) : desktop_(desktop), view_(view) {
    view_.formChanged = [this] { update(); };
    update();
  }
  ~SimulatedForm() { view_.formChanged = nullptr; }
  SimulatedForm(const SimulatedForm&) = delete;
  SimulatedForm& operator=(const SimulatedForm&) = delete;

  /// What a section shows, an item each: "[x] label" and "[ ] label" for switches, "label: option | other"
  /// for choices with the chosen option first, rows with " / " between their items, buttons and fields in
  /// brackets.
  std::vector<std::string> section(const std::string& header) const {
    std::vector<std::string> lines;
    for (const platform::Section& section : view_.form().sections)
      if (section.header == header)
        for (const auto& item : section.items) lines.push_back(describe(item));
    return lines;
  }
  const platform::Switch& toggle(const std::string& label) const {
    return find(&platform::Switch::label, label);
  }
  const platform::TextField& field(const std::string& label) const { return *fields_.at(label).view; }
  /// How many fields were made so far.
  int fieldsMade() const { return fieldsMade_; }

  // What is operated is copied: the form may be described anew meanwhile.
  void flip(const std::string& label) {
    handle([toggle = toggle(label)] { toggle.setOn(!toggle.isOn); });
  }
  void choose(const std::string& label, std::size_t option) {
    handle([choice = find(&platform::Choice::label, label), option] { choice.select(option); });
  }
  void press(const std::string& button) { handle(find(&platform::Button::title, button).action); }
  /// The field has the focus and gets a key.
  void pressKey(const std::string& fieldLabel, const platform::KeyEvent& key) {
    handle([field = fields_.at(fieldLabel).view, key] { field->keyDown(key); });
  }

 private:
  using Adapter = std::shared_ptr<const platform::TextFieldAdapter>;
  struct Field {
    std::string row;  ///< The identity of the row that it was made for.
    std::shared_ptr<platform::TextField> view;
  };

  /// Every item of the form, and every item of its rows with the identity of the row.
  template <typename Visit>
  void forEachItem(const Visit& visit) const {
    for (const platform::Section& section : view_.form().sections)
      for (const auto& item : section.items) {
        std::visit([&](const auto& each) { visit(each, std::string()); }, item);
        if (const auto* row = std::get_if<platform::Row>(&item))
          for (const auto& part : row->items)
            std::visit([&](const auto& each) { visit(each, row->identity); }, part);
      }
  }
  template <typename Item>
  const Item& find(std::string Item::*name, const std::string& wanted) const {
    const Item* found = nullptr;
    forEachItem([&](const auto& item, const std::string&) {
      if constexpr (std::is_same_v<decltype(item), const Item&>)
        if (item.*name == wanted) found = &item;
    });
    if (!found) throw std::invalid_argument("no " + wanted);
    return *found;
  }

  template <typename... Items>
  std::string describe(const std::variant<Items...>& item) const {
    return std::visit([this](const auto& each) { return this->describe(each); }, item);
  }
  static std::string describe(const platform::Switch& item) {
    return (item.isOn ? "[x] " : "[ ] ") + item.label;
  }
  static std::string describe(const platform::Text& item) { return item.text; }
  static std::string describe(const platform::Spacer&) { return {}; }
  static std::string describe(const platform::Button& item) { return "[" + item.title + "]"; }
  std::string describe(const Adapter& item) const {
    return "[" + field(item->accessibilityLabel()).stringValue() + "]";
  }
  static std::string describe(const platform::Choice& item) {
    std::string line = item.label + ": " + item.options[item.selection];
    for (std::size_t i = 0; i < item.options.size(); ++i)
      if (i != item.selection) line += " | " + item.options[i];
    return line;
  }
  std::string describe(const platform::Row& row) const {
    std::string line;
    for (const auto& item : row.items) {
      const std::string text = describe(item);
      line += (line.empty() || text.empty() ? "" : " / ") + text;
    }
    return line;
  }

  void update() {
    forEachItem([this](const auto& item, const std::string& row) {
      if constexpr (std::is_same_v<decltype(item), const Adapter&>) {
        Field& field = fields_[item->accessibilityLabel()];
        if (field.view && field.row == row) return item->updateView(*field.view);
        field = {row, item->makeView()};
        ++fieldsMade_;
      }
    });
  }
  /// An event, and what it sets off.
  void handle(const std::function<void()>& event) {
    desktop_.dispatcher().handleEvent(event);
    desktop_.runMainQueue();
  }

  SimulatedDesktop& desktop_;
  platform::HostingView& view_;
  std::map<std::string, Field> fields_;
  int fieldsMade_ = 0;
};

}  // namespace lumiscan::testing
