#include "support/CapturingAppender.h"
#include "support/ModalAnswerer.h"
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
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(data), qint64(data.size()));
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

// Runs a scope as user and group "nobody" when the tests run as root, so that permissions hold;
// the saved set-user-ID stays 0 to come back.
class Unprivileged
{
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
    void sizeToString_data();
    void sizeToString();
    void readFailures_data();
    void readFailures();
    void readContent();
    void save_data();
    void save();
    void saveFailures_data();
    void saveFailures();
    void readOnlyFileIsReplaced();
    void fullDisk_data();
    void fullDisk();
    void showInExplorer();

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
    QTest::newRow("Makefile") << "src/Makefile"
                              << "Makefile|Makefile|.|Makefile|Makefile";
    QTest::newRow("two suffixes") << "archive.tar.gz"
                                  << "archive.tar.gz|archive|.gz|archive.tar.gz|archive";
    QTest::newRow("lower-case rev") << "Plan rev 3.pdf"
                                    << "Plan rev 3.pdf|Plan rev 3|.pdf|Plan rev 3.pdf|Plan rev 3";
    QTest::newRow("no blank before Rev") << "PlanRev 3.pdf"
                                         << "PlanRev 3.pdf|PlanRev 3|.pdf|PlanRev 3.pdf|PlanRev 3";
    QTest::newRow("rev after first dot") << "a.b Rev 2.pdf"
                                         << "a.b Rev 2.pdf|a|.pdf|a.b.pdf|a";
    QTest::newRow("empty") << ""
                           << "||.||";
}

void tst_ZuFileUtils::nameParts()
{
    QFETCH(QString, name);
    QFETCH(QString, parts);
    const QStringList expected = parts.split('|');
    const QStringList actual
        = { ZuFileUtils::strippedFileName(name),
            ZuFileUtils::strippedFileNameWithoutExtension(name), ZuFileUtils::extension(name),
            ZuFileUtils::strippedFileNameWithoutRev(name),
            ZuFileUtils::strippedFileNameWithoutRevExtension(name) };
    QCOMPARE(actual, expected);
    QCOMPARE(ZuFileUtils::folder(name),
             name.isEmpty() ? QDir::currentPath() : QFileInfo(name).absolutePath());
}

void tst_ZuFileUtils::fileOperations()
{
    writeFile("a.txt", "alpha");
    writeFile("b.txt", "beta");
    QVERIFY(ZuFileUtils::removeFile("missing.txt"));
    QVERIFY(!ZuFileUtils::renameFile("missing.txt", "c.txt"));
    QVERIFY(!ZuFileUtils::renameFile("a.txt", "b.txt")); // never replaces
    QCOMPARE(contentOf("b.txt"), QByteArray("beta"));
    QVERIFY(ZuFileUtils::renameFile("a.txt", "c.txt"));
    QVERIFY(!ZuFileUtils::fileExists("a.txt") && ZuFileUtils::fileExists("c.txt"));

    QVERIFY(!ZuFileUtils::copyFile("c.txt", "c.txt"));
    QVERIFY(!ZuFileUtils::copyFile("c.txt", "./c.txt")); // one file, two spellings
    QVERIFY(!ZuFileUtils::copyFile("c.txt", QDir::current().absoluteFilePath("c.txt")));
    QCOMPARE(contentOf("c.txt"), QByteArray("alpha"));
    QVERIFY(ZuFileUtils::copyFile("c.txt", "b.txt")); // replaces
    QCOMPARE(contentOf("b.txt"), QByteArray("alpha"));
    QVERIFY(!ZuFileUtils::copyFile("missing.txt", "d.txt"));

    QVERIFY(ZuFileUtils::removeFile("b.txt"));
    QVERIFY(!ZuFileUtils::fileExists("b.txt"));
    QDir().mkdir("folder");
    QVERIFY(!ZuFileUtils::removeFile("folder"));
    QVERIFY(ZuFileUtils::lastModified("c.txt").isValid());
    QVERIFY(!ZuFileUtils::created("missing.txt").isValid());

    QCOMPARE(ZuFileUtils::fileChecksum("c.txt", QCryptographicHash::Md5),
             QByteArray("2C1743A391305FBF367DF8E4F069F9F9")); // md5("alpha")
    QCOMPARE(ZuFileUtils::fileChecksum("missing.txt", QCryptographicHash::Md5), QByteArray());
}

