#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusObjectPath>
#include <QDBusServiceWatcher>
#include <QObject>

#include "platform/StatusBar.h"
#include "platform/linux/Appearance.h"
#include "platform/linux/statusnotifier/MenuExport.h"
#include "platform/linux/statusnotifier/Types.h"

namespace lumiscan::desktop::statusnotifier {

/// The status item as a panel sees it that asks over D-Bus (org.kde.StatusNotifierItem). Announces itself to
/// the watcher that collects such items, now and whenever one appears. Waits for nobody but the bus itself.
/// Of no use any more once the bus has ended. Main thread only.
class Item : public QObject {
  Q_OBJECT

 public:
  /// `colorScheme` outlives the item.
  Item(QDBusConnection bus, ColorScheme& colorScheme);

  void setButton(platform::StatusItemButton button);
  const platform::StatusItemButton& button() const { return button_; }
  void setMenu(std::shared_ptr<platform::Menu> menu) { menu_.setMenu(std::move(menu)); }

  /// Whether it is known yet if a panel shows the item.
  bool isKnown() const { return known_; }
  bool isShown() const { return known_ && shown_; }

  /// The button in several sizes, for panels as dark or light as the user prefers. `buttonChanged` follows
  /// when that is another preference.
  QList<Pixmap> pixmaps();

  /// `isKnown` or `isShown` may have changed.
  Q_SIGNAL void changed();
  /// A panel that doesn't show the menu itself had a click on the item.
  Q_SIGNAL void activated();
  Q_SIGNAL void buttonChanged();

 private:
  Q_SLOT void askForHost();
  void announce();
  void settle(bool shown);

  ColorScheme& colorScheme_;
  QDBusConnection bus_;
  MenuExport menu_;
  QDBusServiceWatcher watcherWatch_;
  QString service_;
  platform::StatusItemButton button_;
  unsigned watcherNumber_ = 0;  ///< Answers of one that has gone don't count.
  bool known_ = false;
  bool shown_ = false;
  bool drawnForDark_ = false;
};

/// The protocol's own names for it.
class ItemAdaptor : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
  Q_PROPERTY(QString Category READ category CONSTANT)
  Q_PROPERTY(QString Id READ id CONSTANT)
  Q_PROPERTY(QString Title READ title CONSTANT)
  Q_PROPERTY(QString Status READ status CONSTANT)
  Q_PROPERTY(int WindowId READ windowId CONSTANT)
  Q_PROPERTY(QString IconName READ iconName)
  Q_PROPERTY(QList<lumiscan::desktop::statusnotifier::Pixmap> IconPixmap READ iconPixmap)
  Q_PROPERTY(QString IconAccessibleDesc READ iconDescription)
  Q_PROPERTY(QString IconThemePath READ none CONSTANT)
  Q_PROPERTY(QString OverlayIconName READ none CONSTANT)
  Q_PROPERTY(QList<lumiscan::desktop::statusnotifier::Pixmap> OverlayIconPixmap READ noPixmaps CONSTANT)
  Q_PROPERTY(QString AttentionIconName READ none CONSTANT)
  Q_PROPERTY(QList<lumiscan::desktop::statusnotifier::Pixmap> AttentionIconPixmap READ noPixmaps CONSTANT)
  Q_PROPERTY(QString AttentionMovieName READ none CONSTANT)
  Q_PROPERTY(lumiscan::desktop::statusnotifier::ToolTip ToolTip READ toolTip)
  Q_PROPERTY(bool ItemIsMenu READ itemIsMenu CONSTANT)
  Q_PROPERTY(QDBusObjectPath Menu READ menu CONSTANT)

 public:
  explicit ItemAdaptor(Item& item);

  QString category() const { return QStringLiteral("ApplicationStatus"); }
  QString id() const { return QStringLiteral("lumiscan"); }
  QString title() const { return QStringLiteral("Lumiscan"); }
  QString status() const { return QStringLiteral("Active"); }
  int windowId() const { return 0; }
  QString iconName() const;
  QList<Pixmap> iconPixmap() { return item_.pixmaps(); }
  QString iconDescription() const;
  statusnotifier::ToolTip toolTip() const;
  // Some panels report an error for each that isn't there.
  QString none() const { return {}; }
  QList<Pixmap> noPixmaps() const { return {}; }
  bool itemIsMenu() const { return true; }
  QDBusObjectPath menu() const { return QDBusObjectPath(QString::fromLatin1(MenuExport::path)); }

  // Panels that show the menu themselves call none of these.
  Q_SLOT void Activate(int, int) { emit item_.activated(); }
  Q_SLOT void SecondaryActivate(int, int) {}
  Q_SLOT void ContextMenu(int, int) { emit item_.activated(); }
  Q_SLOT void Scroll(int, const QString&) {}

  Q_SIGNAL void NewIcon();
  Q_SIGNAL void NewToolTip();

 private:
  Item& item_;
};

}  // namespace lumiscan::desktop::statusnotifier
