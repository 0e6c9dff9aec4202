#include <zucore/ZuCrc.h>

#include <QByteArray>
#include <QRandomGenerator>

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <zlib.h>

// ZuCrc::crc32 against zlib's crc32 on the same random buffer; both results are compared once,
// outside the timed loop.
namespace {

QByteArray randomBytes(int size)
{
    QByteArray data(size, Qt::Uninitialized);
    QRandomGenerator random(7);
    for (int i = 0; i < size; ++i)
        data[i] = static_cast<char>(random.generate());
    return data;
}

uLong zlibCrc(const QByteArray &data)
{
    return crc32(crc32(0L, Z_NULL, 0), reinterpret_cast<const Bytef *>(data.constData()),
                 uInt(data.size()));
}

template<int Size> void crcOurs(benchmark::State &state)
{
    const QByteArray data = randomBytes(Size);
    if (ZuCrc::crc32(data, data.size()) != zlibCrc(data)) {
        state.SkipWithError("CRC differs from zlib");
        return;
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(ZuCrc::crc32(data, data.size()));
    state.SetBytesProcessed(int64_t(state.iterations()) * data.size());
}

template<int Size> void crcPeer(benchmark::State &state)
{
    const QByteArray data = randomBytes(Size);
    for (auto _ : state)
        benchmark::DoNotOptimize(zlibCrc(data));
    state.SetBytesProcessed(int64_t(state.iterations()) * data.size());
}

} // namespace

BENCHMARK_TEMPLATE(crcOurs, 1 << 20)->Name("crc32_1MiB/ours");
BENCHMARK_TEMPLATE(crcPeer, 1 << 20)->Name("crc32_1MiB/peer");
BENCHMARK_TEMPLATE(crcOurs, 4096)->Name("crc32_4KiB/ours");
BENCHMARK_TEMPLATE(crcPeer, 4096)->Name("crc32_4KiB/peer");
BENCHMARK_TEMPLATE(crcOurs, 64)->Name("crc32_64B/ours");
BENCHMARK_TEMPLATE(crcPeer, 64)->Name("crc32_64B/peer");
