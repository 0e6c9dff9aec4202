// The logger against spdlog, each flushing every record to a file, and against the floor of
// writing the finished line with QFile.
#include <zucore/Logger.h>
#include <zucore/LoggerFileAppender.h>

#include <QFile>

#include <benchmark/benchmark.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/basic_file_sink.h>
#include <spdlog/spdlog.h>

namespace {

const char *const ourPattern
    = "%{time}{yyyy-MM-ddTHH:mm:ss.zzz} [%{type:-7}] <%{function}> %{message}";
// The same fields: date and time with milliseconds, level padded to 7, function, message.
const char *const spdlogPattern = "%Y-%m-%dT%H:%M:%S.%e [%-7l] <%!> %v";

struct FormatOnly : LoggerAbstractStringAppender
{
    void append(const QDateTime &, Logger::LogLevel, const char *, int, const char *,
                const QString &, const QString &) override
    { }
};

QByteArray lastLine(const QString &fileName, int *lineCount)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    const QList<QByteArray> lines = file.readAll().trimmed().split('\n');
    *lineCount = lines.size();
    return lines.last();
}

void checkLog(benchmark::State &state, const QString &fileName, const char *contains)
{
    int lines = 0;
    const QByteArray line = lastLine(fileName, &lines);
    if (lines != int(state.iterations()) || !line.contains(contains))
        state.SkipWithError("the log file does not hold the records");
    QFile::remove(fileName);
}

// One LOG_INFO through the global logger into a file appender, flushed per record.
void runOurFileRecord(benchmark::State &state, const QString &fileName)
{
    QFile::remove(fileName);
    auto *appender = new LoggerFileAppender(fileName);
    appender->setFormat(QLatin1String(ourPattern) + QLatin1Char('\n'));
    cuteLoggerInstance()->registerAppender(appender);
    for (auto _ : state)
        LOG_INFO(QStringLiteral("a short message"));
    cuteLoggerInstance()->removeAppender(appender);
    delete appender;
    checkLog(state, fileName, "[Info   ] <{anonymous}::runOurFileRecord> a short message");
}

void logger_file_record_ours(benchmark::State &state)
{
    runOurFileRecord(state, QStringLiteral("ours_record.log"));
}

void logger_file_record_peer(benchmark::State &state)
{
    const QString fileName = QStringLiteral("peer_record.log");
    QFile::remove(fileName);
    {
        auto sink = std::make_shared<spdlog::sinks::basic_file_sink_mt>(fileName.toStdString());
        spdlog::logger logger("bench", sink);
        logger.set_pattern(spdlogPattern);
        logger.flush_on(spdlog::level::trace);
        for (auto _ : state)
            logger.log(spdlog::source_loc { __FILE__, __LINE__, SPDLOG_FUNCTION },
                       spdlog::level::info, "a short message");
    }
    checkLog(state, fileName, "<logger_file_record_peer> a short message");
}

void logger_file_floor_ours(benchmark::State &state)
{
    runOurFileRecord(state, QStringLiteral("ours_floor.log"));
}

// The finished line written and flushed: what any file appender has to pay at least.
void logger_file_floor_peer(benchmark::State &state)
{
    const QString fileName = QStringLiteral("peer_floor.log");
    QFile::remove(fileName);
    {
        QFile file(fileName);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Text)) {
            state.SkipWithError("cannot open the log file");
            return;
        }
        const QByteArray line = QDateTime::currentDateTime()
                                    .toString(QStringLiteral("yyyy-MM-ddTHH:mm:ss.zzz"))
                                    .toUtf8()
            + " [Info   ] <{anonymous}::runOurFileRecord> a short message\n";
        for (auto _ : state) {
            file.write(line);
            file.flush();
        }
    }
    checkLog(state, fileName, "runOurFileRecord> a short message");
}

void format_default_pattern_ours(benchmark::State &state)
{
    FormatOnly appender;
    const QDateTime timeStamp = QDateTime::currentDateTime();
    const QString message = QStringLiteral("a short message");
    QString line;
    for (auto _ : state) {
        line = appender.formattedString(timeStamp, Logger::Info, __FILE__, __LINE__, Q_FUNC_INFO,
                                        QString(), message);
        benchmark::DoNotOptimize(line);
    }
    if (!line.endsWith(
            QLatin1String(" [Info   ] <{anonymous}::format_default_pattern_ours> a short "
                          "message"))
        || line.indexOf(QLatin1Char('T')) != 10)
        state.SkipWithError("unexpected line");
}

