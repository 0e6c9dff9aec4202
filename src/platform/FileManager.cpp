#include "platform/FileManager.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QUrl>

#ifndef Q_OS_WIN
#include <QDesktopServices>
#ifdef ZUCORE_HAVE_DBUS
#include <QDBusConnection>
#include <QDBusMessage>
#endif
#endif

namespace ZuPlatform {

#ifdef Q_OS_WIN

void showFileInFileManager(const QString &fileName)
{
    QProcess::startDetached(QStringLiteral("explorer"),
                            { QStringLiteral("/select,"), QDir::toNativeSeparators(fileName) });
}

#else

namespace {

#ifdef ZUCORE_HAVE_DBUS
// The freedesktop.org file manager interface, which Nautilus, Dolphin, Nemo, Thunar and others
// implement; it selects the item in a new or existing window.
bool showOverDBus(const QString &fileName)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return false;
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << QStringList { QUrl::fromLocalFile(QFileInfo(fileName).absoluteFilePath()).toString() }
         << QString();
    // Short: a file manager that has to be started answers once it runs, and nothing else waits.
    const QDBusMessage reply = bus.call(call, QDBus::Block, 3000);
    return reply.type() == QDBusMessage::ReplyMessage;
}
#endif

} // namespace

void showFileInFileManager(const QString &fileName)
{
#ifdef ZUCORE_HAVE_DBUS
    if (showOverDBus(fileName))
        return;
#endif
    QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(fileName).absolutePath()));
}

#endif

} // namespace ZuPlatform
