#pragma once

#include <zucore/zucore_export.h>

#include <QString>

namespace ZuPlatform {

/**
 * Hands @p text to the debugger: OutputDebugStringW on Windows; elsewhere standard error while
 * a debugger is attached (isDebuggerAttached()), nothing otherwise.
 */
ZUCORE_EXPORT void outputDebugString(const QString &text);

/// True when a debugger traces this process (Linux: non-zero TracerPid); false where unknown.
ZUCORE_EXPORT bool isDebuggerAttached();

} // namespace ZuPlatform
