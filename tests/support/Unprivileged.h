#pragma once

#include <QtGlobal>

#include <unistd.h>

namespace zutest {

/**
 * Runs a scope as user and group "nobody" when the tests run as root, so that file permissions
 * hold; the saved set-user-ID stays 0 to come back. Does nothing for any other user.
 */
class Unprivileged
{
    Q_DISABLE_COPY(Unprivileged)
public:
    Unprivileged()
        : m_wasRoot(geteuid() == 0)
    {
        if (m_wasRoot)
            m_ok = setresgid(65534, 65534, 0) == 0 && setresuid(65534, 65534, 0) == 0;
    }
    ~Unprivileged()
    {
        if (m_wasRoot && (setresuid(0, 0, 0) != 0 || setresgid(0, 0, 0) != 0))
            qFatal("cannot return to root");
    }
    bool ok() const { return m_ok; }

private:
    bool m_wasRoot;
    bool m_ok = true;
};

} // namespace zutest
