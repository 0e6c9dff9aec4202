#include <zucore/Logger.h>
#include <zucore/ZuCore.h>

#include <QAbstractItemModel>
#include <QJsonDocument>

#include <algorithm>
#include <cstring>

namespace {

// Process-wide texts, set when the library is loaded. No lock: applications set them at start-up.
QString s_dateFormat = QStringLiteral("MMM dd, yyyy");
QString s_dateTimeFormat = QStringLiteral("MMM dd, yyyy hh:mm:ss");
QString s_settingsIniFileName;

const QString &storedDateTimeFormat()
{
    static const QString format = QStringLiteral("yyyy-MM-dd HH:mm:ss");
    return format;
}

// RFC 1321 MD5, kept small and allocation free: the digest of a string is asked for often (keys,
// passwords, cache names) and QCryptographicHash allocates its state on the heap.
class Md5
{
public:
    void update(const unsigned char *data, size_t size)
    {
        const size_t used = size_t(m_length & 63);
        m_length += size;
        if (used) {
            const size_t take = std::min(size, 64 - used);
            std::memcpy(m_block + used, data, take);
            data += take;
            size -= take;
            if (used + take < 64)
                return;
            transform(m_block);
        }
        for (; size >= 64; data += 64, size -= 64)
            transform(data);
        std::memcpy(m_block, data, size);
    }

    void finish(unsigned char digest[16])
    {
        const quint64 bits = m_length * 8;
        static const unsigned char padding[64] = { 0x80 };
        const size_t used = size_t(m_length & 63);
        update(padding, used < 56 ? 56 - used : 120 - used);
        unsigned char tail[8];
        for (int i = 0; i < 8; ++i)
            tail[i] = static_cast<unsigned char>(bits >> (8 * i));
        update(tail, 8);
        for (int i = 0; i < 4; ++i)
            for (int k = 0; k < 4; ++k)
                digest[4 * i + k] = static_cast<unsigned char>(m_state[i] >> (8 * k));
    }

private:
    static quint32 load(const unsigned char *p)
    {
        return quint32(p[0]) | quint32(p[1]) << 8 | quint32(p[2]) << 16 | quint32(p[3]) << 24;
    }
    static quint32 rotl(quint32 v, int s) { return (v << s) | (v >> (32 - s)); }

