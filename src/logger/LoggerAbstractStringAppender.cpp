#include "logger/LoggerLocks_p.h"

#include <zucore/LoggerAbstractStringAppender.h>

#include <QCoreApplication>
#include <QLocale>
#include <QThread>

#include <algorithm>
#include <cstring>

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

inline bool isCommand(const QChar *cmd, int len, const char *name, int nameLen)
{
    if (len != nameLen)
        return false;
    for (int k = 0; k < len; ++k) {
        if (cmd[k].unicode() != ushort(uchar(name[k])))
            return false;
    }
    return true;
}

#define ZU_IS_COMMAND(name) isCommand(cmd, cmdLen, name, int(sizeof(name) - 1))

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

inline void appendTwoDigits(QChar *&out, int value)
{
    *out++ = QLatin1Char(char('0' + value / 10));
    *out++ = QLatin1Char(char('0' + value % 10));
}

bool systemLocaleUsesAsciiDigits()
{
    static const bool ascii = QLocale::system().zeroDigit() == QLatin1Char('0');
    return ascii;
}

// QDateTime::toString is slow for what a log line needs. The common date formats (made of
// yyyy, MM, dd, HH, mm, ss, zzz and characters that the date formatter copies as they are) are
// written here, straight into the line, with the same result; anything else goes to
// QDateTime::toString.
void appendTimeStamp(QString &result, const QDateTime &timeStamp, const QChar *fmt, int len)
{
    if (len > 0 && len <= 64 && timeStamp.isValid() && systemLocaleUsesAsciiDigits()) {
        int year = 0;
        int month = 0;
        int day = 0;
        timeStamp.date().getDate(&year, &month, &day);
        if (year >= 1000 && year <= 9999) {
            const QTime time = timeStamp.time();
            const int start = result.size();
            result.resize(start + len + 1); // no field grows: yyyy 4, zzz 3, the rest 2
            QChar *const begin = result.data() + start;
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
                        appendTwoDigits(o, year / 100);
                        appendTwoDigits(o, year % 100);
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
                    appendTwoDigits(o,
                                    c == 'M'       ? month
                                        : c == 'd' ? day
                                        : c == 'H' ? time.hour()
                                        : c == 'm' ? time.minute()
                                                   : time.second());
                    break;
                case 'z':
                    if (run != 3) {
                        handled = false;
                        break;
                    }
                    *o++ = QLatin1Char(char('0' + time.msec() / 100));
                    appendTwoDigits(o, time.msec() % 100);
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
                result.resize(start + int(o - begin));
                return;
            }
            result.resize(start);
        }
    }
    result.append(timeStamp.toString(QString(fmt, len)));
}

// Pads the text appended since start as QString::arg("%1", width, ' ') would: a positive width
// aligns right, a negative one left, and longer text is left as it is.
void padField(QString &result, int start, int fieldWidth)
{
    const int length = result.size() - start;
    // In 64 bits: the magnitude of INT_MIN has no int.
    const int padding = int(qMin(qAbs(qint64(fieldWidth)), qint64(maxFieldWidth))) - length;
    if (padding <= 0)
        return;
    result.resize(result.size() + padding);
    QChar *const field = result.data() + start;
    if (fieldWidth > 0) {
        std::memmove(field + padding, field, size_t(length) * sizeof(QChar));
        std::fill(field, field + padding, QLatin1Char(' '));
    } else {
        std::fill(field + length, field + length + padding, QLatin1Char(' '));
    }
}

// The clean-up of a signature costs more than the rest of a record's format walk, and an
// application logs from a limited set of functions. Each thread keeps the clean names of the
// call sites it met last, found by the signature's address and confirmed by its text (a caller
// may reuse one buffer for other texts). It depends on the signature alone, not on the pattern.
QString cleanFunctionName(const char *function)
{
    struct Site
    {
        const char *address = nullptr;
        QByteArray signature;
        QString name;
    };
    constexpr int SiteCount = 64;
    thread_local Site sites[SiteCount];
    if (!function)
        function = "";
    const quintptr a = quintptr(function);
    Site &site = sites[((a >> 3) ^ (a >> 9)) % SiteCount];
    // glibc's strcmp reads the text a vector at a time; QByteArray's comparison a byte at a time.
    if (site.address != function || std::strcmp(site.signature.constData(), function) != 0) {
        site.name = LoggerAbstractStringAppender::stripFunctionName(function);
        site.signature = function;
        site.address = function;
    }
    return site.name;
}

} // namespace

