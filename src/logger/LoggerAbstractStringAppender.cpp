#include "logger/LoggerFormat_p.h"
#include "logger/LoggerLocks_p.h"
#include "platform/ReadOnlyData.h"

#include <zucore/LoggerAbstractStringAppender.h>

#include <QCoreApplication>
#include <QLocale>
#include <QThread>

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

// The signature text holds no zero byte (it comes from a C string), so the C library's fast
// search finds what QByteArray::indexOf would find.
inline int indexOfText(const QByteArray &info, const char *text)
{
    const char *const hit = std::strstr(info.constData(), text);
    return hit ? int(hit - info.constData()) : -1;
}

// Padding beyond this is not honoured: a stray width must not allocate gigabytes.
constexpr int maxFieldWidth = 65536;

// The width text is a digit or a dash followed by digits; QString::toInt decides its value.
// Plain ASCII of a few digits is converted by hand with the same result.
int widthFromText(const QChar *text, int len)
{
    int k = 0;
    bool negative = false;
    if (text[0] == QLatin1Char('-')) {
        negative = true;
        k = 1;
    }
    if (len - k > 0 && len - k <= 9) {
        int value = 0;
        bool plain = true;
        for (int n = k; n < len; ++n) {
            const ushort u = text[n].unicode();
            if (u < '0' || u > '9') {
                plain = false;
                break;
            }
            value = value * 10 + (u - '0');
        }
        if (plain)
            return negative ? -value : value;
    }
    return QString(text, len).toInt(nullptr, 10);
}

// Writes a record into a QString used as a plain buffer: the whole of its size is room, and the
// record's length is kept here, not in the string. Chunks are copied without a call into QString
// each, and a buffer reused for the next record needs no resize at all.
class LineWriter
{
public:
    LineWriter(QString &buffer, int expected)
        : m_out(buffer)
        , m_capacity(int(buffer.size()))
    {
        if (m_capacity < expected)
            grow(expected);
        else
            m_data = m_out.data();
    }
    LineWriter(const LineWriter &) = delete;
    LineWriter &operator=(const LineWriter &) = delete;

    int size() const { return m_used; }
    QChar *at(int position) { return m_data + position; }
    // Room for @p n more characters; commit() those written.
    QChar *room(int n)
    {
        if (m_capacity - m_used < n)
            grow(n);
        return m_data + m_used;
    }
    void commit(int n) { m_used += n; }
    void truncate(int size) { m_used = size; }
    void append(const QChar *text, int n)
    {
        std::memcpy(room(n), text, size_t(n) * sizeof(QChar));
        m_used += n;
    }
    void append(const QString &text) { append(text.constData(), text.size()); }
    void append(QChar c)
    {
        *room(1) = c;
        ++m_used;
    }
    void appendLatin1(const char *text)
    {
        const int n = int(std::strlen(text));
        QChar *const out = room(n);
        for (int k = 0; k < n; ++k)
            out[k] = QLatin1Char(text[k]);
        m_used += n;
    }

private:
    void grow(int n)
    {
        // A record longer than a QString may hold fails as an allocation would, never by
        // writing past the buffer.
        constexpr qint64 limit = std::numeric_limits<int>::max() / 2;
        const qint64 needed = qint64(m_used) + n;
        if (needed > limit)
            qBadAlloc();
        m_out.resize(int(qMin(qMax(needed, qint64(m_capacity) * 3 / 2), limit)));
        m_out.resize(int(m_out.capacity()));
        m_data = m_out.data();
        m_capacity = int(m_out.size());
    }

    QString &m_out;
    QChar *m_data = nullptr;
    int m_used = 0;
    int m_capacity = 0;
};

// What a thread remembers from record to record: values that depend on where and when a record
// was made, never on the pattern.
struct Site
{
    const char *address = nullptr;
    // The text lies in a program's read-only data (a Q_FUNC_INFO literal): its address alone
    // names it. Anything else (a caller's buffer) is compared as text on every record.
    bool literal = false;
    QByteArray signature;
    QString name;
};

// The parts of the last time stamp written: records of a thread come many to a millisecond.
struct Clock
{
    bool known = false;
    QDateTime timeStamp;
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    int msec = 0;

