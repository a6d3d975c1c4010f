#pragma once

#include <tesseract/capi.h>

namespace lumiscan::desktop {

/// The functions of the installed Tesseract. It is loaded when it is first needed, since it brings some fifty
/// libraries along, for network protocols and archives, which a program that waits need not hold in memory.
struct TesseractLibrary {
  /// Null when it isn't installed. Loading it takes some tens of milliseconds. Any thread.
  static const TesseractLibrary* shared();

  decltype(&TessBaseAPICreate) create = nullptr;
  decltype(&TessBaseAPIDelete) destroy = nullptr;
  decltype(&TessBaseAPISetVariable) setVariable = nullptr;
  decltype(&TessBaseAPIInit4) init = nullptr;
  decltype(&TessBaseAPISetPageSegMode) setPageSegMode = nullptr;
  decltype(&TessBaseAPISetImage2) setImage = nullptr;
  decltype(&TessBaseAPIRecognize) recognize = nullptr;
  decltype(&TessBaseAPIClear) clear = nullptr;
  decltype(&TessBaseAPIGetIterator) getIterator = nullptr;
  decltype(&TessResultIteratorDelete) deleteIterator = nullptr;
  decltype(&TessResultIteratorNext) next = nullptr;
  decltype(&TessResultIteratorGetUTF8Text) getUTF8Text = nullptr;
  decltype(&TessResultIteratorConfidence) confidence = nullptr;
  decltype(&TessResultIteratorGetPageIteratorConst) pageIterator = nullptr;
  decltype(&TessPageIteratorBoundingBox) boundingBox = nullptr;
  decltype(&TessPageIteratorIsAtFinalElement) isAtFinalElement = nullptr;
  decltype(&TessDeleteText) deleteText = nullptr;

 private:
  /// Whether all functions are there.
  bool load();
  /// They would go to standard error. Where they go is one variable for all engines, so it is set before
  /// there are any, which read it on their threads.
  void sendMessagesNowhere() const;
};

}  // namespace lumiscan::desktop
