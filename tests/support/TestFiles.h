#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QtTest>

#include <csignal>
#include <sys/resource.h>

namespace zutest {

/// The bytes of @p fileName, or "<unreadable>".
inline QByteArray contentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

inline void writeFile(const QString &fileName, const QByteArray &data)
{
    QFile file(fileName);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(data) == data.size());
}

/**
 * A full disk for the scope: writes past @p bytes fail (SIGXFSZ is ignored, so they fail
 * instead of ending the process). The old limit comes back at the end of the scope.
 */
class FileSizeLimit
{
    Q_DISABLE_COPY(FileSizeLimit)
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_old);
        const rlimit limited = { bytes, m_old.rlim_max };
        setrlimit(RLIMIT_FSIZE, &limited);
    }
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &m_old); }

private:
    rlimit m_old {};
};

} // namespace zutest
