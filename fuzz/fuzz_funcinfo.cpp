// Any bytes as a function signature through qCleanupFuncinfo and stripFunctionName.
#include <zucore/LoggerAbstractStringAppender.h>

#include <QByteArray>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size > 4096)
        return 0;
    // A C string: the signature ends at its first zero byte.
    const QByteArray signature(reinterpret_cast<const char *>(data), int(size));
    const char *const name = signature.constData();
    const QByteArray cleaned = LoggerAbstractStringAppender::qCleanupFuncinfo(name);
    const QString stripped = LoggerAbstractStringAppender::stripFunctionName(name);
    // The clean-up only removes text, but for the "::lambda" it may add.
    if (cleaned.size() > int(qstrlen(name)) + 8 || stripped.size() != cleaned.size())
        __builtin_trap();
    return 0;
}
