#include "platform/linux/form/ChoiceItem.h"

#include <QAbstractItemView>
#include <QHBoxLayout>
#include <QStringList>
#include <variant>

namespace lumiscan::desktop {

void ChoiceItem::ComboBox::showPopup() {
  // The list is a window of its own and painted like a menu, in the palette of all menus where its own
  // palette doesn't say that it means its colours.
  QPalette meant = palette();
  meant.setResolveMask(~QPalette::ResolveMask(0));
  view()->setPalette(meant);
  QComboBox::showPopup();
}

ChoiceItem::ChoiceItem(const platform::Choice& choice) {
  auto* layout = new QHBoxLayout(this);
  layout->addWidget(&label_);
  layout->addStretch();
  layout->addWidget(&box_);
  label_.setTextFormat(Qt::PlainText);
  // To assistive programs the name of such a box is what is chosen; what it is for they take from its label.
  label_.setBuddy(&box_);
  box_.setFocusPolicy(Qt::StrongFocus);  // The toolkit's own would take the focus by the wheel, too.
  // Only what the user does: `currentIndexChanged` would tell of our own changes, too.
  connect(&box_, &QComboBox::activated, this, [this](int index) {
    if (const auto select = select_) select(static_cast<std::size_t>(index));
  });
  show(choice);
}

bool ChoiceItem::update(const platform::Section::Item& item) {
  const auto* choice = std::get_if<platform::Choice>(&item);
  if (choice) show(*choice);
  return choice;
}

void ChoiceItem::show(const platform::Choice& choice) {
  label_.setText(controlText(choice.label));
  box_.setAccessibleName(QString::fromStdString(choice.label));
  QStringList options;
  for (const std::string& option : choice.options) options << QString::fromStdString(option);
  QStringList shown;
  for (int i = 0; i < box_.count(); ++i) shown << box_.itemText(i);
  if (shown != options) {
    box_.clear();
    box_.addItems(options);
  }
  box_.setCurrentIndex(static_cast<int>(choice.selection));
  select_ = choice.select;
}

}  // namespace lumiscan::desktop
