#include "compat/ZuBinaryJson.h"

#include <zucore/Logger.h>
#include <zucore/ZuFileUtils.h>
#include <zucore/ZuJsonDocumentFile.h>

#include <QCoreApplication>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QLockFile>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

namespace {

const char *const errorReadingFile = "Error Reading File";

QString lockFileNameFor(const QString &fileName)
{
    if (fileName.isEmpty())
        return QString();
    const QFileInfo info(fileName);
    return info.path() + QLatin1Char('/') + info.completeBaseName() + QStringLiteral(".lock");
}

// Whether the file holds exactly `utf8`, read in text mode as it was written.
bool fileHolds(const QString &fileName, const QByteArray &utf8)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly | QIODevice::Text) && file.readAll() == utf8;
}

} // namespace

ZuJsonDocumentFile::ZuJsonDocumentFile(QObject *parent)
    : QObject(parent)
    , m_fileExtension(QStringLiteral("json"))
    , m_fileTypeName(QStringLiteral("JSON File"))
{ }

ZuJsonDocumentFile::~ZuJsonDocumentFile()
{
    ZuJsonDocumentFile::closeFile();
}

QString ZuJsonDocumentFile::fileName() const
{
    return m_fileName;
}

bool ZuJsonDocumentFile::isModified() const
{
    return m_modified;
}

QJsonDocument ZuJsonDocumentFile::jsonDocument() const
{
    return m_jsonDocument;
}

QString ZuJsonDocumentFile::fileExtension() const
{
    return m_fileExtension;
}

QString ZuJsonDocumentFile::fileTypeName() const
{
    return m_fileTypeName;
}

bool ZuJsonDocumentFile::useLockFile() const
{
    return m_useLockFile;
}

void ZuJsonDocumentFile::setFileExtension(const QString &extension)
{
    m_fileExtension = extension;
}

void ZuJsonDocumentFile::setFileTypeName(const QString &typeName)
{
    m_fileTypeName = typeName;
}

void ZuJsonDocumentFile::setModified(bool modified)
{
    if (m_modified == modified)
        return;
    m_modified = modified;
    emit modifiedChanged(modified);
}

void ZuJsonDocumentFile::dataWasModified()
{
    // An edit that arrives while a lock is being fought over doesn't count.
    if (m_useLockFile && !isLocked())
        return;
    setModified(true);
}

QString ZuJsonDocumentFile::defaultFileName() const
{
    return QString();
}

void ZuJsonDocumentFile::closeFile()
{
    unlock();
    setModified(false);
}

void ZuJsonDocumentFile::clearData() { }

QString ZuJsonDocumentFile::fileFilter() const
{
    return QStringLiteral("%1 (*.%2)").arg(m_fileTypeName, m_fileExtension);
}

QString ZuJsonDocumentFile::getOpenFileName() const
{
    return QFileDialog::getOpenFileName(nullptr, QStringLiteral("Open %1").arg(m_fileTypeName),
                                        QString(), fileFilter());
}

QString ZuJsonDocumentFile::getSaveFileName() const
{
    return QFileDialog::getSaveFileName(nullptr,
                                        QStringLiteral("Save %1 File As").arg(m_fileTypeName),
                                        defaultFileName(), fileFilter());
}

bool ZuJsonDocumentFile::newFile()
{
    if (!maybeSave())
        return false;
    closeFile();
    m_fileName.clear();
    m_jsonDocument = QJsonDocument();
    clearData();
    setModified(false);
    return true;
}

int ZuJsonDocumentFile::openFile(const QString &fileName)
{
    if (!maybeSave())
        return 0;
    QString name = fileName;
    if (name.isEmpty()) {
        name = getOpenFileName();
        if (name.isEmpty())
            return 0;
    }
    if (!ZuFileUtils::fileExists(name)) {
        LOG_ERROR() << name << "does not exist!";
        return 0;
    }
    if (m_useLockFile && !lock(name, true))
        return 0;
    return loadFromJsonFile(name, false, QString::fromLatin1(errorReadingFile)) ? 1 : 0;
}

