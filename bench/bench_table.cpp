// ZuAbstractTableModel against QStandardItemModel loaded from the same JSON:
// import, export, peak memory (each side in a fresh child process) and revert.
#include <zucore/ZuAbstractTableModel.h>

#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>
#include <QProcess>
#include <QStandardItemModel>

#include <benchmark/benchmark.h>
#include <cstdio>
#include <malloc.h>
#include <memory>
#include <unistd.h>

namespace {

const char *const memoryChildVariable = "ZUCORE_BENCH_TABLE_MEMORY_CHILD";
const int columns = 8;

int rowsToLoad()
{
    return qEnvironmentVariableIsSet("ZUCORE_BENCH_SMOKE") ? 2000 : 100000;
}

QStringList headers()
{
    return { "name", "city", "code", "note", "qty", "price", "score", "id" };
}

class Table : public ZuAbstractTableModel
{
public:
    Table()
    {
        const QStringList names = headers();
        for (int c = 0; c < names.size(); ++c)
            setHeaderData(c, Qt::Horizontal, names.at(c));
    }
};

// Mixed strings and numbers, integers and fractions, deterministic.
QString makeJson(int rows)
{
    static const char *const cities[]
        = { "Berlin", "Lyon", "Porto", "Turku", "Graz", "Ghent", "Brno", "Split", "Cork", "Basel" };
    QString text;
    text.reserve(rows * 130);
    text += QLatin1Char('[');
    for (int i = 0; i < rows; ++i) {
        if (i)
            text += QLatin1Char(',');
        text += QStringLiteral(R"({"name":"Customer %1","city":"%2","code":"C-%3","note":"%4",)"
                               R"("qty":%5,"price":%6,"score":%7,"id":%8})")
                    .arg(i)
                    .arg(QLatin1String(cities[i % 10]))
                    .arg(i % 100000, 5, 10, QLatin1Char('0'))
                    .arg(i % 7 ? QStringLiteral("regular order") : QStringLiteral("call first"))
                    .arg(i % 1000)
                    .arg(QString::number((i % 10000) / 100.0))
                    .arg(QString::number(i * 0.37))
                    .arg(i);
    }
    text += QLatin1Char(']');
    return text;
}

const QString &jsonText()
{
    static const QString text = makeJson(rowsToLoad());
    return text;
}

std::unique_ptr<QStandardItemModel> loadPeer(const QString &text)
{
    const QStringList keys = headers();
    const QJsonArray array = QJsonDocument::fromJson(text.toUtf8()).array();
    auto model = std::make_unique<QStandardItemModel>(array.size(), columns);
    model->setHorizontalHeaderLabels(keys);
    int row = 0;
    for (const QJsonValue &element : array) {
        const QJsonObject object = element.toObject();
        for (int c = 0; c < columns; ++c) {
            auto *item = new QStandardItem;
            item->setData(object.value(keys.at(c)).toVariant(), Qt::EditRole);
            model->setItem(row, c, item);
        }
        ++row;
    }
    return model;
}

QString peerToJson(const QStandardItemModel &model)
{
    const QStringList keys = headers();
    QJsonArray array;
    for (int r = 0; r < model.rowCount(); ++r) {
        QJsonObject object;
        for (int c = 0; c < columns; ++c)
            object.insert(keys.at(c),
                          QJsonValue::fromVariant(model.item(r, c)->data(Qt::EditRole)));
        array.append(object);
    }
    return QString::fromUtf8(QJsonDocument(array).toJson(QJsonDocument::Compact));
}

qint64 statusBytes(const char *key)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith(key))
            return line.mid(qstrlen(key)).trimmed().split(' ').first().toLongLong() * 1024;
    }
    return -1;
}

// Runs in a fresh process (this binary, started again with the variable set):
// the peak that loading adds on top of the generated text, then exits.
struct MemoryChild
{
    MemoryChild()
    {
        const QByteArray side = qgetenv(memoryChildVariable);
        if (side.isEmpty())
            return;
        const QString text = makeJson(rowsToLoad());
        QFile clearRefs(QStringLiteral("/proc/self/clear_refs"));
        if (clearRefs.open(QIODevice::WriteOnly))
            clearRefs.write("5"); // resets VmHWM to the current RSS
        clearRefs.close();
        const qint64 before = statusBytes("VmRSS:");
        int rows = 0;
        std::unique_ptr<Table> ours;
        std::unique_ptr<QStandardItemModel> peer;
        if (side == "ours") {
            ours = std::make_unique<Table>();
            ours->insertFromJsonString(text);
            rows = ours->rowCount();
        } else {
            peer = loadPeer(text);
            rows = peer->rowCount();
        }
        const qint64 peak = statusBytes("VmHWM:") - before;
        // What stays once the parse tree is gone, for the report beside the peak.
        malloc_trim(0);
        const qint64 retained = statusBytes("VmRSS:") - before;
        std::printf("%d %lld %lld\n", rows, static_cast<long long>(peak),
                    static_cast<long long>(retained));
        std::fflush(stdout);
        _exit(0);
    }
} memoryChild;

