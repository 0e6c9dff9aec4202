#pragma once

#include <QString>

namespace ZuPlatform {

/**
 * Hands @p text to the debugger: OutputDebugStringW on Windows; elsewhere standard error while
 * a debugger is attached (isDebuggerAttached()), nothing otherwise.
 */
void outputDebugString(const QString &text);

/// True when a debugger traces this process (Linux: non-zero TracerPid); false where unknown.
bool isDebuggerAttached();

} // namespace ZuPlatform
