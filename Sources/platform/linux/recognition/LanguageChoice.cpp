#include "platform/linux/recognition/LanguageChoice.h"

#include <algorithm>
#include <cctype>
#include <initializer_list>
#include <iterator>
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
double latinShare(const std::vector<Symbol>& symbols) {
  std::size_t latin = 0;
  std::size_t others = 0;
  for (const Symbol& symbol : symbols) {
    const auto byte = static_cast<unsigned char>(symbol.text.front());
    if (std::isalpha(byte))
      ++latin;
    else if (byte >= 0xC3 && byte != 0xE2)  // Starts a letter beyond ASCII; 0xE2 starts dashes and quotes.
      ++others;
  }
  return latin == 0 ? 0 : static_cast<double>(latin) / static_cast<double>(latin + others);
}

/// The readings of all lines by some of the engines.
class Readings {
 public:
  Readings(const std::vector<TextLine>& lines, const std::vector<std::vector<std::string>>& engines,
           const ReadAll& read)
      : lines_(lines), engines_(engines), read_(read), drafts_(lines.size()) {
    for (auto& drafts : drafts_) drafts.resize(engines.size());
  }

  /// Has these engines read these lines, as far as they haven't.
  void ask(const std::vector<std::size_t>& engines, const std::vector<std::size_t>& lines) {
    std::vector<Question> questions;
    for (const std::size_t line : lines)
      for (const std::size_t engine : engines)
        if (!drafts_[line][engine]) questions.push_back({engine, line});
    std::vector<LineDraft> answers = read_(questions);
    for (std::size_t i = 0; i < questions.size(); ++i)
      drafts_[questions[i].line][questions[i].engine] = std::move(answers[i]);
  }

  /// How far the engine can be trusted with the line; nothing where it wasn't asked. The English model lacks
  /// letters of the others and is as sure of them without their accents; and models of other scripts know
  /// Latin letters, but no model of Latin script knows theirs.
  std::optional<double> sureness(std::size_t line, std::size_t engine) const {
    constexpr double englishHandicap = 0.15;
    constexpr double guestHandicap = 1;
    const std::optional<LineDraft>& draft = drafts_[line][engine];
    if (!draft) return std::nullopt;
    const std::string& language = engines_[engine].front();
    const double handicap = language == english ? englishHandicap
                            : isLatin(language) ? 0
                                                : guestHandicap * latinShare(draft->symbols);
    return draft->sureness - handicap;
  }

  /// The surest engine of those that were asked; the first of several that are.
  std::size_t best(std::size_t line) const {
    std::size_t best = 0;
    for (std::size_t engine = 1; engine < engines_.size(); ++engine)
      if (sureness(line, engine) > sureness(line, best)) best = engine;  // Nothing is less than any number.
    return best;
  }

  /// The engine that is the surest of most glyphs.
  std::size_t leading() const {
    std::vector<std::size_t> glyphs(engines_.size());
    for (std::size_t line = 0; line < lines_.size(); ++line) glyphs[best(line)] += lines_[line].glyphs.size();
    return static_cast<std::size_t>(std::max_element(glyphs.begin(), glyphs.end()) - glyphs.begin());
  }

  LineDraft take(std::size_t line, std::size_t engine) { return std::move(*drafts_[line][engine]); }

 private:
  const std::vector<TextLine>& lines_;
  const std::vector<std::vector<std::string>>& engines_;
  const ReadAll& read_;
  std::vector<std::vector<std::optional<LineDraft>>> drafts_;  // By line and engine.
};

std::vector<std::size_t> indices(std::size_t count) {
  std::vector<std::size_t> all(count);
  std::iota(all.begin(), all.end(), std::size_t{0});
  return all;
}

/// The indices of the lines, those of most glyphs first.
std::vector<std::size_t> longestFirst(const std::vector<TextLine>& lines) {
  std::vector<std::size_t> order = indices(lines.size());
  std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
    return lines[a].glyphs.size() > lines[b].glyphs.size();
  });
  return order;
}

void askEngines(Readings& readings, const std::vector<TextLine>& lines, std::size_t engineCount) {
  constexpr std::size_t fewEngines = 2;
  constexpr std::size_t sampleLines = 3;
  constexpr double sure = 98.5;
  const std::vector<std::size_t> all = indices(engineCount);
  const std::vector<std::size_t> order = longestFirst(lines);
  if (engineCount <= fewEngines || lines.size() <= sampleLines) return readings.ask(all, order);
  const std::vector<std::size_t> sample(order.begin(), order.begin() + sampleLines);
  const std::vector<std::size_t> rest(order.begin() + sampleLines, order.end());
  readings.ask(all, sample);
  std::vector<std::size_t> needed;
  for (const std::size_t line : sample)
    if (std::find(needed.begin(), needed.end(), readings.best(line)) == needed.end())
      needed.push_back(readings.best(line));
  readings.ask(needed, rest);
  std::vector<std::size_t> doubtful;
  std::copy_if(rest.begin(), rest.end(), std::back_inserter(doubtful),
               [&](std::size_t line) { return readings.sureness(line, readings.best(line)) < sure; });
  readings.ask(all, doubtful);
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

bool hasCyrillicLetters(const std::vector<std::string>& names) {
  return std::any_of(names.begin(), names.end(), isCyrillic);
}

bool hasWideCharacters(const std::vector<std::string>& names) {
  return std::any_of(names.begin(), names.end(), isWide);
}

std::vector<LineDraft> readInBestLanguage(const std::vector<TextLine>& lines,
                                          const std::vector<std::vector<std::string>>& engines,
                                          const ReadAll& read) {
  Readings readings(lines, engines, read);
  askEngines(readings, lines, engines.size());
  const std::size_t leading = readings.leading();
  std::vector<LineDraft> chosen;
  for (std::size_t line = 0; line < lines.size(); ++line) {
    // Labels may be words of several languages; those around them are likely of the same.
    constexpr double leadersBonus = 0.3;
    const std::size_t best = readings.best(line);
    const auto leaders = readings.sureness(line, leading);
    const bool leads = leaders && *leaders + leadersBonus >= *readings.sureness(line, best);
    chosen.push_back(readings.take(line, leads ? leading : best));
  }
  return chosen;
}

}  // namespace lumiscan::desktop
