#include "app/HistoryTitle.h"

#include <unicode/brkiter.h>
#include <unicode/utext.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <ctime>
#include <memory>
#include <string_view>

#include "recognition/TextLines.h"

namespace lumiscan {

namespace {

constexpr int mostCharacters = 48;

/// "HH:mm" in the time zone of now.
std::string timeOfDay(platform::Date date) {
  constexpr double farAway = 1e15;  // Seconds: beyond that a year doesn't fit into `tm`.
  const double seconds =
      std::floor(date.timeIntervalSinceReferenceDate + platform::Date::referenceDateSince1970);
  const auto time = static_cast<std::time_t>(std::clamp(seconds, -farAway, farAway));
  tzset();
  std::tm local{};
  localtime_r(&time, &local);
  char text[sizeof "00:00"];
  return {text, std::strftime(text, sizeof text, "%H:%M", &local)};
}

/// The first line that isn't empty; the whole text where there is none.
std::string_view firstLine(std::string_view text) {
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = endOfLine(text, begin);
    if (end > begin) return text.substr(begin, end - begin);
    begin = end + 1;
  }
  return text;
}

/// The start of a text: as many characters as a reader would count, however many code points each has.
std::string_view firstCharacters(std::string_view text, int count) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<UText, decltype(&utext_close)> utf8(
      utext_openUTF8(nullptr, text.data(), static_cast<std::int64_t>(text.size()), &status), &utext_close);
  const std::unique_ptr<icu::BreakIterator> characters(
      icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
  if (U_FAILURE(status)) return text;
  characters->setText(utf8.get(), status);
  if (U_FAILURE(status)) return text;
  for (int i = 0; i < count; ++i)
    if (characters->next() == icu::BreakIterator::DONE) return text;
  return text.substr(0, static_cast<std::size_t>(characters->current()));
}

}  // namespace

std::string historyTitle(const CaptureRecord& record) {
  std::string title = timeOfDay(record.date) + "  ";
  if (record.mode == CaptureMode::barcode) title += "[code] ";
  return title.append(firstCharacters(firstLine(record.text), mostCharacters));
}

}  // namespace lumiscan
