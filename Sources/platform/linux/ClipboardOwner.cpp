#include "platform/linux/ClipboardOwner.h"

#include <poll.h>

#include <QString>
#include <algorithm>
#include <string_view>
#include <utility>

namespace lumiscan::desktop {

namespace {

constexpr std::size_t pieceSize = 1U << 18;
/// How long a receiver may take for one piece.
constexpr std::chrono::seconds receiverPatience(30);
/// How long the end of the program waits for the clipboard manager, and for each piece that it takes.
constexpr std::chrono::milliseconds managerPatience(1000);

/// For programs that know no other form: characters beyond ISO 8859-1 as question marks.
std::string latin1(const std::string& utf8) { return QString::fromStdString(utf8).toLatin1().toStdString(); }

}  // namespace

ClipboardOwner::ClipboardOwner() {
  patience_.setSingleShot(true);
  patience_.setInterval(receiverPatience);
  QObject::connect(&patience_, &QTimer::timeout, &patience_, [this] {
    endTransfers([](const IncrementalTransfer&) { return true; });
    xcb_flush(x_);
  });
  connect();
}

void ClipboardOwner::connect() {
  notifier_ = nullptr;
  events_.clear();
  transfers_.clear();
  patience_.stop();
  x_ = nullptr;
  connection_ = x11::Connection::open();
  if (!connection_) return;
  x_ = connection_->get();
  constexpr std::string_view names[atomCount] = {"CLIPBOARD",    "TARGETS",
                                                 "TIMESTAMP",    "MULTIPLE",
                                                 "SAVE_TARGETS", "CLIPBOARD_MANAGER",
                                                 "UTF8_STRING",  "text/plain;charset=utf-8",
                                                 "text/plain",   "TEXT",
                                                 "INCR",         "ATOM_PAIR",
                                                 "NULL",         "LUMISCAN_SCRATCH"};
  for (int i = 0; i < atomCount; ++i) atoms_[i] = x11::atom(x_, names[i]);
  window_ = xcb_generate_id(x_);
  xcb_create_window_value_list_t values{};
  values.event_mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
  xcb_create_window_aux(x_, XCB_COPY_FROM_PARENT, window_, connection_->root(), 0, 0, 1, 1, 0,
                        XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &values);
  xcb_flush(x_);
  notifier_ = std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(x_), QSocketNotifier::Read);
  QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { handleEvents(); });
}

void ClipboardOwner::reconnect() {
  if (x_ && !xcb_connection_has_error(x_)) return;  // A text was offered meanwhile.
  const xcb_window_t before = window_;
  connect();
  if (!x_ || !text_) return;
  // The server may not have noticed yet that the connection before has ended.
  const xcb_window_t owner = x11::selectionOwner(x_, atoms_[atomClipboard]);
  if (owner == XCB_WINDOW_NONE || owner == before)
    offer(*text_);
  else
    text_ = nullptr;
}

xcb_timestamp_t ClipboardOwner::serverTime() {
  // A change of a property is an event, and each event tells the time.
  xcb_change_property(x_, XCB_PROP_MODE_APPEND, window_, atoms_[atomScratch], XCB_ATOM_STRING, 8, 0, nullptr);
  xcb_flush(x_);
  while (x11::Reply<xcb_generic_event_t> event{xcb_wait_for_event(x_)}) {
    if ((event->response_type & 0x7F) == XCB_PROPERTY_NOTIFY) {
      const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(*event);
      if (change.window == window_ && change.atom == atoms_[atomScratch]) return change.time;
    }
    events_.push_back(std::move(event));
  }
  return XCB_CURRENT_TIME;
}

bool ClipboardOwner::ownsClipboard() { return x11::selectionOwner(x_, atoms_[atomClipboard]) == window_; }

void ClipboardOwner::offer(std::optional<std::string> offered) {
  // A break is noticed only where something is asked for.
  if (!connection_ || !connection_->isAlive()) connect();
  text_ = offered ? std::make_shared<const std::string>(*std::move(offered)) : nullptr;
  if (!x_) return;
  ownedSince_ = serverTime();
  xcb_set_selection_owner(x_, text_ ? window_ : static_cast<xcb_window_t>(XCB_WINDOW_NONE),
                          atoms_[atomClipboard], ownedSince_);
  xcb_flush(x_);
  handleEvents();
}

