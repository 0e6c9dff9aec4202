#include "support/CapturingAppender.h"
#include "support/ModalAnswerer.h"
#include "support/Unprivileged.h"
#include "support/ZuTest.h"

#include <zucore/ZuJsonDocumentFile.h>

#include <QJsonObject>
#include <QLockFile>
#include <QPointer>
#include <QProcess>
#include <QSysInfo>

#include <csignal>
#include <cstdio>
#include <functional>
#include <sys/resource.h>

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

// A document whose data is one JSON object; it records the order of the virtual calls.
class Doc : public ZuJsonDocumentFile
{
public:
    using ZuJsonDocumentFile::setFileExtension;
    using ZuJsonDocumentFile::setFileTypeName;
    using Base = ZuJsonDocumentFile;

    mutable QStringList calls;
    QJsonObject data;
    bool accepts = true; // whether fromJsonDocument() takes a valid object
    QString proposedName;
    QString nameDuringLoad;
    std::function<void()> onLoad;
    std::function<int()> retryAnswer; // unset: the real box

    QString defaultFileName() const override { return calls << "defaultFileName", proposedName; }
    void closeFile() override { calls << "closeFile", Base::closeFile(); }
    bool saveFile(const QString &n = QString()) override
    {
        return calls << "saveFile", Base::saveFile(n);
    }
    bool maybeSave() override { return calls << "maybeSave", Base::maybeSave(); }
    bool loadFromJsonFile(const QString &n, bool binary, const QString &title) override
    {
        return calls << "loadFromJsonFile", Base::loadFromJsonFile(n, binary, title);
    }
    bool saveToJsonFile(const QString &n, bool binary) override
    {
        return calls << "saveToJsonFile", Base::saveToJsonFile(n, binary);
    }
    QString getOpenFileName() const override
    {
        return calls << "getOpenFileName", Base::getOpenFileName();
    }
    QString getSaveFileName() const override
    {
        return calls << "getSaveFileName", Base::getSaveFileName();
    }
    QJsonDocument toJsonDocument() override
    {
        return calls << "toJsonDocument", QJsonDocument(data);
    }
    bool fromJsonDocument(const QJsonDocument &document) override
    {
        calls << "fromJsonDocument";
        nameDuringLoad = fileName();
        if (onLoad)
            onLoad();
        if (!accepts || !document.isObject())
            return false;
        data = document.object();
        return true;
    }
    void clearData() override { calls << "clearData", data = QJsonObject(); }
    bool lock(const QString &n, bool readOnly) override
    {
        return calls << "lock", Base::lock(n, readOnly);
    }
    int lockRetry(const QString &n, const QString &message, bool readOnly) const override
    {
        calls << "lockRetry";
        return retryAnswer ? retryAnswer() : Base::lockRetry(n, message, readOnly);
    }
};

// "Save", "Cancel", ... press a standard button, "file:<name>" answers a file dialog (an empty
// name cancels it), any other text presses the button with that text.
void queue(zutest::ModalAnswerer &answerer, const QStringList &answers)
{
    const QMap<QString, QMessageBox::StandardButton> buttons
        = { { "Ok", QMessageBox::Ok },
            { "Save", QMessageBox::Save },
            { "Discard", QMessageBox::Discard },
            { "Cancel", QMessageBox::Cancel },
            { "Retry", QMessageBox::Retry } };
    for (const QString &answer : answers) {
        if (answer.startsWith("file:"))
            answerer.answerFileDialog(answer.mid(5));
        else if (buttons.contains(answer))
            answerer.answerBox(buttons.value(answer));
        else
            answerer.answerBoxByText(answer);
    }
}

QString changedBox(const QString &name)
{
    return "JSON File File Changed|'" + name
        + "' has been modified.\nDo you want to save your changes?";
}

QString refusedBox(const QString &name)
{
    return "Load JSON File File|Cannot read file " + name + ":\nNot saved as a valid document.";
}

