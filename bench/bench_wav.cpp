#include <zucore/Wav.h>

#include <QByteArray>
#include <QFile>

#include <benchmark/benchmark.h>

// Wav::readFile of a 10 MiB WAV file (from the page cache) against QFile::readAll of it.
namespace {

const char *const FileName = "bench_10MiB.wav";

bool writeWav()
{
    Wav wav;
    Wav::wavheader_t header {};
    wav.setWavHeader(header);
    wav.setAudioData(QByteArray(10 * 1024 * 1024 - Wav::HeaderSize, '\x42'));
    return wav.saveFile(QString::fromLatin1(FileName));
}

void readOurs(benchmark::State &state)
{
    if (!writeWav()) {
        state.SkipWithError("can't write the WAV file");
        return;
    }
    Wav wav;
    for (auto _ : state) {
        wav.readFile(QString::fromLatin1(FileName));
        benchmark::DoNotOptimize(wav.dataSize());
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * 10 * 1024 * 1024);
}

void readPeer(benchmark::State &state)
{
    if (!writeWav()) {
        state.SkipWithError("can't write the WAV file");
        return;
    }
    for (auto _ : state) {
        QFile file(QString::fromLatin1(FileName));
        file.open(QIODevice::ReadOnly);
        benchmark::DoNotOptimize(file.readAll());
    }
    state.SetBytesProcessed(int64_t(state.iterations()) * 10 * 1024 * 1024);
}

} // namespace

BENCHMARK(readOurs)->Name("wav_read_10MiB/ours")->Unit(benchmark::kMicrosecond);
BENCHMARK(readPeer)->Name("wav_read_10MiB/peer")->Unit(benchmark::kMicrosecond);
