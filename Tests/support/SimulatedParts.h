#pragma once

#include <cmath>
#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/BitmapContext.h"
#include "platform/Cursor.h"
#include "platform/Logger.h"
#include "platform/LoginItem.h"
#include "platform/Pasteboard.h"
#include "platform/QRCode.h"
#include "platform/Sound.h"
#include "platform/SpeechSynthesizer.h"
#include "platform/Typesetter.h"
#include "platform/UTF8.h"
#include "platform/UserDefaults.h"
#include "platform/Workspace.h"
#include "support/RecordingGraphicsContext.h"
#include "support/TestImages.h"

// The parts of the simulated desktop that are little more than a value.

namespace lumiscan::testing {

/// What the program did that the user or the next start of the program can tell, across all parts of the
/// desktop, in order: "pasteboard TEXT", "store KEY", "play SOUND", "beep", "show SYMBOL TITLE / PREVIEW",
/// "speak LANGUAGE TEXT", "stop speaking".
class Effects {
 public:
  void add(std::string effect) { list_.push_back(std::move(effect)); }
  /// The effects since this was last called.
  std::vector<std::string> take() { return std::exchange(list_, {}); }

 private:
  std::vector<std::string> list_;
};

struct SimulatedCursors : platform::CursorStack {
  void push(platform::CursorShape shape) override { pushed.push_back(shape); }
  void pop() override {
    if (!pushed.empty()) pushed.pop_back();
  }

  std::vector<platform::CursorShape> pushed;
};

struct SimulatedWorkspace : platform::Workspace {
  void openURL(std::string_view url) override { opened.emplace_back(url); }

  std::vector<std::string> opened;
};

/// What stays when the program ends and starts again.
using Preferences = std::map<std::string, platform::DefaultsValue, std::less<>>;

class SimulatedUserDefaults : public platform::UserDefaults {
 public:
  SimulatedUserDefaults(std::shared_ptr<Preferences> preferences, Effects& effects)
      : preferences_(std::move(preferences)), effects_(effects) {}

  std::optional<platform::DefaultsValue> object(std::string_view key) const override {
    const auto found = preferences_->find(key);
    return found == preferences_->end() ? std::nullopt : std::optional(found->second);
  }
  void setObject(std::string_view key, platform::DefaultsValue value) override {
    effects_.add("store " + std::string(key));
    preferences_->insert_or_assign(std::string(key), std::move(value));
  }
  void removeObject(std::string_view key) override { preferences_->erase(std::string(key)); }

 private:
  std::shared_ptr<Preferences> preferences_;
  Effects& effects_;
};

/// The pasteboard as other programs see it.
class SimulatedPasteboard : public platform::Pasteboard {
 public:
  explicit SimulatedPasteboard(Effects& effects) : effects_(effects) {}

  void clearContents() override {
    pending_.reset();
    owned_ = true;
    changed_ = true;
  }
  void setString(std::string_view string) override {
    if (!owned_) return;  // Only who has taken the pasteboard over has something to offer.
    pending_ = platform::validUTF8(string);
    effects_.add("pasteboard " + *pending_);
    changed_ = true;
  }

  /// Called when an event has been handled: other programs see what was written in it.
  void publish() {
    if (!std::exchange(changed_, false)) return;
    text = pending_;
    ++changeCount;
  }
  /// Another program takes the pasteboard over.
  void takeOver(std::string_view string) {
    owned_ = false;
    text = string;
  }

  /// What other programs read; nothing when the pasteboard holds no text.
  std::optional<std::string> text;
  /// How often other programs have seen the pasteboard change.
  int changeCount = 0;

 private:
  Effects& effects_;
  bool owned_ = false;
  bool changed_ = false;
  std::optional<std::string> pending_;
};

/// A login item that does what it is asked unless a test refuses it.
class SimulatedLoginItem : public platform::LoginItem {
 public:
  platform::LoginItemStatus status() const override { return current; }
  bool registerItem() override { return change("register", platform::LoginItemStatus::enabled); }
  bool unregisterItem() override { return change("unregister", platform::LoginItemStatus::notRegistered); }