LoggerAbstractStringAppender::LoggerAbstractStringAppender()
    : m_format(
        QStringLiteral("%{time}{yyyy-MM-ddTHH:mm:ss.zzz} [%{type:-7}] <%{function}> %{message}"))
{ }

QString LoggerAbstractStringAppender::format() const
{
    ZuLoggerLocks::ReadLocker locker(&m_formatLock);
    return m_format;
}

void LoggerAbstractStringAppender::setFormat(const QString &format)
{
    ZuLoggerLocks::WriteLocker locker(&m_formatLock);
    m_format = format;
}

QString LoggerAbstractStringAppender::formattedString(const QDateTime &timeStamp,
                                                      Logger::LogLevel logLevel, const char *file,
                                                      int line, const char *function,
                                                      const QString &category,
                                                      const QString &message) const
{
    const QString f = format();
    const int size = f.size();
    QString result;
    if (size == 0)
        return result;
    result.reserve(size + message.size() + 96);

    const QChar *const p = f.constData();
    int i = 0;
    while (i < size) {
        // Literal text up to the next field goes in as one chunk.
        int literal = i;
        while (literal < size && p[literal] != QLatin1Char('%'))
            ++literal;
        if (literal > i) {
            result.append(p + i, literal - i);
            i = literal;
            continue;
        }
        // A "%" in the last two positions is plain text.
        if (i + 2 >= size) {
            result.append(p[i]);
            ++i;
            continue;
        }

        // The character behind "%" is taken for the opening brace without looking at it.
        i += 2;
        const QChar *const cmd = p + i;
        while (i < size && p[i].isLetter())
            ++i;
        const int cmdLen = int(p + i - cmd);

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
        const int fieldStart = result.size();
        if (ZU_IS_COMMAND("time")) {
            bool done = false;
            if (i + 1 < size && p[i + 1] == QLatin1Char('{')) {
                int j = 1;
                while (i + 2 + j < size && p[i + 2 + j] != QLatin1Char('}'))
                    ++j;
                if (i + 2 + j < size) {
                    appendTimeStamp(result, timeStamp, p + i + 2, j);
                    i += j + 2;
                    done = true;
                }
            }
            if (!done) {
                static const QString defaultTimeFormat = QStringLiteral("HH:mm:ss.zzz");
                appendTimeStamp(result, timeStamp, defaultTimeFormat.constData(),
                                defaultTimeFormat.size());
            }
        } else if (ZU_IS_COMMAND("type")) {
            result.append(Logger::levelToString(logLevel));
        } else if (ZU_IS_COMMAND("Type")) {
            result.append(Logger::levelToString(logLevel).toUpper());
        } else if (ZU_IS_COMMAND("typeOne")) {
            result.append(Logger::levelToString(logLevel).left(1).toLower());
        } else if (ZU_IS_COMMAND("TypeOne")) {
            result.append(Logger::levelToString(logLevel).left(1).toUpper());
        } else if (ZU_IS_COMMAND("File")) {
            if (file)
                result.append(QLatin1String(file));
        } else if (ZU_IS_COMMAND("file")) {
            // The part behind the last slash or backslash, as a section by "[/\\]" gives it.
            if (file) {
                const char *name = file;
                for (const char *c = file; *c; ++c) {
                    if (*c == '/' || *c == '\\')
                        name = c + 1;
                }
                result.append(QLatin1String(name));
            }
        } else if (ZU_IS_COMMAND("line")) {
            result.append(QString::number(line));
        } else if (ZU_IS_COMMAND("Function")) {
            if (function)
                result.append(QLatin1String(function));
        } else if (ZU_IS_COMMAND("function")) {
            result.append(cleanFunctionName(function));
        } else if (ZU_IS_COMMAND("message")) {
            result.append(message);
        } else if (ZU_IS_COMMAND("category")) {
            result.append(category);
        } else if (ZU_IS_COMMAND("pid")) {
            result.append(QString::number(QCoreApplication::applicationPid()));
        } else if (ZU_IS_COMMAND("appname")) {
            result.append(QCoreApplication::applicationName());
        } else if (ZU_IS_COMMAND("threadid")) {
            result.append(QLatin1String("0x"));
            result.append(QString::number(qintptr(QThread::currentThread()), 16));
        } else {
            result.append(QLatin1Char('%'));
            result.append(cmd, cmdLen);
        }
        padField(result, fieldStart, fieldWidth);

        // Skip the character on which the field ends, normally its closing brace.
        ++i;
    }
    return result;
}

#undef ZU_IS_COMMAND

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
