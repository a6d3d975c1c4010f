// The settings window in a user's hands: real clicks and keys, under a window manager.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/input-event-codes.h>

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QScrollArea>
#include <QWidget>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>

#include "desktop/LinuxFixture.h"
#include "hotkeys/HotkeyManager.h"
#include "output/HistoryStore.h"
#include "platform/NotificationCenter.h"
#include "settings/Settings.h"
#include "settings/SettingsWindowController.h"

namespace lumiscan::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SettingsWindowTest : public ::testing::Test, protected LinuxFixture {
 protected:
  SettingsWindowTest() {
    auto& hotkeys = HotkeyManager::shared();
    hotkeys.onAction = [this](HotkeyAction action) { fired_.emplace_back(rawValue(action)); };
    hotkeys.reregisterAll();
  }

  void open() {
    controller_.show();
    ASSERT_TRUE(waitFor([this] { return controller_.window()->isKeyWindow(); }));
  }

  /// The control of that name; when several have it, the one with the keyboard focus policy of a control.
  static QWidget* control(const QString& name) {
    for (QWidget* widget : QApplication::allWidgets())
      if (widget->accessibleName() == name && widget->focusPolicy() != Qt::NoFocus && widget->isVisible())
        return widget;
    throw std::invalid_argument("no " + name.toStdString());
  }
  static QString nameOf(const QWidget* widget) { return widget ? widget->accessibleName() : QString(); }
  static QString focused() { return nameOf(QApplication::focusWidget()); }
  static QString textOf(const QString& field) { return control(field)->property("text").toString(); }

  /// What assistive programs call a control: its label, or its own name without one.
  static std::string accessibleNameOf(QWidget* widget) {
    auto* accessible = QAccessible::queryAccessibleInterface(widget);
    const auto labels = accessible->relations(QAccessible::Label);
    if (!labels.isEmpty()) accessible = labels.front().first;
    return accessible->text(QAccessible::Name).toStdString();
  }

  void clickAt(const QPoint& position) { screen().click(position.x(), position.y()); }
  void click(const QString& name) {
    processEvents();  // The rows that the last change made anew have their places then.
    QWidget* const widget = control(name);
    widget->window()->findChild<QScrollArea*>()->ensureWidgetVisible(widget);
    clickAt(widget->mapToGlobal(widget->rect().center()));
  }
  void clickInto(const QString& name) {
    click(name);
    ASSERT_TRUE(waitFor([&] { return focused() == name; }));
  }
  void press(const std::vector<std::uint8_t>& keys) { screen().pressKeys(keys); }

  nlohmann::json stored(const std::string& key) const {
    std::ifstream file(screen().home() / "config/lumiscan/preferences.json");
    const auto document = nlohmann::json::parse(file, nullptr, false);
    return document.is_object() && document.contains(key) ? document[key] : nlohmann::json();
  }
  bool becomes(const std::string& key, const nlohmann::json& value) {
    return waitFor([&] { return stored(key) == value; });
  }

  SettingsWindowController controller_;
  std::vector<std::string> fired_;
};

TEST_F(SettingsWindowTest, ClicksWorkEveryKindOfControl) {
  HistoryStore::shared().add({platform::UUID::random(), platform::Date::now(), CaptureMode::text, "text"});
  open();
  click("Additive clipboard (append captures)");
  EXPECT_TRUE(becomes("additiveEnabled", true));
  click("Additive clipboard (append captures)");
  EXPECT_TRUE(becomes("additiveEnabled", false));
  click("German");
  EXPECT_TRUE(becomes("recognitionLanguages", {"en-US", "de-DE"}));
  click("Clear History");
  EXPECT_TRUE(waitFor([] { return HistoryStore::shared().items().empty(); }));

  click("Line breaks");
  ASSERT_TRUE(waitFor([] { return QApplication::activePopupWidget() != nullptr; }));
  press({KEY_DOWN});
  press({KEY_ENTER});
  EXPECT_TRUE(becomes("keepLineBreaksByDefault", false));
  EXPECT_THAT(fired_, IsEmpty());
}

