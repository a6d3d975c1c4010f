#include "platform/linux/recognition/Voting.h"

#include <algorithm>
#include <map>
#include <span>
#include <string>
#include <utility>

#include "platform/linux/recognition/Alignment.h"
#include "platform/linux/recognition/CodePoints.h"

namespace lumiscan::desktop {

namespace {

/// A reading with where in it each number of clusters ends.
struct Voter {
  std::vector<Symbol> symbols;
  std::map<std::size_t, std::size_t> ends;  // Symbols read from so many clusters, where none goes on.
};

Voter voterOf(std::vector<Symbol> symbols, LineShapes& shapes) {
  Voter voter{std::move(symbols), {}};
  for (const Match& match : align(shapes, voter.symbols))
    voter.ends[match.firstCluster + match.clusterCount] = match.firstSymbol + match.symbolCount;
  return voter;
}

std::string textOf(std::span<const Symbol> symbols) {
  std::string text;
  for (const Symbol& symbol : symbols) text += symbol.text;
  return text;
}

/// How much a reading of some ink counts, from 0.5 to 1.
double weightOf(std::span<const Symbol> symbols) {
  if (symbols.empty()) return 0.5;
  double sum = 0;
  for (const Symbol& symbol : symbols) sum += symbol.confidence;
  return 0.5 + sum / 200 / static_cast<double>(symbols.size());
}

/// The readings of the same ink, of which one is elected.
class Election {
 public:
  void add(std::span<const Symbol> symbols) {
    ballots_.push_back(symbols);
    const double weight = weightOf(symbols);
    votes_[textOf(symbols)] += weight;
    if (!symbols.empty()) spaces_ += symbols.front().spaceBefore ? weight : -weight;
  }

  /// The shape of the ink votes too, where it is for something that was read.
  void addShape(const Classification& shape) {
    const auto single = std::count_if(ballots_.begin(), ballots_.end(),
                                      [](std::span<const Symbol> ballot) { return ballot.size() == 1; });
    if (2 * static_cast<std::size_t>(single) < ballots_.size()) return;  // Of letters that touch.
    const auto candidate = votes_.find(utf8Of(shape.best()));
    constexpr double weight = 1.5;
    if (candidate != votes_.end()) candidate->second += weight * static_cast<double>(shape.bestProbability());
  }

  /// Appends the surest reading of the text that has most votes.
  void elect(std::vector<Symbol>& symbols) const {
    const auto most = std::max_element(votes_.begin(), votes_.end(),
                                       [](const auto& a, const auto& b) { return a.second < b.second; });
    std::span<const Symbol> elected;
    for (const std::span<const Symbol> ballot : ballots_)
      if (textOf(ballot) == most->first && (elected.empty() || weightOf(ballot) > weightOf(elected)))
        elected = ballot;
    if (elected.empty()) return;
    const auto agree = std::count_if(ballots_.begin(), ballots_.end(), [&](std::span<const Symbol> ballot) {
      return textOf(ballot) == most->first;
    });
    const std::size_t first = symbols.size();
    symbols.insert(symbols.end(), elected.begin(), elected.end());
    symbols[first].spaceBefore = spaces_ > 0;
    for (std::size_t i = first; i < symbols.size(); ++i)
      symbols[i].confidence *= static_cast<double>(agree) / static_cast<double>(ballots_.size());
  }

 private:
  std::vector<std::span<const Symbol>> ballots_;
  std::map<std::string, double> votes_;
  double spaces_ = 0;
};

}  // namespace

std::vector<Symbol> vote(std::vector<std::vector<Symbol>> readings, LineShapes& shapes) {
  const auto [shortest, longest] = std::minmax_element(
      readings.begin(), readings.end(), [](const auto& a, const auto& b) { return a.size() < b.size(); });
  const std::size_t least = shortest->size();
  const std::size_t most = longest->size();
  const std::vector<Symbol> surest =
      *std::max_element(readings.begin(), readings.end(),
                        [](const auto& a, const auto& b) { return weightOf(a) < weightOf(b); });
  std::vector<Voter> voters;
  for (std::vector<Symbol>& reading : readings) voters.push_back(voterOf(std::move(reading), shapes));
  std::vector<Symbol> elected;
  std::vector<std::size_t> begins(voters.size());
  std::size_t cluster = 0;
  for (std::size_t end = 0; end <= shapes.clusters().size(); ++end) {
    const auto endsHere = [&](const Voter& voter) { return voter.ends.contains(end); };
    if (!std::all_of(voters.begin(), voters.end(), endsHere)) continue;
    Election election;
    for (std::size_t i = 0; i < voters.size(); ++i) {
      const std::size_t begin = std::exchange(begins[i], voters[i].ends.at(end));
      election.add(std::span(voters[i].symbols).subspan(begin, begins[i] - begin));
    }
    if (end == cluster + 1) election.addShape(shapes.classification(cluster));
    election.elect(elected);
    cluster = end;
  }
  // Where letters touch, a reading may be matched to the ink one letter off: then what others read there as
  // well comes twice, or not at all.
  return elected.size() < least || elected.size() > most ? surest : elected;
}

}  // namespace lumiscan::desktop
