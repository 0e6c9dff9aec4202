#include "platform/FileWrite.h"

#ifdef Q_OS_UNIX
#include <cerrno>
#include <unistd.h>
#endif

namespace ZuPlatform {

bool appendToFile(QFile &file, const char *data, qint64 size)
{
#ifdef Q_OS_UNIX
    const int fd = file.handle();
    if (fd < 0)
        return false;
    while (size > 0) {
        const ssize_t written = ::write(fd, data, size_t(size));
        if (written < 0) {
            if (errno == EINTR)
                continue;
            return false;
        }
        data += written;
        size -= written;
    }
    return true;
#else
    return file.write(data, size) == size;
#endif
}

} // namespace ZuPlatform
