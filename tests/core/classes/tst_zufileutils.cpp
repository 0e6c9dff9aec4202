#include "support/CapturingAppender.h"
#include "support/ModalAnswerer.h"
#include "support/Unprivileged.h"
#include "support/ZuTest.h"

#include <zucore/ZuFileUtils.h>

#include <QDesktopServices>
#include <QProcess>

#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

namespace {

QByteArray contentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

void writeFile(const QString &fileName, const QByteArray &data)
{
    QFile file(fileName);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(data) == data.size());
}

// In a child started by fullDisk(): save under a 4 KiB file size limit, with SIGXFSZ ignored so
// that the write fails instead of killing the process, and exit with the result.
const int fullDiskChild = [] {
    const QByteArray kind = qgetenv("ZU_TEST_FULL_DISK");
    if (kind.isEmpty())
        return 0;
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit = { 4096, 4096 };
    setrlimit(RLIMIT_FSIZE, &limit);
    const QString fileName = QString::fromLocal8Bit(qgetenv("ZU_TEST_FULL_DISK_FILE"));
    const bool saved = kind == "binary"
        ? ZuFileUtils::saveToBinaryFile(fileName, QByteArray(64 * 1024, 'n'))
        : ZuFileUtils::saveToTextFile(fileName, QString(64 * 1024, QLatin1Char('n')));
    _exit(saved ? 0 : 1);
}();

} // namespace

class tst_ZuFileUtils : public QObject
{
    Q_OBJECT
public Q_SLOTS:
    void openUrl(const QUrl &url) { m_opened.append(url); }

private Q_SLOTS:
    void initTestCase();
    void nameParts_data();
    void nameParts();
    void fileOperations();
    void read_data();
    void read();
    void save_data();
    void save();
    void readOnlyFolder();
    void readOnlyFileIsReplaced();
    void fullDisk_data();
    void fullDisk();

private:
    QList<QUrl> m_opened;
};

void tst_ZuFileUtils::initTestCase()
{
    // Let "nobody" reach the folders below (the temporary folder is private to its owner), and
    // keep any real file manager out of reach of the explorer test.
    QFile::setPermissions(QDir::currentPath(), QFileDevice::Permissions(0x7755));
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "openUrl");
}

void tst_ZuFileUtils::nameParts_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("parts"); // name|base|extension|without rev|without rev and extension
    QTest::newRow("full") << "/data/Plan Rev 3.final.pdf"
                          << "Plan Rev 3.final.pdf|Plan Rev 3|.pdf|Plan.pdf|Plan";
    QTest::newRow("no suffix") << "Plan Rev 3"
                               << "Plan Rev 3|Plan Rev 3|.|Plan.|Plan";
    QTest::newRow("rev after first dot") << "a.b Rev 2.pdf"
                                         << "a.b Rev 2.pdf|a|.pdf|a.b.pdf|a";
    QTest::newRow("empty") << ""
                           << "||.||";
}

void tst_ZuFileUtils::nameParts()
{
    QFETCH(QString, name);
    QFETCH(QString, parts);
    QCOMPARE(
        QStringList({ ZuFileUtils::strippedFileName(name),
                      ZuFileUtils::strippedFileNameWithoutExtension(name),
                      ZuFileUtils::extension(name), ZuFileUtils::strippedFileNameWithoutRev(name),
                      ZuFileUtils::strippedFileNameWithoutRevExtension(name) }),
        parts.split('|'));
}

void tst_ZuFileUtils::fileOperations()
{
    writeFile("a.txt", "alpha");
    writeFile("b.txt", "beta");
    QVERIFY(ZuFileUtils::removeFile("missing.txt"));
    QVERIFY(!ZuFileUtils::renameFile("a.txt", "b.txt")); // never replaces
    QVERIFY(ZuFileUtils::renameFile("a.txt", "c.txt"));
    QVERIFY(!ZuFileUtils::fileExists("a.txt") && ZuFileUtils::fileExists("c.txt"));
    QVERIFY(!ZuFileUtils::copyFile("c.txt", "./c.txt")); // one file, two spellings
    QVERIFY(ZuFileUtils::copyFile("c.txt", "b.txt")); // replaces
    QCOMPARE(contentOf("b.txt") + contentOf("c.txt"), QByteArray("alphaalpha"));
    QDir().mkdir("folder");
    QVERIFY(!ZuFileUtils::removeFile("folder"));
    QCOMPARE(ZuFileUtils::fileChecksum("c.txt", QCryptographicHash::Md5),
             QByteArray("2C1743A391305FBF367DF8E4F069F9F9")); // md5("alpha")
    QCOMPARE(ZuFileUtils::fileChecksum("missing.txt", QCryptographicHash::Md5), QByteArray());

    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); // group separators
    QCOMPARE(ZuFileUtils::sizeToString("missing.txt"), QStringLiteral("0 Bytes (0 Bytes)"));
    const QMap<int, QString> sizes = { { 1023, "1023 Bytes (1023 Bytes)" },
                                       { 1024, "1.00 KB (1,024 Bytes)" },
                                       { 1048575, "1024.00 KB (1,048,575 Bytes)" },
                                       { 1048576, "1.00 MB (1,048,576 Bytes)" } };
    for (auto it = sizes.cbegin(); it != sizes.cend(); ++it) {
        writeFile("sized.bin", QByteArray(it.key(), 'x'));
        QCOMPARE(ZuFileUtils::size("sized.bin"), qint64(it.key()));
        QCOMPARE(ZuFileUtils::sizeToString("sized.bin"), it.value());
    }

    // A folder goes out as the URL "file:///" + folder, as on Windows; with no Windows file
    // manager here, a file shows as its folder.
    ZuFileUtils::showFolderInExplorer("C:/some folder");
    ZuFileUtils::showFileInExplorer("c.txt");
    QCOMPARE(m_opened.size(), 2);
    QCOMPARE(m_opened.at(0).scheme() + m_opened.at(0).path(),
             QStringLiteral("file/C:/some folder"));
    QCOMPARE(m_opened.at(1), QUrl::fromLocalFile(QDir::currentPath()));
}

