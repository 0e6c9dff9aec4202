#pragma once

namespace ZuPlatform {

/**
 * True when @p address lies in a read-only segment of a loaded program or library, where string
 * literals live: the text there cannot change while that object stays loaded. False for stack,
 * heap and writable data, and wherever the loaded segments cannot be listed (non-ELF systems).
 * Walks the segment tables: meant for rare calls whose answer is kept.
 */
bool isReadOnlyData(const void *address);

} // namespace ZuPlatform
