#pragma once

namespace torvo {

/// Gives large blocks back to the system whenever they are freed. To be called once, when the
/// program starts: otherwise glibc keeps every block up to the size of the largest one that was
/// ever freed.
void alwaysReturnLargeBlocks();

/// Gives what was freed back to the system, as far as the allocator can. Takes milliseconds after a
/// large library was scanned, so it belongs into the background.
void returnFreedMemory();

} // namespace torvo