    void transform(const unsigned char *block)
    {
        quint32 x[16];
        for (int i = 0; i < 16; ++i)
            x[i] = load(block + 4 * i);
        quint32 a = m_state[0], b = m_state[1], c = m_state[2], d = m_state[3];

// Written so that the newest value (x) comes in as late as possible: w + k and the parts of f
// without x are ready before x is. G's two terms share no bit, so they may be added.
#define ZU_MD5_STEP(f, w, x, y, z, k, s) w = x + rotl((w + (k)) + f(x, y, z), s)
#define ZU_MD5_F(x, y, z) (z ^ (x & (y ^ z)))
#define ZU_MD5_G(x, y, z) ((y & ~z) + (x & z))
#define ZU_MD5_H(x, y, z) (x ^ (y ^ z))
#define ZU_MD5_I(x, y, z) (y ^ (x | ~z))
        ZU_MD5_STEP(ZU_MD5_F, a, b, c, d, x[0] + 0xd76aa478, 7);
        ZU_MD5_STEP(ZU_MD5_F, d, a, b, c, x[1] + 0xe8c7b756, 12);
        ZU_MD5_STEP(ZU_MD5_F, c, d, a, b, x[2] + 0x242070db, 17);
        ZU_MD5_STEP(ZU_MD5_F, b, c, d, a, x[3] + 0xc1bdceee, 22);
        ZU_MD5_STEP(ZU_MD5_F, a, b, c, d, x[4] + 0xf57c0faf, 7);
        ZU_MD5_STEP(ZU_MD5_F, d, a, b, c, x[5] + 0x4787c62a, 12);
        ZU_MD5_STEP(ZU_MD5_F, c, d, a, b, x[6] + 0xa8304613, 17);
        ZU_MD5_STEP(ZU_MD5_F, b, c, d, a, x[7] + 0xfd469501, 22);
        ZU_MD5_STEP(ZU_MD5_F, a, b, c, d, x[8] + 0x698098d8, 7);
        ZU_MD5_STEP(ZU_MD5_F, d, a, b, c, x[9] + 0x8b44f7af, 12);
        ZU_MD5_STEP(ZU_MD5_F, c, d, a, b, x[10] + 0xffff5bb1, 17);
        ZU_MD5_STEP(ZU_MD5_F, b, c, d, a, x[11] + 0x895cd7be, 22);
        ZU_MD5_STEP(ZU_MD5_F, a, b, c, d, x[12] + 0x6b901122, 7);
        ZU_MD5_STEP(ZU_MD5_F, d, a, b, c, x[13] + 0xfd987193, 12);
        ZU_MD5_STEP(ZU_MD5_F, c, d, a, b, x[14] + 0xa679438e, 17);
        ZU_MD5_STEP(ZU_MD5_F, b, c, d, a, x[15] + 0x49b40821, 22);

        ZU_MD5_STEP(ZU_MD5_G, a, b, c, d, x[1] + 0xf61e2562, 5);
        ZU_MD5_STEP(ZU_MD5_G, d, a, b, c, x[6] + 0xc040b340, 9);
        ZU_MD5_STEP(ZU_MD5_G, c, d, a, b, x[11] + 0x265e5a51, 14);
        ZU_MD5_STEP(ZU_MD5_G, b, c, d, a, x[0] + 0xe9b6c7aa, 20);
        ZU_MD5_STEP(ZU_MD5_G, a, b, c, d, x[5] + 0xd62f105d, 5);
        ZU_MD5_STEP(ZU_MD5_G, d, a, b, c, x[10] + 0x02441453, 9);
        ZU_MD5_STEP(ZU_MD5_G, c, d, a, b, x[15] + 0xd8a1e681, 14);
        ZU_MD5_STEP(ZU_MD5_G, b, c, d, a, x[4] + 0xe7d3fbc8, 20);
        ZU_MD5_STEP(ZU_MD5_G, a, b, c, d, x[9] + 0x21e1cde6, 5);
        ZU_MD5_STEP(ZU_MD5_G, d, a, b, c, x[14] + 0xc33707d6, 9);
        ZU_MD5_STEP(ZU_MD5_G, c, d, a, b, x[3] + 0xf4d50d87, 14);
        ZU_MD5_STEP(ZU_MD5_G, b, c, d, a, x[8] + 0x455a14ed, 20);
        ZU_MD5_STEP(ZU_MD5_G, a, b, c, d, x[13] + 0xa9e3e905, 5);
        ZU_MD5_STEP(ZU_MD5_G, d, a, b, c, x[2] + 0xfcefa3f8, 9);
        ZU_MD5_STEP(ZU_MD5_G, c, d, a, b, x[7] + 0x676f02d9, 14);
        ZU_MD5_STEP(ZU_MD5_G, b, c, d, a, x[12] + 0x8d2a4c8a, 20);

        ZU_MD5_STEP(ZU_MD5_H, a, b, c, d, x[5] + 0xfffa3942, 4);
        ZU_MD5_STEP(ZU_MD5_H, d, a, b, c, x[8] + 0x8771f681, 11);
        ZU_MD5_STEP(ZU_MD5_H, c, d, a, b, x[11] + 0x6d9d6122, 16);
        ZU_MD5_STEP(ZU_MD5_H, b, c, d, a, x[14] + 0xfde5380c, 23);
        ZU_MD5_STEP(ZU_MD5_H, a, b, c, d, x[1] + 0xa4beea44, 4);
        ZU_MD5_STEP(ZU_MD5_H, d, a, b, c, x[4] + 0x4bdecfa9, 11);
        ZU_MD5_STEP(ZU_MD5_H, c, d, a, b, x[7] + 0xf6bb4b60, 16);
        ZU_MD5_STEP(ZU_MD5_H, b, c, d, a, x[10] + 0xbebfbc70, 23);
        ZU_MD5_STEP(ZU_MD5_H, a, b, c, d, x[13] + 0x289b7ec6, 4);
        ZU_MD5_STEP(ZU_MD5_H, d, a, b, c, x[0] + 0xeaa127fa, 11);
        ZU_MD5_STEP(ZU_MD5_H, c, d, a, b, x[3] + 0xd4ef3085, 16);
        ZU_MD5_STEP(ZU_MD5_H, b, c, d, a, x[6] + 0x04881d05, 23);
        ZU_MD5_STEP(ZU_MD5_H, a, b, c, d, x[9] + 0xd9d4d039, 4);
        ZU_MD5_STEP(ZU_MD5_H, d, a, b, c, x[12] + 0xe6db99e5, 11);
        ZU_MD5_STEP(ZU_MD5_H, c, d, a, b, x[15] + 0x1fa27cf8, 16);
        ZU_MD5_STEP(ZU_MD5_H, b, c, d, a, x[2] + 0xc4ac5665, 23);

        ZU_MD5_STEP(ZU_MD5_I, a, b, c, d, x[0] + 0xf4292244, 6);
        ZU_MD5_STEP(ZU_MD5_I, d, a, b, c, x[7] + 0x432aff97, 10);
        ZU_MD5_STEP(ZU_MD5_I, c, d, a, b, x[14] + 0xab9423a7, 15);
        ZU_MD5_STEP(ZU_MD5_I, b, c, d, a, x[5] + 0xfc93a039, 21);
        ZU_MD5_STEP(ZU_MD5_I, a, b, c, d, x[12] + 0x655b59c3, 6);
        ZU_MD5_STEP(ZU_MD5_I, d, a, b, c, x[3] + 0x8f0ccc92, 10);
        ZU_MD5_STEP(ZU_MD5_I, c, d, a, b, x[10] + 0xffeff47d, 15);
        ZU_MD5_STEP(ZU_MD5_I, b, c, d, a, x[1] + 0x85845dd1, 21);
        ZU_MD5_STEP(ZU_MD5_I, a, b, c, d, x[8] + 0x6fa87e4f, 6);
        ZU_MD5_STEP(ZU_MD5_I, d, a, b, c, x[15] + 0xfe2ce6e0, 10);
        ZU_MD5_STEP(ZU_MD5_I, c, d, a, b, x[6] + 0xa3014314, 15);
        ZU_MD5_STEP(ZU_MD5_I, b, c, d, a, x[13] + 0x4e0811a1, 21);
        ZU_MD5_STEP(ZU_MD5_I, a, b, c, d, x[4] + 0xf7537e82, 6);
        ZU_MD5_STEP(ZU_MD5_I, d, a, b, c, x[11] + 0xbd3af235, 10);
        ZU_MD5_STEP(ZU_MD5_I, c, d, a, b, x[2] + 0x2ad7d2bb, 15);
        ZU_MD5_STEP(ZU_MD5_I, b, c, d, a, x[9] + 0xeb86d391, 21);
#undef ZU_MD5_STEP
#undef ZU_MD5_F
#undef ZU_MD5_G
#undef ZU_MD5_H
#undef ZU_MD5_I

        m_state[0] += a;
        m_state[1] += b;
        m_state[2] += c;
        m_state[3] += d;
    }

