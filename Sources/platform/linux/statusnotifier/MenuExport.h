#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QObject>
#include <QStringList>
#include <map>
#include <memory>

#include "platform/Menu.h"
#include "platform/linux/statusnotifier/Types.h"

namespace lumiscan::desktop::statusnotifier {

/// Offers a menu over D-Bus to the panel that shows it, as com.canonical.dbusmenu. Each menu is updated when
/// the panel says that it is about to open. Tooltips stay here: they hold whole captures, and the protocol
/// has no word for them. Main thread only.
class MenuExport : public QObject {
  Q_OBJECT

 public:
  static constexpr const char* path = "/MenuBar";

  explicit MenuExport(QDBusConnection bus);
  void setMenu(std::shared_ptr<platform::Menu> menu);

  // What the panel asks; 0 is the menu itself, any other number an item.
  MenuLayout layout(int id, int depth);
  /// The item's properties; nothing for an item that has gone.
  QVariantMap properties(int id) const;
  bool has(int id) const { return id == 0 || item(id); }
  QList<int> ids() const;
  /// Updates the menu or the item's submenu; whether its items are others now.
  bool aboutToShow(int id);
  void event(int id, const QString& name);
  unsigned revision() const { return revision_; }

  Q_SIGNAL void layoutChanged(unsigned revision, int id);

 private:
  /// The item's number, which no other item ever gets.
  int number(const std::shared_ptr<platform::MenuItem>& item);
  std::shared_ptr<platform::MenuItem> item(int number) const;
  std::shared_ptr<platform::Menu> menuOf(int id) const;
  void fillChildren(MenuLayout& parent, const platform::Menu& menu, int depth);

  std::shared_ptr<platform::Menu> menu_;
  std::map<int, std::weak_ptr<platform::MenuItem>> items_;
  int lastNumber_ = 0;
  unsigned revision_ = 1;
};

/// The protocol's own names for it.
class MenuAdaptor : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
  Q_PROPERTY(uint Version READ version CONSTANT)
  Q_PROPERTY(QString TextDirection READ textDirection CONSTANT)
  Q_PROPERTY(QString Status READ status CONSTANT)
  Q_PROPERTY(QStringList IconThemePath READ iconThemePath CONSTANT)

 public:
  explicit MenuAdaptor(MenuExport& menu);

  unsigned version() const { return 3; }
  QString textDirection() const { return QStringLiteral("ltr"); }
  QString status() const { return QStringLiteral("normal"); }
  QStringList iconThemePath() const { return {}; }

  // Arguments and results as the protocol defines them; all properties are sent, whichever are asked for.
  Q_SLOT uint GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                        lumiscan::desktop::statusnotifier::MenuLayout& layout);
  Q_SLOT QList<lumiscan::desktop::statusnotifier::MenuItemProperties> GetGroupProperties(
      const QList<int>& ids, const QStringList& propertyNames);
  Q_SLOT QDBusVariant GetProperty(int id, const QString& name);
  Q_SLOT void Event(int id, const QString& eventId, const QDBusVariant& data, uint timestamp);
  Q_SLOT QList<int> EventGroup(const QList<lumiscan::desktop::statusnotifier::MenuEvent>& events);
  Q_SLOT bool AboutToShow(int id);
  Q_SLOT QList<int> AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors);

  Q_SIGNAL void ItemsPropertiesUpdated(
      const QList<lumiscan::desktop::statusnotifier::MenuItemProperties>& updatedProps,
      const QList<lumiscan::desktop::statusnotifier::MenuItemProperties>& removedProps);
  Q_SIGNAL void LayoutUpdated(uint revision, int parent);

 private:
  MenuExport& menu_;
};

}  // namespace lumiscan::desktop::statusnotifier
