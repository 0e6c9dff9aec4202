#include "support/CapturingAppender.h"
#include "support/ZuTest.h"

#include <zucore/ZuProcess.h>

class tst_ZuProcess : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void outcomes_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<bool>("result");
        QTest::addColumn<QString>("errorMessage");
        QTest::addColumn<QString>("logged"); // at Error level, if any
        QTest::newRow("exit 0") << "/bin/sh -c \"exit 0\"" << true << "before" << QString();
        QTest::newRow("crash") << "/bin/sh -c \"kill -SEGV $$\"" << false << "before"
                               << "Process crashed. Exit Code=11";
        QTest::newRow("stderr, exit 3")
            << "/bin/sh -c \"printf 'bad\\0tail' >&2; exit 3\"" << false << "bad"
            << "Process crashed. Exit Code=3";
        QTest::newRow("missing program")
            << "/no/such/program -x" << false << "Error command in '/no/such/program -x' not found."
            << "Error command in '/no/such/program -x' not found.";
        // 8 MB on standard error, far beyond a pipe's buffer: must neither block the child nor us.
        QTest::newRow("stderr flood") << "/bin/sh -c \"head -c 8000000 /dev/zero | tr '\\0' x >&2; "
                                         "sleep 0.3; printf end >&2\""
                                      << true << "end" << QString("xxxx");
    }

    void outcomes()
    {
        QFETCH(QString, command);
        QFETCH(bool, result);
        QFETCH(QString, errorMessage);
        QFETCH(QString, logged);
        zutest::LogCapture capture;
        ZuProcess process;
        QCOMPARE(process.exec(QStringLiteral("/bin/sh -c \"printf before >&2\"")), true);
        QCOMPARE(process.errorMessage(), QStringLiteral("before"));
        capture.clear();

        QCOMPARE(process.exec(command), result); // the second exec on one object works as the first
        QCOMPARE(process.errorMessage(), errorMessage);
        QVERIFY(capture.contains(Logger::Trace, command));
        QCOMPARE(capture.contains(Logger::Trace, QStringLiteral("Process finished.")), result);
        if (!logged.isEmpty())
            QVERIFY2(capture.contains(Logger::Error, logged),
                     qPrintable(capture.messages().join('|')));
        QCOMPARE(capture.contains(Logger::Error, QStringLiteral("Process crashed")),
                 logged.startsWith("Process crashed"));
    }

    // Own handlers go with the first exec; one that kills the child at its start fails the wait.
    void applicationHandlers()
    {
        zutest::LogCapture capture;
        ZuProcess first;
        int finished = 0;
        connect(&first, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished),
                [&finished] { ++finished; });
        QVERIFY(first.exec(QStringLiteral("/bin/sh -c \"exit 0\"")));
        QVERIFY(first.exec(QStringLiteral("/bin/sh -c \"exit 0\"")));
        QCOMPARE(finished, 1);

        ZuProcess process;
        connect(&process, &QProcess::started, &process, [&process] {
            process.kill();
            process.waitForFinished(10000);
        });
        QVERIFY(!process.exec(QStringLiteral("/bin/sh -c \"sleep 30\"")));
        QCOMPARE(process.errorMessage(), QStringLiteral("Error executing process."));
        QVERIFY(capture.contains(Logger::Error, QStringLiteral("Error executing process.")));
    }
};

ZU_TEST_MAIN(tst_ZuProcess)
#include "tst_zuprocess.moc"