bool ZuJsonDocumentFile::loadFromJsonFile(const QString &fileName, bool binary,
                                          const QString &errorTitle)
{
    const QString previousName = m_fileName;
    QJsonDocument document;
    if (binary) {
        const QByteArray data = ZuFileUtils::readFromBinaryFile(fileName, errorTitle);
        if (data.isEmpty())
            return false;
        m_fileName = fileName;
        document = ZuCompat::fromBinaryJson(data);
    } else {
        const QString text = ZuFileUtils::readFromTextFile(fileName, errorTitle);
        if (text.isEmpty())
            return false;
        m_fileName = fileName;
        document = QJsonDocument::fromJson(text.toUtf8());
    }

    if (fromJsonDocument(document)) {
        m_jsonDocument = document;
        setModified(false);
        return true;
    }
    m_fileName = previousName;
    LOG_ERROR().noquote() << QStringLiteral("Cannot read file %1.").arg(fileName);
    QMessageBox::warning(nullptr, QStringLiteral("Load %1 File").arg(m_fileTypeName),
                         QStringLiteral("Cannot read file %1:\n%2.")
                             .arg(fileName, QStringLiteral("Not saved as a valid document")),
                         QMessageBox::Ok);
    return false;
}

bool ZuJsonDocumentFile::saveFile(const QString &fileName)
{
    QString name = fileName.isEmpty() ? m_fileName : fileName;
    if (name.isEmpty()) {
        name = getSaveFileName();
        if (name.isEmpty())
            return false;
    }
    if (m_useLockFile && !lock(name, false))
        return false;
    LOG_INFO() << "Saving" << name << "...";
    if (!saveToJsonFile(name, false))
        return false;
    LOG_INFO() << "File Saved.";
    showFileSaved();
    return true;
}

void ZuJsonDocumentFile::showFileSaved()
{
    auto *box = new QMessageBox(nullptr);
    box->setWindowModality(Qt::NonModal);
    box->setWindowTitle(QStringLiteral("File Saved"));
    box->setText(m_fileName);
    // Released when the user closes it, or at the latest when the timer hides it.
    QObject::connect(box, &QDialog::finished, box, &QObject::deleteLater);
    box->show();
    QCoreApplication::processEvents();
    QTimer::singleShot(1500, box, [box] {
        box->hide();
        box->deleteLater();
    });
}

bool ZuJsonDocumentFile::saveFileAs()
{
    QString name;
    if (!m_fileName.isEmpty()) {
        name = QFileDialog::getSaveFileName(nullptr,
                                            QStringLiteral("Save %1 File As").arg(m_fileTypeName),
                                            m_fileName, fileFilter());
    } else {
        name = getSaveFileName();
    }
    if (name.isEmpty())
        return false;
    return saveFile(name);
}

bool ZuJsonDocumentFile::saveToJsonFile(const QString &fileName, bool binary)
{
    // The revision mark and the folder don't make another document: "Plan Rev 3.json" is a
    // further revision of "Plan Rev 2.json".
    const bool sameDocument = m_fileName.isEmpty()
        || ZuFileUtils::strippedFileNameWithoutRev(fileName)
            == ZuFileUtils::strippedFileNameWithoutRev(m_fileName);
    m_jsonDocument = toJsonDocument();
    LOG_TRACE() << "Writing JSON data to file..." << fileName;
    bool written = false;
    if (binary) {
        written = ZuFileUtils::saveToBinaryFile(fileName, ZuCompat::toBinaryJson(m_jsonDocument));
    } else {
        const QString text = QString::fromUtf8(m_jsonDocument.toJson());
        written = ZuFileUtils::saveToTextFile(fileName, text);
        // The text save answers true once the file is open, and keeps the old file when the
        // write then fails: a document that thinks itself saved would lose its changes.
        if (written && !fileHolds(fileName, text.toUtf8())) {
            LOG_ERROR().noquote() << QStringLiteral("Cannot write file %1.").arg(fileName);
            written = false;
        }
    }
    LOG_TRACE() << "Writing JSON data to file done rv=" << written;
    if (!written)
        return false;
    if (sameDocument) {
        m_fileName = fileName;
        setModified(false);
        return true;
    }
    return loadFromJsonFile(fileName, binary, QString::fromLatin1(errorReadingFile));
}

bool ZuJsonDocumentFile::maybeSave()
{
    if (!m_modified)
        return true;
    QString name = m_fileName;
    if (name.isEmpty())
        name = defaultFileName();
    if (name.isEmpty())
        name = QStringLiteral("The new file");
    const int answer = QMessageBox::warning(
        nullptr, QStringLiteral("%1 File Changed").arg(m_fileTypeName),
        QStringLiteral("'%1' has been modified.\nDo you want to save your changes?").arg(name),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel);
    if (answer == QMessageBox::Save)
        return saveFile(m_fileName);
    return answer == QMessageBox::Discard;
}