// The test binary, started again, holds a lock file until its standard input closes.
bool holdLock(QProcess &child, const QString &lockFileName)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("ZU_TEST_HOLD_LOCK", QDir::current().absoluteFilePath(lockFileName));
    child.setProcessEnvironment(environment);
    child.start(QCoreApplication::applicationFilePath(), QStringList());
    QByteArray output;
    while (!output.contains("locked\n") && child.waitForReadyRead(10000))
        output += child.readAllStandardOutput();
    return output.contains("locked\n");
}

QString heldBy(const QProcess &child)
{
    return QStringLiteral("Error:Lock Failed (File Open by another user?) Process Id:%1 Host "
                          "Name:'%2' Application Name:'%3'")
        .arg(child.processId())
        .arg(QSysInfo::machineHostName(), QCoreApplication::applicationName());
}

} // namespace

class tst_ZuJsonDocumentFile : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void scenarios_data();
    void scenarios();
    void dialogs();
    void modifiedSignal();
    void fileForms();
    void revisions_data();
    void revisions();
    void fileSavedBox();
    void lockFiles();
    void lockFailures_data();
    void lockFailures();
    void otherProcess();
    void retryUntilFree();
    void nothingLost();
    void fullDisk();
};

void tst_ZuJsonDocumentFile::initTestCase()
{
    const QString held = qEnvironmentVariable("ZU_TEST_HOLD_LOCK");
    if (!held.isEmpty()) {
        QLockFile lock(held);
        if (!lock.tryLock(10000))
            _exit(2);
        std::puts("locked");
        std::fflush(stdout);
        while (std::getchar() != EOF) { }
        lock.unlock();
        _exit(0);
    }
    const QString full = qEnvironmentVariable("ZU_TEST_FULL_DISK");
    if (!full.isEmpty()) {
        // The disk fills up after 4 KiB; SIGXFSZ ignored, the write fails instead.
        Doc doc;
        const bool opened = doc.openFile(full) == 1;
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit = { 4096, 4096 };
        setrlimit(RLIMIT_FSIZE, &limit);
        doc.data["pad"] = QString(64 * 1024, 'n');
        doc.dataWasModified();
        _exit(opened && !doc.saveFile() && doc.isModified() ? 0 : 1);
    }
    // Let "nobody" reach the folders below.
    QFile::setPermissions(QDir::currentPath(), QFileDevice::Permissions(0x7755));
}

// Each test starts in an empty folder (a file dialog would ask before replacing a file).
void tst_ZuJsonDocumentFile::init()
{
    for (const QFileInfo &entry :
         QDir().entryInfoList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden))
        QVERIFY(entry.isDir() ? QDir(entry.filePath()).removeRecursively()
                              : QFile::remove(entry.filePath()));
    QDir().mkpath("folder.json");
    for (const char *name : { "a.json", "b.json" })
        writeFile(name, QByteArray(R"({"v": ")") + name[0] + "\"}");
    writeFile("empty.json", "");
    writeFile("broken.json", "{ nope");
    writeFile("plain.txt", "plain");
}

void tst_ZuJsonDocumentFile::cleanup()
{
    for (QWidget *widget : QApplication::topLevelWidgets())
        if (widget->windowTitle() == "File Saved")
            delete widget;
}

