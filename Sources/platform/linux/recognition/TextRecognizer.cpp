#include "platform/linux/recognition/TextRecognizer.h"

#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <exception>
#include <mutex>
#include <set>
#include <thread>
#include <utility>

#include "platform/linux/recognition/EnginePool.h"
#include "platform/linux/recognition/GlyphCorrections.h"
#include "platform/linux/recognition/ImagePreparation.h"
#include "platform/linux/recognition/LanguageData.h"
#include "platform/linux/recognition/LineImage.h"
#include "platform/linux/recognition/Plausibility.h"
#include "platform/linux/recognition/TextLayout.h"
#include "platform/linux/recognition/Utf8.h"

namespace lumiscan::desktop {

namespace {

using platform::Error;
using platform::Image;
using platform::Result;
using platform::TextObservation;

std::string join(const std::vector<Symbol>& symbols) {
  std::string text;
  for (const Symbol& symbol : symbols) text += (symbol.spaceBefore ? " " : "") + symbol.text;
  return repairedUtf8(text);
}

/// English last among languages of the Latin script: its models lack the others' letters, and a first
/// language's reading without accents would stand before the right one is asked for.
void moveEnglishBack(std::vector<std::string>& names) {
  constexpr std::string_view otherScripts[] = {"chi_sim", "chi_tra", "jpn", "kor", "rus", "ukr", "ara", "bel",
                                               "bul",     "ben",     "ell", "fas", "heb", "hin", "hye", "kat",
                                               "mkd",     "srp",     "tam", "tel", "tha", "urd"};
  const auto isLatin = [&](const std::string& name) {
    return std::find(std::begin(otherScripts), std::end(otherScripts), name) == std::end(otherScripts);
  };
  const auto english = std::find(names.begin(), names.end(), "eng");
  if (english != names.end() && std::all_of(names.begin(), names.end(), isLatin))
    std::rotate(english, english + 1, names.end());
}

Characters charactersOf(const std::vector<std::string>& names) {
  const bool wide = std::any_of(names.begin(), names.end(), [](const std::string& name) {
    return name == "chi_sim" || name == "chi_tra" || name == "jpn" || name == "kor";
  });
  return wide ? Characters::wide : Characters::alphabetic;
}

bool isBlank(const std::string& text) { return text.find_first_not_of(" \t\r\n\f\v") == std::string::npos; }

ReadLine readLine(Engine& engine, const GreyBitmap& ink, const TextLine& line) {
  std::vector<Glyph> letters = line.glyphs;
  const std::vector<Glyph> underscores = takeUnderscores(letters, line);
  // Strokes below nothing are a rule.
  if (letters.empty()) return {};
  const LineImage image = drawLine(ink, line, letters);
  LineReading reading = engine.readLine(image.bitmap);
  std::vector<Symbol>& symbols = reading.symbols;
  for (Symbol& symbol : symbols) symbol.box = image.toImage(symbol.box);
  const std::size_t count = symbols.size();
  correctSpaces(symbols, letters, line);
  insertUnderscores(symbols, underscores, letters, line.letterHeight);
  correctQuotes(symbols, letters, ink, line);
  correctDashes(symbols, letters, line);
  correctHexadecimals(symbols);
  return {join(symbols), reading.confidence, line.letterHeight, count, letters.size()};
}

}  // namespace

struct TesseractRecognizer::State {
  explicit State(Options o)
      : options(std::move(o)),
        data(options.dataFolder),
        pool([this](const EngineKey& key) { return load(key); }) {}

  Options options;
  LanguageData data;
  EnginePool pool;
  std::mutex mutex;
  std::set<std::string> missing;     // Tags that were logged.
  std::vector<std::thread> threads;  // Of `prepare`, where it starts its own.

  Result<std::shared_ptr<Engine>> load(const EngineKey& key) try {
    for (const std::string& name : key.names)
      if (!data.isWhole(name)) return Error{"The trained data " + name + " is damaged"};
    return Engine::load(key, data.folder());
  } catch (const std::exception& exception) {
    return Error{std::string("The recognition engine can't start: ") + exception.what()};
  }

  /// The engine for the languages whose data is there; nothing when none is.
  std::optional<EngineKey> keyFor(const std::vector<std::string>& languages, bool dictionaries) {
    LanguageData::Selection selection = data.select(languages);
    for (const std::string& tag : selection.missing) logMissing(tag);
    if (selection.names.empty()) return std::nullopt;
    moveEnglishBack(selection.names);
    return EngineKey{std::move(selection.names), dictionaries};
  }

  void logMissing(const std::string& tag) {
    {
      const std::lock_guard lock(mutex);
      if (!missing.insert(tag).second) return;
    }
    if (options.logError) options.logError("No recognition data is installed for the language " + tag);
  }

  Result<std::vector<TextObservation>> recognize(const platform::TextRecognitionRequest& request,
                                                 const Image& image) {
    const auto key = keyFor(request.recognitionLanguages, request.usesLanguageCorrection);
    if (!key) return Error{"No recognition data is installed for any of the languages"};
    auto borrowed = pool.borrow(*key);
    if (!borrowed.ok()) return borrowed.error();
    const std::shared_ptr<Engine> engine = std::move(borrowed).value();
    const GreyBitmap ink = inkOf(image);
    std::vector<ReadLine> lines;
    for (const TextLine& line : findTextLines(ink, charactersOf(key->names))) {
      lines.push_back(readLine(*engine, ink, line));
      if (isBlank(lines.back().text)) lines.pop_back();
    }
    dropImplausible(lines);
    std::vector<TextObservation> observations;
    for (ReadLine& line : lines) observations.push_back({{std::move(line.text)}});
    return observations;
  }
};

TesseractRecognizer::TesseractRecognizer() : TesseractRecognizer(Options{}) {}
TesseractRecognizer::TesseractRecognizer(Options options)
    : state_(std::make_shared<State>(std::move(options))) {}

TesseractRecognizer::~TesseractRecognizer() {
  for (std::thread& thread : state_->threads) thread.join();
}

Result<std::vector<TextObservation>> TesseractRecognizer::perform(
    const platform::TextRecognitionRequest& request, const Image& image) {
  if (const auto problem = sizeProblem(image)) return *problem;
  try {
    return state_->recognize(request, image);
  } catch (const std::bad_alloc&) {
    return Error{"There is not enough memory to read the image"};
  } catch (const std::exception& exception) {
    return Error{std::string("The recognition engine failed: ") + exception.what()};
  }
}

void TesseractRecognizer::prepare(const std::vector<std::string>& languages) {
  const auto key = state_->keyFor(languages, true);
  if (!key || !state_->pool.announce(*key)) return;
  // The task may outlive the recogniser; the state lives as long as it does.
  auto task = [state = state_, key = *key] { state->pool.loadAhead(key); };
  if (state_->options.runInBackground) return state_->options.runInBackground(std::move(task));
  const std::lock_guard lock(state_->mutex);
  state_->threads.emplace_back(std::move(task));
}

void TesseractRecognizer::releaseUnused(double idleSeconds) {
  const auto age =
      std::chrono::duration_cast<EnginePool::Clock::duration>(std::chrono::duration<double>(idleSeconds));
  if (state_->pool.releaseUnused(age) > 0) malloc_trim(0);
}

}  // namespace lumiscan::desktop
