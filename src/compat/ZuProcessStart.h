#pragma once
// Starting a program from one command line: QProcess::start(QString) in Qt 5, startCommand later.
// Both split the text the same way (quotes group words, a doubled quote is a literal one).

#include <QProcess>
#include <QString>
#include <QtGlobal>

namespace ZuCompat {

inline void startCommand(QProcess &process, const QString &command, QIODevice::OpenMode mode)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    process.startCommand(command, mode);
#else
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_DEPRECATED
    process.start(command, mode);
    QT_WARNING_POP
#endif
}

} // namespace ZuCompat