void tst_ZuJsonDocumentFile::scenarios_data()
{
    QTest::addColumn<QString>("setup"); // "titled" opens a.json; "modified", "locks", "refuse"
    QTest::addColumn<QString>("action"); // operation, ':' and the name for the named ones
    QTest::addColumn<QStringList>("answers");
    QTest::addColumn<QStringList>("calls");
    QTest::addColumn<int>("result");
    QTest::addColumn<QStringList>("boxes"); // "title|text" beginnings
    QTest::addColumn<QString>("log"); // expected in an Error line
    QTest::addColumn<QString>("state"); // "name|modified" afterwards

    const QStringList none;
    const QString saveCalls = "saveFile,saveToJsonFile,toJsonDocument";
    const QString saveDialog
        = "saveFile,getSaveFileName,defaultFileName,saveToJsonFile,toJsonDocument";
    auto row = [](const char *name, const QString &setup, const QString &action,
                  const QStringList &answers, const QString &calls, int result,
                  const QStringList &boxes, const QString &log, const QString &state) {
        QTest::newRow(name) << setup << action << answers << calls.split(',', Qt::SkipEmptyParts)
                            << result << boxes << log << state;
    };
    // The state table.
    row("new", "", "newFile", none, "maybeSave,closeFile,clearData", 1, none, "", "|0");
    row("new, changed, Discard", "titled,modified", "newFile", { "Discard" },
        "maybeSave,closeFile,clearData", 1, { changedBox("a.json") }, "", "|0");
    row("open", "", "openFile:b.json", none, "maybeSave,loadFromJsonFile,fromJsonDocument", 1, none,
        "", "b.json|0");
    row("open with locks", "locks", "openFile:b.json", none,
        "maybeSave,lock,loadFromJsonFile,fromJsonDocument", 1, none, "", "b.json|0");
    row("open, asks to save before the dialog", "modified",
        "openFile:", { "Save", "file:new.json", "file:b.json" },
        "maybeSave,defaultFileName," + saveDialog
            + ",getOpenFileName,loadFromJsonFile,fromJsonDocument",
        1, { changedBox("The new file") }, "", "b.json|0");
    row("save", "titled,modified", "saveFile:", none, saveCalls, 1, none, "", "a.json|0");
    row("save with locks", "locks,titled,modified", "saveFile:", none,
        "saveFile,lock,saveToJsonFile,toJsonDocument", 1, none, "", "a.json|0");
    row("save untitled", "modified", "saveFile:", { "file:new.json" }, saveDialog, 1, none, "",
        "new.json|0");
    row("save as another document reloads", "titled,modified", "saveFile:c.json", none,
        saveCalls + ",loadFromJsonFile,fromJsonDocument", 1, none, "", "c.json|0");
    row("save as, untitled", "modified", "saveFileAs", { "file:new.json" },
        "getSaveFileName,defaultFileName,saveFile,saveToJsonFile,toJsonDocument", 1, none, "",
        "new.json|0");
    row("save as, titled", "titled,modified", "saveFileAs", { "file:a Rev 2.json" }, saveCalls, 1,
        none, "", "a Rev 2.json|0");
    row("maybeSave, clean", "titled", "maybeSave", none, "maybeSave", 1, none, "", "a.json|0");
    row("maybeSave, Discard keeps the flag", "titled,modified", "maybeSave", { "Discard" },
        "maybeSave", 1, { changedBox("a.json") }, "", "a.json|1");
    row("maybeSave, Save", "titled,modified", "maybeSave", { "Save" }, "maybeSave," + saveCalls, 1,
        { changedBox("a.json") }, "", "a.json|0");
    row("revert", "titled,modified", "revert", none, "fromJsonDocument", 1, none, "", "a.json|0");
    row("revert, clean", "titled", "revert", none, "", 1, none, "", "a.json|0");
    row("close asks nothing", "titled,modified", "closeFile", none, "closeFile", 1, none, "",
        "a.json|0");
    // The failures.
    row("new, Cancel", "titled,modified", "newFile", { "Cancel" }, "maybeSave", 0,
        { changedBox("a.json") }, "", "a.json|1");
    row("open, Save, missing", "titled,modified", "openFile:missing.json", { "Save" },
        "maybeSave," + saveCalls, 0, { changedBox("a.json") }, "does not exist!", "a.json|0");
    row("open missing", "titled", "openFile:missing.json", none, "maybeSave", 0, none,
        "\"missing.json\" does not exist!", "a.json|0");
    row("open, Discard, missing", "titled,modified", "openFile:missing.json", { "Discard" },
        "maybeSave", 0, { changedBox("a.json") }, "does not exist!", "a.json|1");
    row("open unreadable", "titled", "openFile:folder.json", { "Ok" }, "maybeSave,loadFromJsonFile",
        0, { "Error Reading File|Cannot read file 'folder.json'.\n" }, "", "a.json|0");
    row("open empty", "titled", "openFile:empty.json", none, "maybeSave,loadFromJsonFile", 0, none,
        "", "a.json|0");
    row("open broken JSON", "titled", "openFile:broken.json", { "Ok" },
        "maybeSave,loadFromJsonFile,fromJsonDocument", 0, { refusedBox("broken.json") },
        "Cannot read file broken.json.", "a.json|0");
    row("open, dialog cancelled", "titled", "openFile:", { "file:" }, "maybeSave,getOpenFileName",
        0, none, "", "a.json|0");
    row("save, dialog cancelled", "modified", "saveFile:", { "file:" },
        "saveFile,getSaveFileName,defaultFileName", 0, none, "", "|1");
    row("save over a folder", "titled,modified", "saveFile:folder.json", { "Ok" }, saveCalls, 0,
        { "Error Saving File|Cannot remove previous version of file folder.json:\n" }, "",
        "a.json|1");
    row("save where no file can be made", "titled,modified", "saveFile:plain.txt/a.json", { "Ok" },
        saveCalls, 0,
        { "Error Saving File|Unable to save 'plain.txt/a.json'.\n\n Is the file currently open?" },
        "", "a.json|1");
    row("save as another document, reload refused", "titled,modified,refuse", "saveFile:c.json",
        { "Ok" }, saveCalls + ",loadFromJsonFile,fromJsonDocument", 0, { refusedBox("c.json") },
        "Cannot read file c.json.", "a.json|1");
    row("revert refused", "titled,modified,refuse", "revert", { "Ok" }, "fromJsonDocument", 0,
        { "Reverting JSON File File|Error reverting file a.json." }, "Error reverting file a.json.",
        "a.json|1");
    row("revert of a document never loaded", "modified", "revert", { "Ok" }, "fromJsonDocument", 0,
        { "Reverting JSON File File|Error reverting file ." }, "", "|1");
}