  platform::LoginItemStatus current = platform::LoginItemStatus::notRegistered;
  bool refuses = false;
  std::vector<std::string> asked;

 private:
  bool change(const char* what, platform::LoginItemStatus wanted) {
    asked.emplace_back(what);
    // What is so already can't fail.
    if (refuses && current != wanted) return false;
    current = wanted;
    return true;
  }
};

class SimulatedSounds : public platform::Sounds {
 public:
  explicit SimulatedSounds(Effects& effects) : effects_(effects) {}
  void play(std::string_view name) override { effects_.add("play " + std::string(name)); }
  void beep() override { effects_.add("beep"); }

 private:
  Effects& effects_;
};

/// Speaks every utterance until a test ends it.
class SimulatedSpeechSynthesizer : public platform::SpeechSynthesizer {
 public:
  explicit SimulatedSpeechSynthesizer(Effects& effects) : effects_(effects) {}
  bool isSpeaking() const override { return !utterances.empty(); }
  void stopSpeaking() override {
    utterances.clear();
    effects_.add("stop speaking");
  }
  void speak(const platform::SpeechUtterance& utterance) override {
    utterances.push_back(utterance);
    effects_.add("speak " + utterance.language.value_or("by default") + " " + utterance.text);
  }

  std::vector<platform::SpeechUtterance> utterances;  ///< Spoken first, then those that are queued.

 private:
  Effects& effects_;
};

/// Every character is as wide as the next, at whole points, and every line as high.
class SimulatedTypesetter : public platform::Typesetter {
 public:
  static double characterWidth(const platform::Font& font) { return std::floor(font.size / 2); }
  platform::Size sizeOf(std::string_view text, const platform::Font& font) override {
    const platform::Size size = simulatedTextSize(text);
    return {size.width / testing::characterWidth * characterWidth(font), size.height};
  }
  std::vector<std::string> lines(std::string_view text, const platform::Font& font, double width) override {
    std::vector<std::string> lines;
    const auto most = static_cast<std::size_t>(width / characterWidth(font));
    for (; text.size() > most; text.remove_prefix(most)) lines.emplace_back(text.substr(0, most));
    lines.emplace_back(text);
    return lines;
  }
  /// Texts of ASCII characters only.
  std::string truncatedInMiddle(std::string_view text, const platform::Font& font, double width) override {
    const auto most = static_cast<std::size_t>(width / characterWidth(font));
    if (text.size() <= most) return std::string(text);
    const std::size_t half = (most - 1) / 2;
    return std::string(text.substr(0, half)) + "…" + std::string(text.substr(text.size() - half));
  }
};

/// A line each: "CATEGORY: MESSAGE", or "CATEGORY error: MESSAGE".
class RecordedLog : public platform::LogSink {
 public:
  void write(platform::LogLevel level, std::string_view subsystem, std::string_view category,
             std::string_view message) override {
    lines.push_back(std::string(category) + (level == platform::LogLevel::error ? " error: " : ": ") +
                    std::string(message));
    lastSubsystem = subsystem;
  }
  /// The lines since this was last called.
  std::vector<std::string> take() { return std::exchange(lines, {}); }

  std::vector<std::string> lines;
  std::string lastSubsystem;
};

/// Bitmaps and QR codes without a rasteriser.
struct SimulatedDrawing {
  class Context : public Recording<platform::BitmapContext> {
    void drawLine(std::string_view, platform::Point, const platform::TextAttributes&) override {}
    platform::Image makeImage() override { return coordinateImage(8, 8); }
  };

  bool makesContexts = true;
  std::optional<platform::Image> qrCode = coordinateImage(29, 29);
};

}  // namespace lumiscan::testing