    void set(const QDateTime &stamp)
    {
        timeStamp = stamp;
        stamp.date().getDate(&year, &month, &day);
        const int msecs = stamp.time().msecsSinceStartOfDay();
        hour = msecs / 3600000;
        minute = msecs / 60000 % 60;
        second = msecs / 1000 % 60;
        msec = msecs % 1000;
        known = true;
    }
};

struct ThreadMemory
{
    static constexpr int SiteCount = 64;
    Site sites[SiteCount];
    Clock clock;
};

// Not inlined: the caller keeps the address, instead of asking for it again after every call.
Q_NEVER_INLINE ThreadMemory &threadMemory()
{
    thread_local ThreadMemory memory;
    return memory;
}

inline void putTwoDigits(QChar *out, int value)
{
    // One table of the hundred pairs instead of a division and a remainder per call.
    static constexpr char pairs[] = "00010203040506070809101112131415161718192021222324252627282930"
                                    "31323334353637383940414243444546474849505152535455565758596061"
                                    "62636465666768697071727374757677787980818283848586878889909192"
                                    "93949596979899";
    out[0] = QLatin1Char(pairs[2 * value]);
    out[1] = QLatin1Char(pairs[2 * value + 1]);
}

inline void putThreeDigits(QChar *out, int value)
{
    out[0] = QLatin1Char(char('0' + value / 100));
    putTwoDigits(out + 1, value % 100);
}

bool systemLocaleUsesAsciiDigits()
{
    static const bool ascii = QLocale::system().zeroDigit() == QLatin1Char('0');
    return ascii;
}

// The two time formats nearly every pattern uses, written without a walk.
constexpr char16_t isoFormat[] = u"yyyy-MM-ddTHH:mm:ss.zzz";
constexpr char16_t clockFormat[] = u"HH:mm:ss.zzz";
constexpr int isoLength = int(sizeof isoFormat / sizeof(char16_t)) - 1;
constexpr int clockLength = int(sizeof clockFormat / sizeof(char16_t)) - 1;

// A comparison of a known size compiles to a few word compares instead of a call.
template<size_t N> inline bool isText(const QChar *text, int len, const char16_t (&expected)[N])
{
    return len == int(N) - 1 && std::memcmp(text, expected, (N - 1) * sizeof(char16_t)) == 0;
}

// QDateTime::toString is slow for what a log line needs. The common date formats (made of
// yyyy, MM, dd, HH, mm, ss, zzz and characters that the date formatter copies as they are) are
// written here, straight into the line, with the same result; anything else goes to
// QDateTime::toString.
void appendTimeStamp(LineWriter &out, Clock &clock, const QDateTime &timeStamp, const QChar *fmt,
                     int len)
{
    if (len > 0 && len <= 64 && timeStamp.isValid() && systemLocaleUsesAsciiDigits()) {
        if (!clock.known || !(timeStamp == clock.timeStamp))
            clock.set(timeStamp);
        const int year = clock.year;
        if (year >= 1000 && year <= 9999) {
            const int month = clock.month;
            const int day = clock.day;
            const int hour = clock.hour;
            const int minute = clock.minute;
            const int second = clock.second;
            const int msec = clock.msec;
            if (isText(fmt, len, isoFormat) || isText(fmt, len, clockFormat)) {
                QChar *o = out.room(len);
                if (len == isoLength) {
                    putTwoDigits(o, year / 100);
                    putTwoDigits(o + 2, year % 100);
                    o[4] = QLatin1Char('-');
                    putTwoDigits(o + 5, month);
                    o[7] = QLatin1Char('-');
                    putTwoDigits(o + 8, day);
                    o[10] = QLatin1Char('T');
                    o += 11;
                }
                putTwoDigits(o, hour);
                o[2] = QLatin1Char(':');
                putTwoDigits(o + 3, minute);
                o[5] = QLatin1Char(':');
                putTwoDigits(o + 6, second);
                o[8] = QLatin1Char('.');
                putThreeDigits(o + 9, msec);
                out.commit(len);
                return;
            }
            const int start = out.size();
            QChar *const begin = out.room(len); // no field grows: yyyy 4, zzz 3, the rest 2
            QChar *o = begin;
            bool handled = true;
            for (int k = 0; k < len && handled;) {
                const ushort c = fmt[k].unicode();
                int run = 1;
                while (k + run < len && fmt[k + run].unicode() == c)
                    ++run;
                switch (c) {
                case 'y':
                    if (run == 4) {
                        putTwoDigits(o, year / 100);
                        putTwoDigits(o + 2, year % 100);
                        o += 4;
                    } else if (run == 1) {
                        *o++ = fmt[k];
                    } else {
                        handled = false;
                    }
                    break;
                case 'M':
                case 'd':
                case 'H':
                case 'm':
                case 's':
                    if (run != 2) {
                        handled = false;
                        break;
                    }
                    putTwoDigits(o,
                                 c == 'M'       ? month
                                     : c == 'd' ? day
                                     : c == 'H' ? hour
                                     : c == 'm' ? minute
                                                : second);
                    o += 2;
                    break;
                case 'z':
                    if (run != 3) {
                        handled = false;
                        break;
                    }
                    putThreeDigits(o, msec);
                    o += 3;
                    break;
                case 'A':
                case 'a':
                case 'h':
                case 't':
                case '\'':
                    handled = false;
                    break;
                default:
                    if (c >= 128) {
                        handled = false;
                        break;
                    }
                    for (int n = 0; n < run; ++n)
                        *o++ = fmt[k + n];
                    break;
                }
                k += run;
            }
            if (handled) {
                out.commit(int(o - begin));
                return;
            }
            out.truncate(start);
        }
    }
    out.append(timeStamp.toString(QString(fmt, len)));
}