void tst_ZuFileUtils::read_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("binary");
    QTest::newRow("binary, missing") << "missing.bin" << true;
    QTest::newRow("binary, folder") << "folder" << true;
    QTest::newRow("text, missing") << "missing.txt" << false;
}

// Text reads turn CR LF into LF and stop at a zero byte; only the binary read logs failures.
void tst_ZuFileUtils::read()
{
    QFETCH(QString, name);
    QFETCH(bool, binary);
    QDir().mkpath("folder");
    writeFile("lines.txt", QByteArray("\xc3\xa4\r\nb\nc\0hidden", 13));
    zutest::LogCapture capture;
    zutest::ModalAnswerer answerer;
    answerer.answerBox(QMessageBox::Ok);
    QCOMPARE(ZuFileUtils::readFromTextFile("lines.txt", "x"), QString::fromUtf8("\xc3\xa4\nb\nc"));
    QCOMPARE(QGuiApplication::overrideCursor(), nullptr); // the wait cursor is gone again
    QVERIFY(answerer.seen().isEmpty());
    QVERIFY(binary ? ZuFileUtils::readFromBinaryFile(name, "Open Plan").isEmpty()
                   : ZuFileUtils::readFromTextFile(name, "Open Plan").isEmpty());
    QCOMPARE(answerer.seen().size(), 1);
    const zutest::SeenModal box = answerer.seen().first();
    QFile probe(name);
    probe.open(QIODevice::ReadOnly);
    QCOMPARE(box.title, QStringLiteral("Open Plan"));
    QCOMPARE(box.text,
             QStringLiteral("Cannot read file '%1'.\n%2.").arg(name, probe.errorString()));
    QCOMPARE(box.icon, QMessageBox::Warning);
    QCOMPARE(capture.contains(Logger::Error, QStringLiteral("Cannot read file '%1'.").arg(name)),
             binary);
}

void tst_ZuFileUtils::save_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("box"); // 0: saved; 1: the "Cannot remove" box; 2: "Unable to save"
    QTest::newRow("new file") << "out/new.dat" << QByteArray("\0\1\xc3\xbf", 4) << 0;
    QTest::newRow("replace, UTF-8 without BOM")
        << "out/old.dat" << QByteArray("\xc3\xa4\xe2\x82\xac\nline") << 0;
    QTest::newRow("empty over existing") << "out/old.dat" << QByteArray() << 0;
    QTest::newRow("target is a folder") << "target.dir" << QByteArray("new") << 1;
    QTest::newRow("folder is a file") << "plain.txt/file.txt" << QByteArray("new") << 2;
}

// A failure shows the box of the step that fails, returns false and leaves the old file (or
// folder) exactly as it was; nothing is ever left beside the file.
void tst_ZuFileUtils::save()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    QFETCH(int, box);
    QDir().mkpath("target.dir");
    QDir().mkpath("out");
    writeFile("plain.txt", "plain");
    for (bool binary : { true, false }) {
        QFile::remove("out/new.dat");
        writeFile("out/old.dat", "old");
        const QByteArray before = contentOf(name);
        zutest::ModalAnswerer answerer;
        answerer.answerBox(QMessageBox::Ok);
        const bool saved = binary
            ? ZuFileUtils::saveToBinaryFile(name, content)
            : ZuFileUtils::saveToTextFile(name, QString::fromUtf8(content, content.size()));
        QCOMPARE(saved, box == 0);
        QCOMPARE(contentOf(name), box ? before : content);
        QFile probe(name);
        if (box == 1)
            probe.remove();
        QCOMPARE(answerer.seen().size(), box ? 1 : 0);
        if (box) {
            QCOMPARE(answerer.seen().first().title, QStringLiteral("Error Saving File"));
            QCOMPARE(answerer.seen().first().icon, QMessageBox::Warning);
            QCOMPARE(answerer.seen().first().text,
                     box == 1
                         ? QStringLiteral("Cannot remove previous version of file %1:\n%2.")
                               .arg(name, probe.errorString())
                         : QStringLiteral("Unable to save '%1'.\n\n Is the file currently open?")
                               .arg(name));
        }
        QCOMPARE(QDir("out").entryList(QDir::Files | QDir::Hidden),
                 QStringList({ "new.dat", "old.dat" }).mid(QFile::exists("out/new.dat") ? 0 : 1));
    }
}

