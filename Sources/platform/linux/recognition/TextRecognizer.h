#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "platform/TextRecognizer.h"

namespace lumiscan::desktop {

/// Reads text with Tesseract, in process, one thread for each call.
class TesseractRecognizer : public platform::TextRecognizer {
 public:
  struct Options {
    /// Runs a function on some other thread, soon. Without one each `prepare` that has something to load
    /// starts a thread of its own, and the recogniser's end waits for it.
    std::function<void(std::function<void()>)> runInBackground = {};
    /// Takes a line for the log, from any thread; never captured text.
    std::function<void(std::string)> logError = {};
    /// The folder of the trained data; empty means the installed engine's.
    std::filesystem::path dataFolder = {};
  };

  TesseractRecognizer();
  explicit TesseractRecognizer(Options options);
  ~TesseractRecognizer() override;

  platform::Result<std::vector<platform::TextObservation>> perform(
      const platform::TextRecognitionRequest& request, const platform::Image& image) override;
  void prepare(const std::vector<std::string>& languages) override;
  std::optional<std::string> missingPackage(std::string_view language) const override;

  /// Gives the memory that the last pictures took back to the system. One engine for each list of languages
  /// is kept, or rather loaded anew, for the next picture: takes as long as that. Any thread.
  void settle();
  /// Frees the engines that nobody has used for so many seconds, and gives the memory back to the system.
  void releaseUnused(double idleSeconds);

 private:
  struct State;
  std::shared_ptr<State> state_;
};

}  // namespace lumiscan::desktop
