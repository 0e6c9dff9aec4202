#include "support/CapturingAppender.h"
#include "support/ZuTest.h"

#include <zucore/ZuAbstractTableModel.h>

#include <QAbstractItemModelTester>
#include <QJsonDocument>

#include <functional>

using Import = std::function<bool(ZuAbstractTableModel &)>;
Q_DECLARE_METATYPE(Import)

namespace {

using Model = ZuAbstractTableModel;

class Table : public ZuAbstractTableModel
{
public:
    explicit Table(const QStringList &headers = { "a", "b", "c" })
    {
        for (const QString &h : headers)
            setHeaderData(headerValues.size(), Qt::Horizontal, h);
    }
    bool refuseInserts = false;
    bool insertRows(int row, int count, const QModelIndex &parent) override
    {
        return !refuseInserts && ZuAbstractTableModel::insertRows(row, count, parent);
    }
};

QString parseErrorOf(const QString &text, int *code)
{
    QJsonParseError e;
    QJsonDocument::fromJson(text.toUtf8(), &e);
    *code = e.error;
    return e.errorString();
}

QStringList trimmed(const QStringList &messages)
{
    QStringList out;
    for (const QString &m : messages)
        out << m.trimmed();
    return out;
}

} // namespace

class tst_ZuAbstractTableModelIo : public QObject
{
    Q_OBJECT

private slots:
    void importDifferences_data();
    void importDifferences();
    void failures_data();
    void failures();
    void partialAndForeignElements();
    void roundTrip();
    void exportEdges();
    void loadKeepsStagedEdits();
};

void tst_ZuAbstractTableModelIo::importDifferences_data()
{
    QTest::addColumn<Import>("import");
    QTest::addColumn<int>("added");
    QTest::addColumn<int>("changes");
    QTest::addColumn<bool>("dirty");
    QTest::newRow("json string") << Import([](Model &m) {
        return m.insertFromJsonString(R"([{"a":1},{"a":2,"b":"x","c":3}])");
    }) << 2 << 1 << false;
    QTest::newRow("json array") << Import([](Model &m) {
        return m.insertFromJsonArray({ QJsonObject { { "a", "x" } } });
    }) << 1 << 1 << false;
    QTest::newRow("json object") << Import([](Model &m) {
        return m.insertFromJsonObject({ { "a", "x" }, { "c", 1 } });
    }) << 1 << 0 << true;
    QTest::newRow("strings list") << Import([](Model &m) {
        return m.insertFromStringsList({ { "1", "2", "3" }, { "4", "5", "6" }, { "", "", "" } });
    }) << 3 << 1 << true;
    QTest::newRow("strings") << Import([](Model &m) {
        return m.insertFromStrings({ "1", "2", "3" });
    }) << 1 << 1 << true;
}

void tst_ZuAbstractTableModelIo::importDifferences()
{
    QFETCH(Import, import);
    QFETCH(int, added);
    QFETCH(int, changes);
    QFETCH(bool, dirty);
    Table model;
    QVERIFY(model.insertFromStrings({ "p", "q", "r" }));
    model.submit();
    QSignalSpy inserted(&model, &Model::rowsInserted);
    QSignalSpy changed(&model, &Model::dataChanged);
    bool freshWhenInserted = false;
    connect(&model, &Model::rowsInserted, this, [&](const QModelIndex &, int first, int last) {
        freshWhenInserted = first == 1 && last == added
            && !model.data(model.index(last, 0), Qt::EditRole).isValid();
    });
    QVERIFY(import(model));
    QCOMPARE(model.rowCount(), 1 + added);
    QCOMPARE(inserted.count(), 1); // one notification however many rows
    QVERIFY(freshWhenInserted);
    QCOMPARE(changed.count(), changes);
    if (changes) {
        QCOMPARE(changed.first().at(0).toModelIndex(), model.index(1, 0));
        QCOMPARE(changed.first().at(1).toModelIndex(), model.index(added, 2));
        QVERIFY(changed.first().at(2).value<QVector<int>>().isEmpty());
    }
    QCOMPARE(model.isDirty(), dirty);
    for (int c = 0; c < model.columnCount(); ++c)
        QVERIFY(!model.isDirty(model.index(1, c)));
}

