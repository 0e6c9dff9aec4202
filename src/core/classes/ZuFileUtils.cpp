#include "compat/ZuTextCodec.h"
#include "platform/FileManager.h"

#include <zucore/Logger.h>
#include <zucore/ZuFileUtils.h>

#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLocale>
#include <QMessageBox>
#include <QSaveFile>
#include <QTextStream>
#include <QUrl>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>
#endif

#include <functional>

namespace {

// The position of a " Rev ..." mark in `name`, or -1.
int revisionPosition(const QString &name)
{
    // The mark is " Rev .*" in QRegExp's syntax, where '.' takes any character, line breaks
    // included: it starts at the first " Rev " and runs to the end.
    return name.indexOf(QLatin1String(" Rev "), 0, Qt::CaseSensitive);
}

bool isGuiApplication()
{
    return qobject_cast<QGuiApplication *>(QCoreApplication::instance()) != nullptr;
}

void warn(const QString &title, const QString &text)
{
    QMessageBox::warning(nullptr, title, text, QMessageBox::Ok);
}

void showCannotRead(const QString &fileName, const QString &caption, const QString &reason)
{
    warn(caption, QStringLiteral("Cannot read file '%1'.\n%2.").arg(fileName, reason));
}

// Whether unlinking the existing `info` would work: not for a folder, and not when its folder
// denies this process (by its effective ids) writing.
bool canRemove(const QFileInfo &info)
{
    if (info.isDir())
        return false;
#ifdef Q_OS_UNIX
    const QByteArray dir = QFile::encodeName(info.absolutePath());
    return faccessat(AT_FDCWD, dir.constData(), W_OK | X_OK, AT_EACCESS) == 0;
#else
    return QFileInfo(info.absolutePath()).isWritable();
#endif
}

// QSaveFile refuses to replace a file that isn't writable, where removing it and creating it
// anew would work. Such a file is moved aside for the save and brought back if the save fails.
class AsideFile
{
public:
    explicit AsideFile(const QString &fileName)
        : m_fileName(fileName)
    {
        const QFileInfo info(fileName);
        if (!info.exists() || !info.isFile() || info.isWritable())
            return;
        for (int i = 0; i < 100 && m_aside.isEmpty(); ++i) {
            const QString candidate = QStringLiteral("%1.%2.old").arg(fileName).arg(i);
            if (!QFileInfo::exists(candidate) && QFile::rename(fileName, candidate))
                m_aside = candidate;
        }
    }
    ~AsideFile()
    {
        if (m_aside.isEmpty())
            return;
        if (m_committed)
            QFile::remove(m_aside);
        else
            restore();
    }
    void commit() { m_committed = true; }
    // Puts the old file back in its place.
    void restore()
    {
        if (!m_aside.isEmpty() && QFile::rename(m_aside, m_fileName))
            m_aside.clear();
    }

private:
    Q_DISABLE_COPY(AsideFile)
    QString m_fileName;
    QString m_aside;
    bool m_committed = false;
};

enum class SaveResult { Saved, NotRemoved, NotOpened, NotWritten };

// The three steps of a save, with the new content written beside the old file and renamed over
// it only when it is complete.
SaveResult save(const QString &fileName, QIODevice::OpenMode mode,
                const std::function<bool(QSaveFile &)> &write)
{
    const QFileInfo info(fileName);
    if (QFile::exists(fileName) && !canRemove(info)) {
        // Ask the file system itself: it fails without harm and says why. Should it succeed
        // after all, the save goes on just as one that removes the old file first.
        QFile old(fileName);
        if (!old.remove()) {
            warn(QStringLiteral("Error Saving File"),
                 QStringLiteral("Cannot remove previous version of file %1:\n%2.")
                     .arg(fileName, old.errorString()));
            return SaveResult::NotRemoved;
        }
    }

    AsideFile aside(fileName);
    QSaveFile file(fileName);
    if (!file.open(mode)) {
        aside.restore();
        warn(QStringLiteral("Error Saving File"),
             QStringLiteral("Unable to save '%1'.\n\n Is the file currently open?").arg(fileName));
        return SaveResult::NotOpened;
    }
    if (!write(file)) {
        file.cancelWriting();
        return SaveResult::NotWritten;
    }
    if (!file.commit())
        return SaveResult::NotWritten;
    aside.commit();
    return SaveResult::Saved;
}

} // namespace

