#pragma once

#include <QByteArray>
#include <QFile>
#include <QTemporaryFile>

#include <cstdio>
#include <unistd.h>

namespace zutest {

/**
 * Redirects file descriptor 2 into a temporary file for the lifetime of the object (or until
 * take()), so that diagnostics printed on standard error can be compared byte for byte.
 */
class StderrCapture
{
    Q_DISABLE_COPY(StderrCapture)
public:
    StderrCapture()
    {
        m_file.open();
        std::fflush(stderr);
        m_saved = ::dup(2);
        ::dup2(m_file.handle(), 2);
    }
    ~StderrCapture() { take(); }

    /// Everything written to standard error so far; stops the redirection.
    QByteArray take()
    {
        if (m_saved >= 0) {
            std::fflush(stderr);
            ::dup2(m_saved, 2);
            ::close(m_saved);
            m_saved = -1;
        }
        QFile in(m_file.fileName());
        return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
    }

private:
    QTemporaryFile m_file;
    int m_saved = -1;
};

} // namespace zutest