void ClipboardOwner::handleEvents() {
  const auto take = [this](xcb_generic_event_t* (*next)(xcb_connection_t*)) {
    while (x11::Reply<xcb_generic_event_t> event{next(x_)}) events_.push_back(std::move(event));
  };
  take(xcb_poll_for_event);
  while (!events_.empty()) {
    const auto event = std::move(events_.front());
    events_.pop_front();
    handle(*event);
    // Whatever waits for an answer, or for the server to take what is sent, may bring events that nothing
    // else announces.
    if (events_.empty()) xcb_flush(x_);
    take(xcb_poll_for_queued_event);
  }
  xcb_flush(x_);
  if (!xcb_connection_has_error(x_)) return;
  notifier_->setEnabled(false);
  // Not here, where the notifier may be the caller.
  QMetaObject::invokeMethod(
      &patience_, [this] { reconnect(); }, Qt::QueuedConnection);
}

void ClipboardOwner::handle(const xcb_generic_event_t& event) {
  switch (event.response_type & 0x7F) {
    case XCB_SELECTION_REQUEST:
      answer(reinterpret_cast<const xcb_selection_request_event_t&>(event));
      break;
    case XCB_SELECTION_CLEAR:
      // It may tell of an ownership that has been renewed since, within the same millisecond even.
      if (!ownsClipboard()) text_ = nullptr;
      break;
    case XCB_PROPERTY_NOTIFY:
      receiverTook(reinterpret_cast<const xcb_property_notify_event_t&>(event));
      break;
    case XCB_DESTROY_NOTIFY: {
      const xcb_window_t gone = reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window;
      endTransfers([gone](const IncrementalTransfer& each) { return each.receiver() == gone; });
      break;
    }
    case XCB_SELECTION_NOTIFY:
      managerAnswered_ = true;
      break;
    default:
      break;  // An error tells of a window that has gone.
  }
}

void ClipboardOwner::answer(const xcb_selection_request_event_t& request) {
  // Old programs name no property.
  const xcb_atom_t property = request.property == XCB_ATOM_NONE ? request.target : request.property;
  bool done = false;
  if (text_ && request.selection == atoms_[atomClipboard])
    done = request.target == atoms_[atomMultiple] ? convertMultiple(request.requestor, property)
                                                  : convert(request.requestor, request.target, property);
  xcb_selection_notify_event_t notice{};
  notice.response_type = XCB_SELECTION_NOTIFY;
  notice.time = request.time;
  notice.requestor = request.requestor;
  notice.selection = request.selection;
  notice.target = request.target;
  notice.property = done ? property : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
  char padded[32] = {};
  std::copy_n(reinterpret_cast<const char*>(&notice), sizeof notice, padded);
  xcb_send_event(x_, 0, request.requestor, XCB_EVENT_MASK_NO_EVENT, padded);
}

bool ClipboardOwner::convert(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property) {
  const auto write32 = [&](xcb_atom_t type, std::uint32_t count, const void* values) {
    xcb_change_property(x_, XCB_PROP_MODE_REPLACE, requestor, property, type, 32, count, values);
  };
  if (target == atoms_[atomTargets]) {
    const xcb_atom_t offered[] = {atoms_[atomTargets],     atoms_[atomTimestamp],  atoms_[atomMultiple],
                                  atoms_[atomSaveTargets], atoms_[atomUTF8String], atoms_[atomPlainTextUTF8],
                                  atoms_[atomPlainText],   XCB_ATOM_STRING,        atoms_[atomText]};
    write32(XCB_ATOM_ATOM, std::size(offered), offered);
  } else if (target == atoms_[atomTimestamp]) {
    write32(XCB_ATOM_INTEGER, 1, &ownedSince_);
  } else if (target == atoms_[atomSaveTargets]) {
    write32(atoms_[atomNull], 0, nullptr);
  } else if (target == atoms_[atomUTF8String] || target == atoms_[atomPlainTextUTF8] ||
             target == atoms_[atomPlainText]) {
    writeText(requestor, property, target, text_);
  } else if (target == atoms_[atomText]) {
    writeText(requestor, property, atoms_[atomUTF8String], text_);
  } else if (target == XCB_ATOM_STRING) {
    writeText(requestor, property, XCB_ATOM_STRING, std::make_shared<const std::string>(latin1(*text_)));
  } else {
    return false;
  }
  return true;
}

