#include "platform/linux/form/RowItem.h"

#include <QHBoxLayout>
#include <variant>

#include "platform/linux/form/FieldWidget.h"

namespace lumiscan::desktop {

using Adapter = std::shared_ptr<const platform::TextFieldAdapter>;

RowItem::Button::Button(const platform::Button& button) {
  connect(this, &QPushButton::clicked, this, [this] {
    if (const auto action = action_) action();
  });
  show(button);
}

void RowItem::Button::show(const platform::Button& button) {
  setText(controlText(button.title));
  setAccessibleName(QString::fromStdString(button.title));
  action_ = button.action;
}

QSize RowItem::Button::sizeHint() const {
  constexpr int room = 8;  // Points, at each side: the toolkit leaves hardly any beside longer titles.
  return QPushButton::sizeHint() + QSize(2 * room, 0);
}

RowItem::RowItem(const platform::Row& row) : identity_(row.identity) {
  auto* layout = new QHBoxLayout(this);
  for (const platform::Row::Item& item : row.items) {
    std::unique_ptr<QWidget> part;
    if (const auto* text = std::get_if<platform::Text>(&item)) part = makeTextLabel(*text);
    if (const auto* button = std::get_if<platform::Button>(&item)) part = std::make_unique<Button>(*button);
    if (const auto* adapter = std::get_if<Adapter>(&item)) part = std::make_unique<FieldWidget>(**adapter);
    if (!part) layout->addStretch();
    if (part && part->focusPolicy() != Qt::NoFocus) focusParts_ << part.get();
    parts_.push_back(part.get());
    if (part) layout->addWidget(part.release());
  }
}

bool RowItem::update(const platform::Section::Item& item) {
  const auto* row = std::get_if<platform::Row>(&item);
  if (!row || row->identity != identity_ || row->items.size() != parts_.size()) return false;
  for (std::size_t i = 0; i < parts_.size(); ++i) {
    if (const auto* text = std::get_if<platform::Text>(&row->items[i])) updateTextLabel(*parts_[i], *text);
    if (const auto* button = std::get_if<platform::Button>(&row->items[i]))
      static_cast<Button&>(*parts_[i]).show(*button);
    if (const auto* adapter = std::get_if<Adapter>(&row->items[i]))
      (*adapter)->updateView(static_cast<FieldWidget&>(*parts_[i]).field());
  }
  return true;
}

}  // namespace lumiscan::desktop
