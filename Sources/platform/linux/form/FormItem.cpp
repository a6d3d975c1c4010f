#include "platform/linux/form/FormItem.h"

#include <QLabel>
#include <QVBoxLayout>
#include <variant>

#include "platform/linux/form/ChoiceItem.h"
#include "platform/linux/form/FormPalette.h"
#include "platform/linux/form/RowItem.h"
#include "platform/linux/form/SwitchItem.h"

namespace lumiscan::desktop {

namespace {

class TextLabel : public QLabel {
 public:
  TextLabel() { setTextFormat(Qt::PlainText); }
  void show(const platform::Text& text) {
    setText(QString::fromStdString(text.text));
    // A wrapping label takes no less than a whole column; a short one in a row shall leave room.
    setWordWrap(text.isCaption);
    setFont(text.isCaption ? captionFont() : QFont());
    // A role rather than a colour, so that the label follows the palette.
    setForegroundRole(text.isSecondary ? QPalette::PlaceholderText : QPalette::WindowText);
  }
};

class TextItem : public FormItem {
 public:
  explicit TextItem(const platform::Text& text) {
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(&label_);
    label_.show(text);
  }
  bool update(const platform::Section::Item& item) override {
    const auto* text = std::get_if<platform::Text>(&item);
    if (text) label_.show(*text);
    return text;
  }
  QWidgetList focusParts() override { return {}; }

 private:
  TextLabel label_;
};

}  // namespace

std::unique_ptr<FormItem> FormItem::make(const platform::Section::Item& item) {
  if (const auto* toggle = std::get_if<platform::Switch>(&item)) return std::make_unique<SwitchItem>(*toggle);
  if (const auto* choice = std::get_if<platform::Choice>(&item)) return std::make_unique<ChoiceItem>(*choice);
  if (const auto* row = std::get_if<platform::Row>(&item)) return std::make_unique<RowItem>(*row);
  return std::make_unique<TextItem>(std::get<platform::Text>(item));
}

QString controlText(const std::string& text) { return QString::fromStdString(text).replace('&', "&&"); }

std::unique_ptr<QWidget> makeTextLabel(const platform::Text& text) {
  auto label = std::make_unique<TextLabel>();
  label->show(text);
  return label;
}

void updateTextLabel(QWidget& label, const platform::Text& text) {
  static_cast<TextLabel&>(label).show(text);
}

}  // namespace lumiscan::desktop