// Every operation from every state: the order of the virtual calls, the boxes, the log and the
// state afterwards. A failure leaves the application's data and a.json as they were.
void tst_ZuJsonDocumentFile::scenarios()
{
    QFETCH(QString, setup);
    QFETCH(QString, action);
    QFETCH(QStringList, answers);
    QFETCH(QStringList, calls);
    QFETCH(int, result);
    QFETCH(QStringList, boxes);
    QFETCH(QString, log);
    QFETCH(QString, state);

    Doc doc;
    doc.setUseLockFile(setup.contains("locks"));
    if (setup.contains("titled"))
        QCOMPARE(doc.openFile("a.json"), 1);
    doc.data["edit"] = true;
    if (setup.contains("modified"))
        doc.dataWasModified();
    doc.accepts = !setup.contains("refuse");
    doc.calls.clear();
    const QJsonObject dataBefore = doc.data;
    const QByteArray fileBefore = contentOf("a.json");

    zutest::LogCapture capture;
    zutest::ModalAnswerer answerer;
    queue(answerer, answers);
    const QString name = action.section(':', 1);
    const QString operation = action.section(':', 0, 0);
    int answer = 1;
    if (operation == "newFile")
        answer = doc.newFile();
    else if (operation == "openFile")
        answer = doc.openFile(name);
    else if (operation == "saveFile")
        answer = doc.saveFile(name);
    else if (operation == "saveFileAs")
        answer = doc.saveFileAs();
    else if (operation == "maybeSave")
        answer = doc.maybeSave();
    else if (operation == "revert")
        answer = doc.revert();
    else
        doc.closeFile();

    QCOMPARE(doc.calls, calls);
    QCOMPARE(answer, result);
    QCOMPARE(answerer.pending(), 0);
    QStringList seen;
    for (const zutest::SeenModal &modal : answerer.seen()) {
        if (modal.kind == zutest::SeenModal::MessageBox) {
            const bool question = modal.title.endsWith("Changed");
            QCOMPARE(modal.icon, QMessageBox::Warning);
            QCOMPARE(modal.buttons,
                     question ? QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel
                              : QMessageBox::StandardButtons(QMessageBox::Ok));
            seen << modal.title + '|' + modal.text;
        }
    }
    QCOMPARE(seen.size(), boxes.size());
    for (int i = 0; i < boxes.size(); ++i)
        QVERIFY2(seen.at(i).startsWith(boxes.at(i)), qPrintable(seen.at(i)));
    if (!log.isEmpty())
        QVERIFY(capture.contains(Logger::Error, log));
    QCOMPARE(QFileInfo(doc.fileName()).fileName() + '|' + QString::number(doc.isModified()), state);
    if (operation == "openFile" && doc.calls.contains("fromJsonDocument"))
        QVERIFY(doc.nameDuringLoad.endsWith(name.isEmpty() ? "b.json" : name));
    if (!result) {
        QCOMPARE(doc.data, dataBefore);
        if (!answers.contains("Save"))
            QCOMPARE(contentOf("a.json"), fileBefore);
    }
}