void tst_ZuAbstractTableModelIo::failures_data()
{
    QTest::addColumn<Import>("import");
    QTest::addColumn<bool>("refuseInserts");
    QTest::addColumn<QString>("log");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("text");
    const QString name = "\"ZuAbstractTableModel\" ";
    auto fromText = [](const QString &text) {
        return Import([text](Model &m) { return m.insertFromJsonString(text); });
    };
    const QStringList broken
        = { "not json",        "[{\"a\":1}", QString(2000, '[') + QString(2000, ']'),
            "[{\"a\":1e400}]", "[1,]",       "\"text\"" };
    for (const QString &text : broken) {
        int code = 0;
        const QString why = parseErrorOf(text, &code);
        QTest::newRow(qPrintable("parse error: " + text.left(12)))
            << fromText(text) << false << name + QString::number(code) + " \"" + why + "\""
            << QString("Insert Error [%1]").arg(code) << why;
    }
    QTest::newRow("empty text") << fromText("") << false << QString() << QString() << QString();
    QTest::newRow("object") << fromText(R"({"a":[1,2]})") << false
                            << name + "JSON Document is not an array."
                            << "Insert Error"
                            << "JSON Document is not an array.";
    QTest::newRow("empty array") << fromText(" [ ] ") << false << QString() << QString()
                                 << QString();
    const QString refused = name + "Unable to insert rows.";
    QTest::newRow("array, rows refused")
        << fromText("[{}]") << true << refused << QString() << QString();
    QTest::newRow("object, row refused")
        << Import([](Model &m) { return m.insertFromJsonObject({}); }) << true << refused
        << QString() << QString();
    QTest::newRow("strings, row refused") << Import([](Model &m) {
        return m.insertFromStrings({ "1", "2", "3" });
    }) << true << refused << QString() << QString();
    QTest::newRow("strings list, rows refused") << Import([](Model &m) {
        return m.insertFromStringsList({ { "1", "2", "3" } });
    }) << true << refused << QString() << QString();
    QTest::newRow("strings, wrong count") << Import([](Model &m) {
        return m.insertFromStrings({ "1", "2" });
    }) << false << name + "\"Mismatched counts: Items Count = 2  columnCount=3\""
                                          << QString() << QString();
    QTest::newRow("strings list, second wrong") << Import([](Model &m) {
        return m.insertFromStringsList({ { "1", "2", "3" }, { "4" }, {} });
    }) << false << name + "\"Mismatched counts at index:1 Items Count = 1  columnCount=3\""
                                                << QString() << QString();
    QTest::newRow("strings list, empty")
        << Import([](Model &m) { return m.insertFromStringsList({}); }) << false << QString()
        << QString() << QString();
}

void tst_ZuAbstractTableModelIo::failures()
{
    QFETCH(Import, import);
    QFETCH(bool, refuseInserts);
    QFETCH(QString, log);
    QFETCH(QString, title);
    QFETCH(QString, text);
    Table model;
    QVERIFY(model.insertFromStrings({ "p", "q", "r" }));
    model.refuseInserts = refuseInserts;
    QSignalSpy errors(&model, &Model::error);
    QSignalSpy changed(&model, &Model::dataChanged);
    zutest::LogCapture capture;
    QVERIFY(!import(model));
    QCOMPARE(trimmed(capture.messages()), log.isEmpty() ? QStringList() : QStringList(log));
    if (!log.isEmpty())
        QCOMPARE(int(capture.records().first().level), int(Logger::Error));
    QCOMPARE(errors.count(), title.isEmpty() ? 0 : 1);
    if (!title.isEmpty())
        QCOMPARE(errors.first(), QVariantList({ title, text }));
    QCOMPARE(changed.count(), 0);
    QCOMPARE(model.toStringsList(), QList<QStringList>({ { "p", "q", "r" } }));
    QVERIFY(model.isDirty()); // untouched since the string import set it
}

