#pragma once

#include <xcb/xcb.h>

#include <QGuiApplication>

namespace lumiscan::desktop {

/// The toolkit's connection to the X server, whose events its event loop brings. Main thread only, while
/// there is an application object, which owns it.
inline xcb_connection_t* toolkitConnection() {
  return qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
}

}  // namespace lumiscan::desktop