// Pads the text written since start as QString::arg("%1", width, ' ') would: a positive width
// aligns right, a negative one left, and longer text is left as it is.
void padField(LineWriter &out, int start, int fieldWidth)
{
    const int length = out.size() - start;
    // In 64 bits: the magnitude of INT_MIN has no int.
    const int padding = int(qMin(qAbs(qint64(fieldWidth)), qint64(maxFieldWidth))) - length;
    if (padding <= 0)
        return;
    out.room(padding);
    QChar *const field = out.at(start);
    if (fieldWidth > 0) {
        std::memmove(field + padding, field, size_t(length) * sizeof(QChar));
        std::fill(field, field + padding, QLatin1Char(' '));
    } else {
        std::fill(field + length, field + length + padding, QLatin1Char(' '));
    }
    out.commit(padding);
}

// The clean-up of a signature costs more than the rest of a record's format walk, and an
// application logs from a limited set of functions. Each thread keeps the clean names of the
// call sites it met last, found by the signature's address. A literal's address is enough; any
// other text is confirmed by comparing it (a caller may reuse one buffer for other texts). It
// depends on the signature alone, not on the pattern.
// The name stays valid until this thread cleans another signature.
const QString &cleanFunctionName(Site *sites, const char *function)
{
    if (!function)
        function = "";
    const quintptr a = quintptr(function);
    Site &site = sites[((a >> 3) ^ (a >> 9)) % ThreadMemory::SiteCount];
    // glibc's strcmp reads the text a vector at a time; QByteArray's comparison a byte at a time.
    if (site.address != function
        || (!site.literal && std::strcmp(site.signature.constData(), function) != 0)) {
        site.name = LoggerAbstractStringAppender::stripFunctionName(function);
        site.signature = function;
        site.address = function;
        site.literal = ZuPlatform::isReadOnlyData(function);
    }
    return site.name;
}

inline bool isLetter(QChar c)
{
    const ushort u = c.unicode();
    return u < 128 ? ushort((u | 0x20) - 'a') < 26u : c.isLetter();
}

enum class Command {
    Time,
    Type,
    TypeUpper,
    TypeOne,
    TypeOneUpper,
    FilePath,
    FileName,
    Line,
    Signature,
    FunctionName,
    Message,
    Category,
    Pid,
    AppName,
    ThreadId,
    Unknown
};

// True if the command at @p cmd is @p name: the whole name, not followed by another letter.
template<size_t N> inline bool isCommand(const QChar *cmd, qptrdiff left, const char16_t (&name)[N])
{
    constexpr qptrdiff length = qptrdiff(N) - 1;
    if (left < length)
        return false;
    // A comparison of a known small size compiles to a few word compares.
    if (std::memcmp(cmd, name, size_t(length) * sizeof(QChar)) != 0)
        return false;
    return left == length || !isLetter(cmd[length]);
}

