#include "support/CapturingAppender.h"
#include "support/ModalAnswerer.h"
#include "support/TestFiles.h"
#include "support/Unprivileged.h"
#include "support/ZuTest.h"

#include <zucore/ZuJsonDocumentFile.h>

#include <cstdio>

namespace {

using zutest::contentOf;
using zutest::writeFile;

// A document whose data is one JSON object. It notes the virtual calls that reach it, one
// letter each: M maybeSave, C closeFile, X clearData, O getOpenFileName, S saveFile,
// G getSaveFileName, D defaultFileName, K lock, R lockRetry, L loadFromJsonFile,
// W saveToJsonFile, T toJsonDocument, F fromJsonDocument.
class Doc : public ZuJsonDocumentFile
{
public:
    using ZuJsonDocumentFile::setFileExtension;
    using ZuJsonDocumentFile::setFileTypeName;
    using Base = ZuJsonDocumentFile;
    mutable QString calls;
    QJsonObject data;
    bool accepts = true; // whether fromJsonDocument() takes a valid object
    QString proposedName, nameDuringLoad;
    std::function<void()> onLoad;
    std::function<int()> retryAnswer; // unset: the real box

    // clang-format off
    QString defaultFileName() const override { return calls += 'D', proposedName; }
    void closeFile() override { calls += 'C', Base::closeFile(); }
    bool saveFile(const QString &n = QString()) override { return calls += 'S', Base::saveFile(n); }
    bool maybeSave() override { return calls += 'M', Base::maybeSave(); }
    bool loadFromJsonFile(const QString &n, bool b, const QString &t) override { return calls += 'L', Base::loadFromJsonFile(n, b, t); }
    bool saveToJsonFile(const QString &n, bool b) override { return calls += 'W', Base::saveToJsonFile(n, b); }
    QString getOpenFileName() const override { return calls += 'O', Base::getOpenFileName(); }
    QString getSaveFileName() const override { return calls += 'G', Base::getSaveFileName(); }
    QJsonDocument toJsonDocument() override { return calls += 'T', QJsonDocument(data); }
    void clearData() override { calls += 'X', data = QJsonObject(); }
    bool lock(const QString &n, bool r) override { return calls += 'K', Base::lock(n, r); }
    int lockRetry(const QString &n, const QString &m, bool r) const override
    { return calls += 'R', retryAnswer ? retryAnswer() : Base::lockRetry(n, m, r); }
    // clang-format on
    bool fromJsonDocument(const QJsonDocument &document) override
    {
        calls += 'F';
        nameDuringLoad = fileName();
        if (onLoad)
            onLoad();
        data = accepts && document.isObject() ? document.object() : data;
        return accepts && document.isObject();
    }
};

// clang-format off
// Boxes and file dialogs as ModalAnswerer::seen() gives them.
const QString warning = "%1|2|OK*||%2", dialog = "|JSON File (*.json)", readOnly = ",Open Read Only";
const QString changed = "JSON File File Changed|2|Save*,Cancel,Discard||'%1' has been modified.\nDo you want to save your changes?";
const QString refused = "Load JSON File File|2|OK*||Cannot read file %1:\nNot saved as a valid document.";
const QString lockBox = "|0|Retry*,Cancel%1|Do you want to Retry getting a lock on the file?|Unable to lock file '%2'\n\nError:Lock Failed (%3";
const QString held = "File Open by another user?) <owner>";
const QString owner = "Process Id:%1 Host Name:'" + QSysInfo::machineHostName() + "' Application Name:'tst_zujsondocumentfile'";

// setup: "titled" opens a.json, "modified" reports edits, "locks" turns lock files on, "refuse"
// makes fromJsonDocument() refuse, "plan" and "named" set the type and default name, "held=x.lock"
// has another process hold that lock ("killed": it dies), "retry" answers Retry until the third
// question frees it, "nobody" acts without root's rights, "full" fills the disk after 4 KiB,
// "edits" reports edits while a file loads. action: with ':' and the name for openFile and
// saveFile. boxes: what the user saw, in beginnings. state: name, modified, holding the lock.
const struct { const char *name; QString setup, action, answers, calls; int result; QStringList boxes; QString log, state; } rows[] = {
    // The state table and the order of the virtual calls.
    { "new, changed, Discard", "titled,modified", "newFile", "Discard", "MCX", 1, { changed.arg("a.json") }, "", "|0|0" },
    { "open with locks", "locks", "openFile:b.json", "", "MKLF", 1, {}, "", "b.json|0|1" },
    { "open, asks to save before the dialog", "modified", "openFile:", "Save,file:new.json,file:b.json", "MDSGDWTOLF", 1, { changed.arg("The new file"), "Save JSON File File As|" + dialog, "Open JSON File|" + dialog }, "", "b.json|0|0" },
    { "save with locks", "locks,titled,modified", "saveFile:", "", "SKWT", 1, {}, "", "a.json|0|1" },
    { "save untitled proposes the default name", "named,modified", "saveFile:", "file:new.json", "SGDWT", 1, { "Save JSON File File As|Budget.json" + dialog }, "", "new.json|0|0" },
    { "save as another document reloads", "titled,modified", "saveFile:c.json", "", "SWTLF", 1, {}, "", "c.json|0|0" },
    { "save into another folder: the same document", "titled,modified", "saveFile:sub/a.json", "", "SWT", 1, {}, "", "sub/a.json|0|0" },
    { "save as, untitled", "named,modified", "saveFileAs", "file:new.json", "GDSWT", 1, { "Save JSON File File As|Budget.json" + dialog }, "", "new.json|0|0" },
    { "save as, titled: the present name, a next revision", "named,titled,modified", "saveFileAs", "file:a Rev 2.json", "SWT", 1, { "Save JSON File File As|a.json" + dialog }, "", "a Rev 2.json|0|0" },
    { "maybeSave, clean", "titled", "maybeSave", "", "M", 1, {}, "", "a.json|0|0" },
    { "maybeSave, Discard keeps the flag", "titled,modified", "maybeSave", "Discard", "M", 1, { changed.arg("a.json") }, "", "a.json|1|0" },
    { "revert", "titled,modified", "revert", "", "F", 1, {}, "", "a.json|0|0" },
    { "revert, clean", "titled", "revert", "", "", 1, {}, "", "a.json|0|0" },
    { "close asks nothing", "titled,modified", "closeFile", "", "C", 1, {}, "", "a.json|0|0" },
    { "close, clean: no signal", "titled", "closeFile", "", "C", 1, {}, "", "a.json|0|0" },
    { "edits reported while loading don't survive", "edits", "openFile:b.json", "", "MLF", 1, {}, "", "b.json|0|0" },
    // The failures: the data, a.json and the flag stay as they were, and no file is left over.
    { "new, Cancel", "titled,modified", "newFile", "Cancel", "M", 0, { changed.arg("a.json") }, "", "a.json|1|0" },
    { "open, Save, missing", "titled,modified", "openFile:missing.json", "Save", "MSWT", 0, { changed.arg("a.json") }, "does not exist!", "a.json|0|0" },
    { "open, Discard, missing", "titled,modified", "openFile:missing.json", "Discard", "M", 0, { changed.arg("a.json") }, "\"missing.json\" does not exist!", "a.json|1|0" },
    { "open unreadable", "titled", "openFile:folder.json", "OK", "ML", 0, { warning.arg("Error Reading File", "Cannot read file 'folder.json'.\n") }, "", "a.json|0|0" },
    { "open empty", "titled", "openFile:empty.json", "", "ML", 0, {}, "", "a.json|0|0" },
    { "open broken JSON", "titled", "openFile:broken.json", "OK", "MLF", 0, { refused.arg("broken.json") }, "Cannot read file broken.json.", "a.json|0|0" },
    { "open, dialog cancelled, own file type", "plan,titled", "openFile:", "file:", "MO", 0, { "Open Plan||Plan (*.plan)" }, "", "a.json|0|0" },
    { "save, dialog cancelled", "modified", "saveFile:", "file:", "SGD", 0, { "Save JSON File File As|" + dialog }, "", "|1|0" },
    { "save in a read-only folder", "titled,modified,nobody", "saveFile:", "OK", "SWT", 0, { warning.arg("Error Saving File", "Cannot remove previous version of file a.json:\n") }, "", "a.json|1|0" },
    { "save on a full disk", "titled,modified,full", "saveFile:", "", "SWT", 0, {}, "Cannot write file a.json.", "a.json|1|0" },
    { "save where no file can be made", "titled,modified", "saveFile:plain.txt/a.json", "OK", "SWT", 0, { warning.arg("Error Saving File", "Unable to save 'plain.txt/a.json'.\n\n Is the file currently open?") }, "", "a.json|1|0" },
    { "save as another document, reload refused", "titled,modified,refuse", "saveFile:c.json", "OK", "SWTLF", 0, { refused.arg("c.json") }, "Cannot read file c.json.", "a.json|1|0" },
    { "revert refused", "titled,modified,refuse", "revert", "OK", "F", 0, { warning.arg("Reverting JSON File File", "Error reverting file a.json.") }, "Error reverting file a.json.", "a.json|1|0" },
    { "revert of a document never loaded", "modified", "revert", "OK", "F", 0, { warning.arg("Reverting JSON File File", "Error reverting file .") }, "", "|1|0" },
    // Locks that can't be had: Cancel stops before anything is read or written.
    { "open, held by another process, Cancel", "titled,locks,held=b.lock", "openFile:b.json", "Cancel", "MKR", 0, { lockBox.arg(readOnly, "b.json", held) }, held, "a.json|0|0" },
    { "save, held by another process, Retry, Cancel", "titled,modified,locks,held=a.lock", "saveFile:", "Retry,Cancel", "SKRR", 0, { lockBox.arg("", "a.json", held), lockBox.arg("", "a.json", held) }, held, "a.json|1|0" },
    { "save, lock in a read-only folder", "titled,modified,locks,nobody", "saveFile:", "Cancel", "SKR", 0, { lockBox.arg("", "a.json", "You do not have permsission in the folder.) Lock information not available") }, "Error:Lock Failed (You do not have permsission in the folder.) Lock information not available", "a.json|1|0" },
    { "save, lock in a missing folder", "titled,modified,locks", "saveFile:missing/a.json", "Cancel", "SKR", 0, { lockBox.arg("", "missing/a.json", "Unknown error.  Does file exist?) Lock information not available") }, "Error:Lock Failed (Unknown error.  Does file exist?) Lock information not available", "a.json|1|0" },
    // Going on without the lock, or until it is free.
    { "open read-only", "locks,held=b.lock", "openFile:b.json", "Open Read Only", "MKRLF", 1, { lockBox.arg(readOnly, "b.json", held) }, "", "b.json|0|0" },
    { "save after the other process died", "titled,modified,locks,held=a.lock,killed", "saveFile:", "", "SKWT", 1, {}, "", "a.json|0|1" },
    { "retry until the lock is free", "locks,held=a.lock,retry", "openFile:a.json", "", "MKRRRLF", 1, {}, "", "a.json|0|1" },
};
// clang-format on

} // namespace

