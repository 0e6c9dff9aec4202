// ZuSortFilterProxyModel and the natural comparison against their Qt peers:
// QCollator in numeric, case-insensitive mode, and a plain QSortFilterProxyModel
// over the same QStandardItemModel.
#include "platform/NaturalCompare.h"

#include <zucore/ZuSortFilterProxyModel.h>

#include <QAbstractTableModel>
#include <QCollator>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QStandardItemModel>

#include <algorithm>
#include <benchmark/benchmark.h>
#include <memory>

namespace {

bool smoke()
{
    return qEnvironmentVariableIsSet("ZUCORE_BENCH_SMOKE");
}

// Names as a file manager or a parts list shows them: digit runs of varied
// length, mixed case, shared prefixes, spaces and punctuation.
QString fileName(QRandomGenerator &random)
{
    static const char *const stems[] = { "IMG_",
                                         "img_",
                                         "Report ",
                                         "report-",
                                         "track",
                                         "Invoice",
                                         "backup_",
                                         "Scan",
                                         "photo (",
                                         "Notes v",
                                         "DSC",
                                         "chapter-",
                                         "Log_",
                                         "draft",
                                         "Setup-",
                                         "Scan 2021-11-",
                                         "Screenshot 2023-05-17 at 10.",
                                         "Meeting 2024-01-" };
    const int stemCount = int(sizeof stems / sizeof *stems);
    static const char *const endings[]
        = { ".JPG", ".jpg", ".pdf", ".mp3", ").png", ".txt", ".docx", "", ".tar.gz" };
    const int number = random.bounded(random.bounded(2) ? 100 : 100000);
    QString name = QLatin1String(stems[random.bounded(stemCount)]);
    if (random.bounded(3) == 0)
        name += QString::number(number).rightJustified(5, '0');
    else
        name += QString::number(number);
    if (random.bounded(4) == 0)
        name += QStringLiteral(" part") + QString::number(random.bounded(12));
    name += QLatin1String(endings[random.bounded(9)]);
    return name;
}

struct Pairs
{
    QVector<QString> left, right;
};

// The pairs that sorting folders of such names compares, in the order the
// sort meets them: random at first, then neighbours that share long prefixes.
const Pairs &pairs()
{
    static const Pairs data = [] {
        Pairs p;
        QRandomGenerator random(42);
        const int count = smoke() ? 2000 : 100000;
        while (p.left.size() < count) {
            QVector<QString> folder;
            for (int i = 0; i < 2000; ++i)
                folder << fileName(random);
            std::sort(folder.begin(), folder.end(), [&p](const QString &a, const QString &b) {
                p.left << a;
                p.right << b;
                return ZuPlatform::naturalCompare(a, b) < 0;
            });
        }
        p.left.resize(count);
        p.right.resize(count);
        return p;
    }();
    return data;
}

QCollator &collator()
{
    // A named locale: for the C locale QCollator skips ICU and its numeric mode.
    static QCollator c = [] {
        QCollator result(QLocale(QLocale::English, QLocale::UnitedStates));
        result.setNumericMode(true);
        result.setCaseSensitivity(Qt::CaseInsensitive);
        return result;
    }();
    return c;
}

void natural_compare_ours(benchmark::State &state)
{
    const Pairs &p = pairs();
    // Outside the timed loop: the two agree on the order of nearly all pairs
    // (they differ only on punctuation and on ties).
    int agree = 0;
    for (int i = 0; i < p.left.size(); ++i) {
        const int c = collator().compare(p.left.at(i), p.right.at(i));
        agree += ZuPlatform::naturalCompare(p.left.at(i), p.right.at(i)) == (c > 0) - (c < 0);
    }
    if (agree < p.left.size() * 9 / 10)
        state.SkipWithError("natural order disagrees with the collator");
    for (auto _ : state) {
        int sum = 0;
        for (int i = 0; i < p.left.size(); ++i)
            sum += ZuPlatform::naturalCompare(p.left.at(i), p.right.at(i));
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * p.left.size());
}

void natural_compare_peer(benchmark::State &state)
{
    const Pairs &p = pairs();
    QCollator &c = collator();
    for (auto _ : state) {
        int sum = 0;
        for (int i = 0; i < p.left.size(); ++i)
            sum += c.compare(p.left.at(i), p.right.at(i));
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(state.iterations() * p.left.size());
}

// 100 000 rows of 8 columns: an id, a file name, a number, a date, a word,
// an amount, a user and a hex code.
QStandardItemModel &table()
{
    static std::unique_ptr<QStandardItemModel> model = [] {
        static const char *const words[]
            = { "open", "closed", "pending", "Review", "merged", "Blocked", "draft", "done" };
        const int rows = smoke() ? 5000 : 100000;
        auto m = std::make_unique<QStandardItemModel>(rows, 8);
        QRandomGenerator random(7);
        for (int r = 0; r < rows; ++r) {
            m->setItem(r, 0, new QStandardItem(QStringLiteral("Item %1").arg(r)));
            m->setItem(r, 1, new QStandardItem(fileName(random)));
            m->setItem(r, 2, new QStandardItem(QString::number(random.bounded(1000000))));
            m->setItem(r, 3,
                       new QStandardItem(QStringLiteral("20%1-%2-%3")
                                             .arg(10 + random.bounded(15))
                                             .arg(1 + random.bounded(12), 2, 10, QChar('0'))
                                             .arg(1 + random.bounded(28), 2, 10, QChar('0'))));
            m->setItem(r, 4, new QStandardItem(QLatin1String(words[random.bounded(8)])));
            m->setItem(r, 5,
                       new QStandardItem(QString::number(random.bounded(100000) / 100.0, 'f', 2)));
            m->setItem(r, 6, new QStandardItem(QStringLiteral("user%1").arg(random.bounded(500))));
            m->setItem(r, 7, new QStandardItem(QString::number(random.generate(), 16)));
        }
        return m;
    }();
    return *model;
}

// Every row of the proxy in order, by one column's text, is non-decreasing.
template<typename Less> bool sortedBy(const QAbstractItemModel &proxy, int column, Less less)
{
    for (int r = 1; r < proxy.rowCount(); ++r)
        if (less(proxy.index(r, column).data().toString(),
                 proxy.index(r - 1, column).data().toString()))
            return false;
    return true;
}

void proxy_sort_100k_ours(benchmark::State &state)
{
    ZuSortFilterProxyModel proxy;
    proxy.setSourceModel(&table());
    for (auto _ : state) {
        state.PauseTiming();
        proxy.sort(-1);
        state.ResumeTiming();
        proxy.sort(1);
    }
    const bool ok = proxy.rowCount() == table().rowCount()
        && sortedBy(proxy, 1, [](const QString &a, const QString &b) {
                        return ZuPlatform::naturalCompare(a, b) < 0;
                    });
    if (!ok)
        state.SkipWithError("not in natural order");
}

void proxy_sort_100k_peer(benchmark::State &state)
{
    QSortFilterProxyModel proxy;
    proxy.setSourceModel(&table());
    for (auto _ : state) {
        state.PauseTiming();
        proxy.sort(-1);
        state.ResumeTiming();
        proxy.sort(1);
    }
    const bool ok = proxy.rowCount() == table().rowCount()
        && sortedBy(proxy, 1, [](const QString &a, const QString &b) { return a < b; });
    if (!ok)
        state.SkipWithError("not in order");
}

// Two keys: the status word, then the number within it.
bool sortedByTwo(const QAbstractItemModel &proxy)
{
    for (int r = 1; r < proxy.rowCount(); ++r) {
        const int first = ZuPlatform::naturalCompare(proxy.index(r - 1, 4).data().toString(),
                                                     proxy.index(r, 4).data().toString());
        if (first > 0
            || (first == 0
                && ZuPlatform::naturalCompare(proxy.index(r - 1, 2).data().toString(),
                                              proxy.index(r, 2).data().toString())
                    > 0))
            return false;
    }
    return true;
}

void proxy_sort2_100k_ours(benchmark::State &state)
{
    ZuSortFilterProxyModel proxy;
    proxy.setSourceModel(&table());
    proxy.setSortColumns({ 4, 2 });
    for (auto _ : state) {
        state.PauseTiming();
        proxy.sort(-1);
        state.ResumeTiming();
        proxy.sort(4);
    }
    if (proxy.rowCount() != table().rowCount() || !sortedByTwo(proxy))
        state.SkipWithError("not in two-column order");
}

// The plain proxy knows one sort column: two stable sorts, minor key first.
void proxy_sort2_100k_peer(benchmark::State &state)
{
    QSortFilterProxyModel proxy;
    proxy.setSourceModel(&table());
    for (auto _ : state) {
        state.PauseTiming();
        proxy.sort(-1);
        state.ResumeTiming();
        proxy.sort(2);
        proxy.sort(4);
    }
    if (proxy.rowCount() != table().rowCount())
        state.SkipWithError("rows lost");
}

// Two patterns in turn, so that every pass changes the accepted rows.
const QString searchPatterns[] = { QStringLiteral("report"), QStringLiteral("2019-0[1-6]") };

void proxy_search_100k_ours(benchmark::State &state)
{
    ZuSortFilterProxyModel proxy;
    proxy.setSourceModel(&table());
    proxy.rowCount();
    int counts[2] = {};
    int pass = 0;
    for (auto _ : state) {
        proxy.setSearchString(searchPatterns[pass % 2]);
        counts[pass % 2] = proxy.rowCount();
        ++pass;
    }

    QSortFilterProxyModel check;
    check.setSourceModel(&table());
    check.setFilterKeyColumn(-1);
    for (int i = 0; i < 2; ++i) {
        check.setFilterRegularExpression(
            QRegularExpression(searchPatterns[i], QRegularExpression::CaseInsensitiveOption));
        if (pass > i && counts[i] != check.rowCount())
            state.SkipWithError("search and plain filter disagree");
    }
}

void proxy_search_100k_peer(benchmark::State &state)
{
    QSortFilterProxyModel proxy;
    proxy.setSourceModel(&table());
    proxy.setFilterKeyColumn(-1);
    proxy.rowCount();
    const QRegularExpression expressions[]
        = { QRegularExpression(searchPatterns[0], QRegularExpression::CaseInsensitiveOption),
            QRegularExpression(searchPatterns[1], QRegularExpression::CaseInsensitiveOption) };
    int pass = 0;
    int rows = 0;
    for (auto _ : state) {
        proxy.setFilterRegularExpression(expressions[pass % 2]);
        rows = proxy.rowCount();
        ++pass;
    }
    if (rows <= 0)
        state.SkipWithError("nothing matched");
}

// An edit of the second sort column in a sorted and filtered 100 000-row view, against the
// plain proxy re-placing a row after an edit of its one sort column. Each pass gives one
// accepted row a new number.
template<typename Proxy> void editResort(benchmark::State &state, Proxy &proxy, int editedColumn)
{
    QStandardItemModel &source = table();
    const QRegularExpression kept(QStringLiteral("user[0-3]"));
    QVector<int> rows;
    for (int r = 0; r < source.rowCount(); ++r)
        if (source.item(r, 6)->text().contains(kept))
            rows << r;
    proxy.rowCount();
    QRandomGenerator random(11);
    for (auto _ : state) {
        const int row = rows.at(random.bounded(rows.size()));
        source.item(row, editedColumn)->setText(QString::number(random.bounded(1000000)));
    }
    if (proxy.rowCount() != rows.size())
        state.SkipWithError("rows lost");
}

void proxy_edit_resort_100k_ours(benchmark::State &state)
{
    ZuSortFilterProxyModel proxy;
    proxy.setSourceModel(&table());
    proxy.setSortColumns({ 4, 2 });
    proxy.addFilterKeyColumn(6);
    proxy.addFilterFixedString(6, QStringLiteral("user[0-3]"));
    proxy.invalidate();
    proxy.sort(4);
    editResort(state, proxy, 2);
    if (!sortedByTwo(proxy))
        state.SkipWithError("an edited row is out of place");
}

void proxy_edit_resort_100k_peer(benchmark::State &state)
{
    QSortFilterProxyModel proxy;
    proxy.setSourceModel(&table());
    proxy.setFilterKeyColumn(6);
    proxy.setFilterRegularExpression(QStringLiteral("user[0-3]"));
    proxy.sort(2);
    editResort(state, proxy, 2);
}

// A million rows of two columns, file names and a status word, held as plain texts so that
// the model itself costs little next to the proxy. Every other row holds "open".
class BigTable : public QAbstractTableModel
{
public:
    explicit BigTable(int rows)
    {
        QRandomGenerator random(5);
        names.reserve(rows);
        for (int r = 0; r < rows; ++r)
            names << fileName(random);
    }
    int rowCount(const QModelIndex &parent = QModelIndex()) const override
    {
        return parent.isValid() ? 0 : names.size();
    }
    int columnCount(const QModelIndex &parent = QModelIndex()) const override
    {
        return parent.isValid() ? 0 : 2;
    }
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override
    {
        if (role != Qt::DisplayRole || !index.isValid())
            return QVariant();
        if (index.column() == 0)
            return names.at(index.row());
        return index.row() % 2 ? QStringLiteral("open") : QStringLiteral("closed");
    }
    QVector<QString> names;
};

BigTable &bigTable(int rows)
{
    static std::unique_ptr<BigTable> model;
    if (!model || model->names.size() != rows)
        model = std::make_unique<BigTable>(rows);
    return *model;
}

int millionRows()
{
    return smoke() ? 20000 : 1000000;
}

QVector<QString> proxyColumn(const QAbstractItemModel &proxy, int column)
{
    QVector<QString> texts;
    texts.reserve(proxy.rowCount());
    for (int r = 0; r < proxy.rowCount(); ++r)
        texts << proxy.index(r, column).data().toString();
    return texts;
}

// Ours sorting a million rows by its sort column list, against sorting the same texts directly
// with the same comparison: what the proxy adds to the comparisons themselves.
void proxy_sort_1M_ours(benchmark::State &state)
{
    BigTable &source = bigTable(millionRows());
    ZuSortFilterProxyModel proxy;
    proxy.setSourceModel(&source);
    proxy.setSortColumns({ 0 });
    proxy.rowCount();
    for (auto _ : state) {
        state.PauseTiming();
        proxy.sort(-1);
        state.ResumeTiming();
        proxy.sort(0);
    }
    QVector<QString> plain = source.names;
    std::stable_sort(plain.begin(), plain.end(), [](const QString &a, const QString &b) {
        return ZuPlatform::naturalCompare(a, b) < 0;
    });
    if (proxyColumn(proxy, 0) != plain)
        state.SkipWithError("the proxy's order is not the plain one");
}

void proxy_sort_1M_peer(benchmark::State &state)
{
    const QVector<QString> &texts = bigTable(millionRows()).names;
    for (auto _ : state) {
        state.PauseTiming();
        QVector<QString> copy = texts;
        copy.detach();
        state.ResumeTiming();
        std::sort(copy.begin(), copy.end(), [](const QString &a, const QString &b) {
            return ZuPlatform::naturalCompare(a, b) < 0;
        });
        benchmark::DoNotOptimize(copy.data());
    }
}

void proxy_sort_1M_qsfpm_ours(benchmark::State &state)
{
    proxy_sort_1M_ours(state);
}

// The plain proxy ordering by QCollator in numeric mode, the natural order Qt offers.
class CollatingProxy : public QSortFilterProxyModel
{
protected:
    bool lessThan(const QModelIndex &left, const QModelIndex &right) const override
    {
        return collator().compare(left.data().toString(), right.data().toString()) < 0;
    }
};

void proxy_sort_1M_qsfpm_peer(benchmark::State &state)
{
    CollatingProxy proxy;
    proxy.setSourceModel(&bigTable(millionRows()));
    proxy.rowCount();
    for (auto _ : state) {
        state.PauseTiming();
        proxy.sort(-1);
        state.ResumeTiming();
        proxy.sort(0);
    }
}

// A search over a filled, unsorted proxy that keeps every other row: Qt's own filter change
// removes the rows run by run. Each pass starts from a freshly filled proxy.
template<typename Proxy, typename Search>
void searchFilled(benchmark::State &state, int rows, bool filledFirst, Search search)
{
    BigTable &source = bigTable(rows);
    int kept = 0;
    for (auto _ : state) {
        state.PauseTiming();
        auto proxy = std::make_unique<Proxy>();
        proxy->setSourceModel(&source);
        if (filledFirst)
            proxy->rowCount();
        state.ResumeTiming();
        search(*proxy);
        kept = proxy->rowCount(); // what a view reads first
        state.PauseTiming();
        proxy.reset();
        state.ResumeTiming();
    }
    if (kept != rows / 2)
        state.SkipWithError("the search kept the wrong rows");
}

void searchOurs(ZuSortFilterProxyModel &proxy)
{
    proxy.setSearchString(QStringLiteral("^open$"));
}

void searchPeer(QSortFilterProxyModel &proxy)
{
    proxy.setFilterKeyColumn(-1);
    proxy.setFilterRegularExpression(
        QRegularExpression(QStringLiteral("^open$"), QRegularExpression::CaseInsensitiveOption));
}

void proxy_search_1M_ours(benchmark::State &state)
{
    searchFilled<ZuSortFilterProxyModel>(state, millionRows(), true, searchOurs);
}

void proxy_search_1M_peer(benchmark::State &state)
{
    searchFilled<QSortFilterProxyModel>(state, millionRows(), true, searchPeer);
}

// The same search given before any view has read the proxy.
void proxy_search_new_view_100k_ours(benchmark::State &state)
{
    searchFilled<ZuSortFilterProxyModel>(state, smoke() ? 5000 : 100000, false, searchOurs);
}

void proxy_search_new_view_100k_peer(benchmark::State &state)
{
    searchFilled<QSortFilterProxyModel>(state, smoke() ? 5000 : 100000, false, searchPeer);
}

} // namespace

// The million-row operations take seconds: one pass each, ours beside the peer.
#define ZU_ONE_PASS_PAIR(op)                                                                       \
    BENCHMARK(op##_ours)->Name(#op "/ours")->Unit(benchmark::kMillisecond)->Iterations(1);         \
    BENCHMARK(op##_peer)->Name(#op "/peer")->Unit(benchmark::kMillisecond)->Iterations(1)

ZU_ONE_PASS_PAIR(proxy_sort_1M);
ZU_ONE_PASS_PAIR(proxy_sort_1M_qsfpm);
ZU_ONE_PASS_PAIR(proxy_search_1M);
BENCHMARK(proxy_search_new_view_100k_ours)
    ->Name("proxy_search_new_view_100k/ours")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(proxy_search_new_view_100k_peer)
    ->Name("proxy_search_new_view_100k/peer")
    ->Unit(benchmark::kMillisecond);
BENCHMARK(proxy_edit_resort_100k_ours)
    ->Name("proxy_edit_resort_100k/ours")
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(proxy_edit_resort_100k_peer)
    ->Name("proxy_edit_resort_100k/peer")
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(natural_compare_ours)->Name("natural_compare/ours")->Unit(benchmark::kMicrosecond);
BENCHMARK(natural_compare_peer)->Name("natural_compare/peer")->Unit(benchmark::kMicrosecond);
BENCHMARK(proxy_sort_100k_ours)->Name("proxy_sort_100k/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(proxy_sort_100k_peer)->Name("proxy_sort_100k/peer")->Unit(benchmark::kMillisecond);
BENCHMARK(proxy_sort2_100k_ours)->Name("proxy_sort2_100k/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(proxy_sort2_100k_peer)->Name("proxy_sort2_100k/peer")->Unit(benchmark::kMillisecond);
BENCHMARK(proxy_search_100k_ours)->Name("proxy_search_100k/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(proxy_search_100k_peer)->Name("proxy_search_100k/peer")->Unit(benchmark::kMillisecond);
