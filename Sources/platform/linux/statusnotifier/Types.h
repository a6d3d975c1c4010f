#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QVariantMap>

// What goes over D-Bus to a panel, in the forms that the two protocols define.

namespace lumiscan::desktop::statusnotifier {

/// A picture: 32 bits a pixel, alpha first, the bytes of each in network order. In pixels.
struct Pixmap {
  int width = 0;
  int height = 0;
  QByteArray bytes;
};

struct ToolTip {
  QString iconName;
  QList<Pixmap> icon;
  QString title;
  QString description;  ///< Some hosts take this for HTML.
};

/// A part of a menu: an item, and what is in its submenu.
struct MenuLayout {
  int id = 0;
  QVariantMap properties;
  QList<MenuLayout> children;
};

struct MenuItemProperties {
  int id = 0;
  QVariantMap properties;
};

struct MenuEvent {
  int id = 0;
  QString name;
  QDBusVariant data;
  unsigned timestamp = 0;
};

/// Makes the types known to the toolkit; before the first of them goes over the bus.
void registerTypes();

QDBusArgument& operator<<(QDBusArgument& argument, const Pixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& argument, Pixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& argument, const ToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& argument, ToolTip& toolTip);
QDBusArgument& operator<<(QDBusArgument& argument, const MenuLayout& layout);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuLayout& layout);
QDBusArgument& operator<<(QDBusArgument& argument, const MenuItemProperties& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuItemProperties& item);
QDBusArgument& operator<<(QDBusArgument& argument, const MenuEvent& event);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuEvent& event);

}  // namespace lumiscan::desktop::statusnotifier

Q_DECLARE_METATYPE(lumiscan::desktop::statusnotifier::Pixmap)
Q_DECLARE_METATYPE(lumiscan::desktop::statusnotifier::ToolTip)
Q_DECLARE_METATYPE(lumiscan::desktop::statusnotifier::MenuLayout)
Q_DECLARE_METATYPE(lumiscan::desktop::statusnotifier::MenuItemProperties)
Q_DECLARE_METATYPE(lumiscan::desktop::statusnotifier::MenuEvent)
