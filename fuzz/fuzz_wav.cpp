#include <zucore/Wav.h>
#include <zucore/ZuCrc.h>

#include <QByteArray>

#include <cmath>
#include <cstdint>
#include <cstdlib>

// Any bytes as a WAV image: every accessor and the summary run without reading out of bounds,
// the audio is what lies behind the 44-byte header, and the image is kept whole.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), int(size));
    Wav wav;
    wav.setRawData(bytes);
    wav.chunkId();
    wav.format();
    wav.formatId();
    wav.dataId();
    wav.chunkSize();
    wav.formatSize();
    wav.audioFormat();
    wav.numChannels();
    wav.sampleRate();
    wav.blockAlign();
    wav.bitsPerSample();
    if (wav.formatString().isEmpty() || std::isnan(wav.duration()) || wav.duration() < 0)
        abort();
    if (wav.audioData() != bytes.mid(Wav::HeaderSize) || wav.audioData().isNull() != (size <= 44))
        abort();
    if (wav.calculateCrc() != ZuCrc::crc32(bytes, bytes.size()))
        abort();

    wav.setWavHeader(bytes);
    if ((wav.sampleRate() != 0 && size != 44)
        || wav.calculateCrc() != ZuCrc::crc32(bytes, bytes.size()))
        abort();
    wav.setAudioData(bytes);
    if (wav.crc() != wav.calculateCrc())
        abort();
    return 0;
}
