#pragma once

namespace lumiscan::desktop {

/// Keeps this process, and what it starts, off a session bus that is there but hangs: the toolkit would wait
/// for it, half a minute at a time, before the first hotkey is registered. Logs that. Takes a second at the
/// most, and a few milliseconds where the bus answers. Once, before the toolkit is made; main thread.
void avoidHangingSessionBus();

}  // namespace lumiscan::desktop
