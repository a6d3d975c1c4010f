#include "output/HUDContentView.h"

#include <algorithm>
#include <cmath>

#include "platform/Typesetter.h"

namespace lumiscan {

namespace {

using platform::Font;
using platform::FontWeight;
using platform::Typesetter;

// In points.
constexpr double maximumWidth = 410;
constexpr double horizontalPadding = 14;
constexpr double verticalPadding = 10;
constexpr double rowSpacing = 4;
constexpr double iconSide = 16;
/// Between the parts of the first row: the symbol, the title, and what room is left.
constexpr double partSpacing = 8;
constexpr double titleLeft = horizontalPadding + iconSide + partSpacing;
constexpr double cornerRadius = 12;
constexpr double borderWidth = 1;
constexpr double borderOpacity = 0.08;

constexpr Font titleFont{Font::Design::system, 13, FontWeight::semibold};
constexpr Font previewFont{Font::Design::system, 12, FontWeight::regular};
constexpr platform::Color errorColor{0.95, 0.5, 0.25};

/// A text of any length with its start and end, enough of them that a line is full of them.
std::string shortened(const std::string& text) {
  constexpr std::size_t kept = 1024;  // Bytes at either end.
  if (text.size() <= 2 * kept) return text;
  const auto continues = [&text](std::size_t i) {
    return (static_cast<unsigned char>(text[i]) & 0xC0) == 0x80;
  };
  std::size_t startEnd = kept;
  while (startEnd > 0 && continues(startEnd)) --startEnd;
  std::size_t endStart = text.size() - kept;
  while (endStart < text.size() && continues(endStart)) ++endStart;
  return text.substr(0, startEnd) + "…" + text.substr(endStart);
}

/// Line breaks, tabs and other control characters as spaces: none of them belongs in a line.
std::string asOneLine(std::string text) {
  std::ranges::replace_if(
      text, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, ' ');
  return text;
}

double widthOf(const std::string& text, const Font& font) {
  return std::ceil(Typesetter::shared().sizeOf(text, font).width);
}

double lineHeight(const Font& font) { return std::ceil(Typesetter::shared().sizeOf("", font).height); }

}  // namespace

HUDContentView::HUDContentView(const std::string& title, const std::optional<std::string>& preview,
                               bool isError, const std::optional<std::string>& icon)
    : View({}),
      appearance_(platform::Appearance::current()),
      icon_(icon.value_or(isError ? "exclamationmark.triangle.fill" : "checkmark.circle.fill")),
      iconColor_(isError ? errorColor : appearance_.systemGreen()) {
  constexpr double contentWidth = maximumWidth - 2 * horizontalPadding;
  auto& typesetter = Typesetter::shared();
  titleLines_ = typesetter.lines(title, titleFont, contentWidth - iconSide - 2 * partSpacing);
  if (preview)
    preview_ = typesetter.truncatedInMiddle(asOneLine(shortened(*preview)), previewFont, contentWidth);
}

double HUDContentView::titleHeight() const {
  return static_cast<double>(titleLines_.size()) * lineHeight(titleFont);
}

double HUDContentView::rowHeight() const { return std::max(iconSide, titleHeight()); }

platform::Size HUDContentView::fittingSize() const {
  double width = 0;
  for (const std::string& line : titleLines_) width = std::max(width, widthOf(line, titleFont));
  width += iconSide + 2 * partSpacing;
  double height = rowHeight();
  if (!preview_.empty()) {
    width = std::max(width, widthOf(preview_, previewFont));
    height += rowSpacing + lineHeight(previewFont);
  }
  return {std::min(width + 2 * horizontalPadding, maximumWidth), height + 2 * verticalPadding};
}

void HUDContentView::draw(platform::GraphicsContext& context, const platform::Rect&) {
  const platform::Rect all = bounds();
  platform::BezierPath ground = platform::BezierPath::roundedRect(all, cornerRadius);
  ground.roundedRects.front().continuous = true;
  context.fill(ground, appearance_.panelMaterial());

  const double row = rowHeight();
  const double rowBottom = all.maxY() - verticalPadding - row;
  context.drawSymbol(icon_, {{horizontalPadding, rowBottom + (row - iconSide) / 2}, {iconSide, iconSide}},
                     iconColor_);
  double lineBottom = rowBottom + (row + titleHeight()) / 2;
  for (const std::string& line : titleLines_) {
    lineBottom -= lineHeight(titleFont);
    context.draw(line, {titleLeft, lineBottom}, {titleFont, appearance_.labelColor()});
  }
  if (!preview_.empty())
    context.draw(preview_, {horizontalPadding, verticalPadding},
                 {previewFont, appearance_.secondaryLabelColor()});

  platform::BezierPath border = platform::BezierPath::roundedRect(
      insetBy(all, borderWidth / 2, borderWidth / 2), cornerRadius - borderWidth / 2);
  border.roundedRects.front().continuous = true;
  border.lineWidth = borderWidth;
  context.stroke(border, appearance_.labelColor().withAlpha(borderOpacity));
}

}  // namespace lumiscan