// The dialogs name the document type; Save As proposes the present name, a first save the
// default one.
void tst_ZuJsonDocumentFile::dialogs()
{
    Doc doc;
    doc.setFileTypeName("Plan");
    doc.setFileExtension("plan");
    doc.proposedName = "Budget.plan";
    zutest::ModalAnswerer answerer;
    queue(answerer, { "file:", "file:", "file:b.plan" });
    QCOMPARE(doc.openFile(QString()), 0);
    QCOMPARE(doc.saveFileAs(), false);
    QVERIFY(doc.saveFile(QString()));
    QCOMPARE(QFileInfo(doc.fileName()).fileName(), "b.plan");
    queue(answerer, { "file:" });
    QCOMPARE(doc.saveFileAs(), false);
    QStringList seen;
    for (const zutest::SeenModal &modal : answerer.seen())
        seen << modal.title + '|' + modal.proposed + '|' + modal.filter;
    QCOMPARE(
        seen,
        QStringList({ "Open Plan||Plan (*.plan)", "Save Plan File As|Budget.plan|Plan (*.plan)",
                      "Save Plan File As|Budget.plan|Plan (*.plan)",
                      "Save Plan File As|b.plan|Plan (*.plan)" }));
}

void tst_ZuJsonDocumentFile::modifiedSignal()
{
    Doc doc;
    QSignalSpy spy(&doc, &ZuJsonDocumentFile::modifiedChanged);
    doc.closeFile();
    doc.setModified(true);
    doc.setModified(true);
    doc.closeFile();
    QCOMPARE(spy.size(), 2);
    spy.clear();
    // Edits reported while the file loads don't survive the load.
    doc.onLoad = [&doc] { doc.dataWasModified(); };
    QCOMPARE(doc.openFile("a.json"), 1);
    QCOMPARE(spy, QList<QVariantList>({ { true }, { false } }));
    QVERIFY(!doc.isModified());
}

// Text: indented UTF-8 without a byte order mark. Binary: the image that both Qt builds read
// and write byte for byte.
void tst_ZuJsonDocumentFile::fileForms()
{
    Doc doc;
    doc.data["city"] = QString::fromUtf8("Z\xc3\xbcrich");
    QVERIFY(doc.saveToJsonFile("text.json", false));
    QCOMPARE(contentOf("text.json"), QByteArray("{\n    \"city\": \"Z\xc3\xbcrich\"\n}\n"));

    const QString image = QStringLiteral(ZUCORE_TEST_DATA_DIR "/jsondocument.qbjs");
    QVERIFY(doc.loadFromJsonFile(image, true, "x"));
    QCOMPARE(doc.data["name"].toString(), QString::fromUtf8("Z\xc3\xbcrich plan"));
    QCOMPARE(QJsonDocument(doc.data).toJson(QJsonDocument::Compact),
             QByteArray(R"({"done":false,"name":"Zürich plan","nested":{"a":[],"b":{}},)"
                        R"("none":null,"ratio":0.25,"rev":3,"rows":[1,"two",{"x":-1}]})"));
    QVERIFY(doc.saveToJsonFile("copy.qbjs", true));
    QCOMPARE(contentOf("copy.qbjs"), contentOf(image));

    writeFile("damaged.qbjs", contentOf(image).left(100));
    zutest::ModalAnswerer answerer;
    answerer.answerBox(QMessageBox::Ok);
    QVERIFY(!doc.loadFromJsonFile("damaged.qbjs", true, "x"));
    QCOMPARE(answerer.seen().size(), 1);
}