class tst_ZuJsonDocumentFile : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase()
    {
        const QString lockName = qEnvironmentVariable("ZU_TEST_HOLD_LOCK");
        if (!lockName.isEmpty()) {
            QLockFile lock(lockName);
            std::puts(lock.tryLock(10000) ? "locked" : "failed");
            std::fflush(stdout);
            while (std::getchar() != EOF) { }
            lock.unlock();
            _exit(0);
        }
        // Only root may write into the folder, but "nobody" may reach it.
        QFile::setPermissions(QDir::currentPath(), QFileDevice::Permissions(0x7755));
    }

    // Each test starts in a folder of its own files (a file dialog would ask before replacing).
    void init()
    {
        for (QWidget *widget : QApplication::topLevelWidgets())
            if (widget->windowTitle() == "File Saved")
                delete widget; // not hidden yet
        for (const QFileInfo &entry :
             QDir().entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden))
            QVERIFY(entry.isDir() ? QDir(entry.filePath()).removeRecursively()
                                  : QFile::remove(entry.filePath()));
        QVERIFY(QDir().mkpath("folder.json") && QDir().mkpath("sub"));
        for (const QString &file :
             QStringList { "a.json={\"v\": \"a\"}", "b.json={\"v\": \"b\"}",
                           "empty.json=", "broken.json={ nope", "plain.txt=plain" })
            writeFile(file.section('=', 0, 0), file.section('=', 1).toUtf8());
    }

    void scenarios_data() { zutest::addRows(rows); }

    // Every operation from every state: the virtual calls, the boxes, the log and the state.
    void scenarios()
    {
        QFETCH(int, row);
        const auto &r = rows[row];
        const auto has = [&r](const char *word) { return r.setup.split(',').contains(word); };
        Doc doc;
        QSignalSpy spy(&doc, &ZuJsonDocumentFile::modifiedChanged);
        if (has("plan"))
            doc.setFileTypeName("Plan"), doc.setFileExtension("plan");
        doc.proposedName = has("named") ? "Budget.json" : "";
        if (has("titled"))
            QCOMPARE(doc.openFile("a.json"), 1);
        doc.setUseLockFile(has("locks"));
        doc.data["edit"] = QString::fromUtf8("Z\xc3\xbcrich");
        doc.data["pad"] = QString(has("full") ? 64 * 1024 : 0, 'n');
        for (int i = 0; i < (has("modified") ? 2 : 0); ++i)
            doc.dataWasModified(); // the second time changes nothing
        doc.onLoad = [&] { has("edits") ? doc.dataWasModified() : void(); };
        doc.accepts = !has("refuse");
        QProcess child;
        if (r.setup.contains("held=")) { // the test binary, started again, holds the lock
            qputenv(
                "ZU_TEST_HOLD_LOCK",
                QDir().absoluteFilePath(r.setup.section("held=", 1).section(',', 0, 0)).toUtf8());
            child.start(QCoreApplication::applicationFilePath(), QStringList());
            qunsetenv("ZU_TEST_HOLD_LOCK");
            QByteArray output;
            while (!output.contains("locked\n") && child.waitForReadyRead(10000))
                output += child.readAllStandardOutput();
            QVERIFY(output.contains("locked\n"));
        }
        if (has("killed"))
            child.close(); // killed: its lock file stays behind
        int asked = 0;
        bool ignored = true; // edits reported while the lock is sought don't count
        if (has("retry"))
            doc.retryAnswer = [&] {
                doc.dataWasModified();
                ignored = ignored && !doc.isModified();
                if (++asked == 3) // the other process gives the lock up
                    child.closeWriteChannel(), child.waitForFinished(10000);
                return 2;
            };
        doc.calls.clear();
        const QJsonObject dataBefore = doc.data;
        const QByteArray fileBefore = contentOf("a.json");
        zutest::LogCapture capture;
        zutest::ModalAnswerer answerer;
        for (const QString &answer : r.answers.split(',', Qt::SkipEmptyParts))
            answer.startsWith("file:") ? answerer.answerFileDialog(answer.mid(5))
                                       : answerer.answerBoxByText(answer);
        const QString op = r.action.section(':', 0, 0), name = r.action.section(':', 1);
        std::unique_ptr<zutest::Unprivileged> user(has("nobody") ? new zutest::Unprivileged
                                                                 : nullptr);
        QVERIFY(!user || user->ok());
        std::unique_ptr<zutest::FileSizeLimit> full(has("full") ? new zutest::FileSizeLimit(4096)
                                                                : nullptr);
        const int result = op == "newFile" ? doc.newFile()
            : op == "openFile"             ? doc.openFile(name)
            : op == "saveFile"             ? doc.saveFile(name)
            : op == "saveFileAs"           ? doc.saveFileAs()
            : op == "maybeSave"            ? doc.maybeSave()
            : op == "revert"               ? doc.revert()
                                           : (doc.closeFile(), 1);
        full.reset();
        user.reset();
        QCOMPARE(doc.calls, r.calls);
        QCOMPARE(result, r.result);
        QCOMPARE(answerer.pending(), 0);
        QCOMPARE(answerer.seen().size(), r.boxes.size());
        for (int i = 0; i < r.boxes.size(); ++i)
            QVERIFY2(answerer.seen()[i].startsWith(
                         QString(r.boxes[i]).replace("<owner>", owner.arg(child.processId()))),
                     qPrintable(answerer.seen()[i]));
        if (!r.log.isEmpty())
            QVERIFY(capture.contains(
                Logger::Error, QString(r.log).replace("<owner>", owner.arg(child.processId()))));
        QCOMPARE(
            (doc.fileName().isEmpty() ? "" : QDir().relativeFilePath(doc.fileName())) + '|'
                + QString::number(doc.isModified()) + '|'
                + QString::number(doc.lockInfo() == owner.arg(QCoreApplication::applicationPid())),
            r.state);
        if (doc.calls.endsWith("LF")) // the name is there while the file loads
            QCOMPARE(QDir().relativeFilePath(doc.nameDuringLoad),
                     name.isEmpty() ? r.state.section('|', 0, 0) : name);
        if (op.startsWith("save") && (result || doc.calls.contains('L'))) // also when refused
            QCOMPARE(contentOf(result ? doc.fileName() : name), QJsonDocument(dataBefore).toJson());
        if (!result) {
            QCOMPARE(doc.data, dataBefore);
            QCOMPARE(QDir().entryList(QDir::Files | QDir::Hidden).filter("a.json"), { "a.json" });
            if (!r.answers.contains("Save"))
                QCOMPARE(contentOf("a.json"), fileBefore);
        }
        bool last = false; // modifiedChanged tells changes only
        for (const QVariantList &signal : spy)
            QVERIFY((last = !last) == signal.at(0).toBool());
        QVERIFY(last == doc.isModified() && asked == (has("retry") ? 3 : 0) && ignored);
        child.close();
    }

    // The binary form: the image that both Qt builds read and write byte for byte.
    void binaryForm()
    {
        Doc doc;
        const QString image = QStringLiteral(ZUCORE_TEST_DATA_DIR "/jsondocument.qbjs");
        QVERIFY(doc.loadFromJsonFile(image, true, "x"));
        QCOMPARE(doc.data["name"].toString(), QString::fromUtf8("Z\xc3\xbcrich plan"));
        QVERIFY(doc.saveToJsonFile("copy.qbjs", true));
        QCOMPARE(contentOf("copy.qbjs"), contentOf(image));
        writeFile("damaged.qbjs", contentOf(image).left(100));
        zutest::ModalAnswerer answerer;
        answerer.answerBoxByText("OK");
        QVERIFY(!doc.loadFromJsonFile("damaged.qbjs", true, "x"));
        QCOMPARE(answerer.seen().size(), 1);
    }

    // The box "File Saved" hides and goes by itself. A failed save has already taken the new
    // content, and revert goes back to it.
    void savingAndReverting()
    {
        Doc doc;
        zutest::LogCapture capture;
        QVERIFY(doc.saveFile("a.json"));
        QPointer<QMessageBox> box;
        for (QWidget *widget : QApplication::topLevelWidgets())
            if (widget->windowTitle() == "File Saved")
                box = qobject_cast<QMessageBox *>(widget);
        QVERIFY(box && box->isVisible() && !box->isModal() && box->text() == "a.json");
        QCOMPARE(capture.messages().filter("Sav").replaceInStrings(QRegularExpression(" $"), ""),
                 QStringList({ "Saving \"a.json\" ...", "File Saved." }));
        doc.data["v"] = "new";
        doc.dataWasModified();
        zutest::ModalAnswerer answerer;
        answerer.answerBoxByText("OK");
        QVERIFY(!doc.saveFile("folder.json"));
        doc.data["v"] = "newer";
        QVERIFY(doc.revert());
        QCOMPARE(doc.data["v"].toString(), "new");
        QTRY_VERIFY_WITH_TIMEOUT(box.isNull(), 10000);
    }

    // The lock file lies beside the document (last suffix replaced), only with lock files on.
    void lockFiles()
    {
        Doc doc;
        QVERIFY(doc.saveFile("sub/Plan.final.json") && doc.openFile("sub/Plan.final.json"));
        QVERIFY(doc.isLocked() && QDir("sub").entryList(QDir::Files).size() == 1);
        QCOMPARE(doc.lockFileName(), "sub/Plan.final.lock");
        doc.setUseLockFile(true);
        QVERIFY(doc.lock("sub/Plan.final.json", false) && doc.lock("sub/Plan.final.json", false));
        QVERIFY(QFile::exists("sub/Plan.final.lock") && doc.isLocked());
        QVERIFY(doc.saveFile("Plan") && doc.lockFileName() == "./Plan.lock");
        QVERIFY(!QFile::exists("sub/Plan.final.lock") && QFile::exists("Plan.lock"));
        doc.unlock();
        QVERIFY(!QFile::exists("Plan.lock"));
        QCOMPARE(doc.lockInfo(), "Lock information not available");
    }
};

ZU_TEST_MAIN(tst_ZuJsonDocumentFile)
#include "tst_zujsondocumentfile.moc"
