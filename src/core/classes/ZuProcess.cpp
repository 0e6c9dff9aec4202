#include "compat/ZuProcessStart.h"

#include <zucore/Logger.h>
#include <zucore/ZuProcess.h>

ZuProcess::ZuProcess(QObject *parent)
    : QProcess(parent)
{ }

ZuProcess::~ZuProcess() = default;

bool ZuProcess::exec(const QString &command)
{
    connect(this, &QProcess::readyReadStandardError, this, &ZuProcess::readFromStderr);
    LOG_TRACE().noquote() << command;

    ZuCompat::startCommand(*this, command, QIODevice::ReadWrite);

    bool result = false;
    if (!waitForStarted(30000)) {
        m_errorMessage = QStringLiteral("Error command in '%1' not found.").arg(command);
        LOG_ERROR().noquote() << m_errorMessage;
    } else if (!waitForFinished(-1)) {
        m_errorMessage = QStringLiteral("Error executing process.");
        LOG_ERROR().noquote() << m_errorMessage;
    } else if (exitStatus() == QProcess::NormalExit && exitCode() == 0) {
        LOG_TRACE() << "Process finished.";
        result = true;
    } else {
        LOG_ERROR().noquote() << QStringLiteral("Process crashed. Exit Code=%1").arg(exitCode());
    }

    QObject::disconnect(this, nullptr, nullptr, nullptr);
    return result;
}

QString ZuProcess::errorMessage() const
{
    return m_errorMessage;
}

void ZuProcess::readFromStderr()
{
    const QByteArray output = readAllStandardError();
    // Zero-terminated, so the text ends at the first zero byte.
    m_errorMessage = QString::fromUtf8(output.constData());
    LOG_ERROR().noquote() << m_errorMessage;
}
