#include "support/CapturingAppender.h"
#include "support/ModalAnswerer.h"
#include "support/TestFiles.h"
#include "support/Unprivileged.h"
#include "support/ZuTest.h"

#include <zucore/ZuFileUtils.h>

#include <QDesktopServices>

namespace {

using zutest::contentOf;
using zutest::writeFile;

bool saveAs(bool binary, const QString &fileName, const QByteArray &content)
{
    return binary
        ? ZuFileUtils::saveToBinaryFile(fileName, content)
        : ZuFileUtils::saveToTextFile(fileName, QString::fromUtf8(content, content.size()));
}

const QString cannotRemove
    = "Error Saving File|2|OK*||Cannot remove previous version of file %1:\n%2.";
const QString cannotOpen
    = "Error Saving File|2|OK*||Unable to save '%1'.\n\n Is the file currently open?";

} // namespace

class tst_ZuFileUtils : public QObject
{
    Q_OBJECT
    QList<QUrl> m_opened;

public Q_SLOTS:
    void openUrl(const QUrl &url) { m_opened.append(url); }

private Q_SLOTS:
    void initTestCase();
    void nameParts_data();
    void nameParts();
    void fileOperations();
    void read();
    void save_data();
    void save();
};

void tst_ZuFileUtils::initTestCase()
{
    // Let "nobody" reach the folders below; keep any real file manager away from the test.
    QFile::setPermissions(QDir::currentPath(), QFileDevice::Permissions(0x7755));
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "openUrl");
}

void tst_ZuFileUtils::nameParts_data()
{
    // A name, then its name, base name, extension, name without rev, and without rev or extension
    QTest::addColumn<QString>("parts");
    QTest::newRow("full")
        << "/data/Plan Rev 3.final.pdf|Plan Rev 3.final.pdf|Plan Rev 3|.pdf|Plan.pdf|Plan";
    QTest::newRow("no suffix") << "Plan Rev 3|Plan Rev 3|Plan Rev 3|.|Plan.|Plan";
    QTest::newRow("rev after first dot") << "a.b Rev 2.pdf|a.b Rev 2.pdf|a|.pdf|a.b.pdf|a";
    QTest::newRow("no blank before Rev, lower-case rev")
        << "aRev 1 rev 2.pdf|aRev 1 rev 2.pdf|aRev 1 rev 2|.pdf|aRev 1 rev 2.pdf|aRev 1 rev 2";
}

