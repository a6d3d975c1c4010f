#include "support/SimulatedForm.h"

#include <algorithm>
#include <stdexcept>
#include <variant>

#include "support/SimulatedDesktop.h"

namespace lumiscan::testing {

using namespace platform;

namespace {

using Adapter = std::shared_ptr<const TextFieldAdapter>;

/// Every item of a form, and every item of its rows.
template <typename Visit>
void forEachItem(const Form& form, const Visit& visit) {
  for (const Section& section : form.sections)
    for (const Section::Item& item : section.items) {
      std::visit([&](const auto& each) { visit(each, std::string()); }, item);
      if (const Row* row = std::get_if<Row>(&item))
        for (const Row::Item& part : row->items)
          std::visit([&](const auto& each) { visit(each, row->identity); }, part);
    }
}

const std::string& labelOf(const Switch& item) { return item.label; }
const std::string& labelOf(const Choice& item) { return item.label; }
const std::string& labelOf(const Button& item) { return item.title; }

std::string inBrackets(std::string text) { return text.insert(0, 1, '[').append(1, ']'); }

}  // namespace

SimulatedForm::SimulatedForm(SimulatedDesktop& desktop, HostingView& view) : desktop_(desktop), view_(view) {
  view_.formChanged = [this] { update(); };
  update();
}

void SimulatedForm::update() {
  forEachItem(view_.form(), [this](const auto& item, const std::string& row) {
    if constexpr (std::is_same_v<std::decay_t<decltype(item)>, Adapter>) {
      Field& field = fields_[item->accessibilityLabel()];
      if (field.view && field.row == row) {
        item->updateView(*field.view);
        return;
      }
      field = {row, item->makeView()};
      ++fieldsMade_;
    }
  });
}

template <typename Item>
const Item& SimulatedForm::find(const std::string& label) const {
  const Item* found = nullptr;
  forEachItem(view_.form(), [&](const auto& item, const std::string&) {
    if constexpr (std::is_same_v<std::decay_t<decltype(item)>, Item>)
      if (labelOf(item) == label) found = &item;
  });
  if (!found) throw std::invalid_argument("no " + label);
  return *found;
}

const Switch& SimulatedForm::toggle(const std::string& label) const { return find<Switch>(label); }

std::string SimulatedForm::describe(const Section::Item& item) const {
  if (const auto* toggle = std::get_if<Switch>(&item))
    return (toggle->isOn ? "[x] " : "[ ] ") + toggle->label;
  if (const auto* text = std::get_if<Text>(&item)) return text->text;
  std::string line;
  if (const auto* choice = std::get_if<Choice>(&item)) {
    line = choice->label + ": " + choice->options[choice->selection];
    for (std::size_t i = 0; i < choice->options.size(); ++i)
      if (i != choice->selection) line += " | " + choice->options[i];
    return line;
  }
  for (const Row::Item& part : std::get<Row>(item).items) {
    std::string text;
    if (const auto* label = std::get_if<Text>(&part)) text = label->text;
    if (const auto* button = std::get_if<Button>(&part)) text = inBrackets(button->title);
    if (const auto* adapter = std::get_if<Adapter>(&part))
      text = inBrackets(fieldText((*adapter)->accessibilityLabel()));
    if (!line.empty() && !text.empty()) line += " / ";
    line += text;
  }
  return line;
}

std::vector<std::string> SimulatedForm::section(const std::string& header) const {
  std::vector<std::string> lines;
  for (const Section& section : view_.form().sections)
    if (section.header == header)
      for (const Section::Item& item : section.items) lines.push_back(describe(item));
  return lines;
}

// What is operated is copied: the form may be described anew meanwhile.

void SimulatedForm::flip(const std::string& label) {
  handle([toggle = find<Switch>(label)] { toggle.setOn(!toggle.isOn); });
}

void SimulatedForm::choose(const std::string& label, std::size_t option) {
  handle([choice = find<Choice>(label), option] { choice.select(option); });
}

void SimulatedForm::press(const std::string& button) { handle(find<Button>(button).action); }

void SimulatedForm::pressKey(const std::string& fieldLabel, const KeyEvent& key) {
  handle([field = fields_.at(fieldLabel).view, key] { field->keyDown(key); });
}

void SimulatedForm::handle(const std::function<void()>& event) {
  desktop_.dispatcher().handleEvent(event);
  desktop_.runMainQueue();
}

}  // namespace lumiscan::testing
