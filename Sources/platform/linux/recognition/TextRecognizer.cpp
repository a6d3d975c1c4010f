#include "platform/linux/recognition/TextRecognizer.h"

#include <algorithm>
#include <chrono>
#include <exception>
#include <mutex>
#include <set>
#include <thread>
#include <utility>

#include "platform/linux/recognition/EngineCrew.h"
#include "platform/linux/recognition/EnginePool.h"
#include "platform/linux/recognition/FreeMemory.h"
#include "platform/linux/recognition/ImagePreparation.h"
#include "platform/linux/recognition/LanguageChoice.h"
#include "platform/linux/recognition/LanguageData.h"
#include "platform/linux/recognition/LineReader.h"
#include "platform/linux/recognition/PictureLetters.h"

namespace lumiscan::desktop {

namespace {

using platform::Error;
using platform::Image;
using platform::Result;
using platform::TextObservation;

/// Whether there may be more text than was read, on a picture, or text whose shapes didn't come out well
/// there.
bool isDoubtful(const Reading& reading) {
  constexpr std::size_t few = 3;
  constexpr double usualTrust = 93;
  const bool areUsual = 10 * reading.likely > 9 * reading.symbols || reading.meanTrust() >= usualTrust;
  return reading.symbols <= few || !areUsual || 4 * reading.likely <= reading.symbols;
}

/// The lines of text in an image. What stands on a picture is read by its own colour.
std::vector<std::string> readText(EngineCrew& crew, const std::vector<std::vector<std::string>>& languages,
                                  const Image& image) {
  using Strokes = PictureLetters::Strokes;
  constexpr double hopeless = 50;
  constexpr double leastTrust = 75;  // There are shapes like letters in many pictures.
  constexpr std::size_t fewestSymbols = 3;
  const Surfaces surfaces(image);
  const Grounds grounds(surfaces);
  Reading reading = readLines(crew, languages, inkOf(surfaces, grounds));
  if (!isDoubtful(reading)) return std::move(reading.lines);
  const PictureLetters letters(surfaces, grounds);
  for (const std::uint32_t color : letters.colors()) {
    for (const Strokes strokes : {Strokes::ofColor, Strokes::any}) {
      Reading other = readLines(crew, languages, letters.ink(color, strokes));
      const bool isBetter = other.worth() > reading.worth();
      if (other.meanTrust() < hopeless || (!isBetter && reading.worth() > 0)) break;
      if (isBetter && other.meanTrust() >= leastTrust && other.symbols >= fewestSymbols)
        reading = std::move(other);
    }
  }
  return std::move(reading.lines);
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
    const auto borrow = [&](std::size_t engine) {
      return pool.borrow({languages[engine], request.usesLanguageCorrection});
    };
    std::vector<std::shared_ptr<Engine>> engines;
    for (std::size_t i = 0; i < languages.size(); ++i) {
      auto borrowed = borrow(i);
      if (!borrowed.ok()) return borrowed.error();
      engines.push_back(std::move(borrowed).value());
    }
    EngineCrew crew(std::move(engines), [&](std::size_t engine) {
      auto borrowed = borrow(engine);
      return borrowed.ok() ? std::move(borrowed).value() : nullptr;
    });
    std::vector<TextObservation> observations;
    for (std::string& text : readText(crew, languages, image)) observations.push_back({{std::move(text)}});
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

std::optional<std::string> TesseractRecognizer::missingPackage(std::string_view language) const {
  return state_->data.missingPackage(language);
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

void TesseractRecognizer::settle() {
  state_->pool.renew();
  giveFreeMemoryBack();
}

void TesseractRecognizer::releaseUnused(double idleSeconds) {
  const auto age =
      std::chrono::duration_cast<EnginePool::Clock::duration>(std::chrono::duration<double>(idleSeconds));
  if (state_->pool.releaseUnused(age) > 0) giveFreeMemoryBack();
}

}  // namespace lumiscan::desktop
