#include "logger/LoggerLocks_p.h"

#include <zucore/LoggerAbstractStringAppender.h>

#include <QCoreApplication>
#include <QLocale>
#include <QRegExp>
#include <QThread>

#include <cstring>

namespace {

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
// written here with the same result; anything else goes to QDateTime::toString.
QString formatTimeStamp(const QDateTime &timeStamp, const QChar *fmt, int len)
{
    if (len > 0 && len <= 64 && timeStamp.isValid() && systemLocaleUsesAsciiDigits()) {
        const QDate date = timeStamp.date();
        const QTime time = timeStamp.time();
        const int year = date.year();
        if (year >= 1000 && year <= 9999) {
            QString out(len + 1, Qt::Uninitialized);
            QChar *o = out.data();
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
                                    c == 'M'       ? date.month()
                                        : c == 'd' ? date.day()
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
                out.truncate(int(o - out.constData()));
                return out;
            }
        }
    }
    return timeStamp.toString(QString(fmt, len));
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
    result.reserve(size + message.size() + 64);

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
            if (i < size && (p[i].isDigit() || p[i].category() == QChar::Punctuation_Dash)) {
                const int widthStart = i;
                ++i;
                while (i < size && p[i].isDigit())
                    ++i;
                fieldWidth = widthFromText(p + widthStart, i - widthStart);
            }
        }

        // The chunk is either plain Latin-1 text (latin1/latinLen) or a QString.
        QString chunk;
        const char *latin1 = nullptr;
        int latinLen = 0;
        if (ZU_IS_COMMAND("time")) {
            if (i + 1 < size && p[i + 1] == QLatin1Char('{')) {
                int j = 1;
                while (i + 2 + j < size && p[i + 2 + j] != QLatin1Char('}'))
                    ++j;
                if (i + 2 + j < size) {
                    chunk = formatTimeStamp(timeStamp, p + i + 2, j);
                    i += j + 2;
                }
            }
            if (chunk.isNull()) {
                static const QString defaultTimeFormat = QStringLiteral("HH:mm:ss.zzz");
                chunk = formatTimeStamp(timeStamp, defaultTimeFormat.constData(),
                                        defaultTimeFormat.size());
            }
        } else if (ZU_IS_COMMAND("type")) {
            chunk = Logger::levelToString(logLevel);
        } else if (ZU_IS_COMMAND("Type")) {
            chunk = Logger::levelToString(logLevel).toUpper();
        } else if (ZU_IS_COMMAND("typeOne")) {
            chunk = Logger::levelToString(logLevel).left(1).toLower();
        } else if (ZU_IS_COMMAND("TypeOne")) {
            chunk = Logger::levelToString(logLevel).left(1).toUpper();
        } else if (ZU_IS_COMMAND("File")) {
            if (file) {
                latin1 = file;
                latinLen = int(std::strlen(file));
            }
        } else if (ZU_IS_COMMAND("file")) {
            // The part behind the last slash or backslash, as a section by "[/\\]" gives it.
            if (file) {
                latin1 = file;
                for (const char *c = file; *c; ++c) {
                    if (*c == '/' || *c == '\\')
                        latin1 = c + 1;
                }
                latinLen = int(std::strlen(latin1));
            }
        } else if (ZU_IS_COMMAND("line")) {
            chunk = QString::number(line);
        } else if (ZU_IS_COMMAND("Function")) {
            if (function) {
                latin1 = function;
                latinLen = int(std::strlen(function));
            }
        } else if (ZU_IS_COMMAND("function")) {
            chunk = stripFunctionName(function);
        } else if (ZU_IS_COMMAND("message")) {
            chunk = message;
        } else if (ZU_IS_COMMAND("category")) {
            chunk = category;
        } else if (ZU_IS_COMMAND("pid")) {
            chunk = QString::number(QCoreApplication::applicationPid());
        } else if (ZU_IS_COMMAND("appname")) {
            chunk = QCoreApplication::applicationName();
        } else if (ZU_IS_COMMAND("threadid")) {
            chunk = QLatin1String("0x") + QString::number(qintptr(QThread::currentThread()), 16);
        } else {
            chunk.reserve(cmdLen + 1);
            chunk.append(QLatin1Char('%'));
            chunk.append(cmd, cmdLen);
        }

        // Padding as QString::arg("%1", width, ' ') would give it, without the temporary.
        const int chunkLen = latin1 ? latinLen : chunk.size();
        const int padding = qMin(qAbs(fieldWidth), maxFieldWidth) - chunkLen;
        if (padding > 0 && fieldWidth > 0)
            result.append(QString(padding, QLatin1Char(' ')));
        if (latin1)
            result.append(QLatin1String(latin1, latinLen));
        else
            result.append(chunk);
        if (padding > 0 && fieldWidth < 0)
            result.append(QString(padding, QLatin1Char(' ')));

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

    // Lambdas: "Foo::bar()::<lambda(int)>". The plain substring test spares the regular
    // expression on every signature that cannot match it.
    bool hasLambda = false;
    if (info.contains("::<lambda(")) {
        QRegExp lambdaRegex(QStringLiteral("::<lambda\\(.*\\)>"));
        const int lambdaPos = lambdaRegex.indexIn(QString::fromLatin1(info));
        if (lambdaPos != -1) {
            info.remove(lambdaPos, lambdaRegex.matchedLength());
            hasLambda = true;
        }
    }

    // Keep operator names in one piece: "operator <" becomes "operator<".
    if (info.contains("operator "))
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
        if (info.indexOf("operator()") == q - 10)
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
        if (info.indexOf("operator()") == q - 10)
            pos = q - 3;
        break;
    case '<':
        if (info.indexOf("operator<") == q - 9)
            pos = q - 2;
        break;
    case '>':
        if (info.indexOf("operator>") == q - 9)
            pos = q - 2;
        break;
    case '=':
        if (info.indexOf("operator<=") == q - 10 || info.indexOf("operator>=") == q - 10)
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
