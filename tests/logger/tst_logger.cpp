#include "support/CapturingAppender.h"
#include "support/StderrCapture.h"
#include "support/ZuTest.h"

#include <zucore/Logger.h>
#include <zucore/LoggerAbstractStringAppender.h>

class tst_Logger : public QObject
{
    Q_OBJECT

private slots:
    void logStatementReachesCapture();
};

void tst_Logger::logStatementReachesCapture()
{
    zutest::LogCapture capture;
    const int line = __LINE__ + 1;
    LOG_INFO() << "hello" << 42;
    LOG_WARNING("value %d", 7);
    LOG_TRACE(QStringLiteral("trace text"));

    const QList<zutest::LogRecord> records = capture.records();
    QCOMPARE(records.size(), 3);
    QCOMPARE(records.at(0).level, Logger::Info);
    QCOMPARE(records.at(0).message, QStringLiteral("hello 42 "));
    QCOMPARE(records.at(0).line, line);
    QVERIFY(records.at(0).file.endsWith(QLatin1String("tst_logger.cpp")));
    QCOMPARE(LoggerAbstractStringAppender::stripFunctionName(qPrintable(records.at(0).function)),
             QStringLiteral("tst_Logger::logStatementReachesCapture"));
    QVERIFY(records.at(0).category.isNull());
    QCOMPARE(records.at(1).message, QStringLiteral("value 7"));
    QCOMPARE(records.at(2).level, Logger::Trace);
    QVERIFY(capture.contains(Logger::Trace, QStringLiteral("trace")));
}

ZU_TEST_MAIN(tst_Logger)
#include "tst_logger.moc"
