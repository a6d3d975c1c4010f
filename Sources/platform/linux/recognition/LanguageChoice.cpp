#include "platform/linux/recognition/LanguageChoice.h"

#include <algorithm>
#include <cctype>
#include <initializer_list>
#include <numeric>
#include <optional>
#include <string_view>
#include <utility>

namespace lumiscan::desktop {

namespace {

constexpr std::string_view english = "eng";

bool isAmong(std::string_view name, std::initializer_list<std::string_view> names) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

bool isWide(std::string_view name) { return isAmong(name, {"chi_sim", "chi_tra", "jpn", "kor"}); }

bool isCyrillic(std::string_view name) { return isAmong(name, {"rus", "ukr", "bel", "bul", "mkd", "srp"}); }

bool isLatin(std::string_view name) {
  return !isWide(name) && !isCyrillic(name) &&
         !isAmong(name, {"ara", "ben", "ell", "fas", "heb", "hin", "hye", "kat", "tam", "tel", "tha", "urd"});
}

/// The share of Latin letters among all letters, from 0 to 1.
double latinShare(const std::string& text) {
  std::size_t latin = 0;
  std::size_t others = 0;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (std::isalpha(byte))
      ++latin;
    else if (byte >= 0xC3 && byte != 0xE2)  // Starts a letter beyond ASCII; 0xE2 starts dashes and quotes.
      ++others;
  }
  return latin == 0 ? 0 : static_cast<double>(latin) / static_cast<double>(latin + others);
}

/// The readings of one line by several engines.
class Candidates {
 public:
  Candidates(const TextLine& line, const std::vector<std::vector<std::string>>& engines,
             const ReadWithEngine& read)
      : line_(&line), engines_(&engines), read_(&read), readings_(engines.size()) {}

  void ask(std::size_t engine) {
    if (!readings_[engine]) readings_[engine] = (*read_)(engine, *line_);
  }
  void askAll() {
    for (std::size_t engine = 0; engine < readings_.size(); ++engine) ask(engine);
  }

  /// How far the engine can be trusted with the line; nothing where it wasn't asked. The English model lacks
  /// letters of the others and is as sure of them without their accents; and models of other scripts know
  /// Latin letters, but no model of Latin script knows theirs.
  std::optional<double> sureness(std::size_t engine) const {
    constexpr double englishHandicap = 0.15;
    constexpr double guestHandicap = 1;
    if (!readings_[engine]) return std::nullopt;
    const std::string& language = (*engines_)[engine].front();
    const double handicap = language == english ? englishHandicap
                            : isLatin(language) ? 0
                                                : guestHandicap * latinShare(readings_[engine]->text);
    return readings_[engine]->sureness - handicap;
  }

  /// The surest engine of those that were asked; the first of several that are.
  std::size_t best() const {
    std::size_t best = 0;
    for (std::size_t engine = 1; engine < readings_.size(); ++engine)
      if (sureness(engine) > sureness(best)) best = engine;  // Nothing is less than any number.
    return best;
  }

  ReadLine take(std::size_t engine) { return std::move(*readings_[engine]); }
  std::size_t glyphs() const { return line_->glyphs.size(); }

 private:
  const TextLine* line_;
  const std::vector<std::vector<std::string>>* engines_;
  const ReadWithEngine* read_;
  std::vector<std::optional<ReadLine>> readings_;
};

/// The indices of the lines, those of most glyphs first.
std::vector<std::size_t> longestFirst(const std::vector<Candidates>& lines) {
  std::vector<std::size_t> order(lines.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t a, std::size_t b) { return lines[a].glyphs() > lines[b].glyphs(); });
  return order;
}

void askEngines(std::vector<Candidates>& lines, std::size_t engineCount) {
  constexpr std::size_t fewEngines = 2;
  constexpr std::size_t sampleLines = 3;
  constexpr double sure = 98.5;
  std::vector<std::size_t> needed;
  std::size_t asked = 0;
  for (const std::size_t i : longestFirst(lines)) {
    Candidates& line = lines[i];
    for (const std::size_t engine : needed) line.ask(engine);
    const bool isSure = !needed.empty() && line.sureness(line.best()) >= sure;
    if (engineCount <= fewEngines || asked++ < sampleLines || !isSure) line.askAll();
    if (std::find(needed.begin(), needed.end(), line.best()) == needed.end()) needed.push_back(line.best());
  }
}

/// The engine that is the surest of most glyphs.
std::size_t leadingEngine(const std::vector<Candidates>& lines, std::size_t engineCount) {
  std::vector<std::size_t> glyphs(engineCount);
  for (const Candidates& line : lines) glyphs[line.best()] += line.glyphs();
  return static_cast<std::size_t>(std::max_element(glyphs.begin(), glyphs.end()) - glyphs.begin());
}

}  // namespace

std::vector<std::vector<std::string>> engineLanguages(std::vector<std::string> names, bool hasEnglish) {
  std::vector<std::vector<std::string>> engines;
  const auto chosenEnglish = std::find(names.begin(), names.end(), english);
  const auto isOtherLatin = [](const std::string& name) { return isLatin(name) && name != english; };
  // One other language of the Latin script takes English along behind itself and reads both well. More than
  // two at a time would hinder one another: the engine takes the first reading that looks like words.
  const bool together =
      chosenEnglish != names.end() && std::count_if(names.begin(), names.end(), isOtherLatin) == 1;
  if (together) names.erase(chosenEnglish);
  for (const std::string& name : names) {
    engines.push_back({name});
    if ((together && isOtherLatin(name)) || (isCyrillic(name) && hasEnglish))
      engines.back().emplace_back(english);
  }
  return engines;
}

bool hasWideCharacters(const std::vector<std::string>& names) {
  return std::any_of(names.begin(), names.end(), isWide);
}

std::vector<ReadLine> readInBestLanguage(const std::vector<TextLine>& lines,
                                         const std::vector<std::vector<std::string>>& engines,
                                         const ReadWithEngine& read) {
  std::vector<Candidates> candidates;
  for (const TextLine& line : lines) candidates.emplace_back(line, engines, read);
  askEngines(candidates, engines.size());
  const std::size_t leading = leadingEngine(candidates, engines.size());
  std::vector<ReadLine> readings;
  for (Candidates& line : candidates) {
    // Labels may be words of several languages; those around them are likely of the same.
    constexpr double leadersBonus = 0.3;
    const std::size_t best = line.best();
    const auto leaders = line.sureness(leading);
    readings.push_back(
        line.take(leaders && *leaders + leadersBonus >= *line.sureness(best) ? leading : best));
  }
  return readings;
}

}  // namespace lumiscan::desktop
