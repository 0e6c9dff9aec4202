#include <zucore/SimpleCrypt.h>

#include <QByteArray>
#include <QRandomGenerator>

#include <benchmark/benchmark.h>

// SimpleCrypt's encrypt + decrypt of 1 MiB against the floor of any such scrambler: two passes
// of a plain loop that XORs the buffer with the eight key bytes. The "hash_auto" row runs with a
// SHA-1 block and an attempted compression of incompressible data, against the same floor.
namespace {

const quint64 Key = 0x0123456789ABCDEFull;

QByteArray randomBytes(int size)
{
    QByteArray data(size, Qt::Uninitialized);
    QRandomGenerator(11).fillRange(reinterpret_cast<quint32 *>(data.data()), size / 4);
    return data;
}

void roundTrip(benchmark::State &state, SimpleCrypt::CompressionMode compression,
               SimpleCrypt::IntegrityProtectionMode protection)
{
    const QByteArray data = randomBytes(1 << 20);
    SimpleCrypt crypt(Key);
    crypt.setCompressionMode(compression);
    crypt.setIntegrityProtectionMode(protection);
    if (crypt.decryptToByteArray(crypt.encryptToByteArray(data)) != data) {
        state.SkipWithError("round trip lost the data");
        return;
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(crypt.decryptToByteArray(crypt.encryptToByteArray(data)));
    state.SetBytesProcessed(int64_t(state.iterations()) * data.size());
}

void plainOurs(benchmark::State &state)
{
    roundTrip(state, SimpleCrypt::CompressionNever, SimpleCrypt::ProtectionNone);
}

void hashAutoOurs(benchmark::State &state)
{
    roundTrip(state, SimpleCrypt::CompressionAuto, SimpleCrypt::ProtectionHash);
}

void xorFloor(benchmark::State &state)
{
    QByteArray data = randomBytes(1 << 20);
    char keyBytes[8];
    for (int i = 0; i < 8; ++i)
        keyBytes[i] = char(Key >> (8 * i));
    for (auto _ : state) {
        for (int pass = 0; pass < 2; ++pass) {
            char *p = data.data();
            for (int i = 0, n = data.size(); i < n; ++i)
                p[i] ^= keyBytes[i & 7];
            benchmark::ClobberMemory();
        }
        benchmark::DoNotOptimize(data.data());
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * data.size());
}

} // namespace

BENCHMARK(plainOurs)->Name("simplecrypt_1MiB/ours")->Unit(benchmark::kMicrosecond);
BENCHMARK(xorFloor)->Name("simplecrypt_1MiB/peer")->Unit(benchmark::kMicrosecond);
BENCHMARK(hashAutoOurs)->Name("simplecrypt_1MiB_hash_auto/ours")->Unit(benchmark::kMicrosecond);
BENCHMARK(xorFloor)->Name("simplecrypt_1MiB_hash_auto/peer")->Unit(benchmark::kMicrosecond);