    quint32 m_state[4] = { 0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476 };
    quint64 m_length = 0;
    unsigned char m_block[64];
};

// Feeds the UTF-8 form of `text` to `md5` through a stack buffer. Returns false on an unpaired
// surrogate, whose encoding is left to QString::toUtf8 so that the bytes are always Qt's.
bool feedUtf8(Md5 &md5, const QString &text)
{
    unsigned char buffer[1024];
    size_t n = 0;
    const ushort *p = text.utf16();
    const ushort *const end = p + text.size();
    while (p < end) {
        if (n > sizeof(buffer) - 4) {
            md5.update(buffer, n);
            n = 0;
        }
        const uint c = *p++;
        if (c < 0x80) {
            buffer[n++] = static_cast<unsigned char>(c);
        } else if (c < 0x800) {
            buffer[n++] = static_cast<unsigned char>(0xc0 | (c >> 6));
            buffer[n++] = static_cast<unsigned char>(0x80 | (c & 0x3f));
        } else if (c >= 0xd800 && c <= 0xdfff) {
            if (c >= 0xdc00 || p == end || *p < 0xdc00 || *p > 0xdfff)
                return false;
            const uint u = 0x10000 + ((c - 0xd800) << 10) + (*p++ - 0xdc00);
            buffer[n++] = static_cast<unsigned char>(0xf0 | (u >> 18));
            buffer[n++] = static_cast<unsigned char>(0x80 | ((u >> 12) & 0x3f));
            buffer[n++] = static_cast<unsigned char>(0x80 | ((u >> 6) & 0x3f));
            buffer[n++] = static_cast<unsigned char>(0x80 | (u & 0x3f));
        } else {
            buffer[n++] = static_cast<unsigned char>(0xe0 | (c >> 12));
            buffer[n++] = static_cast<unsigned char>(0x80 | ((c >> 6) & 0x3f));
            buffer[n++] = static_cast<unsigned char>(0x80 | (c & 0x3f));
        }
    }
    md5.update(buffer, n);
    return true;
}

} // namespace

