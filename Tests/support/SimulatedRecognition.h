#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/BarcodeDetector.h"
#include "platform/TextRecognizer.h"
#include "support/SimulatedDispatcher.h"

namespace lumiscan::testing {

/// Sees in every image what a test has put there, whatever is `asked` for.
template <typename Base, typename Asked, typename Observation>
class SimulatedVision : public Base {
 public:
  explicit SimulatedVision(const SimulatedDispatcher& dispatcher) : dispatcher_(dispatcher) {}

  struct Request {
    Asked asked;
    platform::Image image;
    bool onMainThread = false;
  };
  using Result = platform::Result<std::vector<Observation>>;

  Result perform(const Asked& asked, const platform::Image& image) override {
    requests.push_back({asked, image, dispatcher_.isMainThread()});
    return result;
  }

  Result result{std::vector<Observation>{}};
  std::vector<Request> requests;

 private:
  const SimulatedDispatcher& dispatcher_;
};

class SimulatedTextRecognizer
    : public SimulatedVision<platform::TextRecognizer, platform::TextRecognitionRequest,
                             platform::TextObservation> {
 public:
  using SimulatedVision::SimulatedVision;

  void prepare(const std::vector<std::string>& languages) override { prepared.push_back(languages); }
  std::optional<std::string> missingPackage(std::string_view language) const override {
    const auto missing = missingPackages.find(language);
    return missing == missingPackages.end() ? std::nullopt : std::optional(missing->second);
  }

  /// Makes the result one line for each text.
  void recognizes(const std::vector<std::string>& lines) {
    std::vector<platform::TextObservation> observations;
    for (const std::string& line : lines) observations.push_back({{line}});
    result = std::move(observations);
  }

  std::vector<std::vector<std::string>> prepared;
  /// By the languages whose data isn't installed.
  std::map<std::string, std::string, std::less<>> missingPackages;
};

class SimulatedBarcodeDetector
    : public SimulatedVision<platform::BarcodeDetector, std::vector<platform::Symbology>,
                             platform::BarcodeObservation> {
 public:
  using SimulatedVision::SimulatedVision;

  /// Makes the result one QR code for each payload.
  void finds(const std::vector<std::string>& payloads) {
    std::vector<platform::BarcodeObservation> observations;
    for (const std::string& payload : payloads) observations.push_back({platform::Symbology::qr, payload});
    result = std::move(observations);
  }
};

}  // namespace lumiscan::testing
