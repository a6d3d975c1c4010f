#include "platform/linux/recognition/LanguageData.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <utility>

namespace lumiscan::desktop {

namespace {

namespace fs = std::filesystem;

/// Language subtags and the names of their trained data.
constexpr std::pair<std::string_view, std::string_view> trainedNames[] = {
    {"ar", "ara"}, {"be", "bel"}, {"bg", "bul"},      {"bn", "ben"}, {"ca", "cat"}, {"cs", "ces"},
    {"cy", "cym"}, {"da", "dan"}, {"de", "deu"},      {"el", "ell"}, {"en", "eng"}, {"eo", "epo"},
    {"es", "spa"}, {"et", "est"}, {"eu", "eus"},      {"fa", "fas"}, {"fi", "fin"}, {"fr", "fra"},
    {"ga", "gle"}, {"gl", "glg"}, {"he", "heb"},      {"hi", "hin"}, {"hr", "hrv"}, {"hu", "hun"},
    {"hy", "hye"}, {"id", "ind"}, {"is", "isl"},      {"it", "ita"}, {"ja", "jpn"}, {"ka", "kat"},
    {"ko", "kor"}, {"la", "lat"}, {"lt", "lit"},      {"lv", "lav"}, {"mk", "mkd"}, {"ms", "msa"},
    {"nb", "nor"}, {"nl", "nld"}, {"nn", "nor"},      {"no", "nor"}, {"pl", "pol"}, {"pt", "por"},
    {"ro", "ron"}, {"ru", "rus"}, {"sk", "slk"},      {"sl", "slv"}, {"sq", "sqi"}, {"sr", "srp"},
    {"sv", "swe"}, {"ta", "tam"}, {"te", "tel"},      {"th", "tha"}, {"tr", "tur"}, {"uk", "ukr"},
    {"ur", "urd"}, {"vi", "vie"}, {"yue", "chi_tra"},
};

std::vector<std::string> subtags(std::string_view tag) {
  std::vector<std::string> parts(1);
  for (char c : tag) {
    if (c == '-' || c == '_')
      parts.emplace_back();
    else
      parts.back() += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }
  return parts;
}

bool hasAny(const std::vector<std::string>& parts, std::initializer_list<std::string_view> wanted) {
  return std::find_first_of(parts.begin() + 1, parts.end(), wanted.begin(), wanted.end()) != parts.end();
}

/// The name of the trained data for a tag; nothing where none is known.
std::optional<std::string> trainedName(std::string_view tag) {
  const std::vector<std::string> parts = subtags(tag);
  const std::string& language = parts.front();
  if (language == "zh") {
    const bool traditional =
        hasAny(parts, {"hant"}) || (!hasAny(parts, {"hans"}) && hasAny(parts, {"tw", "hk", "mo"}));
    return traditional ? "chi_tra" : "chi_sim";
  }
  if (language == "sr" && hasAny(parts, {"latn"})) return "srp_latn";
  for (const auto& [subtag, name] : trainedNames)
    if (subtag == language) return std::string(name);
  // Languages without a two-letter subtag go by the same three letters in both worlds.
  const auto isLetter = [](char c) { return c >= 'a' && c <= 'z'; };
  if (language.size() == 3 && std::all_of(language.begin(), language.end(), isLetter)) return language;
  return std::nullopt;
}

constexpr std::string_view extension = ".traineddata";

/// Where the engine's own packages put their data.
fs::path installedFolder() {
  if (const char* prefix = std::getenv("TESSDATA_PREFIX"); prefix && *prefix) return prefix;
  constexpr std::array folders{"/usr/share/tesseract-ocr/5/tessdata", "/usr/share/tessdata",
                               "/usr/share/tesseract/tessdata", "/usr/local/share/tessdata"};
  std::error_code error;
  for (const char* folder : folders)
    if (fs::is_directory(folder, error)) return folder;
  return folders.front();
}

}  // namespace

LanguageData::LanguageData(fs::path folder)
    : folder_(folder.empty() ? installedFolder() : std::move(folder)) {}

fs::path LanguageData::file(std::string_view name) const {
  return folder_ / (std::string(name) + std::string(extension));
}

bool LanguageData::isInstalled(std::string_view tag) const {
  const auto name = trainedName(tag);
  std::error_code error;
  return name && fs::is_regular_file(file(*name), error);
}

std::optional<std::string> LanguageData::missingPackage(std::string_view tag) const {
  auto name = trainedName(tag);
  if (!name || isInstalled(tag)) return std::nullopt;
  std::replace(name->begin(), name->end(), '_', '-');
  return "tesseract-ocr-" + *name;
}

LanguageData::Selection LanguageData::select(const std::vector<std::string>& tags) const {
  Selection selection;
  if (tags.empty()) {
    if (isInstalled("en")) return {{"eng"}, {}};
    std::error_code error;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder_, error))
      // "osd" tells scripts apart and holds no language.
      if (entry.path().extension() == extension && entry.path().stem() != "osd")
        selection.names.push_back(entry.path().stem());
    std::sort(selection.names.begin(), selection.names.end());
    if (selection.names.size() > 1) selection.names.resize(1);
    return selection;
  }
  for (const std::string& tag : tags) {
    if (!isInstalled(tag)) {
      selection.missing.push_back(tag);
      continue;
    }
    const std::string name = *trainedName(tag);
    if (std::find(selection.names.begin(), selection.names.end(), name) == selection.names.end())
      selection.names.push_back(name);
  }
  return selection;
}

bool LanguageData::isWhole(const std::string& name) const {
  // The number of entries, then where each starts, or -1 for one that is left out.
  std::error_code error;
  const auto size = fs::file_size(file(name), error);
  if (error) return false;
  std::ifstream stream(file(name), std::ios::binary);
  std::uint32_t count = 0;
  stream.read(reinterpret_cast<char*>(&count), sizeof count);
  constexpr std::uint32_t mostEntries = 64;
  if (!stream || count == 0 || count > mostEntries) return false;
  std::vector<std::int64_t> offsets(count);
  stream.read(reinterpret_cast<char*>(offsets.data()),
              static_cast<std::streamsize>(count * sizeof(std::int64_t)));
  return stream && std::all_of(offsets.begin(), offsets.end(), [&](std::int64_t offset) {
           return offset == -1 || (offset > 0 && static_cast<std::uintmax_t>(offset) < size);
         });
}

}  // namespace lumiscan::desktop
