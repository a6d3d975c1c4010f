#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "platform/Declarative.h"
#include "platform/Event.h"
#include "platform/HostingView.h"
#include "platform/TextField.h"

namespace lumiscan::testing {

class SimulatedDesktop;

/// The form of a window in the hands of a test: what it shows, and a user who operates it, each time as an
/// event of its own. Controls are found by their labels.
class SimulatedForm {
 public:
  /// The desktop and the view outlive the form.
  SimulatedForm(SimulatedDesktop& desktop, platform::HostingView& view);
  ~SimulatedForm() { view_.formChanged = nullptr; }
  SimulatedForm(const SimulatedForm&) = delete;
  SimulatedForm& operator=(const SimulatedForm&) = delete;

  /// What a section shows, an item each: "[x] label" and "[ ] label" for switches, "label: option | other"
  /// for choices with the chosen option first, rows with " / " between their items, buttons and fields in
  /// brackets.
  std::vector<std::string> section(const std::string& header) const;
  const platform::Switch& toggle(const std::string& label) const;
  std::string fieldText(const std::string& label) const { return fields_.at(label).view->stringValue(); }
  const platform::TextField& field(const std::string& label) const { return *fields_.at(label).view; }
  /// How many fields were made so far.
  int fieldsMade() const { return fieldsMade_; }

  void flip(const std::string& label);
  void choose(const std::string& label, std::size_t option);
  void press(const std::string& button);
  /// The field has the focus and gets a key.
  void pressKey(const std::string& fieldLabel, const platform::KeyEvent& key);

 private:
  struct Field {
    std::string row;  ///< The identity of the row that it was made for.
    std::shared_ptr<platform::TextField> view;
  };

  template <typename Item>
  const Item& find(const std::string& label) const;
  std::string describe(const platform::Section::Item& item) const;
  void update();
  /// An event, and what it sets off.
  void handle(const std::function<void()>& event);

  SimulatedDesktop& desktop_;
  platform::HostingView& view_;
  std::map<std::string, Field> fields_;
  int fieldsMade_ = 0;
};

}  // namespace lumiscan::testing