// The command named at @p cmd: the letters up to the first character that is not one. Known
// names are matched whole instead of scanning the letters one by one.
Command commandAt(const QChar *cmd, const QChar *end, int *length)
{
    const qptrdiff left = end - cmd;
#define ZU_COMMAND(name, command)                                                                  \
    if (isCommand(cmd, left, name)) {                                                              \
        *length = int(sizeof(name) / sizeof(char16_t)) - 1;                                        \
        return command;                                                                            \
    }
    switch (cmd[0].unicode()) {
    case 't':
        ZU_COMMAND(u"time", Command::Time)
        ZU_COMMAND(u"type", Command::Type)
        ZU_COMMAND(u"typeOne", Command::TypeOne)
        ZU_COMMAND(u"threadid", Command::ThreadId)
        break;
    case 'T':
        ZU_COMMAND(u"Type", Command::TypeUpper)
        ZU_COMMAND(u"TypeOne", Command::TypeOneUpper)
        break;
    case 'f':
        ZU_COMMAND(u"function", Command::FunctionName)
        ZU_COMMAND(u"file", Command::FileName)
        break;
    case 'F':
        ZU_COMMAND(u"Function", Command::Signature)
        ZU_COMMAND(u"File", Command::FilePath)
        break;
    case 'm':
        ZU_COMMAND(u"message", Command::Message)
        break;
    case 'l':
        ZU_COMMAND(u"line", Command::Line)
        break;
    case 'c':
        ZU_COMMAND(u"category", Command::Category)
        break;
    case 'p':
        ZU_COMMAND(u"pid", Command::Pid)
        break;
    case 'a':
        ZU_COMMAND(u"appname", Command::AppName)
        break;
    default:
        break;
    }
#undef ZU_COMMAND
    int n = 0;
    while (n < left && isLetter(cmd[n]))
        ++n;
    *length = n;
    return Command::Unknown;
}

// Logger::levelToString(), looked up in a table made from it once.
const QString &levelName(Logger::LogLevel level)
{
    static const QString names[] = {
        Logger::levelToString(Logger::Trace), Logger::levelToString(Logger::Debug),
        Logger::levelToString(Logger::Info),  Logger::levelToString(Logger::Warning),
        Logger::levelToString(Logger::Error), Logger::levelToString(Logger::Fatal),
    };
    const int index = int(level) - int(Logger::Trace);
    if (index >= 0 && index < int(sizeof names / sizeof *names))
        return names[index];
    static const QString none; // what levelToString() gives any other value
    return none;
}

// The time field at @p *i (just behind its name): an optional date format in a second brace
// pair, or the default. Leaves @p *i on the character that ends the field.
void appendTime(LineWriter &out, Clock &clock, const QDateTime &timeStamp, const QChar *p, int size,
                int *i)
{
    if (*i + 1 < size && p[*i + 1] == QLatin1Char('{')) {
        // The first character of the format is taken as it is, even a closing brace.
        const QChar *const format = p + *i + 2;
        const QChar *const end = p + size;
        // The usual format is known without a search for its end.
        const QChar *close = end - format > isoLength && isText(format, isoLength, isoFormat)
                && format[isoLength] == QLatin1Char('}')
            ? format + isoLength
            : format + 1;
        while (close < end && *close != QLatin1Char('}'))
            ++close;
        if (close < end) {
            const int length = int(close - format);
            appendTimeStamp(out, clock, timeStamp, format, length);
            *i += length + 2;
            return;
        }
    }
    appendTimeStamp(out, clock, timeStamp, reinterpret_cast<const QChar *>(clockFormat),
                    clockLength);
}

} // namespace

