#include "platform/linux/LoginSession.h"

#include <cstdlib>
#include <cstring>
#include <string_view>

namespace lumiscan::desktop {

namespace {

constexpr const char* service = "org.freedesktop.login1";
constexpr const char* managerPath = "/org/freedesktop/login1";
constexpr const char* managerInterface = "org.freedesktop.login1.Manager";
constexpr const char* ownSessionPath = "/org/freedesktop/login1/session/auto";
constexpr const char* sessionInterface = "org.freedesktop.login1.Session";
constexpr const char* propertiesInterface = "org.freedesktop.DBus.Properties";

/// Why a call has failed; null when it hasn't.
const char* failure(sd_bus_message* answer) {
  const sd_bus_error* const error = sd_bus_message_get_error(answer);
  if (!error) return nullptr;
  return error->message ? error->message : error->name;
}

/// A Boolean property out of a dictionary of properties at which `message` stands; false when it isn't there.
bool property(sd_bus_message* message, std::string_view wanted) {
  int value = 0;
  if (sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, "{sv}") < 0) return false;
  while (sd_bus_message_enter_container(message, SD_BUS_TYPE_DICT_ENTRY, "sv") > 0) {
    const char* name = nullptr;
    if (sd_bus_message_read(message, "s", &name) < 0) return false;
    if (name == wanted) return sd_bus_message_read(message, "v", "b", &value) >= 0 && value != 0;
    if (sd_bus_message_skip(message, "v") < 0 || sd_bus_message_exit_container(message) < 0) return false;
  }
  return false;
}

}  // namespace

LoginSession::LoginSession(platform::NotificationCenter& center) : center_(center) {
  sd_bus* bus = nullptr;
  const int status = sd_bus_open_system(&bus);
  if (status < 0) {
    logNothingToFollow(std::strerror(-status));
    return;
  }
  bus_.emplace(bus);
  bus_->ended = [this](int reason) { logNothingToFollow(std::strerror(reason)); };
  sd_bus_match_signal_async(bus, nullptr, service, managerPath, managerInterface, "PrepareForSleep",
                            preparesForSleep, nullptr, this);
  if (const char* identifier = std::getenv("XDG_SESSION_ID"); identifier && *identifier)
    askForSession(identifier);
  else
    askForOwnSession();
  bus_->serve();
}

void LoginSession::askForSession(const char* identifier) {
  sd_bus_call_method_async(bus_->get(), nullptr, service, managerPath, managerInterface, "GetSession",
                           sessionCame, this, "s", identifier);
}

void LoginSession::askForOwnSession() {
  askedForOwn_ = true;
  sd_bus_call_method_async(bus_->get(), nullptr, service, ownSessionPath, propertiesInterface, "Get",
                           sessionIDCame, this, "ss", sessionInterface, "Id");
}

int LoginSession::sessionIDCame(sd_bus_message* message, void* self, sd_bus_error*) {
  auto& session = *static_cast<LoginSession*>(self);
  const char* identifier = nullptr;
  if (const char* why = failure(message))
    session.logNothingToFollow(why);
  else if (sd_bus_message_read(message, "v", "s", &identifier) >= 0)
    session.askForSession(identifier);
  return 0;
}

int LoginSession::sessionCame(sd_bus_message* message, void* self, sd_bus_error*) {
  auto& session = *static_cast<LoginSession*>(self);
  const char* path = nullptr;
  if (const char* why = failure(message)) {
    // The environment's session may be one that has ended, from which a service manager was started.
    if (session.askedForOwn_)
      session.logNothingToFollow(why);
    else
      session.askForOwnSession();
  } else if (sd_bus_message_read(message, "o", &path) >= 0) {
    sd_bus_match_signal_async(session.bus_->get(), nullptr, service, path, propertiesInterface,
                              "PropertiesChanged", propertiesChanged, nullptr, self);
  }
  return 0;
}

int LoginSession::preparesForSleep(sd_bus_message* message, void* self, sd_bus_error*) {
  int begins = 1;
  if (sd_bus_message_read(message, "b", &begins) >= 0 && !begins)
    static_cast<LoginSession*>(self)->center_.post(platform::screensDidWake);
  return 0;
}

int LoginSession::propertiesChanged(sd_bus_message* message, void* self, sd_bus_error*) {
  const char* interface = nullptr;
  if (sd_bus_message_read(message, "s", &interface) >= 0 && interface == std::string_view(sessionInterface) &&
      property(message, "Active"))
    static_cast<LoginSession*>(self)->center_.post(platform::sessionDidBecomeActive);
  return 0;
}

void LoginSession::logNothingToFollow(const char* reason) {
  if (!logged_) logger_.info(std::string("no login session to follow: ") + reason);
  logged_ = true;
}

}  // namespace lumiscan::desktop
