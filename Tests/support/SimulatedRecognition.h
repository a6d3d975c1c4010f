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

/// Reads in every image what a test has put there.
class SimulatedTextRecognizer : public platform::TextRecognizer {
 public:
  explicit SimulatedTextRecognizer(const SimulatedDispatcher& dispatcher) : dispatcher_(dispatcher) {}

  struct Request {
    platform::TextRecognitionRequest request;
    platform::Image image;
    bool onMainThread = false;
  };

  platform::Result<std::vector<platform::TextObservation>> perform(
      const platform::TextRecognitionRequest& request, const platform::Image& image) override {
    requests.push_back({request, image, dispatcher_.isMainThread()});
    return result;
  }
  void prepare(const std::vector<std::string>& languages) override { prepared.push_back(languages); }

  std::optional<std::string> missingPackage(std::string_view language) const override {
    const auto missing = missingPackages.find(language);
    return missing == missingPackages.end() ? std::nullopt : std::optional(missing->second);
  }

  /// Makes the result one line for each text.
  void recognizes(const std::vector<std::string>& lines) {
    std::vector<platform::TextObservation> observations;
    observations.reserve(lines.size());
    for (const std::string& line : lines) observations.push_back({{line}});
    result = std::move(observations);
  }

  platform::Result<std::vector<platform::TextObservation>> result{std::vector<platform::TextObservation>{}};
  std::vector<Request> requests;
  std::vector<std::vector<std::string>> prepared;
  /// By the languages whose data isn't installed.
  std::map<std::string, std::string, std::less<>> missingPackages;

 private:
  const SimulatedDispatcher& dispatcher_;
};

/// Finds in every image the codes that a test has put there.
class SimulatedBarcodeDetector : public platform::BarcodeDetector {
 public:
  explicit SimulatedBarcodeDetector(const SimulatedDispatcher& dispatcher) : dispatcher_(dispatcher) {}

  struct Request {
    std::vector<platform::Symbology> symbologies;
    platform::Image image;
    bool onMainThread = false;
  };

  platform::Result<std::vector<platform::BarcodeObservation>> perform(
      const std::vector<platform::Symbology>& symbologies, const platform::Image& image) override {
    requests.push_back({symbologies, image, dispatcher_.isMainThread()});
    return result;
  }

  /// Makes the result one QR code for each payload.
  void finds(const std::vector<std::string>& payloads) {
    std::vector<platform::BarcodeObservation> observations;
    observations.reserve(payloads.size());
    for (const std::string& payload : payloads) observations.push_back({platform::Symbology::qr, payload});
    result = std::move(observations);
  }

  platform::Result<std::vector<platform::BarcodeObservation>> result{
      std::vector<platform::BarcodeObservation>{}};
  std::vector<Request> requests;

 private:
  const SimulatedDispatcher& dispatcher_;
};

}  // namespace lumiscan::testing