int ZuLoggerFormat::formatRecord(QString &buffer, const QString &f, const QDateTime &timeStamp,
                                 Logger::LogLevel logLevel, const char *file, int line,
                                 const char *function, const QString &category,
                                 const QString &message)
{
    const int size = f.size();
    if (size == 0)
        return 0;
    LineWriter out(buffer, size + message.size() + 96);
    ThreadMemory &memory = threadMemory();

    const QChar *const p = f.constData();
    int i = 0;
    while (i < size) {
        // Literal text up to the next field goes in as one chunk.
        int literal = i;
        while (literal < size && p[literal] != QLatin1Char('%'))
            ++literal;
        if (literal > i) {
            out.append(p + i, literal - i);
            i = literal;
            continue;
        }
        // A "%" in the last two positions is plain text.
        if (i + 2 >= size) {
            out.append(p[i]);
            ++i;
            continue;
        }

        // The character behind "%" is taken for the opening brace without looking at it.
        i += 2;
        const QChar *const cmd = p + i;
        int cmdLen = 0;
        const Command command = i < size ? commandAt(cmd, p + size, &cmdLen) : Command::Unknown;
        i += cmdLen;

        int fieldWidth = 0;
        if (cmdLen > 0 && i < size && p[i] == QLatin1Char(':')) {
            ++i;
            // In ASCII only the hyphen-minus is a dash.
            if (i < size
                && (p[i].isDigit() || p[i] == QLatin1Char('-')
                    || (p[i].unicode() >= 128 && p[i].category() == QChar::Punctuation_Dash))) {
                const int widthStart = i;
                ++i;
                while (i < size && p[i].isDigit())
                    ++i;
                fieldWidth = widthFromText(p + widthStart, i - widthStart);
            }
        }

        // Each chunk goes straight into the line; padField pads it afterwards.
        const int fieldStart = out.size();
        switch (command) {
        case Command::Time:
            appendTime(out, memory.clock, timeStamp, p, size, &i);
            break;
        case Command::Type:
            out.append(levelName(logLevel));
            break;
        case Command::TypeUpper:
            out.append(Logger::levelToString(logLevel).toUpper());
            break;
        case Command::TypeOne:
            out.append(Logger::levelToString(logLevel).left(1).toLower());
            break;
        case Command::TypeOneUpper:
            out.append(Logger::levelToString(logLevel).left(1).toUpper());
            break;
        case Command::FilePath:
            if (file)
                out.appendLatin1(file);
            break;
        case Command::FileName:
            // The part behind the last slash or backslash, as a section by "[/\\]" gives it.
            if (file) {
                const char *name = file;
                for (const char *c = file; *c; ++c) {
                    if (*c == '/' || *c == '\\')
                        name = c + 1;
                }
                out.appendLatin1(name);
            }
            break;
        case Command::Line:
            out.append(QString::number(line));
            break;
        case Command::Signature:
            if (function)
                out.appendLatin1(function);
            break;
        case Command::FunctionName:
            out.append(cleanFunctionName(memory.sites, function));
            break;
        case Command::Message:
            out.append(message);
            break;
        case Command::Category:
            out.append(category);
            break;
        case Command::Pid:
            out.append(QString::number(QCoreApplication::applicationPid()));
            break;
        case Command::AppName:
            out.append(QCoreApplication::applicationName());
            break;
        case Command::ThreadId:
            out.appendLatin1("0x");
            out.append(QString::number(qintptr(QThread::currentThread()), 16));
            break;
        case Command::Unknown:
            out.append(QLatin1Char('%'));
            out.append(cmd, cmdLen);
            break;
        }
        padField(out, fieldStart, fieldWidth);

        // Skip the character on which the field ends, normally its closing brace.
        ++i;
    }
    return out.size();
}

LoggerAbstractStringAppender::LoggerAbstractStringAppender()
    : m_format(
        QStringLiteral("%{time}{yyyy-MM-ddTHH:mm:ss.zzz} [%{type:-7}] <%{function}> %{message}"))
{ }

QString LoggerAbstractStringAppender::format() const
{
    // A plain mutex: the copy is short, and its lock is inline where a read lock is a call.
    ZuLoggerLocks::MutexLocker locker(&m_formatMutex);
    return m_format;
}

void LoggerAbstractStringAppender::setFormat(const QString &format)
{
    ZuLoggerLocks::MutexLocker locker(&m_formatMutex);
    m_format = format;
}

QString LoggerAbstractStringAppender::formattedString(const QDateTime &timeStamp,
                                                      Logger::LogLevel logLevel, const char *file,
                                                      int line, const char *function,
                                                      const QString &category,
                                                      const QString &message) const
{
    const QString pattern = format();
    if (pattern.isEmpty())
        return QString();
    QString result;
    result.resize(ZuLoggerFormat::formatRecord(result, pattern, timeStamp, logLevel, file, line,
                                               function, category, message));
    return result;
}

