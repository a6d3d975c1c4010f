#pragma once

#include <QDBusMessage>
#include <QVariantMap>
#include <optional>
#include <string>

#include "desktop/BusObject.h"
#include "platform/linux/statusnotifier/Types.h"

namespace lumiscan::testing {

/// A panel on a session bus: it takes status items, reads their menus and chooses from them. Needs an
/// application object and, between the calls, its events processed.
class TrayPanel : public BusObject {
 public:
  explicit TrayPanel(const std::string& address);

  bool start();
  bool stop();
  /// The bus name of the item that came last; empty before.
  const QString& item() const { return item_; }

  // Of that item; these wait for its program. What fails comes as an error message, or empty.
  QVariantMap itemProperties();
  QDBusMessage callMenu(const QString& member, const QVariantList& arguments);
  desktop::statusnotifier::MenuLayout layout(int id = 0);
  void click(int id);
  /// Whether what is in the submenu of this number has changed. Number 0 is the menu itself.
  bool aboutToShow(int id);

 private:
  QDBusMessage call(const QString& path, const QString& interface, const QString& member,
                    const QVariantList& arguments);
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

  QString item_;
};

/// The number of the item with this label; nothing where there is none.
std::optional<int> idOf(const desktop::statusnotifier::MenuLayout& menu, const QString& label);

}  // namespace lumiscan::testing
