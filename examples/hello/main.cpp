#include <zucore/zucore.h>

#include <QCoreApplication>
#include <QFileInfo>

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    auto *file = new LoggerFileAppender(QStringLiteral("hello.log"));
    file->setFormat(QStringLiteral("%{time}{yyyy-MM-dd HH:mm:ss} [%{type:-7}] %{message}\n"));
    cuteLoggerInstance()->registerAppender(new LoggerConsoleAppender);
    cuteLoggerInstance()->registerAppender(file);
    LOG_INFO().noquote() << "zucore says hello; md5 of 'abc' is" << ZuCore::md5(QStringLiteral("abc"));
    LOG_INFO().noquote() << "the log file is" << QFileInfo(file->fileName()).absoluteFilePath();
    return 0;
}