TEST_F(SettingsWindowTest, LaunchAtLoginIsAnEntryOnTheDisk) {
  // Where there can't be one the switch turns back.
  const auto entry = screen().home() / "config/autostart/com.varnholt.Lumiscan.desktop";
  std::filesystem::create_directory(screen().home() / "config");
  std::ofstream(entry.parent_path()) << "no folder";
  open();
  const auto* const launchAtLogin = qobject_cast<QAbstractButton*>(control("Launch at login"));
  ASSERT_TRUE(launchAtLogin);
  int turns = 0;
  QObject::connect(launchAtLogin, &QAbstractButton::toggled, [&turns] { ++turns; });
  click("Launch at login");
  EXPECT_TRUE(waitFor([&] { return turns > 0 && !launchAtLogin->isChecked(); }));

  std::filesystem::remove(entry.parent_path());
  for (const bool isWanted : {true, false}) {
    click("Launch at login");
    EXPECT_TRUE(waitFor([&] { return std::filesystem::exists(entry) == isWanted; })) << isWanted;
  }
}

TEST_F(SettingsWindowTest, FieldsRecordWhatIsPressed) {
  open();
  clickInto("Stop Speaking");
  press({KEY_LEFTMETA});
  press({KEY_LEFTSHIFT, KEY_A});
  press({KEY_LEFTMETA, KEY_LEFTSHIFT, KEY_2});
  EXPECT_TRUE(becomes("hotkey.stopSpeaking", "19,768")) << "a hotkey of ours, which the field gets";
  EXPECT_TRUE(waitFor([] { return textOf("Stop Speaking") == "⇧⌘2" && focused() == "Stop Speaking"; }));
  press({KEY_LEFTALT, KEY_F5});
  EXPECT_TRUE(becomes("hotkey.stopSpeaking", "96,2048")) << "the same row's field has the focus still";
  int records = 0;
  const auto counting =
      platform::NotificationCenter::defaultCenter().addObserver(settingsChanged, [&records] { ++records; });
  const std::vector<std::uint8_t> held = {KEY_LEFTMETA, KEY_LEFTSHIFT, KEY_2};
  for (const std::uint8_t key : held) screen().keyDown(key);
  EXPECT_TRUE(waitFor([&records] { return records > 2; })) << "the repeats of a key that is held";
  EXPECT_EQ(focused(), "Stop Speaking");
  for (const std::uint8_t key : held) screen().keyUp(key);

  // The keys are physical.
  Process({"setxkbmap", "fr"}).waitForEnd(processEvents);
  press({KEY_LEFTCTRL, KEY_Q});
  EXPECT_TRUE(becomes("hotkey.stopSpeaking", "12,4096"));
  press({KEY_LEFTMETA, KEY_TAB});
  EXPECT_TRUE(becomes("hotkey.stopSpeaking", "48,256"));
  press({KEY_ESC});
  EXPECT_TRUE(becomes("hotkey.stopSpeaking", nullptr));
  EXPECT_TRUE(waitFor([] { return textOf("Stop Speaking") == "—"; }));

  press({KEY_LEFTSHIFT, KEY_TAB});
  ASSERT_TRUE(waitFor([] { return focused() == "Capture Last Selection"; }));
  press({KEY_TAB});
  press({KEY_TAB});
  ASSERT_TRUE(waitFor([] { return focused() == "Toggle Additive Clipboard"; }));
  EXPECT_THAT(fired_, IsEmpty());
  QWidget* const label = control("Stop Speaking")->parentWidget();
  clickAt(label->mapToGlobal(QPoint(20, label->height() / 2)));
  ASSERT_TRUE(waitFor([] { return focused().isEmpty(); })) << "a click beside the controls";
  press({KEY_LEFTMETA, KEY_LEFTSHIFT, KEY_2});
  EXPECT_TRUE(waitFor([this] { return !fired_.empty(); }));
  EXPECT_THAT(fired_, ElementsAre("captureText")) << "once no field has the focus";
  clickInto("Stop Speaking");
  press({KEY_LEFTALT, KEY_F4});
  ASSERT_TRUE(waitFor([this] { return !controller_.window()->isVisible(); }));
  press({KEY_LEFTMETA, KEY_LEFTSHIFT, KEY_2});
  EXPECT_TRUE(waitFor([this] { return fired_.size() == 2; }))
      << "nor when it was closed with the focus in one";
}

