#include "platform/Menu.h"

namespace lumiscan::platform {

std::shared_ptr<MenuItem> MenuItem::separator() {
  auto item = std::make_shared<MenuItem>();
  item->isSeparator = true;
  return item;
}

void Menu::update() {
  if (const auto delegate = delegate_.lock()) delegate->menuNeedsUpdate(*this);
}

}  // namespace lumiscan::platform