void tst_ZuJsonDocumentFile::revisions_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");
    QTest::addColumn<bool>("reloads");
    QTest::newRow("next revision") << "Plan Rev 2.json"
                                   << "Plan Rev 3.json" << false;
    QTest::newRow("other folder") << "Plan.json"
                                  << "sub/Plan.json" << false;
    QTest::newRow("other name") << "Plan.json"
                                << "Other.json" << true;
    QTest::newRow("lower-case rev") << "Plan rev 2.json"
                                    << "Plan rev 3.json" << true;
    QTest::newRow("first save") << ""
                                << "Other.json" << false;
}

void tst_ZuJsonDocumentFile::revisions()
{
    QFETCH(QString, from);
    QFETCH(QString, to);
    QFETCH(bool, reloads);
    QDir().mkpath("sub");
    Doc doc;
    if (!from.isEmpty())
        QVERIFY(doc.saveToJsonFile(from, false));
    doc.data["v"] = 2;
    doc.setModified(true);
    doc.calls.clear();
    QVERIFY(doc.saveToJsonFile(to, false));
    QCOMPARE(doc.calls.contains("fromJsonDocument"), reloads);
    QCOMPARE(doc.fileName(), to);
    QVERIFY(!doc.isModified());
}

void tst_ZuJsonDocumentFile::fileSavedBox()
{
    Doc doc;
    zutest::LogCapture capture;
    QVERIFY(doc.saveFile("a.json"));
    QPointer<QMessageBox> box;
    for (QWidget *widget : QApplication::topLevelWidgets())
        if (widget->windowTitle() == "File Saved")
            box = qobject_cast<QMessageBox *>(widget);
    QVERIFY(box && box->isVisible() && !box->isModal());
    QCOMPARE(box->text(), "a.json");
    QCOMPARE(capture.messages().filter("Sav").replaceInStrings(QRegularExpression(" $"), ""),
             QStringList({ "Saving \"a.json\" ...", "File Saved." }));
    QTRY_VERIFY_WITH_TIMEOUT(box.isNull(), 10000); // hidden and released by itself
}

// The lock file lies beside the document, only the last suffix replaced; locks are taken only
// with lock files on and are given up by unlock().
void tst_ZuJsonDocumentFile::lockFiles()
{
    QDir().mkpath("sub");
    Doc doc;
    QVERIFY(doc.saveFile("sub/Plan.final.json") && doc.openFile("sub/Plan.final.json"));
    QVERIFY(doc.isLocked());
    QCOMPARE(QDir("sub").entryList(QDir::Files), QStringList { "Plan.final.json" });
    QCOMPARE(doc.lockFileName(), "sub/Plan.final.lock");

    doc.setUseLockFile(true);
    QCOMPARE(doc.openFile("sub/Plan.final.json"), 1);
    QVERIFY(QFile::exists("sub/Plan.final.lock") && doc.isLocked());
    QCOMPARE(doc.lockInfo(),
             QStringLiteral("Process Id:%1 Host Name:'%2' Application Name:'%3'")
                 .arg(QCoreApplication::applicationPid())
                 .arg(QSysInfo::machineHostName(), QCoreApplication::applicationName()));
    QVERIFY(doc.lock("sub/Plan.final.json", false)); // again, for the same file
    QVERIFY(doc.saveFile("Plan"));
    QVERIFY(!QFile::exists("sub/Plan.final.lock"));
    QCOMPARE(doc.lockFileName(), "./Plan.lock");
    QVERIFY(QFile::exists("Plan.lock"));
    doc.unlock();
    QVERIFY(!QFile::exists("Plan.lock"));
    QCOMPARE(doc.lockInfo(), "Lock information not available");
}

