#pragma once

#include <QThreadPool>

namespace lumiscan::desktop {

/// Threads that are started before anything needs them and stay. The toolkit waits for ever for one that
/// can't be started, where processes or memory are limited; those that stand can be relied on. Main thread
/// only.

/// Whether so many threads can be started beside those that run. They end again.
bool threadsCanStart(int count);

/// Starts all threads of a pool that has none yet, and keeps them until the pool is emptied or destroyed.
void startAllThreads(QThreadPool& pool);

}  // namespace lumiscan::desktop