namespace ZuCore {

QString settingsIniFileName()
{
    return s_settingsIniFileName;
}

void setSettingsIniFileName(const QString &fileName)
{
    s_settingsIniFileName = fileName;
}

QString dateFormat()
{
    return s_dateFormat;
}

QString dateTimeFormat()
{
    return s_dateTimeFormat;
}

void setDateFormat(const QString &format)
{
    s_dateFormat = format;
}

void setDateTimeFormat(const QString &format)
{
    s_dateTimeFormat = format;
}

QDate nullDate()
{
    return QDate();
}

QDateTime nullDateTime()
{
    return QDateTime();
}

bool isNullDate(const QDate &date)
{
    return !date.isValid();
}

bool isNullDateTime(const QDateTime &dateTime)
{
    return !dateTime.isValid();
}

QDate dateFromString(const QString &text)
{
    return QDate::fromString(text, s_dateFormat);
}

QDateTime dateTimeFromString(const QString &text)
{
    return QDateTime::fromString(text, s_dateTimeFormat);
}

QString dateToString(const QDate &date)
{
    return (date.isValid() ? date : QDate::currentDate()).toString(s_dateFormat);
}

QString dateTimeToString(const QDateTime &dateTime)
{
    return (dateTime.isNull() ? QDateTime::currentDateTime() : dateTime).toString(s_dateTimeFormat);
}

QString dateToMySqlString(const QDate &date)
{
    return date.toString(QStringLiteral("yyyy-MM-dd"));
}

QString dateTimeToMySqlString(const QDateTime &dateTime)
{
    return dateTime.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss"));
}

QString toDateString(const QVariant &value, const QString &defaultValue)
{
    const QDate date = value.toDate();
    return date.isValid() ? date.toString(Qt::ISODate) : defaultValue;
}

QString toDateTimeString(const QVariant &value, const QString &defaultValue)
{
    const QDateTime dateTime = value.toDateTime();
    return dateTime.date().isValid() ? dateTime.toString(storedDateTimeFormat()) : defaultValue;
}

QDate fromDateString(const QVariant &value)
{
    const QString text = value.toString();
    return text.isEmpty() ? QDate() : QDate::fromString(text, Qt::ISODate);
}

QDateTime fromDateTimeString(const QVariant &value)
{
    const QString text = value.toString();
    return text.isEmpty() ? QDateTime() : QDateTime::fromString(text, storedDateTimeFormat());
}

int dayOfWeekQtToMySql(int qtDay)
{
    if (qtDay >= 1 && qtDay <= 6)
        return qtDay + 1;
    return qtDay == 7 ? 1 : 0;
}

int dayOfWeekMySqlToQt(int mySqlDay)
{
    if (mySqlDay >= 2 && mySqlDay <= 7)
        return mySqlDay - 1;
    return mySqlDay == 1 ? 7 : 0;
}

QStringList mySqlDaysOfWeek()
{
    return { QStringLiteral("Sun"), QStringLiteral("Mon"), QStringLiteral("Tue"),
             QStringLiteral("Wed"), QStringLiteral("Thu"), QStringLiteral("Fri"),
             QStringLiteral("Sat") };
}

QString mySqlDayOfWeek(int mySqlDay)
{
    if (mySqlDay < 1 || mySqlDay > 7)
        return QStringLiteral("Unknown Day");
    return mySqlDaysOfWeek().at(mySqlDay - 1);
}

QString escapeField(const QString &field)
{
    QString escaped = field;
    return escaped.replace(QLatin1Char('\''), QLatin1String("''"));
}

QChar checkChar()
{
    return QChar(0x2713);
}

QChar crossChar()
{
    return QChar(0x2613);
}

QStringList intsToStrings(const QList<int> &values)
{
    QStringList texts;
    texts.reserve(values.size());
    for (int value : values)
        texts.append(QString::number(value));
    texts.sort(Qt::CaseSensitive);
    return texts;
}

QStringList uintsToStrings(const QList<uint> &values)
{
    QStringList texts;
    texts.reserve(values.size());
    for (uint value : values)
        texts.append(QString::number(static_cast<int>(value)));
    texts.sort(Qt::CaseSensitive);
    return texts;
}

QList<int> stringsToInts(const QStringList &texts)
{
    QList<int> values;
    values.reserve(texts.size());
    for (const QString &text : texts)
        values.append(text.toInt(nullptr, 10));
    return values;
}

QList<uint> stringsToUints(const QStringList &texts)
{
    QList<uint> values;
    values.reserve(texts.size());
    for (const QString &text : texts)
        values.append(static_cast<uint>(text.toInt(nullptr, 10)));
    return values;
}

QModelIndex matchValue(const QAbstractItemModel *model, const QVariant &value, int column, int role)
{
    if (!model)
        return QModelIndex();
    const QModelIndex start = model->index(0, column, QModelIndex());
    const QModelIndexList hits
        = model->match(start, role, value, 1, Qt::MatchFlags(Qt::MatchExactly));
    return hits.isEmpty() ? QModelIndex() : hits.first();
}

QString md5(const QString &text)
{
    Md5 hash;
    if (!feedUtf8(hash, text)) {
        hash = Md5();
        const QByteArray utf8 = text.toUtf8();
        hash.update(reinterpret_cast<const unsigned char *>(utf8.constData()), size_t(utf8.size()));
    }
    unsigned char digest[16];
    hash.finish(digest);

    static const char digits[] = "0123456789abcdef";
    QString hex(32, Qt::Uninitialized);
    QChar *out = hex.data();
    for (unsigned char byte : digest) {
        *out++ = QLatin1Char(digits[byte >> 4]);
        *out++ = QLatin1Char(digits[byte & 15]);
    }
    return hex;
}

QString stringFromJsonObj(const QJsonObject &object)
{
    return QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact));
}

QJsonObject jsonObjFromString(const QString &text)
{
    const QJsonObject empty;
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8());
    if (document.isNull()) {
        LOG_ERROR().noquote() << QStringLiteral("Invalid JSON...\n") + text + QLatin1Char('\n');
        return empty;
    }
    if (!document.isObject()) {
        LOG_ERROR().noquote() << "Document is not an object\n";
        return empty;
    }
    return document.object();
}

} // namespace ZuCore
