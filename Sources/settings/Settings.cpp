#include "settings/Settings.h"

#include "platform/NotificationCenter.h"
#include "platform/UserDefaults.h"

namespace lumiscan::Settings {

bool playSound() { return platform::UserDefaults::standard().boolForKey(playSoundKey, true); }
bool showHUD() { return platform::UserDefaults::standard().boolForKey(showHUDKey, true); }
bool keepLineBreaksByDefault() {
  return platform::UserDefaults::standard().boolForKey(keepLineBreaksByDefaultKey, true);
}
bool additiveEnabled() { return platform::UserDefaults::standard().boolForKey(additiveEnabledKey); }

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