void tst_ZuJsonDocumentFile::lockFailures_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("opening");
    QTest::addColumn<QString>("message"); // empty: held by another process
    QTest::newRow("held by another process, open") << "held.json" << true << "";
    QTest::newRow("held by another process, save") << "held.json" << false << "";
    QTest::newRow("read-only folder")
        << "locked/plan.json" << false
        << "Error:Lock Failed (You do not have permsission in the folder.) Lock information not "
           "available";
    QTest::newRow("missing folder") << "missing/plan.json" << false
                                    << "Error:Lock Failed (Unknown error.  Does file exist?) Lock "
                                       "information not available";
}

// A lock that can't be had: the Error line and the box, then Cancel keeps the old document and
// writes nothing.
void tst_ZuJsonDocumentFile::lockFailures()
{
    QFETCH(QString, name);
    QFETCH(bool, opening);
    QFETCH(QString, message);
    QDir().mkpath("locked");
    writeFile("locked/plan.json", "{}");
    writeFile("held.json", "{}");
    QFile::setPermissions("locked", QFileDevice::Permissions(0x5555));
    QProcess child;
    if (message.isEmpty()) {
        QVERIFY(holdLock(child, "held.lock"));
        message = heldBy(child);
    }
    Doc doc;
    QCOMPARE(doc.openFile("a.json"), 1);
    doc.setUseLockFile(true);
    doc.setModified(!opening);
    zutest::LogCapture capture;
    zutest::ModalAnswerer answerer;
    answerer.answerBox(QMessageBox::Cancel);
    {
        zutest::Unprivileged user; // root could write into the read-only folder
        QVERIFY(user.ok());
        QCOMPARE(opening ? doc.openFile(name) : int(doc.saveFile(name)), 0);
    }
    QCOMPARE(answerer.seen().size(), 1);
    const zutest::SeenModal box = answerer.seen().first();
    QCOMPARE(box.title + box.text, "Unable to lock file '" + name + "'\n\n" + message);
    QCOMPARE(box.informativeText, "Do you want to Retry getting a lock on the file?");
    QCOMPARE(box.buttonTexts,
             QStringList({ "Retry", "Cancel", "Open Read Only" }).mid(0, opening ? 3 : 2));
    QCOMPARE(box.defaultButton, "Retry");
    QVERIFY(capture.contains(Logger::Error, message));
    QCOMPARE(doc.fileName() + doc.data["v"].toString(), "a.jsona");
    QVERIFY(doc.isModified() != opening && doc.isLocked());
    QCOMPARE(contentOf(name), QByteArray(name.startsWith("missing") ? "<unreadable>" : "{}"));
    QVERIFY(!doc.calls.contains("toJsonDocument"));
    child.closeWriteChannel();
    child.waitForFinished(10000);
}

// With a second process holding the lock: Open Read Only loads without a lock, Retry asks again
// and leaves the other's lock alone, and once the other process is gone a save takes the lock.
void tst_ZuJsonDocumentFile::otherProcess()
{
    QProcess child;
    QVERIFY(holdLock(child, "b.lock"));
    Doc doc;
    doc.setUseLockFile(true);
    zutest::ModalAnswerer answerer;
    answerer.answerBoxByText("Open Read Only");
    QCOMPARE(doc.openFile("b.json"), 1);
    QCOMPARE(doc.fileName() + doc.data["v"].toString(), "b.jsonb");
    QVERIFY(doc.isLocked());
    QCOMPARE(doc.lockInfo(), "Lock information not available");
    doc.data["v"] = "mine";
    doc.dataWasModified();
    QVERIFY(doc.isModified());

    queue(answerer, { "Retry", "Cancel" });
    QVERIFY(!doc.saveFile());
    QCOMPARE(answerer.seen().size(), 3);
    QCOMPARE(answerer.seen().at(1).text, answerer.seen().at(2).text);
    QVERIFY(QFile::exists("b.lock"));

    child.kill(); // leaves its lock file behind
    QVERIFY(child.waitForFinished(10000));
    QVERIFY(QFile::exists("b.lock"));
    QVERIFY(doc.saveFile());
    QCOMPARE(answerer.seen().size(), 3);
    QVERIFY(doc.lockInfo().startsWith(
        QStringLiteral("Process Id:%1 ").arg(QCoreApplication::applicationPid())));
    QVERIFY(contentOf("b.json").contains("mine"));
}

