// Any pattern text through the format walk: never a crash, never a read out of bounds.
#include <zucore/LoggerAbstractStringAppender.h>

#include <QDateTime>

#include <cstddef>
#include <cstdint>

namespace {

struct PatternAppender : LoggerAbstractStringAppender
{
    void append(const QDateTime &, Logger::LogLevel, const char *, int, const char *,
                const QString &, const QString &) override
    { }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size < 1 || size > 4096)
        return 0;
    static PatternAppender appender;
    static const QDateTime stamp(QDate(2024, 3, 5), QTime(7, 8, 9, 45));
    // The first byte picks the level (also outside the enumeration) and a null or real time.
    const int level = int(data[0] % 8) - 1;
    const QDateTime timeStamp = (data[0] & 0x80) ? QDateTime() : stamp;
    appender.setFormat(QString::fromUtf8(reinterpret_cast<const char *>(data + 1), int(size - 1)));
    const QString line = appender.formattedString(
        timeStamp, Logger::LogLevel(level), (data[0] & 0x40) ? nullptr : "C:\\src/dir\\file.cpp",
        42, (data[0] & 0x20) ? nullptr : "bool Foo<T>::operator<(const Foo&) const [with T = int]",
        QStringLiteral("category"), QStringLiteral("message"));
    // Text is never cut, so the line holds at least every character that is not a field.
    if (size > 1 && line.isNull() && !appender.format().isEmpty())
        __builtin_trap();
    return 0;
}
