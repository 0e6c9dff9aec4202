#include <zucore/Logger.h>
#include <zucore/LoggerAbstractAppender.h>
#include <zucore/ZuAbstractTableModel.h>

#include <QJsonDocument>
#include <QString>

#include <cstdint>
#include <cstdlib>

namespace {

// Keeps the fallback to standard error quiet: a warning per missing column
// would otherwise dominate the run.
class QuietAppender : public LoggerAbstractAppender
{
protected:
    void append(const QDateTime &, Logger::LogLevel, const char *, int, const char *,
                const QString &, const QString &) override
    { }
};

} // namespace

// Arbitrary text through insertFromJsonString on a three-column model. The
// answer must agree with Qt's own parser: refused text leaves the table as it
// was, accepted text adds one row per array element, and the table must
// export and survive a revert; anything else aborts.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const bool quiet = [] {
        cuteLoggerInstance()->registerAppender(new QuietAppender);
        return true;
    }();
    Q_UNUSED(quiet)

    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), int(size));
    ZuAbstractTableModel model;
    for (int c = 0; c < 3; ++c)
        model.setHeaderData(c, Qt::Horizontal, QStringLiteral("c%1").arg(c));
    model.insertFromStrings({ "x", "y", "z" });

    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8(), &error);
    const int expectedRows
        = (!text.isEmpty() && error.error == QJsonParseError::NoError && document.isArray())
        ? document.array().size()
        : 0;
    const bool accepted = model.insertFromJsonString(text);
    if (accepted != (expectedRows > 0) || model.rowCount() != 1 + expectedRows)
        abort();
    if (model.toStringsList().size() != model.rowCount())
        abort();
    model.toJsonString();
    model.revert();
    if (model.rowCount() < 1)
        abort();
    return 0;
}
