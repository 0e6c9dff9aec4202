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

// In a child started by fullDisk(), before main moves to a folder of its own: save under a
// 4 KiB file size limit, with SIGXFSZ ignored so that the write fails instead of killing us.
const int fullDiskChild = [] {
    const QByteArray kind = qgetenv("ZU_TEST_FULL_DISK");
    if (kind.isEmpty())
        return 0;
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit = { 4096, 4096 };
    setrlimit(RLIMIT_FSIZE, &limit);
    const bool saved = kind == "binary"
        ? ZuFileUtils::saveToBinaryFile("full.dat", QByteArray(64 * 1024, 'n'))
        : ZuFileUtils::saveToTextFile("full.dat", QString(64 * 1024, QLatin1Char('n')));
    _exit(saved ? 0 : 1);
}();

// Runs a scope as user and group "nobody" when the tests run as root, so that permissions hold;
// the saved set-user-ID stays 0 to come back.
struct Unprivileged
{
    const bool wasRoot = geteuid() == 0;
    Unprivileged()
    {
        if (wasRoot && (setresgid(65534, 65534, 0) != 0 || setresuid(65534, 65534, 0) != 0))
            qFatal("cannot leave root");
    }
    ~Unprivileged()
    {
        if (wasRoot && (setresuid(0, 0, 0) != 0 || setresgid(0, 0, 0) != 0))
            qFatal("cannot return to root");
    }
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
    void save_data();
    void save();
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
    QTest::newRow("lower-case rev") << "Plan rev 3.pdf"
                                    << "Plan rev 3.pdf|Plan rev 3|.pdf|Plan rev 3.pdf|Plan rev 3";
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
    QVERIFY(!ZuFileUtils::renameFile("a.txt", "b.txt")); // never replaces
    QCOMPARE(contentOf("b.txt"), QByteArray("beta"));
    QVERIFY(ZuFileUtils::renameFile("a.txt", "c.txt"));
    QVERIFY(!ZuFileUtils::fileExists("a.txt") && ZuFileUtils::fileExists("c.txt"));

    QVERIFY(!ZuFileUtils::copyFile("c.txt", "./c.txt")); // one file, two spellings
    QVERIFY(!ZuFileUtils::copyFile("c.txt", QDir::current().absoluteFilePath("c.txt")));
    QCOMPARE(contentOf("c.txt"), QByteArray("alpha"));
    QVERIFY(ZuFileUtils::copyFile("c.txt", "b.txt")); // replaces
    QCOMPARE(contentOf("b.txt"), QByteArray("alpha"));

    QDir().mkdir("folder");
    QVERIFY(!ZuFileUtils::removeFile("folder"));
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
    writeFile("lines.txt", QByteArray("\xc3\xa4\r\nb\nc\0hidden", 13));
    zutest::LogCapture capture;
    zutest::ModalAnswerer answerer;
    answerer.answerBox(QMessageBox::Ok);
    QCOMPARE(ZuFileUtils::readFromTextFile("lines.txt", "x"), QString::fromUtf8("\xc3\xa4\nb\nc"));
    QCOMPARE(ZuFileUtils::readFromBinaryFile("lines.txt", "x").size(), 13);
    QCOMPARE(QGuiApplication::overrideCursor(), nullptr); // the wait cursor is gone again
    QVERIFY(answerer.seen().isEmpty());
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

void tst_ZuFileUtils::save_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("box"); // 0: saved; 1: the "Cannot remove" box; 2: "Unable to save"
    // The files in open/ belong to root: "nobody" may replace them but not write to them.
    QTest::newRow("new file") << "open/new.dat" << QByteArray("\0\1\xc3\xbf", 4) << 0;
    QTest::newRow("replace, UTF-8 without BOM")
        << "open/old.dat" << QByteArray("\xc3\xa4\xe2\x82\xac\nline") << 0;
    QTest::newRow("empty over existing") << "open/old.dat" << QByteArray() << 0;
    QTest::newRow("target is a folder") << "target.dir" << QByteArray("new") << 1;
    QTest::newRow("folder missing") << "nowhere/file.txt" << QByteArray("new") << 2;
    QTest::newRow("folder is a file") << "plain.txt/file.txt" << QByteArray("new") << 2;
    QTest::newRow("read-only folder, file exists") << "locked/old.txt" << QByteArray("new") << 1;
    QTest::newRow("read-only folder, new file") << "locked/new.txt" << QByteArray("new") << 2;
}

// A failure shows the box of the step that fails, returns false and leaves the old file (or
// folder) exactly as it was; nothing is ever left beside the file.
void tst_ZuFileUtils::save()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    QFETCH(int, box);
    for (const char *folder : { "target.dir", "locked", "open" }) {
        QDir().mkpath(folder);
        QFile::setPermissions(folder, QFileDevice::Permissions(0x7777));
    }
    writeFile("plain.txt", "plain");
    writeFile("locked/old.txt", "old");
    QFile::setPermissions("locked", QFileDevice::Permissions(0x5555));
    for (bool binary : { true, false }) {
        QFile::remove("open/new.dat");
        writeFile("open/old.dat", "old");
        const QByteArray before = contentOf(name);
        zutest::ModalAnswerer answerer;
        answerer.answerBox(QMessageBox::Ok);
        bool saved = false;
        QString reason;
        {
            Unprivileged user; // root could write into the read-only folder
            saved = binary
                ? ZuFileUtils::saveToBinaryFile(name, content)
                : ZuFileUtils::saveToTextFile(name, QString::fromUtf8(content, content.size()));
            QFile probe(name);
            if (box == 1 && !probe.remove())
                reason = probe.errorString();
        }
        QCOMPARE(saved, box == 0);
        QCOMPARE(contentOf(name), box ? before : content);
        QCOMPARE(answerer.seen().size(), box ? 1 : 0);
        if (box) {
            const zutest::SeenModal seen = answerer.seen().first();
            QCOMPARE(seen.title, QStringLiteral("Error Saving File"));
            QCOMPARE(seen.icon, QMessageBox::Warning);
            QCOMPARE(seen.text,
                     box == 1
                         ? QStringLiteral("Cannot remove previous version of file %1:\n%2.")
                               .arg(name, reason)
                         : QStringLiteral("Unable to save '%1'.\n\n Is the file currently open?")
                               .arg(name));
        }
        QCOMPARE(QDir("open").entryList(QDir::Files | QDir::Hidden).size(),
                 QFile::exists("open/new.dat") ? 2 : 1);
    }
    QCOMPARE(QDir("locked").entryList(QDir::Files | QDir::Hidden), QStringList { "old.txt" });
    QVERIFY(QFileInfo("target.dir").isDir());
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