void tst_ZuAbstractTableModelIo::partialAndForeignElements()
{
    Table model;
    zutest::LogCapture capture;
    QVERIFY(model.insertFromJsonString(R"([7, {"b":"x","zz":1}])"));
    QCOMPARE(model.rowCount(), 2);
    // One warning per missing column: three for the number, two for the object.
    QStringList expected;
    for (const char *col : { "a", "b", "c", "a", "c" })
        expected
            << QString("\"ZuAbstractTableModel\" \"%1\" Col name not found in model.").arg(col);
    QCOMPARE(trimmed(capture.messages()), expected);
    QCOMPARE(int(capture.records().last().level), int(Logger::Warning));
    QVERIFY(!model.data(model.index(0, 1), Qt::EditRole).isValid());
    QCOMPARE(model.data(model.index(1, 1), Qt::EditRole), QVariant("x"));
    model.revert(); // both rows hold null previous values: they count as new
    QCOMPARE(model.rowCount(), 0);
}

void tst_ZuAbstractTableModelIo::roundTrip()
{
    Table model;
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
    QVERIFY(
        model.insertFromJsonString(R"([{"a":1,"b":"two","c":true},{"a":-2.5,"b":"","c":null}])"));
    const QString text = model.toJsonString();
    QCOMPARE(text, QString(R"([{"a":1,"b":"two","c":true},{"a":-2.5,"b":"","c":null}])"));
    Table copy;
    QVERIFY(copy.insertFromJsonString(text));
    QCOMPARE(copy.toStringsList(), model.toStringsList());
    QCOMPARE(copy.data(copy.index(0, 0), Qt::EditRole).userType(), int(QMetaType::Double));
    QCOMPARE(copy.toStringsList(),
             QList<QStringList>({ { "1", "two", "true" }, { "-2.5", "", "" } }));
}

void tst_ZuAbstractTableModelIo::exportEdges()
{
    Model bare;
    QVERIFY(bare.insertRows(0, 2));
    QVERIFY(bare.toJsonArray().isEmpty());
    QCOMPARE(Table().toJsonString(), QString("[]"));

    Table model({ "k", "k", "m" }); // two columns share a header
    QVERIFY(model.insertFromJsonObject({ { "k", "both" }, { "m", 3 } }));
    QVERIFY(model.setData(model.index(0, 0), "first"));
    QCOMPARE(model.toJsonObject(0), QJsonObject({ { "k", "both" }, { "m", 3 } }));
    QCOMPARE(model.toStrings(0), QStringList({ "first", "both", "3" }));
    QCOMPARE(model.toStrings(9), QStringList({ "", "", "" }));
    QCOMPARE(model.toJsonObject(9), QJsonObject({ { "k", QJsonValue() }, { "m", QJsonValue() } }));
}

void tst_ZuAbstractTableModelIo::loadKeepsStagedEdits()
{
    Table model;
    QVERIFY(model.insertFromStrings({ "p", "q", "r" }));
    QVERIFY(model.setData(model.index(0, 0), "edited"));
    QVERIFY(model.insertFromJsonArray({ QJsonObject { { "a", 1 }, { "b", 2 }, { "c", 3 } } }));
    QVERIFY(!model.isDirty());
    QVERIFY(model.isDirty(model.index(0, 0)));
    model.revert();
    QCOMPARE(model.toStringsList(), QList<QStringList>({ { "p", "q", "r" }, { "1", "2", "3" } }));
}

ZU_TEST_MAIN(tst_ZuAbstractTableModelIo)
#include "tst_zuabstracttablemodel_io.moc"
