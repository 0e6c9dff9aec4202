#include <zucore/Logger.h>
#include <zucore/ZuCore.h>

#include <QAbstractItemModel>
#include <QCryptographicHash>
#include <QJsonDocument>

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
    return QString::fromLatin1(
        QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Md5).toHex());
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
