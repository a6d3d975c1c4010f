#include "platform/linux/recognition/FreeMemory.h"

#include <malloc.h>

namespace lumiscan::desktop {

void keepFreeMemoryTogether() {
  // Pictures have pages of their own.
  constexpr int pictureBytes = 1 << 20;
  mallopt(M_MMAP_THRESHOLD, pictureBytes);
  // All threads share one heap. Of any further one the C library gives back what is free between blocks but
  // not the end, and what is loaded at rest would fill the gaps of one only.
  mallopt(M_ARENA_MAX, 1);
}

void giveFreeMemoryBack() { malloc_trim(0); }

}  // namespace lumiscan::desktop
