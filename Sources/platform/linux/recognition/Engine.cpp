#include "platform/linux/recognition/Engine.h"

#include <leptonica/allheaders.h>
#include <omp.h>
#include <tesseract/baseapi.h>
#include <tesseract/resultiterator.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace lumiscan::desktop {

namespace {

/// Keeps the engine's parallel regions to the calling thread while it lives: with several threads they are
/// many times slower on images as small as lines. The engine's own request for threads overrides every
/// other limit that can still be set; the depth of parallel regions is the caller's, and 0 leaves none.
class SingleThreaded {
 public:
  SingleThreaded() : levels_(omp_get_max_active_levels()) { omp_set_max_active_levels(0); }
  ~SingleThreaded() { omp_set_max_active_levels(levels_); }
  SingleThreaded(const SingleThreaded&) = delete;
  SingleThreaded& operator=(const SingleThreaded&) = delete;

 private:
  int levels_;
};

struct DestroyPix {
  void operator()(Pix* pix) const { pixDestroy(&pix); }
};

std::unique_ptr<Pix, DestroyPix> pixOf(const GreyBitmap& image) {
  std::unique_ptr<Pix, DestroyPix> pix(pixCreate(image.width, image.height, 8));
  if (!pix) throw std::bad_alloc();
  for (int y = 0; y < image.height; ++y) {
    l_uint32* const line = pixGetData(pix.get()) + static_cast<std::ptrdiff_t>(y) * pixGetWpl(pix.get());
    for (int x = 0; x < image.width; ++x) SET_DATA_BYTE(line, x, image.at(x, y));
  }
  constexpr int resolution = 210;  // Per inch: what makes the model's line height one of usual print.
  pixSetResolution(pix.get(), resolution, resolution);
  return pix;
}

using Text = std::unique_ptr<char[]>;

/// The symbols of the text line at the iterator, with the spaces that the engine puts between them.
void appendLine(tesseract::ResultIterator& iterator, LineReading& reading) {
  const Text whole(iterator.GetUTF8Text(tesseract::RIL_TEXTLINE));
  std::string_view rest(whole ? whole.get() : "");
  bool spaceBefore = !reading.symbols.empty();
  do {
    const Text text(iterator.GetUTF8Text(tesseract::RIL_SYMBOL));
    if (!text || !text[0]) continue;
    Symbol symbol{
        text.get(), spaceBefore, {}, static_cast<double>(iterator.Confidence(tesseract::RIL_SYMBOL))};
    spaceBefore = false;
    // Which words have spaces between them differs by script; the text of the line knows.
    const std::size_t start = rest.find_first_not_of(' ');
    if (start != std::string_view::npos && rest.substr(start).starts_with(symbol.text)) {
      symbol.spaceBefore = symbol.spaceBefore || (start > 0 && !reading.symbols.empty());
      rest.remove_prefix(start + symbol.text.size());
    }
    iterator.BoundingBox(tesseract::RIL_SYMBOL, &symbol.box.left, &symbol.box.top, &symbol.box.right,
                         &symbol.box.bottom);
    symbol.confidence = static_cast<double>(iterator.Confidence(tesseract::RIL_SYMBOL));
    reading.symbols.push_back(std::move(symbol));
  } while (!iterator.IsAtFinalElement(tesseract::RIL_TEXTLINE, tesseract::RIL_SYMBOL) &&
           iterator.Next(tesseract::RIL_SYMBOL));
}

}  // namespace

struct Engine::Api {
  tesseract::TessBaseAPI tesseract;
};

Engine::Engine(std::unique_ptr<Api> api) : api_(std::move(api)) {}
Engine::~Engine() = default;

platform::Result<std::shared_ptr<Engine>> Engine::load(const EngineKey& key,
                                                       const std::filesystem::path& folder) {
  const SingleThreaded single;
  std::string languages;
  for (const std::string& name : key.names) languages += (languages.empty() ? "" : "+") + name;
  // Its own messages would go to standard error. Light text on dark is turned over before it sees it.
  std::vector<std::string> variables{"debug_file", "tessedit_do_invert"};
  std::vector<std::string> values{"/dev/null", "0"};
  if (!key.dictionaries)
    for (const char* name : {"load_system_dawg", "load_freq_dawg"}) {
      variables.emplace_back(name);
      values.emplace_back("0");
    }
  auto api = std::make_unique<Api>();
  if (api->tesseract.Init(folder.c_str(), languages.c_str(), tesseract::OEM_LSTM_ONLY, nullptr, 0, &variables,
                          &values, false) != 0)
    return platform::Error{"The recognition engine can't load the trained data " + languages};
  api->tesseract.SetPageSegMode(tesseract::PSM_SINGLE_LINE);
  return std::shared_ptr<Engine>(new Engine(std::move(api)));
}

LineReading Engine::readLine(const GreyBitmap& image) {
  const SingleThreaded single;
  const auto pix = pixOf(image);
  tesseract::TessBaseAPI& tesseract = api_->tesseract;
  tesseract.SetImage(pix.get());
  LineReading reading;
  if (tesseract.Recognize(nullptr) == 0) {
    const std::unique_ptr<tesseract::ResultIterator> iterator(tesseract.GetIterator());
    if (iterator && !iterator->Empty(tesseract::RIL_SYMBOL)) {
      reading.confidence = static_cast<double>(iterator->Confidence(tesseract::RIL_TEXTLINE));
      do appendLine(*iterator, reading);
      while (iterator->Next(tesseract::RIL_SYMBOL));
    }
  }
  tesseract.Clear();
  return reading;
}

}  // namespace lumiscan::desktop