bool ClipboardOwner::convertMultiple(xcb_window_t requestor, xcb_atom_t property) {
  constexpr std::uint32_t most = 1024;
  const x11::Reply<xcb_get_property_reply_t> wanted(xcb_get_property_reply(
      x_, xcb_get_property(x_, 0, requestor, property, XCB_ATOM_ANY, 0, most), nullptr));
  if (!wanted || wanted->format != 32) return false;
  const auto* first = static_cast<const xcb_atom_t*>(xcb_get_property_value(wanted.get()));
  std::vector<xcb_atom_t> pairs(first, first + xcb_get_property_value_length(wanted.get()) / 4);
  for (std::size_t i = 0; i + 1 < pairs.size(); i += 2)
    if (!convert(requestor, pairs[i], pairs[i + 1])) pairs[i + 1] = XCB_ATOM_NONE;
  xcb_change_property(x_, XCB_PROP_MODE_REPLACE, requestor, property, atoms_[atomPair], 32,
                      static_cast<std::uint32_t>(pairs.size()), pairs.data());
  return true;
}

void ClipboardOwner::writeText(xcb_window_t requestor, xcb_atom_t property, xcb_atom_t type,
                               std::shared_ptr<const std::string> bytes) {
  endTransfers([&](const IncrementalTransfer& each) { return each.isFor(requestor, property); });
  if (bytes->size() <= pieceSize) {
    xcb_change_property(x_, XCB_PROP_MODE_REPLACE, requestor, property, type, 8,
                        static_cast<std::uint32_t>(bytes->size()), bytes->data());
    return;
  }
  listenTo(requestor, true);
  transfers_.emplace_back(x_, requestor, property, type, atoms_[atomIncr], std::move(bytes), pieceSize);
  patience_.start();
}

template <typename Predicate>
void ClipboardOwner::endTransfers(Predicate isOver) {
  std::vector<xcb_window_t> receivers;
  std::erase_if(transfers_, [&](const IncrementalTransfer& each) {
    if (!isOver(each)) return false;
    receivers.push_back(each.receiver());
    return true;
  });
  for (const xcb_window_t receiver : receivers)
    if (std::ranges::find(transfers_, receiver, &IncrementalTransfer::receiver) == transfers_.end())
      listenTo(receiver, false);
  if (transfers_.empty()) patience_.stop();
}

void ClipboardOwner::listenTo(xcb_window_t receiver, bool listen) {
  const std::uint32_t events =
      listen ? XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY : XCB_EVENT_MASK_NO_EVENT;
  xcb_change_window_attributes(x_, receiver, XCB_CW_EVENT_MASK, &events);
}

void ClipboardOwner::receiverTook(const xcb_property_notify_event_t& event) {
  if (event.state != XCB_PROPERTY_DELETE) return;
  const auto transfer = std::ranges::find_if(
      transfers_, [&event](const IncrementalTransfer& each) { return each.isFor(event.window, event.atom); });
  if (transfer == transfers_.end()) return;
  patience_.start();
  if (!transfer->sendNext())
    endTransfers([&event](const IncrementalTransfer& each) { return each.isFor(event.window, event.atom); });
}

void ClipboardOwner::handToManager() {
  if (!x_ || !text_) return;
  if (x11::selectionOwner(x_, atoms_[atomClipboardManager]) == XCB_WINDOW_NONE) return;
  const xcb_atom_t offered[] = {atoms_[atomUTF8String], atoms_[atomPlainTextUTF8], XCB_ATOM_STRING};
  xcb_change_property(x_, XCB_PROP_MODE_REPLACE, window_, atoms_[atomScratch], XCB_ATOM_ATOM, 32,
                      std::size(offered), offered);
  xcb_convert_selection(x_, window_, atoms_[atomClipboardManager], atoms_[atomSaveTargets],
                        atoms_[atomScratch], ownedSince_);
  xcb_flush(x_);
  managerAnswered_ = false;
  pollfd server{xcb_get_file_descriptor(x_), POLLIN, 0};
  // The manager asks for the text meanwhile. Each sign of life gives it the whole time again.
  while (!managerAnswered_ && poll(&server, 1, static_cast<int>(managerPatience.count())) > 0 &&
         !xcb_connection_has_error(x_))
    handleEvents();
}

}  // namespace lumiscan::desktop