void tst_ZuFileUtils::sizeToString_data()
{
    QTest::addColumn<int>("size"); // -1: no file
    QTest::addColumn<QString>("text");
    QTest::newRow("missing") << -1 << "0 Bytes (0 Bytes)";
    QTest::newRow("1023") << 1023 << "1023 Bytes (1023 Bytes)";
    QTest::newRow("1024") << 1024 << "1.00 KB (1,024 Bytes)";
    QTest::newRow("1048575") << 1048575 << "1024.00 KB (1,048,575 Bytes)";
    QTest::newRow("1048576") << 1048576 << "1.00 MB (1,048,576 Bytes)";
}

void tst_ZuFileUtils::sizeToString()
{
    QFETCH(int, size);
    QFETCH(QString, text);
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); // group separators
    const QString name = QStringLiteral("sized.bin");
    QFile::remove(name);
    if (size >= 0)
        writeFile(name, QByteArray(size, 'x'));
    QCOMPARE(ZuFileUtils::size(name), qint64(qMax(size, 0)));
    QCOMPARE(ZuFileUtils::sizeToString(name), text);
}

void tst_ZuFileUtils::readFailures_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("binary");
    QTest::newRow("binary, missing") << "missing.bin" << true;
    QTest::newRow("binary, folder") << "folder" << true;
    QTest::newRow("text, missing") << "missing.txt" << false;
}

void tst_ZuFileUtils::readFailures()
{
    QFETCH(QString, name);
    QFETCH(bool, binary);
    QDir().mkpath("folder");
    zutest::LogCapture capture;
    zutest::ModalAnswerer answerer;
    answerer.answerBox(QMessageBox::Ok);
    const bool empty = binary ? ZuFileUtils::readFromBinaryFile(name, "Open Plan").isEmpty()
                              : ZuFileUtils::readFromTextFile(name, "Open Plan").isEmpty();
    QVERIFY(empty);
    QCOMPARE(answerer.seen().size(), 1);
    const zutest::SeenModal box = answerer.seen().first();
    QFile probe(name);
    probe.open(QIODevice::ReadOnly);
    QCOMPARE(box.title, QStringLiteral("Open Plan"));
    QCOMPARE(box.text,
             QStringLiteral("Cannot read file '%1'.\n%2.").arg(name, probe.errorString()));
    QCOMPARE(box.icon, QMessageBox::Warning);
    QCOMPARE(box.buttons, QMessageBox::StandardButtons(QMessageBox::Ok));
    // Only the binary read logs.
    QCOMPARE(capture.contains(Logger::Error, QStringLiteral("Cannot read file '%1'.").arg(name)),
             binary);
}

void tst_ZuFileUtils::readContent()
{
    writeFile("lines.txt", QByteArray("\xc3\xa4\r\nb\nc\0hidden", 13));
    zutest::ModalAnswerer answerer;
    QCOMPARE(ZuFileUtils::readFromTextFile("lines.txt", "x"), QString::fromUtf8("\xc3\xa4\nb\nc"));
    QCOMPARE(ZuFileUtils::readFromBinaryFile("lines.txt", "x").size(), 13);
    QVERIFY(answerer.seen().isEmpty());
    QCOMPARE(QGuiApplication::overrideCursor(), nullptr); // the wait cursor is gone again
}

void tst_ZuFileUtils::save_data()
{
    QTest::addColumn<bool>("binary");
    QTest::addColumn<QByteArray>("old"); // empty: no file yet
    QTest::addColumn<QByteArray>("content");
    QTest::newRow("binary, new file") << true << QByteArray() << QByteArray("\x00\x01\xff", 3);
    QTest::newRow("binary, replace") << true << QByteArray("old content") << QByteArray("new");
    QTest::newRow("binary, empty over existing") << true << QByteArray("old") << QByteArray();
    QTest::newRow("text, replace, UTF-8 without BOM")
        << false << QByteArray("old") << QByteArray("\xc3\xa4\xe2\x82\xac\nline");
    QTest::newRow("text, empty new file") << false << QByteArray() << QByteArray();
}

