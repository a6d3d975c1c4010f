#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "platform/linux/recognition/LineDraft.h"
#include "platform/linux/recognition/TextLayout.h"

namespace lumiscan::desktop {

/// What engines are needed to read all the languages, in order of preference: for each the names of its
/// trained data. `hasEnglish` says whether English is installed, chosen or not: it reads the Latin words
/// within lines of the Cyrillic script, whose models know none.
std::vector<std::vector<std::string>> engineLanguages(std::vector<std::string> names, bool hasEnglish);

/// Whether any of the trained data is of Chinese, Japanese or Korean.
bool hasWideCharacters(const std::vector<std::string>& names);

/// Whether any of the trained data is of a language in the Cyrillic script.
bool hasCyrillicLetters(const std::vector<std::string>& names);

/// A line to be read, and the engine to read it with, by their indices.
struct Question {
  std::size_t engine, line;
};

/// Reads all that is asked; the answers are in the order of the questions.
using ReadAll = std::function<std::vector<LineDraft>(const std::vector<Question>&)>;

/// Reads each line with the engine that is surest of it. With many engines the longest lines
/// tell which the picture needs, and the others are asked only about lines of which those aren't sure.
std::vector<LineDraft> readInBestLanguage(const std::vector<TextLine>& lines,
                                          const std::vector<std::vector<std::string>>& engines,
                                          const ReadAll& read);

}  // namespace lumiscan::desktop
