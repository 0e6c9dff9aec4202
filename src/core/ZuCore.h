#pragma once

#include <zucore/zucore_export.h>

#include <QDate>
#include <QDateTime>
#include <QFlags>
#include <QJsonObject>
#include <QList>
#include <QModelIndex>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>

class QAbstractItemModel;

/**
 * @namespace ZuCore
 * @brief Free helpers every application needs: process-wide formats, null dates, date strings,
 * days of the week, model option flags, string and list helpers, MD5 and a JSON string codec.
 *
 * @code #include <zucore/ZuCore.h> @endcode
 *
 * The three process-wide texts (date format, date-time format, settings ini file name) are set
 * when the library is loaded and have no lock: set them at the application's start, before other
 * threads run. Nothing here raises a box; only jsonObjFromString() logs.
 *
 * Defaults: the @c defaultValue of toDateString() and toDateTimeString() is an empty string, and
 * matchValue() searches Qt::DisplayRole unless told otherwise.
 */
namespace ZuCore {
Q_NAMESPACE_EXPORT(ZUCORE_EXPORT)

/**
 * Single-bit flags given to the constructors of the table and tree models. Bits 2 and 4 carry no
 * meaning; any other value is stored and reported unchanged.
 */
enum ModelOption {
    ReadOnly = 1, ///< the read-only state of the tree model
    ModelOption8 = 8, ///< reported through ItemOptionsRole as 2
    ModelOption16 = 16, ///< reported through ItemOptionsRole as 1
};
Q_DECLARE_FLAGS(ModelOptions, ModelOption)
Q_FLAG_NS(ModelOptions)

/// @name Settings and formats
/// @{

/// The name of the settings ini file; empty (the default) means the platform's settings.
ZUCORE_EXPORT QString settingsIniFileName();
/// Replaces the settings ini file name, unchecked.
ZUCORE_EXPORT void setSettingsIniFileName(const QString &fileName);
/// The display format of dates, "MMM dd, yyyy" at first.
ZUCORE_EXPORT QString dateFormat();
/// The display format of date-times, "MMM dd, yyyy hh:mm:ss" at first.
ZUCORE_EXPORT QString dateTimeFormat();
/// Replaces the date display format, unchecked.
ZUCORE_EXPORT void setDateFormat(const QString &format);
/// Replaces the date-time display format, unchecked.
ZUCORE_EXPORT void setDateTimeFormat(const QString &format);
/// @}

/// @name Null dates
/// @{

/// A default-constructed (null, invalid) date.
ZUCORE_EXPORT QDate nullDate();
/// A default-constructed (null, invalid) date-time.
ZUCORE_EXPORT QDateTime nullDateTime();
/// True when @p date is not valid.
ZUCORE_EXPORT bool isNullDate(const QDate &date);
/// True when @p dateTime is not valid (a valid date with an invalid time counts as null).
ZUCORE_EXPORT bool isNullDateTime(const QDateTime &dateTime);
/// @}

/// @name Display strings (process-wide formats)
/// @{

/// Parses @p text with dateFormat(); the null date when it doesn't fit.
ZUCORE_EXPORT QDate dateFromString(const QString &text);
/// Parses @p text with dateTimeFormat(); an invalid date-time when it doesn't fit.
ZUCORE_EXPORT QDateTime dateTimeFromString(const QString &text);
/// @p date in dateFormat(); an invalid date prints today's date, never an empty string.
ZUCORE_EXPORT QString dateToString(const QDate &date);
/// @p dateTime in dateTimeFormat(); a null date-time prints the present moment.
ZUCORE_EXPORT QString dateTimeToString(const QDateTime &dateTime);
/// @}

/// @name Stored strings (fixed formats)
/// @{

/// @p date as "yyyy-MM-dd"; empty for an invalid date.
ZUCORE_EXPORT QString dateToMySqlString(const QDate &date);
/// @p dateTime as "yyyy-MM-dd hh:mm:ss"; empty for an invalid date-time.
ZUCORE_EXPORT QString dateTimeToMySqlString(const QDateTime &dateTime);
/// The ISO text of value.toDate(), or @p defaultValue when that date is not valid.
ZUCORE_EXPORT QString toDateString(const QVariant &value, const QString &defaultValue = QString());
/// value.toDateTime() as "yyyy-MM-dd HH:mm:ss", or @p defaultValue when its date part is not
/// valid.
ZUCORE_EXPORT QString toDateTimeString(const QVariant &value,
                                       const QString &defaultValue = QString());
/// The ISO date in value.toString(); the null date for empty or unparsable text.
ZUCORE_EXPORT QDate fromDateString(const QVariant &value);
/// The "yyyy-MM-dd HH:mm:ss" date-time in value.toString(); a null date-time for empty text, an
/// invalid one for text that doesn't fit.
ZUCORE_EXPORT QDateTime fromDateTimeString(const QVariant &value);
/// @}

/// @name Days of the week (Qt: Monday = 1 .. Sunday = 7; MySQL: Sunday = 1 .. Saturday = 7)
/// @{

/// The MySQL number of a Qt day number; 0 outside 1..7.
ZUCORE_EXPORT int dayOfWeekQtToMySql(int qtDay);
/// The Qt number of a MySQL day number; 0 outside 1..7.
ZUCORE_EXPORT int dayOfWeekMySqlToQt(int mySqlDay);
/// A new list "Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat".
ZUCORE_EXPORT QStringList mySqlDaysOfWeek();
/// The short name of MySQL day 1..7; "Unknown Day" for any other number.
ZUCORE_EXPORT QString mySqlDayOfWeek(int mySqlDay);
/// @}

/// @name Strings and lists
/// @{

/// @p field with every single quote doubled, for a quoted SQL literal.
ZUCORE_EXPORT QString escapeField(const QString &field);
/// U+2713 CHECK MARK.
ZUCORE_EXPORT QChar checkChar();
/// U+2613 SALTIRE.
ZUCORE_EXPORT QChar crossChar();
/// The decimal texts of @p values, sorted as text (so 10, 100, 9).
ZUCORE_EXPORT QStringList intsToStrings(const QList<int> &values);
/// As intsToStrings(), each value printed as a signed 32-bit number (2^31 and up turn negative).
ZUCORE_EXPORT QStringList uintsToStrings(const QList<uint> &values);
/// Each text as a base-10 int, in input order; 0 for an entry that doesn't parse.
ZUCORE_EXPORT QList<int> stringsToInts(const QStringList &texts);
/// Each text through the signed 32-bit parser, in input order; 0 for an entry that doesn't
/// parse, the two's complement for a negative one.
ZUCORE_EXPORT QList<uint> stringsToUints(const QStringList &texts);
/**
 * The first top-level index in @p column of @p model, from row 0 down, whose data for @p role
 * equals @p value (QAbstractItemModel::match with Qt::MatchExactly, one hit).
 * @return an invalid index when nothing matches, the model has no rows, @p column has no index
 * or @p model is null.
 */
ZUCORE_EXPORT QModelIndex matchValue(const QAbstractItemModel *model, const QVariant &value,
                                     int column, int role = Qt::DisplayRole);
/// The RFC 1321 MD5 digest of the UTF-8 bytes of @p text: always 32 lower-case hex digits.
ZUCORE_EXPORT QString md5(const QString &text);
/// @}

/// @name JSON strings
/// @{

/// @p object as compact JSON text.
ZUCORE_EXPORT QString stringFromJsonObj(const QJsonObject &object);
/**
 * The JSON object in @p text.
 * @return an empty object, with a log line at Error level, when the text isn't valid JSON
 * ("Invalid JSON...") or holds an array ("Document is not an object"). A caller can't tell an
 * empty object in the text from a failure.
 */
ZUCORE_EXPORT QJsonObject jsonObjFromString(const QString &text);
/// @}

} // namespace ZuCore

Q_DECLARE_OPERATORS_FOR_FLAGS(ZuCore::ModelOptions)
