#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "output/CaptureRecord.h"

namespace lumiscan {

/// The latest captures, newest first, kept in the preferences. Main thread only. Each change is stored before
/// the call returns and announced by `historyChanged`.
class HistoryStore {
 public:
  /// The preference: the records' JSON as data.
  static constexpr std::string_view key = "captureHistory";
  /// How many records an addition leaves. What is stored may hold more.
  static constexpr std::size_t capacity = 20;

  static HistoryStore& shared();
  /// Loads what is stored; what can't be read counts as empty, and stays until the next change.
  HistoryStore();

  const std::vector<CaptureRecord>& items() const { return items_; }
  /// Puts the record first, and drops the oldest beyond the capacity.
  void add(CaptureRecord record);
  void clear();

 private:
  void save() const;

  std::vector<CaptureRecord> items_;
};

}  // namespace lumiscan
