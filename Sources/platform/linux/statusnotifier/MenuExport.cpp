#include "platform/linux/statusnotifier/MenuExport.h"

#include <utility>

#include "platform/linux/Menu.h"

namespace lumiscan::desktop::statusnotifier {

namespace {

using platform::ControlState;
using platform::Menu;
using platform::MenuItem;

QVariantMap submenuProperties() { return {{QStringLiteral("children-display"), QStringLiteral("submenu")}}; }

QVariantMap propertiesOf(const MenuItem& item) {
  if (item.isSeparator) return {{QStringLiteral("type"), QStringLiteral("separator")}};
  QVariantMap properties = item.submenu ? submenuProperties() : QVariantMap();
  // A single underscore would mark a mnemonic.
  properties[QStringLiteral("label")] = menuLabel(item.title).replace(u'_', QStringLiteral("__"));
  if (!item.enabled) properties[QStringLiteral("enabled")] = false;
  if (item.state == ControlState::on) {
    properties[QStringLiteral("toggle-type")] = QStringLiteral("checkmark");
    properties[QStringLiteral("toggle-state")] = 1;
  }
  return properties;
}

}  // namespace

MenuExport::MenuExport(QDBusConnection bus) {
  registerTypes();
  new MenuAdaptor(*this);
  bus.registerObject(QString::fromLatin1(path), this, QDBusConnection::ExportAdaptors);
}

void MenuExport::setMenu(std::shared_ptr<Menu> menu) {
  menu_ = std::move(menu);
  emit layoutChanged(++revision_, 0);
}

int MenuExport::number(const std::shared_ptr<MenuItem>& item) {
  for (const auto& [number, known] : items_)
    if (known.lock() == item) return number;
  items_[++lastNumber_] = item;
  return lastNumber_;
}

std::shared_ptr<MenuItem> MenuExport::item(int number) const {
  const auto found = items_.find(number);
  return found == items_.end() ? nullptr : found->second.lock();
}

std::shared_ptr<Menu> MenuExport::menuOf(int id) const {
  if (id == 0) return menu_;
  const auto parent = item(id);
  return parent ? parent->submenu : nullptr;
}

MenuLayout MenuExport::layout(int id, int depth) {
  std::erase_if(items_, [](const auto& entry) { return entry.second.expired(); });
  MenuLayout layout{id, properties(id), {}};
  if (const auto menu = menuOf(id)) fillChildren(layout, *menu, depth);
  return layout;
}

void MenuExport::fillChildren(MenuLayout& parent, const Menu& menu, int depth) {
  if (depth == 0) return;
  for (const auto& each : menu.items()) {
    MenuLayout child{number(each), propertiesOf(*each), {}};
    if (each->submenu) fillChildren(child, *each->submenu, depth - 1);
    parent.children.append(child);
  }
}

QList<int> MenuExport::ids() const {
  QList<int> all{0};
  for (const auto& [number, known] : items_) all.append(number);
  return all;
}

QVariantMap MenuExport::properties(int id) const {
  if (id == 0) return submenuProperties();
  const auto known = item(id);
  return known ? propertiesOf(*known) : QVariantMap();
}

bool MenuExport::aboutToShow(int id) {
  const auto menu = menuOf(id);
  if (!menu) return false;
  const Menu::Items before = menu->items();
  menu->update();
  if (menu->items() == before) return false;
  emit layoutChanged(++revision_, id);
  return true;
}

void MenuExport::event(int id, const QString& name) {
  if (name != QStringLiteral("clicked")) return;
  if (const auto clicked = item(id)) chooseLater(clicked);
}

MenuAdaptor::MenuAdaptor(MenuExport& menu) : QDBusAbstractAdaptor(&menu), menu_(menu) {
  connect(&menu, &MenuExport::layoutChanged, this, &MenuAdaptor::LayoutUpdated);
}

uint MenuAdaptor::GetLayout(int parentId, int recursionDepth, const QStringList&, MenuLayout& layout) {
  layout = menu_.layout(parentId, recursionDepth);
  return menu_.revision();
}

QList<MenuItemProperties> MenuAdaptor::GetGroupProperties(const QList<int>& ids, const QStringList&) {
  QList<MenuItemProperties> found;
  for (const int id : ids.isEmpty() ? menu_.ids() : ids)
    if (menu_.has(id)) found.append({id, menu_.properties(id)});
  return found;
}

QDBusVariant MenuAdaptor::GetProperty(int id, const QString& name) {
  const QVariant value = menu_.properties(id).value(name);
  // D-Bus knows no value that is none.
  return QDBusVariant(value.isValid() ? value : QVariant(QString()));
}

void MenuAdaptor::Event(int id, const QString& eventId, const QDBusVariant&, uint) {
  menu_.event(id, eventId);
}

QList<int> MenuAdaptor::EventGroup(const QList<MenuEvent>& events) {
  QList<int> unknown;
  for (const MenuEvent& event : events) {
    if (!menu_.has(event.id)) unknown.append(event.id);
    menu_.event(event.id, event.name);
  }
  return unknown;
}

bool MenuAdaptor::AboutToShow(int id) { return menu_.aboutToShow(id); }

QList<int> MenuAdaptor::AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors) {
  QList<int> changed;
  for (const int id : ids) {
    if (!menu_.has(id)) idErrors.append(id);
    if (menu_.aboutToShow(id)) changed.append(id);
  }
  return changed;
}

}  // namespace lumiscan::desktop::statusnotifier