namespace ZuFileUtils {

bool fileExists(const QString &fileName)
{
    return QFile::exists(fileName);
}

bool removeFile(const QString &fileName)
{
    if (!QFile::exists(fileName))
        return true;
    return QFile::remove(fileName);
}

bool renameFile(const QString &oldName, const QString &newName)
{
    if (!QFile::exists(oldName) || QFile::exists(newName))
        return false;
    return QFile::rename(oldName, newName);
}

bool copyFile(const QString &source, const QString &target)
{
    if (source == target)
        return false;
    // "a.txt" and "./a.txt" (or a link to it) are one file: removing the target would lose the
    // source.
    const QFileInfo sourceInfo(source);
    const QFileInfo targetInfo(target);
    if (QDir::cleanPath(sourceInfo.absoluteFilePath())
        == QDir::cleanPath(targetInfo.absoluteFilePath()))
        return false;
    const QString canonical = sourceInfo.canonicalFilePath();
    if (!canonical.isEmpty() && canonical == targetInfo.canonicalFilePath())
        return false;
    if (!removeFile(target))
        return false;
    return QFile::copy(source, target);
}

QString folder(const QString &fileName)
{
    return QFileInfo(fileName).absoluteDir().absolutePath();
}

QString strippedFileName(const QString &fileName)
{
    return QFileInfo(fileName).fileName();
}

QString strippedFileNameWithoutExtension(const QString &fileName)
{
    return QFileInfo(fileName).baseName();
}

QString extension(const QString &fileName)
{
    return QLatin1Char('.') + QFileInfo(fileName).suffix();
}

QString strippedFileNameWithoutRev(const QString &fileName)
{
    const QString name = strippedFileName(fileName);
    const int at = revisionPosition(name);
    if (at < 0)
        return name;
    return name.left(at) + extension(fileName);
}

QString strippedFileNameWithoutRevExtension(const QString &fileName)
{
    const QString name = strippedFileNameWithoutExtension(fileName);
    const int at = revisionPosition(name);
    return at < 0 ? name : name.left(at);
}

QDateTime created(const QString &fileName)
{
    // The creation time where the file system keeps one, else the time of the last change of
    // the file's metadata: what QFileInfo::created() answered before birth times were split off.
    const QFileInfo info(fileName);
    const QDateTime birth = info.birthTime();
    return birth.isValid() ? birth : info.metadataChangeTime();
}

QDateTime lastModified(const QString &fileName)
{
    return QFileInfo(fileName).lastModified();
}

qint64 size(const QString &fileName)
{
    const QFileInfo info(fileName);
    return info.exists() ? info.size() : 0;
}

QString sizeToString(const QString &fileName)
{
    const qint64 n = size(fileName);
    if (n < 1024)
        return QStringLiteral("%1 Bytes (%2 Bytes)").arg(n).arg(n);
    const QString bytes = QLocale().toString(n);
    if (n < 1048576)
        return QStringLiteral("%1 KB (%2 Bytes)").arg(QString::number(n / 1024.0, 'f', 2), bytes);
    return QStringLiteral("%1 MB (%2 Bytes)").arg(QString::number(n / 1048576.0, 'f', 2), bytes);
}

QByteArray fileChecksum(const QString &fileName, QCryptographicHash::Algorithm algorithm)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    QCryptographicHash hash(algorithm);
    if (!hash.addData(&file))
        return QByteArray();
    return hash.result().toHex().toUpper();
}

QByteArray readFromBinaryFile(const QString &fileName, const QString &caption)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        LOG_ERROR().noquote() << QStringLiteral("Cannot read file '%1'.").arg(fileName);
        showCannotRead(fileName, caption, file.errorString());
        return QByteArray();
    }
    const bool cursor = isGuiApplication();
    if (cursor)
        QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    const QByteArray data = file.readAll();
    if (cursor)
        QGuiApplication::restoreOverrideCursor();
    file.close();
    return data;
}

QString readFromTextFile(const QString &fileName, const QString &caption)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        showCannotRead(fileName, caption, file.errorString());
        return QString();
    }
    const QByteArray data = file.readAll();
    file.close();
    // A QByteArray is zero-terminated, so this stops at the first zero byte.
    return QString::fromUtf8(data.constData());
}

bool saveToBinaryFile(const QString &fileName, const QByteArray &data)
{
    const SaveResult result = save(fileName, QIODevice::WriteOnly, [&data](QSaveFile &file) {
        // A short count (a full disk) would leave a truncated file: keep the old one instead.
        return file.write(data) == data.size();
    });
    return result == SaveResult::Saved;
}

bool saveToTextFile(const QString &fileName, const QString &text)
{
    const SaveResult result
        = save(fileName, QIODevice::WriteOnly | QIODevice::Text, [&text](QSaveFile &file) {
              QTextStream stream(&file);
              ZuCompat::setUtf8(stream);
              stream << text;
              stream.flush();
              return stream.status() == QTextStream::Ok && file.error() == QFileDevice::NoError;
          });
    return result == SaveResult::Saved || result == SaveResult::NotWritten;
}

void showFolderInExplorer(const QString &folder)
{
    QDesktopServices::openUrl(QUrl(QStringLiteral("file:///") + folder, QUrl::TolerantMode));
}

void showFileInExplorer(const QString &fileName)
{
    ZuPlatform::showFileInFileManager(fileName);
}

} // namespace ZuFileUtils
