#include "hotkeys/KeyNames.h"

#include <unordered_map>

namespace lumiscan {

std::optional<std::string_view> keyCodeName(std::uint32_t keyCode) {
  static const std::unordered_map<std::uint32_t, std::string_view> keyCodeNames = {
      {0, "A"},      {1, "S"},    {2, "D"},  {3, "F"},  {4, "H"},  {5, "G"},  {6, "Z"},  {7, "X"},
      {8, "C"},      {9, "V"},    {11, "B"}, {12, "Q"}, {13, "W"}, {14, "E"}, {15, "R"}, {16, "Y"},
      {17, "T"},     {18, "1"},   {19, "2"}, {20, "3"}, {21, "4"}, {22, "6"}, {23, "5"}, {24, "="},
      {25, "9"},     {26, "7"},   {27, "-"}, {28, "8"}, {29, "0"}, {30, "]"}, {31, "O"}, {32, "U"},
      {33, "["},     {34, "I"},   {35, "P"}, {36, "↩"}, {37, "L"}, {38, "J"}, {39, "'"}, {40, "K"},
      {41, ";"},     {42, "\\"},  {43, ","}, {44, "/"}, {45, "N"}, {46, "M"}, {47, "."}, {48, "⇥"},
      {49, "Space"}, {122, "F1"},
  };
  const auto entry = keyCodeNames.find(keyCode);
  if (entry == keyCodeNames.end()) return std::nullopt;
  return entry->second;
}

}  // namespace lumiscan