// Without write access to the folder, an existing file stops the save at the first box and a new
// one at the second; either way the folder keeps exactly what it had.
void tst_ZuFileUtils::readOnlyFolder()
{
    QDir().mkpath("locked");
    writeFile("locked/old.txt", "old");
    QFile::setPermissions("locked", QFileDevice::Permissions(0x5555));
    for (const QString name : { "locked/old.txt", "locked/new.txt" }) {
        for (bool binary : { true, false }) {
            zutest::ModalAnswerer answerer;
            answerer.answerBox(QMessageBox::Ok);
            bool saved = true;
            QString reason;
            {
                zutest::Unprivileged user; // root could write into the read-only folder
                QVERIFY(user.ok());
                saved = binary ? ZuFileUtils::saveToBinaryFile(name, "new")
                               : ZuFileUtils::saveToTextFile(name, "new");
                QFile probe(name);
                probe.remove();
                reason = probe.errorString();
            }
            QVERIFY(!saved);
            QCOMPARE(answerer.seen().size(), 1);
            QCOMPARE(answerer.seen().first().text,
                     name.endsWith("old.txt")
                         ? QStringLiteral("Cannot remove previous version of file %1:\n%2.")
                               .arg(name, reason)
                         : QStringLiteral("Unable to save '%1'.\n\n Is the file currently open?")
                               .arg(name));
        }
    }
    QCOMPARE(contentOf("locked/old.txt"), QByteArray("old"));
    QCOMPARE(QDir("locked").entryList(QDir::Files | QDir::Hidden), QStringList { "old.txt" });
}

void tst_ZuFileUtils::readOnlyFileIsReplaced()
{
    // Removing a read-only file and writing a new one works in a writable folder, so replacing
    // it must work too, though the old file itself isn't writable.
    QDir().mkpath("open");
    QFile::setPermissions("open", QFileDevice::Permissions(0x7777));
    writeFile("open/readonly.txt", "old");
    QFile::setPermissions("open/readonly.txt", QFileDevice::ReadOwner | QFileDevice::ReadOther);
    zutest::ModalAnswerer answerer;
    {
        zutest::Unprivileged user;
        QVERIFY(user.ok());
        QVERIFY(!QFileInfo("open/readonly.txt").isWritable());
        QVERIFY(ZuFileUtils::saveToBinaryFile("open/readonly.txt", "new"));
    }
    QVERIFY(answerer.seen().isEmpty());
    QCOMPARE(contentOf("open/readonly.txt"), QByteArray("new"));
    QCOMPARE(QDir("open").entryList(QDir::Files | QDir::Hidden), QStringList { "readonly.txt" });
}

void tst_ZuFileUtils::fullDisk_data()
{
    QTest::addColumn<QByteArray>("kind");
    QTest::addColumn<int>("exitCode"); // 0: the save returned true
    QTest::newRow("binary") << QByteArray("binary") << 1;
    QTest::newRow("text keeps its result") << QByteArray("text") << 0;
}

// A write that fails half-way keeps the old file byte for byte, with nothing left beside it.
void tst_ZuFileUtils::fullDisk()
{
    QFETCH(QByteArray, kind);
    QFETCH(int, exitCode);
    const QByteArray old(3000, 'o'); // fits under the limit, the new content doesn't
    writeFile("full.dat", old);
    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("ZU_TEST_FULL_DISK", QString::fromLatin1(kind));
    environment.insert("ZU_TEST_FULL_DISK_FILE", QDir::current().absoluteFilePath("full.dat"));
    child.setProcessEnvironment(environment);
    child.start(QCoreApplication::applicationFilePath(), QStringList());
    QVERIFY(child.waitForFinished(60000));
    QCOMPARE(child.exitStatus(), QProcess::NormalExit);
    QCOMPARE(child.exitCode(), exitCode);
    QCOMPARE(contentOf("full.dat"), old);
    QCOMPARE(QDir().entryList(QDir::Files | QDir::Hidden).filter("full").size(), 1);
}

ZU_TEST_MAIN(tst_ZuFileUtils)
#include "tst_zufileutils.moc"
