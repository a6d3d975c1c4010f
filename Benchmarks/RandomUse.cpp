#include "RandomUse.h"

#include <linux/input-event-codes.h>

#include <QDBusVariant>
#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <stdexcept>

#include "platform/linux/UserDefaults.h"

namespace lumiscan {

namespace {

using testing::idOf;
using testing::PrivateDesktop;

void require(bool condition, const char* what) {
  if (!condition) throw std::runtime_error(what);
}

}  // namespace

RandomUse::RandomUse() {
  setenv("DBUS_SESSION_BUS_ADDRESS", bus_.address().c_str(), 1);
  desktop_.attachTwoMonitors();
  page_.emplace(std::vector<std::string>{"xterm", "-geometry", "60x8+600+300", "-e",
                                         "echo The quick brown fox jumps over 24680; exec sleep 86400"});
  require(panel_.start(), "no name on the bus");
  program_.emplace(std::vector<std::string>{LUMISCAN_PROGRAM});
  require(loop_.waitFor([this] { return desktop_.shortcutIsTaken() && !panel_.item().isEmpty(); }),
          "the program didn't start");
  uses_ = {
      [this] {
        captureByKeys({KEY_LEFTMETA, KEY_LEFTSHIFT, KEY_2});
      },
      [this] {
        captureByKeys({KEY_LEFTCTRL, KEY_LEFTALT, KEY_LEFTMETA, KEY_S});
      },
      [this] {
        captureByKeys({KEY_LEFTCTRL, KEY_LEFTALT, KEY_LEFTMETA, KEY_B});
      },
      [this] { captureJoiningLines(); },
      [this] { repeatByKeys(); },
      [this] { chooseFromMenu("Capture Last Selection"); },
      [this] { chooseFromMenu("Additive Clipboard"); },
      [this] { chooseFromMenu("Clear Additive Clipboard"); },
      [this] { chooseFromMenu("Stop Speaking"); },
      [this] { chooseFromHistory(); },
      [this] { chooseFromMenu("Clear History"); },
      [this] { showTheAboutBox(); },
      [this] { changeInTheSettingsWindow(); },
      [this] { changeThePreferencesFile(); },
      [this] { switchTheCompositor(); },
  };
}

void RandomUse::useEach() {
  for (int round = 0; round < 2; ++round)
    for (std::size_t kind = 0; kind < uses_.size(); ++kind) use(kind);
}

void RandomUse::useAny() {
  // Half of what is done are captures, the first kinds.
  const std::size_t kinds = below(2) == 0 ? 4 : uses_.size();
  use(random_() % kinds);
}

void RandomUse::use(std::size_t kind) {
  try {
    uses_[kind]();
    require(!program_->exitStatus(), "the program ended");
    require(loop_.waitFor([this] { return desktop_.inputIsFree(); }), "an overlay or a grab stayed");
  } catch (const std::runtime_error& error) {
    constexpr std::size_t tail = 2000;
    const std::string log = program_->standardError();
    throw std::runtime_error(std::string(error.what()) + "; use " + std::to_string(kind) + ", " +
                             std::to_string(windows()) + " windows; the log ends\n" +
                             log.substr(std::max(log.size(), tail) - tail));
  }
}

void RandomUse::tidyUp() {
  if (hasCompositor_) switchTheCompositor();
}

void RandomUse::captureByKeys(const Keys& keys) {
  desktop_.pressKeys(keys);
  goThroughTheSession();
}

void RandomUse::captureJoiningLines() {
  chooseFromMenu("Capture Text (join lines)");
  goThroughTheSession();
}

void RandomUse::goThroughTheSession() {
  require(loop_.waitFor([this] { return desktop_.inputIsTaken(); }), "a session didn't begin");
  const int x = 600 + below(200), y = 300 + below(100);
  switch (below(4)) {
    case 0:
      desktop_.pressKeys({KEY_ESC});
      break;
    case 1:
      PrivateDesktop::detachMonitor("LEFT");
      require(loop_.waitFor([this] { return desktop_.inputIsFree(); }), "a session outlived its screen");
      PrivateDesktop::setMonitor("LEFT", "499/132x600/159+0+100", "none");
      break;
    default:
      desktop_.drag(x, y, x + 200, y + 60);
  }
}

void RandomUse::repeatByKeys() { desktop_.pressKeys({KEY_LEFTCTRL, KEY_LEFTALT, KEY_LEFTMETA, KEY_R}); }

bool RandomUse::clickIfThere(int id) {
  const desktop::statusnotifier::MenuEvent event{id, QStringLiteral("clicked"), QDBusVariant(0), 0};
  const QList<desktop::statusnotifier::MenuEvent> events{event};
  const auto unknown =
      panel_.callMenu(QStringLiteral("EventGroup"), {QVariant::fromValue(events)}).arguments();
  return qdbus_cast<QList<int>>(unknown.value(0)).isEmpty();
}

void RandomUse::chooseFromMenu(const QString& label) {
  panel_.aboutToShow(0);
  std::optional<int> id;
  do {
    id.reset();
    for (const auto& item : panel_.layout().children)
      // A shortcut may follow.
      if (item.properties["label"].toString().section('\t', 0, 0) == label) id = item.id;
    require(id.has_value(), "an item is missing in the menu");
    // What was chosen before may just have had the menu made anew, which a panel would show.
  } while (!clickIfThere(*id));
}

void RandomUse::chooseFromHistory() {
  const auto submenu = idOf(panel_.layout(), "Recent Captures");
  require(submenu.has_value(), "the menu has no history");
  panel_.aboutToShow(*submenu);
  const auto items = panel_.layout(*submenu).children;
  // A capture that ends meanwhile makes the submenu anew.
  if (!items.isEmpty()) panel_.click(items[below(static_cast<int>(items.size()))].id);
}

void RandomUse::waitForWindows(std::size_t count, const char* what) {
  require(loop_.waitFor([&] { return windows() == count; }), what);
}

void RandomUse::showTheAboutBox() {
  chooseFromMenu("About Lumiscan");
  waitForWindows(1, "no about box");
  require(loop_.waitFor([this] {
    desktop_.pressKeys({KEY_ENTER});
    return windows() == 0;
  }),
          "the about box stayed");
}

void RandomUse::changeInTheSettingsWindow() {
  chooseFromMenu("Settings…");
  require(loop_.waitFor([this] {
    const auto shown = desktop_.windowsOfClass("Lumiscan");
    return shown.size() == 1 && desktop_.focusedWindow() == shown[0];
  }),
          "no settings window");
  // The first four controls are switches; the window opens again with the focus where it was.
  const int steps = below(4);
  for (int i = 0; i < steps; ++i) desktop_.pressKeys({KEY_TAB});
  desktop_.pressKeys({KEY_SPACE});
  for (int i = 0; i < steps; ++i) desktop_.pressKeys({KEY_LEFTSHIFT, KEY_TAB});
  require(loop_.waitFor([this] {
    // By its title bar's button. With the key a second press could close the page.
    for (const xcb_window_t window : desktop_.windowsOfClass("Lumiscan")) askToClose(window);
    return windows() == 0;
  }),
          "the settings window stayed");
}

void RandomUse::askToClose(xcb_window_t window) const {
  xcb_client_message_event_t event{};
  event.response_type = XCB_CLIENT_MESSAGE;
  event.format = 32;
  event.window = window;
  event.type = desktop_.atom("_NET_CLOSE_WINDOW");
  xcb_send_event(desktop_.x(), 0, desktop_.root(),
                 XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                 reinterpret_cast<const char*>(&event));
  xcb_flush(desktop_.x());
}

void RandomUse::changeThePreferencesFile() {
  desktop::FileUserDefaults preferences(desktop::FileUserDefaults::defaultFile());
  constexpr const char* keys[] = {"showHUD", "playSound", "keepLineBreaksByDefault", "additiveEnabled"};
  preferences.setObject(keys[below(std::size(keys))], below(2) == 0);
  using Languages = std::vector<std::string>;
  preferences.setObject("recognitionLanguages",
                        below(2) == 0 ? Languages{"en-US"} : Languages{"en-US", "de-DE"});
}

void RandomUse::switchTheCompositor() {
  hasCompositor_ = !hasCompositor_;
  if (hasCompositor_)
    desktop_.startCompositor();
  else
    desktop_.endCompositor();
}

}  // namespace lumiscan
