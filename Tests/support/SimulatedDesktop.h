#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/Appearance.h"
#include "platform/Application.h"
#include "platform/Date.h"
#include "platform/Desktop.h"
#include "platform/NotificationCenter.h"
#include "support/Printing.h"
#include "support/SimulatedDispatcher.h"
#include "support/SimulatedDisplays.h"
#include "support/SimulatedHotKeys.h"
#include "support/SimulatedParts.h"
#include "support/SimulatedRecognition.h"
#include "support/SimulatedStatusBar.h"
#include "support/SimulatedWindows.h"

namespace lumiscan::testing {

/// The application object; its event loop ends when nothing is left to do now.
class SimulatedApplication : public platform::Application {
 public:
  explicit SimulatedApplication(SimulatedDispatcher& dispatcher) : dispatcher_(dispatcher) {}

  void setDelegate(platform::ApplicationDelegate* newDelegate) override { delegate = newDelegate; }
  void setActivationPolicy(platform::ActivationPolicy) override {}
  void run() override {
    dispatcher_.handleEvent([this] {
      if (delegate) delegate->applicationDidFinishLaunching();
    });
    dispatcher_.settle();
  }
  void terminate() override { terminated = true; }
  void activateIgnoringOtherApps() override { ++activations; }
  void disableSuddenTermination() override { suddenTerminationDisabled = true; }

  platform::ApplicationDelegate* delegate = nullptr;
  bool terminated = false;
  int activations = 0;
  bool suddenTerminationDisabled = false;

 private:
  SimulatedDispatcher& dispatcher_;
};

/// A desktop in memory. It is the installed one as long as it lives, is used from one thread, and touches
/// nothing outside the process. What a test does between two calls of the dispatcher or of the input
/// functions counts as one event.
class SimulatedDesktop : public platform::Desktop {
 public:
  /// One screen of 1440 by 900 points is attached, display 1.
  explicit SimulatedDesktop(std::shared_ptr<Preferences> preferences = std::make_shared<Preferences>())
      : dispatcher_([this] { pasteboard_.publish(); }), userDefaults_(std::move(preferences), effects_) {
    Desktop::install(this);
    displays_.attach(1, {{0, 0}, {1440, 900}});
  }
  ~SimulatedDesktop() override {
    // Work that still waits and singletons may own windows or timers, which need the desktop to go.
    dispatcher_.clear();
    dropSingletons();
    Desktop::install(nullptr);
  }

  std::optional<std::string> interactiveModeProblem() override { return std::nullopt; }
  bool claimInstance() override { return true; }
  SimulatedApplication& application() override { return onMainThread(application_); }
  SimulatedDispatcher& dispatcher() override { return dispatcher_; }
  /// A day and the virtual clock's seconds after the reference date.
  platform::Date currentDate() override { return {86400 + dispatcher_.now()}; }
  SimulatedUserDefaults& userDefaults() override { return userDefaults_; }
  RecordedLog& logSink() override { return log_; }
  platform::NotificationCenter& notificationCenter() override { return center_; }
  platform::NotificationCenter& workspaceNotificationCenter() override { return workspaceCenter_; }
  SimulatedDisplays& displays() override { return displays_; }
  platform::Point mouseLocation() override { return windows_.mouseLocation; }
  SimulatedCursors& cursors() override { return onMainThread(cursors_); }
  SimulatedPasteboard& pasteboard() override { return onMainThread(pasteboard_); }
  SimulatedSounds& sounds() override { return onMainThread(sounds_); }
  SimulatedSpeechSynthesizer& speechSynthesizer() override { return onMainThread(speechSynthesizer_); }
  SimulatedHotKeys& hotKeys() override { return onMainThread(hotKeys_); }
  SimulatedLoginItem& loginItem() override { return onMainThread(loginItem_); }
  SimulatedWorkspace& workspace() override { return onMainThread(workspace_); }
  SimulatedTextRecognizer& textRecognizer() override { return textRecognizer_; }
  SimulatedBarcodeDetector& barcodeDetector() override { return barcodeDetector_; }
  SimulatedStatusBar& statusBar() override { return onMainThread(statusBar_); }
  SimulatedAlerts& alerts() override { return onMainThread(alerts_); }
  platform::Appearance appearance() override { return look; }
  SimulatedTypesetter& typesetter() override { return typesetter_; }
  std::unique_ptr<platform::WindowPeer> makeWindowPeer(platform::Window& window) override {
    return windows_.makePeer(window);
  }
  std::unique_ptr<platform::BitmapContext> makeBitmapContext(int, int) override {
    return drawing_.makesContexts ? std::make_unique<SimulatedDrawing::Context>() : nullptr;
  }
  std::optional<platform::Image> generateQRCode(std::string_view, platform::QRCorrectionLevel) override {
    return drawing_.qrCode;
  }

  Effects& effects() { return effects_; }
  SimulatedWindows& windows() { return windows_; }
  SimulatedDrawing& drawing() { return drawing_; }

  // The dispatcher's, since every other test needs them.
  void runMainQueue() { dispatcher_.runMainQueue(); }
  void advance(double seconds) { dispatcher_.advance(seconds); }
  void runBackgroundTasks() { dispatcher_.runBackgroundTasks(); }
  void settle() { dispatcher_.settle(); }

  platform::Appearance look;

 private:
  /// A part that belongs to the main thread.
  template <typename Part>
  static Part& onMainThread(Part& part) {
    platform::MainQueue::assertCurrent();
    return part;
  }

  Effects effects_;
  SimulatedDispatcher dispatcher_;
  SimulatedUserDefaults userDefaults_;
  RecordedLog log_;
  platform::NotificationCenter center_;
  platform::NotificationCenter workspaceCenter_;
  SimulatedWindows windows_{dispatcher_, effects_};
  SimulatedDisplays displays_{dispatcher_, windows_};
  SimulatedCursors cursors_;
  SimulatedPasteboard pasteboard_{effects_};
  SimulatedSounds sounds_{effects_};
  SimulatedSpeechSynthesizer speechSynthesizer_{effects_};
  SimulatedTypesetter typesetter_;
  SimulatedHotKeys hotKeys_{dispatcher_};
  SimulatedLoginItem loginItem_;
  SimulatedWorkspace workspace_;
  SimulatedTextRecognizer textRecognizer_{dispatcher_};
  SimulatedBarcodeDetector barcodeDetector_{dispatcher_};
  SimulatedDrawing drawing_;
  SimulatedStatusBar statusBar_;
  SimulatedAlerts alerts_;
  SimulatedApplication application_{dispatcher_};
};

}  // namespace lumiscan::testing
