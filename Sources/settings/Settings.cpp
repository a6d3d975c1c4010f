#include "settings/Settings.h"

#include "platform/NotificationCenter.h"
#include "platform/UserDefaults.h"

namespace lumiscan::Settings {

namespace {

bool boolDefaultingToTrue(std::string_view key) {
  const auto stored = platform::UserDefaults::standard().object(key);
  if (!stored) return true;
  if (const bool* value = std::get_if<bool>(&*stored)) return *value;
  if (const double* number = std::get_if<double>(&*stored)) return *number != 0;
  return true;
}

}  // namespace

bool playSound() { return boolDefaultingToTrue(playSoundKey); }
bool showHUD() { return boolDefaultingToTrue(showHUDKey); }
bool keepLineBreaksByDefault() { return boolDefaultingToTrue(keepLineBreaksByDefaultKey); }

std::vector<std::string> recognitionLanguages() {
  auto stored = platform::UserDefaults::standard().stringArrayForKey(recognitionLanguagesKey);
  if (!stored || stored->empty()) return {"en-US"};
  return *std::move(stored);
}

void setRecognitionLanguages(const std::vector<std::string>& languages) {
  platform::UserDefaults::standard().setObject(recognitionLanguagesKey, languages);
  platform::NotificationCenter::defaultCenter().post(settingsChanged);
}

void setBool(std::string_view key, bool value) {
  platform::UserDefaults::standard().setBool(key, value);
  platform::NotificationCenter::defaultCenter().post(settingsChanged);
}

const std::array<Language, 13> availableLanguages = {{
    {"en-US", "English (US)"},
    {"en-GB", "English (UK)"},
    {"fr-FR", "French"},
    {"it-IT", "Italian"},
    {"de-DE", "German"},
    {"es-ES", "Spanish"},
    {"pt-BR", "Portuguese (Brazil)"},
    {"zh-Hans", "Chinese (Simplified)"},
    {"zh-Hant", "Chinese (Traditional)"},
    {"ja-JP", "Japanese"},
    {"ko-KR", "Korean"},
    {"ru-RU", "Russian"},
    {"uk-UA", "Ukrainian"},
}};

}  // namespace lumiscan::Settings
