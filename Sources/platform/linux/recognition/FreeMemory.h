#pragma once

namespace lumiscan::desktop {

/// Reading takes much memory for a moment. These two see that the system has it back afterwards.

/// Arranges the heap so that what is freed can be given back. Before there are other threads.
void keepFreeMemoryTogether();

/// Gives the pages of the heap on which nothing lies back to the system. Takes some 10 milliseconds after
/// many pictures, in which the heap serves no other thread. Any thread.
void giveFreeMemoryBack();

}  // namespace lumiscan::desktop