void tst_ZuFileUtils::save()
{
    QFETCH(bool, binary);
    QFETCH(QByteArray, old);
    QFETCH(QByteArray, content);
    const QString name = QStringLiteral("saved.dat");
    QFile::remove(name);
    if (!old.isEmpty())
        writeFile(name, old);
    zutest::ModalAnswerer answerer;
    QVERIFY(binary ? ZuFileUtils::saveToBinaryFile(name, content)
                   : ZuFileUtils::saveToTextFile(name, QString::fromUtf8(content)));
    QCOMPARE(contentOf(name), content);
    QVERIFY(answerer.seen().isEmpty());
    QCOMPARE(QDir().entryList(QDir::Files | QDir::Hidden).filter("saved").size(),
             1); // no leftovers
}

void tst_ZuFileUtils::saveFailures_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("removeBox"); // else the "Unable to save" box
    QTest::newRow("target is a folder") << "target.dir" << true;
    QTest::newRow("folder missing") << "nowhere/file.txt" << false;
    QTest::newRow("folder is a file") << "plain.txt/file.txt" << false;
    QTest::newRow("read-only folder, file exists") << "locked/old.txt" << true;
    QTest::newRow("read-only folder, new file") << "locked/new.txt" << false;
}

// Each failure shows the box of the step that fails, returns false and leaves the old file (or
// folder) exactly as it was, with nothing left beside it.
void tst_ZuFileUtils::saveFailures()
{
    QFETCH(QString, name);
    QFETCH(bool, removeBox);
    QDir().mkpath("target.dir");
    QDir().mkpath("locked");
    writeFile("plain.txt", "plain");
    if (!QFile::exists("locked/old.txt"))
        writeFile("locked/old.txt", "old");
    QFile::setPermissions("locked", QFileDevice::Permissions(0x5555));
    const QByteArray before = contentOf(name);

    for (bool binary : { true, false }) {
        zutest::ModalAnswerer answerer;
        answerer.answerBox(QMessageBox::Ok);
        bool saved = true;
        QString reason;
        {
            Unprivileged user; // root could write into the read-only folder
            QVERIFY(user.ok());
            saved = binary ? ZuFileUtils::saveToBinaryFile(name, "new")
                           : ZuFileUtils::saveToTextFile(name, "new");
            QFile probe(name);
            probe.remove();
            reason = probe.errorString();
        }
        QVERIFY(!saved);
        QCOMPARE(answerer.seen().size(), 1);
        const zutest::SeenModal box = answerer.seen().first();
        QCOMPARE(box.title, QStringLiteral("Error Saving File"));
        QCOMPARE(box.icon, QMessageBox::Warning);
        QCOMPARE(
            box.text,
            removeBox
                ? QStringLiteral("Cannot remove previous version of file %1:\n%2.")
                      .arg(name, reason)
                : QStringLiteral("Unable to save '%1'.\n\n Is the file currently open?").arg(name));
        QCOMPARE(contentOf(name), before);
    }
    QCOMPARE(QDir("locked").entryList(QDir::Files | QDir::Hidden), QStringList { "old.txt" });
    QVERIFY(QFileInfo("target.dir").isDir());
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
        Unprivileged user;
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

void tst_ZuFileUtils::showInExplorer()
{
    m_opened.clear();
    ZuFileUtils::showFolderInExplorer("C:/some folder"); // a URL "file:///" + folder, as on Windows
    writeFile("shown.txt", "x");
    ZuFileUtils::showFileInExplorer("shown.txt");
    QCOMPARE(m_opened.size(), 2);
    QCOMPARE(m_opened.at(0).scheme(), QStringLiteral("file"));
    QCOMPARE(m_opened.at(0).path(), QStringLiteral("/C:/some folder"));
    QCOMPARE(m_opened.at(1), QUrl::fromLocalFile(QDir::currentPath()));
}

ZU_TEST_MAIN(tst_ZuFileUtils)
#include "tst_zufileutils.moc"