// An answer of 2 keeps trying until the lock is free; edits reported meanwhile don't count.
void tst_ZuJsonDocumentFile::retryUntilFree()
{
    QProcess child;
    QVERIFY(holdLock(child, "a.lock"));
    Doc doc;
    doc.setUseLockFile(true);
    int asked = 0;
    bool ignored = true;
    doc.retryAnswer = [&] {
        doc.dataWasModified();
        ignored = ignored && !doc.isModified();
        if (++asked == 3) {
            child.closeWriteChannel();
            child.waitForFinished(10000);
        }
        return 2;
    };
    QCOMPARE(doc.openFile("a.json"), 1);
    QCOMPARE(asked, 3);
    QCOMPARE(child.exitCode(), 0);
    QVERIFY(QFile::exists("a.lock") && doc.isLocked());
    QVERIFY(ignored);
}

// A save that fails in a read-only folder leaves the old file, the data and the flag; revert then
// goes back to the content of the failed save. A reload refused after saving as another document
// leaves the new file on disk.
void tst_ZuJsonDocumentFile::nothingLost()
{
    QDir().mkpath("locked");
    writeFile("locked/plan.json", R"({"v": "old"})");
    QFile::setPermissions("locked", QFileDevice::Permissions(0x5555));
    Doc doc;
    QCOMPARE(doc.openFile("locked/plan.json"), 1);
    doc.data["v"] = "new";
    doc.dataWasModified();
    zutest::ModalAnswerer answerer;
    queue(answerer, { "Ok", "Ok" });
    {
        zutest::Unprivileged user;
        QVERIFY(user.ok());
        QVERIFY(!doc.saveFile());
        QVERIFY(!doc.saveFile("locked/plan Rev 2.json"));
    }
    QCOMPARE(answerer.seen().size(), 2);
    QCOMPARE(contentOf("locked/plan.json"), QByteArray(R"({"v": "old"})"));
    QCOMPARE(QDir("locked").entryList(QDir::Files | QDir::Hidden), QStringList { "plan.json" });
    QVERIFY(doc.isModified());
    QCOMPARE(doc.data["v"].toString(), "new");
    doc.data["v"] = "newer";
    QVERIFY(doc.revert());
    QCOMPARE(doc.data["v"].toString(), "new");

    doc.accepts = false;
    doc.dataWasModified();
    answerer.answerBox(QMessageBox::Ok);
    QVERIFY(!doc.saveFile("other.json"));
    QCOMPARE(contentOf("other.json"), QByteArray("{\n    \"v\": \"new\"\n}\n"));
    QCOMPARE(doc.fileName(), "locked/plan.json");
    QVERIFY(doc.isModified());
}

// A disk that fills up half-way through a save keeps the old file and the document modified.
void tst_ZuJsonDocumentFile::fullDisk()
{
    const QByteArray old = R"({"pad": ")" + QByteArray(3000, 'o') + "\"}";
    writeFile("full.json", old);
    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("ZU_TEST_FULL_DISK", QDir::current().absoluteFilePath("full.json"));
    child.setProcessEnvironment(environment);
    child.start(QCoreApplication::applicationFilePath(), QStringList());
    QVERIFY(child.waitForFinished(60000));
    QCOMPARE(child.exitStatus(), QProcess::NormalExit);
    QCOMPARE(child.exitCode(), 0);
    QCOMPARE(contentOf("full.json"), old);
    QCOMPARE(QDir().entryList(QDir::Files | QDir::Hidden).filter("full").size(), 1);
}

ZU_TEST_MAIN(tst_ZuJsonDocumentFile)
#include "tst_zujsondocumentfile.moc"
