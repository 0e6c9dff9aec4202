#pragma once

#include <QApplication>
#include <QDir>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QtTest>

namespace zutest {

// Every test runs headless, with QStandardPaths in test mode, inside a fresh
// temporary folder that is removed when the test ends.
inline void prepareEnvironment()
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QStandardPaths::setTestModeEnabled(true);
}

inline bool enterTemporaryDir(const QTemporaryDir &dir)
{
    return dir.isValid() && QDir::setCurrent(dir.path());
}

/// One row per entry of @p table, named by its `name`, holding the entry's index as "row".
template<typename Entry, std::size_t N> void addRows(const Entry (&table)[N])
{
    QTest::addColumn<int>("row");
    for (std::size_t i = 0; i < N; ++i)
        QTest::newRow(table[i].name) << int(i);
}

} // namespace zutest

#define ZU_TEST_MAIN(TestObject)                                                                   \
    int main(int argc, char **argv)                                                                \
    {                                                                                              \
        zutest::prepareEnvironment();                                                              \
        QApplication app(argc, argv);                                                              \
        app.setAttribute(Qt::AA_Use96Dpi, true);                                                   \
        QTemporaryDir workDir;                                                                     \
        if (!zutest::enterTemporaryDir(workDir))                                                   \
            qFatal("cannot enter a temporary folder");                                             \
        TestObject tc;                                                                             \
        QTEST_SET_MAIN_SOURCE_PATH                                                                 \
        return QTest::qExec(&tc, argc, argv);                                                      \
    }