void tst_ZuFileUtils::nameParts()
{
    QFETCH(QString, parts);
    const QString name = parts.section('|', 0, 0);
    QCOMPARE(
        QStringList({ name, ZuFileUtils::strippedFileName(name),
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
    QCOMPARE(ZuFileUtils::fileChecksum("c.txt", QCryptographicHash::Md5),
             QByteArray("2C1743A391305FBF367DF8E4F069F9F9")); // md5("alpha")
    QCOMPARE(ZuFileUtils::fileChecksum("missing.txt", QCryptographicHash::Md5), QByteArray());

    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); // group separators
    QCOMPARE(ZuFileUtils::sizeToString("missing.txt"), QStringLiteral("0 Bytes (0 Bytes)"));
    writeFile("sized.bin", QByteArray(1024, 'x'));
    QCOMPARE(ZuFileUtils::sizeToString("sized.bin"), QStringLiteral("1.00 KB (1,024 Bytes)"));
    writeFile("sized.bin", QByteArray(1048576, 'x'));
    QCOMPARE(ZuFileUtils::sizeToString("sized.bin"), QStringLiteral("1.00 MB (1,048,576 Bytes)"));

    // Folders go out as "file:///" + folder, as on Windows; a file here shows as its folder.
    ZuFileUtils::showFolderInExplorer("C:/some folder");
    ZuFileUtils::showFileInExplorer("c.txt");
    QCOMPARE(m_opened.value(0).toString(), QStringLiteral("file:///C:/some folder"));
    QCOMPARE(m_opened.value(1), QUrl::fromLocalFile(QDir::currentPath()));
}

// Text reads turn CR LF into LF and stop at a zero byte; only the binary read logs failures.
void tst_ZuFileUtils::read()
{
    const QByteArray raw("\xc3\xa4\r\nb\nc\0hidden", 13);
    writeFile("lines.txt", raw);
    QCOMPARE(ZuFileUtils::readFromTextFile("lines.txt", "x"), QString::fromUtf8("\xc3\xa4\nb\nc"));
    QCOMPARE(ZuFileUtils::readFromBinaryFile("lines.txt", "x"), raw);
    QCOMPARE(QGuiApplication::overrideCursor(), nullptr); // the wait cursor is gone again
    QFile probe("missing");
    probe.open(QIODevice::ReadOnly);
    for (bool binary : { true, false }) {
        zutest::LogCapture capture;
        zutest::ModalAnswerer answerer;
        answerer.answerBoxByText("OK");
        QVERIFY(binary ? ZuFileUtils::readFromBinaryFile("missing", "Open Plan").isEmpty()
                       : ZuFileUtils::readFromTextFile("missing", "Open Plan").isEmpty());
        QCOMPARE(answerer.seen(),
                 { "Open Plan|2|OK*||Cannot read file 'missing'.\n" + probe.errorString() + '.' });
        QCOMPARE(capture.contains(Logger::Error, "Cannot read file 'missing'."), binary);
    }
}

void tst_ZuFileUtils::save_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("trouble"); // 1: the folder is read-only, 2: the disk is full at 4 KiB
    QTest::addColumn<QString>("box"); // empty when none shows
    QTest::newRow("new file") << "out/new.dat" << QByteArray("\0\1\xc3\xbf", 4) << 0 << "";
    QTest::newRow("replace read-only file, UTF-8 without BOM")
        << "out/old.dat" << QByteArray("\xc3\xa4\xe2\x82\xac\nline") << 0 << "";
    QTest::newRow("empty over existing") << "out/old.dat" << QByteArray() << 0 << "";
    QTest::newRow("locked, old file") << "out/old.dat" << QByteArray("new") << 1 << cannotRemove;
    QTest::newRow("locked, new file") << "out/new.dat" << QByteArray("new") << 1 << cannotOpen;
    QTest::newRow("full disk") << "out/old.dat" << QByteArray(64 * 1024, 'n') << 2 << "";
}

// As "nobody", since root writes anywhere. A failure keeps the old file, leaves nothing beside it,
// shows its step's box and returns false; a full disk shows no box, and a text save returns true.
void tst_ZuFileUtils::save()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    QFETCH(int, trouble);
    QFETCH(QString, box);
    QDir().mkpath("out");
    for (bool binary : { true, false }) {
        QFile::setPermissions("out", QFileDevice::Permissions(0x7777));
        QFile::remove("out/new.dat");
        writeFile("out/old.dat", "old");
        QFile::setPermissions("out/old.dat", QFileDevice::ReadOwner | QFileDevice::ReadOther);
        const QByteArray before = contentOf(name);
        QFile::setPermissions("out", QFileDevice::Permissions(trouble == 1 ? 0x5555 : 0x7777));
        zutest::ModalAnswerer answerer;
        answerer.answerBoxByText("OK");
        bool saved = false;
        QFile probe(name);
        {
            zutest::Unprivileged nobody;
            QVERIFY(nobody.ok());
            zutest::FileSizeLimit full(trouble == 2 ? 4096 : RLIM_INFINITY);
            saved = saveAs(binary, name, content);
            if (box == cannotRemove)
                probe.remove(); // fails as the save did, and says why
        }
        QCOMPARE(saved, !trouble || (trouble == 2 && !binary));
        QCOMPARE(contentOf(name), trouble ? before : content);
        QCOMPARE(answerer.seen(),
                 box.isEmpty()
                     ? QStringList()
                     : QStringList(box == cannotRemove ? box.arg(name, probe.errorString())
                                                       : box.arg(name)));
        QCOMPARE(QDir("out").entryList(QDir::Files | QDir::Hidden),
                 QStringList({ "new.dat", "old.dat" }).mid(QFile::exists("out/new.dat") ? 0 : 1));
    }
}

ZU_TEST_MAIN(tst_ZuFileUtils)
#include "tst_zufileutils.moc"
