#pragma once

#include <libspeechd.h>

#include <optional>
#include <string>
#include <vector>

namespace lumiscan::desktop {

/// The languages of the voices that the speech server offers, each once, as it writes them. Waits for the
/// server. Empty when it can't be asked.
///
/// A server on this machine is asked past the client library, which spends a second on the more than ten
/// thousand voices that an engine may have; any other through `connection`.
std::vector<std::string> offeredSpeechLanguages(SPDConnection* connection);

/// The best of the offered languages for a BCP 47 identifier: the very same, or else the same language in any
/// region. Nothing when there is none. Letter case doesn't matter.
std::optional<std::string> bestSpeechLanguage(const std::vector<std::string>& offered,
                                              const std::string& identifier);

}  // namespace lumiscan::desktop
