#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

namespace lumiscan {

/// Posted on the default notification centre after every write of a setting or a binding.
inline constexpr std::string_view settingsChanged = "varnholt.lumiscan.settingsChanged";
/// Posted on the default notification centre after every change of the capture history.
inline constexpr std::string_view historyChanged = "varnholt.lumiscan.historyChanged";

/// The user's settings over the standard preferences. Nothing is cached: each getter reads the store, and
/// gives its own default when the key is absent or holds a value of the wrong type. Getters may be called
/// from any thread; writes happen on the main thread.
namespace Settings {

inline constexpr std::string_view playSoundKey = "playSound";
inline constexpr std::string_view showHUDKey = "showHUD";
inline constexpr std::string_view keepLineBreaksByDefaultKey = "keepLineBreaksByDefault";
inline constexpr std::string_view additiveEnabledKey = "additiveEnabled";
inline constexpr std::string_view recognitionLanguagesKey = "recognitionLanguages";

bool playSound();                ///< Default true.
bool showHUD();                  ///< Default true.
bool keepLineBreaksByDefault();  ///< Default true.
bool additiveEnabled();          ///< Default false.

/// Language identifiers in order of preference; never empty: "en-US" alone by default.
std::vector<std::string> recognitionLanguages();
/// Stores the list unchanged and posts `settingsChanged`.
void setRecognitionLanguages(const std::vector<std::string>& languages);

/// Stores a Boolean setting under its key and posts `settingsChanged`.
void setBool(std::string_view key, bool value);

struct Language {
  std::string_view code;   ///< The identifier, as stored.
  std::string_view label;  ///< What the settings window shows.
};

/// The languages that the settings window offers, in its order.
extern const std::array<Language, 13> availableLanguages;

}  // namespace Settings
}  // namespace lumiscan
