#include "platform/DebugOutput.h"

#include <QFile>

#include <cstdio>

#ifdef Q_OS_WIN
#include <qt_windows.h>
#endif

namespace ZuPlatform {

bool isDebuggerAttached()
{
#ifdef Q_OS_WIN
    return IsDebuggerPresent();
#else
    // Read anew each time: a debugger may attach or detach while the process runs.
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return false;
    const QByteArray tag("TracerPid:");
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith(tag))
            return line.mid(tag.size()).trimmed().toLongLong() != 0;
    }
    return false;
#endif
}

void outputDebugString(const QString &text)
{
#ifdef Q_OS_WIN
    OutputDebugStringW(reinterpret_cast<const wchar_t *>(text.utf16()));
#else
    if (!isDebuggerAttached())
        return;
    std::fputs(text.toLocal8Bit().constData(), stderr);
    std::fflush(stderr);
#endif
}

} // namespace ZuPlatform