void memory(benchmark::State &state, const char *side)
{
    qint64 bytes = 0;
    qint64 retained = 0;
    for (auto _ : state) {
        QProcess child;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QString::fromLatin1(memoryChildVariable), QString::fromLatin1(side));
        child.setProcessEnvironment(environment);
        child.start(QCoreApplication::applicationFilePath(), QStringList());
        if (!child.waitForFinished(120000)) {
            state.SkipWithError("memory child did not finish");
            return;
        }
        const QList<QByteArray> answer = child.readAllStandardOutput().trimmed().split(' ');
        if (answer.size() != 3 || answer.first().toInt() != rowsToLoad()) {
            state.SkipWithError("memory child loaded the wrong number of rows");
            return;
        }
        bytes = answer.at(1).toLongLong();
        retained = answer.at(2).toLongLong();
    }
    // Peak while loading: the parsed JSON document is alive beside the rows
    // on both sides. "retained" is what the loaded table keeps afterwards.
    state.counters["bytes"] = double(bytes);
    state.counters["retained"] = double(retained);
}

void importOurs(benchmark::State &state)
{
    const QString &text = jsonText();
    for (auto _ : state) {
        auto model = std::make_unique<Table>();
        if (!model->insertFromJsonString(text) || model->rowCount() != rowsToLoad())
            state.SkipWithError("import failed");
        state.PauseTiming();
        model.reset();
        // Each load starts from a heap given back to the system, as a first
        // load in an application does; otherwise whichever side leaves the
        // more fragmented heap behind gets its pages for free next time.
        malloc_trim(0);
        state.ResumeTiming();
    }
}

void importPeer(benchmark::State &state)
{
    const QString &text = jsonText();
    for (auto _ : state) {
        auto model = loadPeer(text);
        if (model->rowCount() != rowsToLoad())
            state.SkipWithError("import failed");
        state.PauseTiming();
        model.reset();
        // Each load starts from a heap given back to the system, as a first
        // load in an application does; otherwise whichever side leaves the
        // more fragmented heap behind gets its pages for free next time.
        malloc_trim(0);
        state.ResumeTiming();
    }
}

void exportOurs(benchmark::State &state)
{
    Table model;
    model.insertFromJsonString(jsonText());
    QString text;
    for (auto _ : state)
        benchmark::DoNotOptimize(text = model.toJsonString());
    if (text != peerToJson(*loadPeer(jsonText())))
        state.SkipWithError("export differs from the peer's");
}

void exportPeer(benchmark::State &state)
{
    const auto model = loadPeer(jsonText());
    QString text;
    for (auto _ : state)
        benchmark::DoNotOptimize(text = peerToJson(*model));
    if (text.size() < jsonText().size() / 2)
        state.SkipWithError("export too short");
}

// Every 10th row gets a new value in two cells; revert puts them back.
void revertOurs(benchmark::State &state)
{
    Table model;
    model.insertFromJsonString(jsonText());
    for (auto _ : state) {
        state.PauseTiming();
        for (int r = 0; r < model.rowCount(); r += 10) {
            model.setData(model.index(r, 0), QStringLiteral("edited"));
            model.setData(model.index(r, 4), -1);
        }
        state.ResumeTiming();
        model.revert();
    }
    if (model.rowCount() != rowsToLoad() || model.isDirty()
        || model.data(model.index(10, 0)) != QStringLiteral("Customer 10"))
        state.SkipWithError("revert did not restore the table");
}

// The peer keeps the old values of its edits and writes them back by hand.
void revertPeer(benchmark::State &state)
{
    const auto model = loadPeer(jsonText());
    struct Edit
    {
        QModelIndex index;
        QVariant old;
    };
    QVector<Edit> edits;
    for (auto _ : state) {
        state.PauseTiming();
        edits.clear();
        for (int r = 0; r < model->rowCount(); r += 10) {
            for (int c : { 0, 4 }) {
                const QModelIndex index = model->index(r, c);
                edits.append({ index, index.data(Qt::EditRole) });
                model->setData(index, c ? QVariant(-1) : QVariant(QStringLiteral("edited")));
            }
        }
        state.ResumeTiming();
        for (auto it = edits.crbegin(); it != edits.crend(); ++it)
            model->setData(it->index, it->old);
    }
    if (model->index(10, 0).data() != QStringLiteral("Customer 10"))
        state.SkipWithError("undo did not restore the table");
}

} // namespace

BENCHMARK(importOurs)->Name("table_import_json_100k/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(importPeer)->Name("table_import_json_100k/peer")->Unit(benchmark::kMillisecond);
BENCHMARK(exportOurs)->Name("table_export_json_100k/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(exportPeer)->Name("table_export_json_100k/peer")->Unit(benchmark::kMillisecond);
// One child each: the parent's own CPU time would never reach the minimum time.
BENCHMARK_CAPTURE(memory, ours, "ours")
    ->Name("table_memory_100k/ours")
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(memory, peer, "peer")
    ->Name("table_memory_100k/peer")
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(revertOurs)->Name("table_revert_100k/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(revertPeer)->Name("table_revert_100k/peer")->Unit(benchmark::kMillisecond);
