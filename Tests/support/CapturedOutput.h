#pragma once

#include <iostream>
#include <sstream>
#include <string>

namespace lumiscan::testing {

/// Takes what is written to `std::cout` as long as it lives.
class CapturedOutput {
 public:
  CapturedOutput() : original_(std::cout.rdbuf(captured_.rdbuf())) {}
  ~CapturedOutput() { std::cout.rdbuf(original_); }
  CapturedOutput(const CapturedOutput&) = delete;
  CapturedOutput& operator=(const CapturedOutput&) = delete;

  std::string text() const { return captured_.str(); }

 private:
  std::ostringstream captured_;
  std::streambuf* original_;
};

}  // namespace lumiscan::testing