TEST_F(SettingsWindowTest, TheKeyboardReachesEveryControlByItsName) {
  open();
  std::vector<std::string> names;
  auto* const scrollArea = control("Launch at login")->window()->findChild<QScrollArea*>();
  const QRect viewport(scrollArea->viewport()->mapToGlobal(QPoint(0, 0)), scrollArea->viewport()->size());
  QWidget* before = nullptr;
  do {
    QWidget* const now = QApplication::focusWidget();
    names.push_back(accessibleNameOf(now));
    EXPECT_TRUE(viewport.contains(QRect(now->mapToGlobal(QPoint(0, 0)), now->size()))) << names.back();
    before = now;
    press({KEY_TAB});
    ASSERT_TRUE(waitFor([before] { return QApplication::focusWidget() != before; }));
  } while (focused() != "Launch at login");
  ASSERT_EQ(names.size(), 27U);
  EXPECT_EQ(std::set(names.begin(), names.end()).size(), 27U);
  EXPECT_EQ(names[4], "Line breaks");
  EXPECT_EQ(names[5], "English (US)");
  EXPECT_EQ(names[18], "Capture Text");
  EXPECT_EQ(names[26], "Clear History");
  press({KEY_TAB});
  press({KEY_SPACE});
  EXPECT_TRUE(becomes("playSound", false));

  // The focus stays through what another program or a hotkey does to the keyboard, and while the wheel
  // scrolls past a control.
  ASSERT_TRUE(screen().grabKeyboard());
  constexpr double untilTheToolkitNotices = 0.3;  // Three times as long as it takes.
  passTime(untilTheToolkitNotices);
  EXPECT_EQ(focused(), "Play sound after capture");
  screen().ungrab();
  QWidget* const choice = control("Line breaks");
  const QPoint middle = choice->mapToGlobal(choice->rect().center());
  screen().click(middle.x(), middle.y(), XCB_BUTTON_INDEX_5);
  EXPECT_TRUE(waitFor([&] { return choice->mapToGlobal(choice->rect().center()) != middle; }));
  EXPECT_EQ(focused(), "Play sound after capture");
}

TEST_F(SettingsWindowTest, ComesToTheFrontEachTimeItIsOpened) {
  open();
  QWidget* const window = control("Launch at login")->window();
  EXPECT_EQ(window->size(), QSize(520, 560));
  const QPoint place = window->pos();
  Process other({"xterm", "-geometry", "120x50"});
  ASSERT_TRUE(waitFor([this] { return !controller_.window()->isKeyWindow(); }));
  open();
  for (int round = 0; round < 2; ++round) {
    press({KEY_LEFTALT, KEY_F4});
    ASSERT_TRUE(waitFor([this] { return !controller_.window()->isVisible(); }));
    open();
    EXPECT_EQ(control("Launch at login")->window(), window);
    EXPECT_EQ(window->pos(), place);
  }
  window->showMinimized();
  ASSERT_TRUE(waitFor([this] { return !controller_.window()->isKeyWindow(); }));
  open();
  // An open window doesn't keep the program from ending.
  QMetaObject::invokeMethod(
      qApp, [] { platform::Application::shared().terminate(); }, Qt::QueuedConnection);
  QApplication::exec();
}

}  // namespace
}  // namespace lumiscan::testing