void format_default_pattern_peer(benchmark::State &state)
{
    spdlog::pattern_formatter formatter(spdlogPattern, spdlog::pattern_time_type::local, "");
    const spdlog::details::log_msg msg(spdlog::source_loc { __FILE__, __LINE__, SPDLOG_FUNCTION },
                                       "bench", spdlog::level::info, "a short message");
    spdlog::memory_buf_t buffer;
    for (auto _ : state) {
        buffer.clear();
        formatter.format(msg, buffer);
        benchmark::DoNotOptimize(buffer.data());
    }
    const std::string line(buffer.data(), buffer.size());
    if (line.find(" [info   ] <format_default_pattern_peer> a short message") == std::string::npos)
        state.SkipWithError("unexpected line");
}

// A LOG_DEBUG with two streamed values while the only appender takes Warning and up, against
// spdlog's statement below its logger's level. Ours must not even evaluate the values.
void logger_disabled_statement_ours(benchmark::State &state)
{
    auto *appender = new FormatOnly;
    appender->setDetailsLevel(Logger::Warning);
    cuteLoggerInstance()->registerAppender(appender);
    LOG_WARNING("settles the level"); // the first statement after a change works it out
    const QString text = QStringLiteral("value");
    int evaluated = 0;
    for (auto _ : state)
        LOG_DEBUG() << text << ++evaluated;
    cuteLoggerInstance()->removeAppender(appender);
    delete appender;
    if (evaluated != 0)
        state.SkipWithError("a skipped statement evaluated its arguments");
}

void logger_disabled_statement_peer(benchmark::State &state)
{
    spdlog::logger logger("disabled",
                          std::make_shared<spdlog::sinks::basic_file_sink_mt>("peer_disabled.log"));
    logger.set_level(spdlog::level::warn);
    const std::string text = "value";
    int evaluated = 0;
    for (auto _ : state)
        logger.debug("{} {}", text, ++evaluated);
    benchmark::DoNotOptimize(evaluated);
}

// Applications log from many places: records come from eight call sites in turn.
template<int Site> void ourSite()
{
    LOG_INFO(QStringLiteral("a short message"));
}

template<int Site> void peerSite(spdlog::logger &logger)
{
    logger.log(spdlog::source_loc { __FILE__, __LINE__, SPDLOG_FUNCTION }, spdlog::level::info,
               "a short message");
}

void logger_file_record_sites_ours(benchmark::State &state)
{
    const QString fileName = QStringLiteral("ours_sites.log");
    QFile::remove(fileName);
    auto *appender = new LoggerFileAppender(fileName);
    appender->setFormat(QLatin1String(ourPattern) + QLatin1Char('\n'));
    cuteLoggerInstance()->registerAppender(appender);
    void (*const sites[])() = { ourSite<0>, ourSite<1>, ourSite<2>, ourSite<3>,
                                ourSite<4>, ourSite<5>, ourSite<6>, ourSite<7> };
    size_t next = 0;
    for (auto _ : state)
        sites[next++ % 8]();
    cuteLoggerInstance()->removeAppender(appender);
    delete appender;
    checkLog(state, fileName, "[Info   ] <{anonymous}::ourSite> a short message");
}

void logger_file_record_sites_peer(benchmark::State &state)
{
    const QString fileName = QStringLiteral("peer_sites.log");
    QFile::remove(fileName);
    {
        auto sink = std::make_shared<spdlog::sinks::basic_file_sink_mt>(fileName.toStdString());
        spdlog::logger logger("sites", sink);
        logger.set_pattern(spdlogPattern);
        logger.flush_on(spdlog::level::trace);
        void (*const sites[])(spdlog::logger &)
            = { peerSite<0>, peerSite<1>, peerSite<2>, peerSite<3>,
                peerSite<4>, peerSite<5>, peerSite<6>, peerSite<7> };
        size_t next = 0;
        for (auto _ : state)
            sites[next++ % 8](logger);
    }
    checkLog(state, fileName, "<peerSite> a short message");
}

} // namespace

BENCHMARK(logger_disabled_statement_ours)->Name("logger_disabled_statement/ours");
BENCHMARK(logger_disabled_statement_peer)->Name("logger_disabled_statement/peer");
BENCHMARK(logger_file_record_sites_ours)->Name("logger_file_record_sites/ours");
BENCHMARK(logger_file_record_sites_peer)->Name("logger_file_record_sites/peer");
BENCHMARK(logger_file_record_ours)->Name("logger_file_record/ours");
BENCHMARK(logger_file_record_peer)->Name("logger_file_record/peer");
BENCHMARK(logger_file_floor_ours)->Name("logger_file_floor/ours");
BENCHMARK(logger_file_floor_peer)->Name("logger_file_floor/peer");
BENCHMARK(format_default_pattern_ours)->Name("format_default_pattern/ours");
BENCHMARK(format_default_pattern_peer)->Name("format_default_pattern/peer");
