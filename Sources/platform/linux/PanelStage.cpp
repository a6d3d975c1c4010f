#include "platform/linux/PanelStage.h"

#include <xcb/xfixes.h>

#include <QCoreApplication>
#include <chrono>
#include <cstring>
#include <thread>

#include "platform/linux/CallOnThread.h"
#include "platform/linux/PanelPeer.h"
#include "platform/linux/x11/Connection.h"

namespace lumiscan::desktop {

namespace {

/// How long the main thread may be busy before a picture is taken all the same.
constexpr std::chrono::milliseconds concealPatience(400);
/// How long a compositor may take to paint the screen without the panels. What is behind one may have its
/// colour: then the time itself must do.
constexpr std::chrono::milliseconds longestRepaint(100);
constexpr std::chrono::milliseconds betweenLooks(2);

}  // namespace

PanelStage::PanelStage(xcb_connection_t* connection, const x11::X11Displays& displays)
    : connection_(connection), displays_(displays) {
  // The extension wants to be asked for its version before it is used.
  const x11::Reply<xcb_xfixes_query_version_reply_t> version(
      xcb_xfixes_query_version_reply(connection, xcb_xfixes_query_version(connection, 2, 0), nullptr));
  QCoreApplication::instance()->installNativeEventFilter(this);
}

PanelStage::~PanelStage() {
  if (auto* application = QCoreApplication::instance()) application->removeNativeEventFilter(this);
}

void PanelStage::shows(PanelPeer& panel) {
  panels_.push_back(&panel);
  ++visibleCount_;
}

void PanelStage::hides(PanelPeer& panel) { visibleCount_ -= static_cast<int>(std::erase(panels_, &panel)); }

std::vector<PanelStage::Sample> PanelStage::concealAll() {
  std::vector<Sample> samples;
  for (PanelPeer* const panel : panels_) {
    const QPoint pixel = panel->groundPixel();
    const auto color = panel->groundColor() ? panel->groundColor() : colorAt(pixel);
    if (color) samples.push_back({pixel, *color});
    panel->conceal();
  }
  // An answer means that the server has painted what came before, also for other connections.
  const x11::Reply<xcb_get_input_focus_reply_t> answer(
      xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
  return samples;
}

std::optional<std::uint32_t> PanelStage::colorAt(QPoint pixel) const {
  const xcb_window_t root = x11::screenOf(connection_).root;
  const auto request =
      xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, root, static_cast<std::int16_t>(pixel.x()),
                    static_cast<std::int16_t>(pixel.y()), 1, 1, ~0U);
  const x11::Reply<xcb_get_image_reply_t> image(xcb_get_image_reply(connection_, request, nullptr));
  std::uint32_t color = 0;
  if (!image || xcb_get_image_data_length(image.get()) < static_cast<int>(sizeof color)) return std::nullopt;
  std::memcpy(&color, xcb_get_image_data(image.get()), sizeof color);
  return color & 0xFFFFFF;
}

void PanelStage::concealAndWait() {
  if (visibleCount_ == 0) return;
  const auto samples = callOnThread(
      context_, [this] { return concealAll(); }, concealPatience);
  if (!samples || !x11::hasCompositor(connection_)) return;
  const auto deadline = std::chrono::steady_clock::now() + longestRepaint;
  for (const Sample& sample : *samples)
    while (colorAt(sample.pixel) == sample.color && std::chrono::steady_clock::now() < deadline)
      std::this_thread::sleep_for(betweenLooks);
}

bool PanelStage::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
  if (panels_.empty() || eventType != "xcb_generic_event_t") return false;
  const auto* event = static_cast<const xcb_generic_event_t*>(message);
  const auto kind = event->response_type & 0x7F;
  if (kind != XCB_EXPOSE && kind != XCB_VISIBILITY_NOTIFY) return false;
  // Both events tell their window at the same place.
  const xcb_window_t window = reinterpret_cast<const xcb_expose_event_t*>(event)->window;
  for (PanelPeer* const panel : panels_) {
    if (panel->windowID() != window) continue;
    if (kind == XCB_EXPOSE)
      panel->paint();
    else if (reinterpret_cast<const xcb_visibility_notify_event_t*>(event)->state !=
             XCB_VISIBILITY_UNOBSCURED)
      panel->covered();
  }
  return false;
}

std::optional<platform::Image> PanelFreeDisplays::createImage(platform::DisplayID display) {
  if (stage_) stage_->concealAndWait();
  return X11Displays::createImage(display);
}

}  // namespace lumiscan::desktop