bool ZuJsonDocumentFile::revert()
{
    if (!m_modified)
        return true;
    const QString name = m_fileName;
    const bool accepted = fromJsonDocument(m_jsonDocument);
    m_fileName = name;
    if (accepted) {
        setModified(false);
        return true;
    }
    const QString text = QStringLiteral("Error reverting file %1.").arg(name);
    LOG_ERROR().noquote() << text;
    QMessageBox::warning(nullptr, QStringLiteral("Reverting %1 File").arg(m_fileTypeName), text,
                         QMessageBox::Ok);
    return false;
}

QString ZuJsonDocumentFile::lockFileName() const
{
    return lockFileNameFor(m_fileName);
}

QString ZuJsonDocumentFile::lockInfo() const
{
    qint64 pid = 0;
    QString hostName;
    QString application;
    if (m_lockFile && m_lockFile->getLockInfo(&pid, &hostName, &application))
        return QStringLiteral("Process Id:%1 Host Name:'%2' Application Name:'%3'")
            .arg(QString::number(pid), hostName, application);
    return QStringLiteral("Lock information not available");
}

void ZuJsonDocumentFile::unlock()
{
    if (!m_lockFile)
        return;
    m_lockFile->unlock();
    delete m_lockFile;
    m_lockFile = nullptr;
}

bool ZuJsonDocumentFile::isLocked() const
{
    return m_lockFile ? m_lockFile->isLocked() : true;
}

void ZuJsonDocumentFile::setUseLockFile(bool use)
{
    m_useLockFile = use;
}

bool ZuJsonDocumentFile::lock(const QString &fileName, bool allowReadOnly)
{
    const QString lockName = lockFileNameFor(fileName);
    LOG_TRACE().noquote() << QStringLiteral("Creating lock file '%1' ...").arg(lockName);
    unlock();
    m_lockFile = new QLockFile(lockName);
    // Only a dead owner makes a lock stale, never its age: a document may stay open for days.
    m_lockFile->setStaleLockTime(0);
    for (;;) {
        if (m_lockFile->tryLock(100)) {
            LOG_TRACE().noquote() << QStringLiteral("Lock file created. '%1'").arg(lockName);
            return true;
        }
        QString error;
        switch (m_lockFile->error()) {
        case QLockFile::LockFailedError:
            error = QStringLiteral("Lock Failed (File Open by another user?)");
            break;
        case QLockFile::PermissionError:
            error = QStringLiteral("Lock Failed (You do not have permsission in the folder.)");
            break;
        case QLockFile::UnknownError:
            error = QStringLiteral("Lock Failed (Unknown error.  Does file exist?)");
            break;
        case QLockFile::NoError:
            break;
        }
        qint64 pid = 0;
        QString hostName;
        QString application;
        const QString message = m_lockFile->getLockInfo(&pid, &hostName, &application)
            ? QStringLiteral("Error:%1 Process Id:%2 Host Name:'%3' Application Name:'%4'")
                  .arg(error, QString::number(pid), hostName, application)
            : QStringLiteral("Error:%1 Lock information not available").arg(error);
        LOG_ERROR().noquote() << message;

        const int answer = lockRetry(fileName, message, allowReadOnly);
        if (answer == 2) {
            // Fails harmlessly against a live owner; the next attempt then asks again.
            m_lockFile->removeStaleLockFile();
            continue;
        }
        delete m_lockFile;
        m_lockFile = nullptr;
        return answer == 1;
    }
}

int ZuJsonDocumentFile::lockRetry(const QString &fileName, const QString &message,
                                  bool allowReadOnly) const
{
    QMessageBox box;
    box.setText(QStringLiteral("Unable to lock file '%1'\n\n%2").arg(fileName, message));
    box.setInformativeText(QStringLiteral("Do you want to Retry getting a lock on the file?"));
    QPushButton *retry = box.addButton(QMessageBox::Retry);
    QPushButton *readOnly = allowReadOnly
        ? box.addButton(QStringLiteral("Open Read Only"), QMessageBox::YesRole)
        : nullptr;
    box.addButton(QMessageBox::Cancel);
    box.setDefaultButton(retry);
    box.exec();
    const QAbstractButton *clicked = box.clickedButton();
    if (clicked == retry)
        return 2;
    if (readOnly && clicked == readOnly)
        return 1;
    return 0;
}
