#include <zucore/ZuCore.h>

#include <QCryptographicHash>
#include <QString>

#include <benchmark/benchmark.h>

// ZuCore::md5 of a 1 KiB string (mixed ASCII and non-ASCII) against QCryptographicHash of its
// UTF-8 bytes, printed as hex.
namespace {

QString sampleText()
{
    QString text;
    while (text.size() < 1024)
        text += QString::fromUtf8("Grüße aus Zürich, 1234567890 € ");
    text.truncate(1024);
    return text;
}

QString peerMd5(const QString &text)
{
    return QString::fromLatin1(
        QCryptographicHash::hash(text.toUtf8(), QCryptographicHash::Md5).toHex());
}

void md5Ours(benchmark::State &state)
{
    const QString text = sampleText();
    if (ZuCore::md5(text) != peerMd5(text)) {
        state.SkipWithError("digest differs from QCryptographicHash");
        return;
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(ZuCore::md5(text));
}

void md5Peer(benchmark::State &state)
{
    const QString text = sampleText();
    for (auto _ : state)
        benchmark::DoNotOptimize(peerMd5(text));
}

} // namespace

BENCHMARK(md5Ours)->Name("md5_1KiB/ours");
BENCHMARK(md5Peer)->Name("md5_1KiB/peer");
