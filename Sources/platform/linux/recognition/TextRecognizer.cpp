#include "platform/linux/recognition/TextRecognizer.h"

#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <exception>
#include <mutex>
#include <numeric>
#include <set>
#include <thread>
#include <utility>

#include "platform/linux/recognition/Columns.h"
#include "platform/linux/recognition/EnginePool.h"
#include "platform/linux/recognition/GlyphCorrections.h"
#include "platform/linux/recognition/ImagePreparation.h"
#include "platform/linux/recognition/LanguageChoice.h"
#include "platform/linux/recognition/LanguageData.h"
#include "platform/linux/recognition/LineImage.h"
#include "platform/linux/recognition/Plausibility.h"
#include "platform/linux/recognition/Scripts.h"
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

bool isBlank(const std::string& text) { return text.find_first_not_of(" \t\r\n\f\v") == std::string::npos; }

/// How sure an engine is of a line of words. Of single letters it is nearly as sure where it reads a script
/// that it doesn't know; but it knows that no words come of it.
double surenessOfWords(double ofSymbols, double ofWords) {
  constexpr double usual = 95;
  constexpr double weight = 0.1;
  return ofSymbols - weight * std::max(0.0, usual - ofWords);
}

double meanConfidence(const std::vector<Symbol>& symbols) {
  if (symbols.empty()) return 0;
  return std::accumulate(symbols.begin(), symbols.end(), 0.0,
                         [](double sum, const Symbol& symbol) { return sum + symbol.confidence; }) /
         static_cast<double>(symbols.size());
}

/// The confidence in a line of wide characters. It is one word to the engine, which is as sure of a word as
/// of its worst character; so the mean counts. That is 98 and more for text, and up to 93 for what is none.
double confidenceOfWide(double ofSymbols) {
  constexpr double spread = 5;
  return std::max(0.0, 100 - spread * (100 - ofSymbols));
}

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
  const double sureness = meanConfidence(symbols);
  correctSpaces(symbols, letters, line);
  insertUnderscores(symbols, underscores, letters, line.letterHeight);
  correctQuotes(symbols, letters, ink, line);
  correctDashes(symbols, letters, line);
  correctHexadecimals(symbols);
  if (isWideText(symbols)) {
    correctWideText(symbols);
    // Characters are of many pieces, but few of these stand side by side.
    const std::size_t pieces = gutters(letters, 0).size() + 1;
    return {join(symbols), confidenceOfWide(sureness), line.letterHeight, count, pieces, sureness};
  }
  return {join(symbols), reading.confidence, line.letterHeight,
          count,         letters.size(),     surenessOfWords(sureness, reading.confidence)};
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

  /// The engines for the languages whose data is there, each by the names of its data.
  std::vector<std::vector<std::string>> enginesFor(const std::vector<std::string>& languages) {
    LanguageData::Selection selection = data.select(languages);
    for (const std::string& tag : selection.missing) logMissing(tag);
    return engineLanguages(std::move(selection.names), data.isInstalled("en"));
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
    const auto languages = enginesFor(request.recognitionLanguages);
    if (languages.empty()) return Error{"No recognition data is installed for any of the languages"};
    std::vector<std::shared_ptr<Engine>> engines;
    for (const std::vector<std::string>& names : languages) {
      auto borrowed = pool.borrow({names, request.usesLanguageCorrection});
      if (!borrowed.ok()) return borrowed.error();
      engines.push_back(std::move(borrowed).value());
    }
    const bool wide = std::any_of(languages.begin(), languages.end(), hasWideCharacters);
    const GreyBitmap ink = inkOf(image);
    std::vector<ReadLine> lines = readInBestLanguage(
        findTextLines(ink, wide ? Characters::wide : Characters::alphabetic), languages,
        [&](std::size_t engine, const TextLine& line) { return readLine(*engines[engine], ink, line); });
    std::erase_if(lines, [](const ReadLine& line) { return isBlank(line.text); });
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
  std::vector<EngineKey> keys;
  for (std::vector<std::string>& names : state_->enginesFor(languages))
    if (EngineKey key{std::move(names), true}; state_->pool.announce(key)) keys.push_back(std::move(key));
  if (keys.empty()) return;
  // The task may outlive the recogniser; the state lives as long as it does.
  auto task = [state = state_, keys = std::move(keys)] {
    for (const EngineKey& key : keys) state->pool.loadAhead(key);
  };
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