QByteArray LoggerAbstractStringAppender::qCleanupFuncinfo(const char *name)
{
    QByteArray info(name);
    if (info.isEmpty())
        return info;

    // A trailing "[with T = int]" and the like.
    if (info.endsWith(']')) {
        for (int pos = info.size() - 2; pos > 0; --pos) {
            if (info.at(pos) == '[')
                info.truncate(pos);
        }
    }

    // Lambdas: "Foo::bar()::<lambda(int)>" loses the first "::<lambda(" and everything up to
    // the last ")>" behind it. This is the match of the greedy "::<lambda\\(.*\\)>", found
    // without a regular expression: the leftmost start can only be the first "::<lambda(", and
    // the greedy ".*" runs to the last ")>" (the text holds no zero byte for "." to miss).
    bool hasLambda = false;
    const int lambdaPos = indexOfText(info, "::<lambda(");
    if (lambdaPos != -1) {
        const int lambdaEnd = info.lastIndexOf(")>");
        if (lambdaEnd >= lambdaPos + 10) {
            info.remove(lambdaPos, lambdaEnd + 2 - lambdaPos);
            hasLambda = true;
        }
    }

    // Keep operator names in one piece: "operator <" becomes "operator<".
    if (indexOfText(info, "operator ") != -1)
        info.replace("operator ", "operator");

    // Remove the argument list, and that of a returned function pointer.
    int q = 0;
    forever
    {
        const int p = info.lastIndexOf(')');
        if (p <= 1)
            return info;
        int depth = 1;
        int pos = p - 1;
        for (; pos > 0; --pos) {
            const char c = info.at(pos);
            if (c == ')')
                ++depth;
            else if (c == '(')
                --depth;
            if (depth == 0)
                break;
        }
        if (depth != 0)
            return info;
        q = pos;
        info.truncate(q);
        if (info.at(q - 1) != ')')
            break;
        if (indexOfText(info, "operator()") == q - 10)
            break;
        // The arguments just removed belonged to the returned function pointer's type.
        info.remove(0, info.indexOf('('));
        info.chop(1);
    }

    if (hasLambda)
        info.append("::lambda");

    // Start the walk to the left inside an operator name rather than on its symbol.
    int pos = q - 1;
    switch (info.at(pos)) {
    case ')':
        if (indexOfText(info, "operator()") == q - 10)
            pos = q - 3;
        break;
    case '<':
        if (indexOfText(info, "operator<") == q - 9)
            pos = q - 2;
        break;
    case '>':
        if (indexOfText(info, "operator>") == q - 9)
            pos = q - 2;
        break;
    case '=':
        if (indexOfText(info, "operator<=") == q - 10 || indexOfText(info, "operator>=") == q - 10)
            pos = q - 3;
        break;
    default:
        break;
    }

    // The name starts behind the first blank outside brackets and template arguments.
    int parenCount = 0;
    int templateCount = 0;
    while (pos > -1) {
        const char c = info.at(pos);
        if (c == ')')
            ++parenCount;
        else if (c == '(')
            --parenCount;
        else if (c == '>')
            ++templateCount;
        else if (c == '<')
            --templateCount;
        else if (c == ' ' && parenCount == 0 && templateCount == 0)
            break;
        --pos;
        if (pos > -1 && (parenCount < 0 || templateCount < 0))
            return info;
    }
    info = info.mid(pos + 1);

    // Pointer and reference return types leave their marks in front.
    int marks = 0;
    while (marks < info.size() && (info.at(marks) == '*' || info.at(marks) == '&'))
        ++marks;
    if (marks > 0)
        info.remove(0, marks);

    // Template arguments, innermost last.
    while (info.contains('>') && info.contains('<')) {
        const int end = info.lastIndexOf('>');
        if (end == 0)
            break;
        int depth = 1;
        int match = end - 1;
        for (; match > 0; --match) {
            const char c = info.at(match);
            if (c == '>')
                ++depth;
            else if (c == '<')
                --depth;
            if (depth == 0)
                break;
        }
        if (depth != 0)
            match = 1;
        info.remove(match, end - match + 1);
    }

    return info;
}

QString LoggerAbstractStringAppender::stripFunctionName(const char *name)
{
    return QString::fromLatin1(qCleanupFuncinfo(name));
}
