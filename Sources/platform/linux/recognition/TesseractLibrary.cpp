#include "platform/linux/recognition/TesseractLibrary.h"

#include <dlfcn.h>

#include <memory>
#include <mutex>

namespace lumiscan::desktop {

const TesseractLibrary* TesseractLibrary::shared() {
  static std::mutex mutex;
  static TesseractLibrary library;
  static bool loaded = false;
  const std::lock_guard lock(mutex);
  // Tried again where it failed, as where memory was short.
  loaded = loaded || library.load();
  return loaded ? &library : nullptr;
}

bool TesseractLibrary::load() {
  // Never closed: engines may be at work until the process ends.
  void* const handle = dlopen(TESSERACT_LIBRARY, RTLD_LAZY | RTLD_LOCAL);
  if (!handle) return false;
  bool complete = true;
  const auto find = [&]<typename Function>(Function& function, const char* name) {
    function = reinterpret_cast<Function>(dlsym(handle, name));
    complete = complete && function;
  };
  find(create, "TessBaseAPICreate");
  find(destroy, "TessBaseAPIDelete");
  find(setVariable, "TessBaseAPISetVariable");
  find(init, "TessBaseAPIInit4");
  find(setPageSegMode, "TessBaseAPISetPageSegMode");
  find(setImage, "TessBaseAPISetImage2");
  find(recognize, "TessBaseAPIRecognize");
  find(clear, "TessBaseAPIClear");
  find(getIterator, "TessBaseAPIGetIterator");
  find(deleteIterator, "TessResultIteratorDelete");
  find(next, "TessResultIteratorNext");
  find(getUTF8Text, "TessResultIteratorGetUTF8Text");
  find(confidence, "TessResultIteratorConfidence");
  find(pageIterator, "TessResultIteratorGetPageIteratorConst");
  find(boundingBox, "TessPageIteratorBoundingBox");
  find(isAtFinalElement, "TessPageIteratorIsAtFinalElement");
  find(deleteText, "TessDeleteText");
  if (complete) sendMessagesNowhere();
  return complete;
}

void TesseractLibrary::sendMessagesNowhere() const {
  const std::unique_ptr<TessBaseAPI, decltype(destroy)> any(create(), destroy);
  setVariable(any.get(), "debug_file", "/dev/null");
}

}  // namespace lumiscan::desktop
