#include "platform/linux/recognition/Engine.h"

#include <leptonica/allheaders.h>
#include <omp.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include "platform/linux/recognition/TesseractLibrary.h"

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

/// What the engine has read, piece by piece. At its begin when it is made.
class ReadingIterator {
 public:
  ReadingIterator(const TesseractLibrary& library, TessBaseAPI* api)
      : library_(library), iterator_(library.getIterator(api)) {}
  ~ReadingIterator() {
    if (iterator_) library_.deleteIterator(iterator_);
  }
  ReadingIterator(const ReadingIterator&) = delete;
  ReadingIterator& operator=(const ReadingIterator&) = delete;

  explicit operator bool() const { return iterator_ != nullptr; }
  bool next(TessPageIteratorLevel level) { return library_.next(iterator_, level) != 0; }
  /// Empty where nothing was read.
  std::string text(TessPageIteratorLevel level) const {
    const char* const text = library_.getUTF8Text(iterator_, level);
    std::string copy = text ? text : "";
    library_.deleteText(text);
    return copy;
  }
  double confidence(TessPageIteratorLevel level) const {
    return static_cast<double>(library_.confidence(iterator_, level));
  }
  PixelBox symbolBox() const {
    PixelBox box;
    library_.boundingBox(library_.pageIterator(iterator_), tesseract::RIL_SYMBOL, &box.left, &box.top,
                         &box.right, &box.bottom);
    return box;
  }
  bool isAtLastSymbolOfLine() const {
    return library_.isAtFinalElement(library_.pageIterator(iterator_), tesseract::RIL_TEXTLINE,
                                     tesseract::RIL_SYMBOL) != 0;
  }

 private:
  const TesseractLibrary& library_;
  TessResultIterator* iterator_;
};

/// The symbols of the text line at the iterator, with the spaces that the engine puts between them.
void appendLine(ReadingIterator& iterator, LineReading& reading) {
  const std::string whole = iterator.text(tesseract::RIL_TEXTLINE);
  std::string_view rest = whole;
  bool spaceBefore = !reading.symbols.empty();
  do {
    std::string text = iterator.text(tesseract::RIL_SYMBOL);
    if (text.empty()) continue;
    Symbol symbol{std::move(text), spaceBefore, iterator.symbolBox(),
                  iterator.confidence(tesseract::RIL_SYMBOL)};
    spaceBefore = false;
    // Which words have spaces between them differs by script; the text of the line knows.
    const std::size_t start = rest.find_first_not_of(' ');
    if (start != std::string_view::npos && rest.substr(start).starts_with(symbol.text)) {
      symbol.spaceBefore = symbol.spaceBefore || (start > 0 && !reading.symbols.empty());
      rest.remove_prefix(start + symbol.text.size());
    }
    reading.symbols.push_back(std::move(symbol));
  } while (!iterator.isAtLastSymbolOfLine() && iterator.next(tesseract::RIL_SYMBOL));
}

}  // namespace

struct Engine::Api {
  explicit Api(const TesseractLibrary& l) : library(l), handle(l.create()) {}
  ~Api() { library.destroy(handle); }
  Api(const Api&) = delete;
  Api& operator=(const Api&) = delete;

  const TesseractLibrary& library;
  TessBaseAPI* handle;
};

Engine::Engine(std::unique_ptr<Api> api) : api_(std::move(api)) {}
Engine::~Engine() = default;

platform::Result<std::shared_ptr<Engine>> Engine::load(const EngineKey& key,
                                                       const std::filesystem::path& folder) {
  const TesseractLibrary* const library = TesseractLibrary::shared();
  if (!library) return platform::Error{"The recognition engine is not installed"};
  const SingleThreaded single;
  std::string languages;
  for (const std::string& name : key.names) languages += (languages.empty() ? "" : "+") + name;
  // Light text on dark is turned over before it sees it.
  std::vector<const char*> variables{"tessedit_do_invert"};
  std::vector<const char*> values{"0"};
  if (!key.dictionaries)
    for (const char* name : {"load_system_dawg", "load_freq_dawg"}) {
      variables.push_back(name);
      values.push_back("0");
    }
  auto api = std::make_unique<Api>(*library);
  // The C interface takes the lists as changeable, and changes neither.
  if (library->init(api->handle, folder.c_str(), languages.c_str(), tesseract::OEM_LSTM_ONLY, nullptr, 0,
                    const_cast<char**>(variables.data()), const_cast<char**>(values.data()), variables.size(),
                    /*set_only_non_debug_params=*/0) != 0)
    return platform::Error{"The recognition engine can't load the trained data " + languages};
  library->setPageSegMode(api->handle, tesseract::PSM_SINGLE_LINE);
  return std::shared_ptr<Engine>(new Engine(std::move(api)));
}

LineReading Engine::readLine(const GreyBitmap& image) {
  const SingleThreaded single;
  const auto pix = pixOf(image);
  const TesseractLibrary& library = api_->library;
  library.setImage(api_->handle, pix.get());
  LineReading reading;
  if (library.recognize(api_->handle, nullptr) == 0) {
    ReadingIterator iterator(library, api_->handle);
    if (iterator && !iterator.text(tesseract::RIL_SYMBOL).empty()) {
      reading.confidence = iterator.confidence(tesseract::RIL_TEXTLINE);
      do appendLine(iterator, reading);
      while (iterator.next(tesseract::RIL_TEXTLINE));
    }
  }
  library.clear(api_->handle);
  return reading;
}

}  // namespace lumiscan::desktop
