#include "support/ZuTest.h"

#include <zucore/Wav.h>
#include <zucore/ZuCrc.h>

#include <QProcess>
#include <QtEndian>

#include <cstring>

namespace {

// Runs sox; the test is skipped when it isn't installed.
#define RUN_SOX(output, ...)                                                                       \
    do {                                                                                           \
        const QString sox = QStandardPaths::findExecutable(QStringLiteral("sox"));                 \
        if (sox.isEmpty())                                                                         \
            QSKIP("sox is not installed: real WAV files can't be made (apt-get install sox)");     \
        QProcess process;                                                                          \
        process.start(sox, QStringList { __VA_ARGS__ });                                           \
        QVERIFY(process.waitForFinished(30000));                                                   \
        QVERIFY2(process.exitCode() == 0, process.readAllStandardError().constData());             \
        output = QString::fromLatin1(process.readAllStandardOutput()).trimmed();                   \
    } while (false)

QByteArray readAll(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

// A canonical PCM header, its sizes made for dataSize bytes of audio.
Wav::wavheader_t pcmHeader(quint32 rate, quint16 channels, quint16 bits, quint32 dataSize)
{
    Wav::wavheader_t h;
    const quint16 align = channels * bits / 8;
    std::memcpy(h.chunkId, "RIFF", 4);
    qToLittleEndian<quint32>(36 + dataSize, h.chunkSize);
    std::memcpy(h.format, "WAVE", 4);
    std::memcpy(h.formatId, "fmt ", 4);
    qToLittleEndian<quint32>(16, h.formatSize);
    qToLittleEndian<quint16>(1, h.audioFormat);
    qToLittleEndian<quint16>(channels, h.numChannels);
    qToLittleEndian<quint32>(rate, h.sampleRate);
    qToLittleEndian<quint32>(rate * align, h.byteRate);
    qToLittleEndian<quint16>(align, h.blockAlign);
    qToLittleEndian<quint16>(bits, h.bitsPerSample);
    std::memcpy(h.dataId, "data", 4);
    qToLittleEndian<quint32>(dataSize, h.dataSize);
    return h;
}

QByteArray bytes(const Wav::wavheader_t &header)
{
    return QByteArray(reinterpret_cast<const char *>(&header), sizeof header);
}

} // namespace

class tst_Wav : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void readsSoxFiles_data();
    void readsSoxFiles();
    void soxAcceptsWhatWeWrite();
    void formatString_data();
    void formatString();
    void shortAndOddImages_data();
    void shortAndOddImages();
    void fileFailures();
};

void tst_Wav::readsSoxFiles_data()
{
    QTest::addColumn<QStringList>("soxFormat");
    QTest::addColumn<quint32>("rate");
    QTest::addColumn<quint16>("channels");
    QTest::addColumn<quint16>("bits");
    QTest::addColumn<quint32>("samples");
    QTest::newRow("mono 8 kHz 16 bit") << QStringList { "-r", "8000", "-c", "1", "-b", "16" }
                                       << 8000u << quint16(1) << quint16(16) << 2000u;
    QTest::newRow("stereo 44.1 kHz 16 bit") << QStringList { "-r", "44100", "-c", "2", "-b", "16" }
                                            << 44100u << quint16(2) << quint16(16) << 11025u;
    QTest::newRow("mono 11025 Hz 8 bit") << QStringList { "-r", "11025", "-c", "1", "-b", "8" }
                                         << 11025u << quint16(1) << quint16(8) << 2205u;
}

void tst_Wav::readsSoxFiles()
{
    QFETCH(QStringList, soxFormat);
    QFETCH(quint32, rate);
    QFETCH(quint16, channels);
    QFETCH(quint16, bits);
    QFETCH(quint32, samples);
    QString ignored;
    RUN_SOX(ignored,
            QStringList { "-n" } + soxFormat
                + QStringList { "in.wav", "synth", QString::number(double(samples) / rate), "sine",
                                "440" });
    const QByteArray image = readAll("in.wav");

    Wav wav;
    QVERIFY(wav.readFile("in.wav"));
    QCOMPARE(wav.fileName(), QStringLiteral("in.wav"));
    const quint32 dataSize = samples * channels * bits / 8;
    QCOMPARE(wav.chunkId(), QStringLiteral("RIFF"));
    QCOMPARE(wav.chunkSize(), quint32(image.size() - 8));
    QCOMPARE(wav.format(), QStringLiteral("WAVE"));
    QCOMPARE(wav.formatId(), QStringLiteral("fmt "));
    QCOMPARE(wav.formatSize(), 16u);
    QCOMPARE(wav.audioFormat(), quint16(1));
    QCOMPARE(wav.numChannels(), channels);
    QCOMPARE(wav.sampleRate(), rate);
    QCOMPARE(wav.byteRate(), rate * channels * bits / 8);
    QCOMPARE(wav.blockAlign(), quint16(channels * bits / 8));
    QCOMPARE(wav.bitsPerSample(), bits);
    QCOMPARE(wav.dataId(), QStringLiteral("data"));
    QCOMPARE(wav.dataSize(), dataSize);
    QCOMPARE(wav.duration(), double(samples) / rate);
    QCOMPARE(wav.audioData(), image.mid(44));
    QCOMPARE(wav.calculateCrc(), ZuCrc::crc32(image, image.size()));
    QCOMPARE(wav.crc(), 0u); // only setAudioData stores one

    QVERIFY(wav.saveFile("copy.wav"));
    QCOMPARE(readAll("copy.wav"), image);
    QCOMPARE(wav.fileName(), QStringLiteral("copy.wav"));
}

// Built from a header and two pieces of audio; sox must read the result as what the header says.
void tst_Wav::soxAcceptsWhatWeWrite()
{
    const quint32 rate = 22050, dataSize = 22050 * 4 / 2; // stereo 16 bit, half a second
    const QByteArray first(dataSize / 4, '\x11'), second(dataSize - first.size(), '\x22');
    Wav wav;
    wav.setWavHeader(pcmHeader(rate, 2, 16, dataSize));
    wav.setAudioData(first);
    wav.setAudioData(second);
    const QByteArray image = bytes(pcmHeader(rate, 2, 16, dataSize)) + first + second;
    QCOMPARE(wav.crc(), ZuCrc::crc32(image, image.size()));
    QCOMPARE(wav.calculateCrc(), wav.crc());
    QCOMPARE(wav.audioData(), first + second);
    QVERIFY(wav.saveFile("ours.wav"));
    QCOMPARE(readAll("ours.wav"), image);

    QString rateText, channels, duration;
    RUN_SOX(rateText, "--i", "-r", "ours.wav");
    RUN_SOX(channels, "--i", "-c", "ours.wav");
    RUN_SOX(duration, "--i", "-D", "ours.wav");
    QCOMPARE(rateText, QStringLiteral("22050"));
    QCOMPARE(channels, QStringLiteral("2"));
    QCOMPARE(duration.toDouble(), wav.duration());
    QCOMPARE(wav.duration(), 0.5);
}

void tst_Wav::formatString_data()
{
    QTest::addColumn<QByteArray>("image");
    QTest::addColumn<QString>("text");
    const QByteArray header = bytes(pcmHeader(48000, 1, 8, 16000));
    QTest::newRow("pcm, a third of a second")
        << header + "tail"
        << "ChunkId:<b>RIFF</b><br>ChunkSize:<b>16036 Bytes</b><br>Format:<b>WAVE</b><br>"
           "SubChunk1Id:<b>fmt </b><br>SubChunk1Size:<b>16</b><br>audioFormat:<b>1</b><br>"
           "numChannels:<b>1</b><br>sampleRate:<b>48000</b><br>byteRate:<b>48000</b><br>"
           "blockAlign:<b>1</b><br>bitsPerSample:<b>8</b><br>SubChunk2Id:<b>data</b><br>"
           "subChunk2Size:<b>16000</b><br>duration:<b>0.333333 secs</b>";
    // Huge sizes are shown as they are; the duration comes from the header, not the data held.
    QByteArray huge = header;
    huge.replace(28, 4, QByteArray::fromHex("01000000")).replace(40, 4, QByteArray(4, '\xff'));
    QTest::newRow("huge data size")
        << huge
        << "ChunkId:<b>RIFF</b><br>ChunkSize:<b>16036 Bytes</b><br>Format:<b>WAVE</b><br>"
           "SubChunk1Id:<b>fmt </b><br>SubChunk1Size:<b>16</b><br>audioFormat:<b>1</b><br>"
           "numChannels:<b>1</b><br>sampleRate:<b>48000</b><br>byteRate:<b>1</b><br>"
           "blockAlign:<b>1</b><br>bitsPerSample:<b>8</b><br>SubChunk2Id:<b>data</b><br>"
           "subChunk2Size:<b>4294967295</b><br>duration:<b>4.29497e+09 secs</b>";
    const QString zeroTag = QString(4, QChar(0));
    QTest::newRow("no header") << QByteArray()
                               << "ChunkId:<b>" + zeroTag
            + "</b><br>ChunkSize:<b>0 Bytes</b><br>Format:<b>" + zeroTag + "</b><br>SubChunk1Id:<b>"
            + zeroTag
            + "</b><br>SubChunk1Size:<b>0</b><br>audioFormat:<b>0</b><br>numChannels:<b>0</b><br>"
              "sampleRate:<b>0</b><br>byteRate:<b>0</b><br>blockAlign:<b>0</b><br>"
              "bitsPerSample:<b>0</b><br>SubChunk2Id:<b>"
            + zeroTag + "</b><br>subChunk2Size:<b>0</b><br>duration:<b>0 secs</b>";
}

void tst_Wav::formatString()
{
    QFETCH(QByteArray, image);
    QFETCH(QString, text);
    Wav wav;
    wav.setRawData(image);
    QCOMPARE(wav.formatString(), text);
}

// Images of 44 bytes or less hold no audio; only setRawData takes a header from longer ones.
void tst_Wav::shortAndOddImages_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<bool>("viaSetWavHeader");
    QTest::addColumn<bool>("hasHeader");
    QTest::addColumn<int>("audioBytes");
    for (int size : { 0, 43, 44, 45 }) {
        const QByteArray name = QByteArray::number(size) + " bytes";
        QTest::newRow((name + ", setRawData").constData())
            << size << false << (size >= 44) << qMax(0, size - 44);
        QTest::newRow((name + ", setWavHeader").constData())
            << size << true << (size == 44) << qMax(0, size - 44);
    }
}

void tst_Wav::shortAndOddImages()
{
    QFETCH(int, size);
    QFETCH(bool, viaSetWavHeader);
    QFETCH(bool, hasHeader);
    QFETCH(int, audioBytes);
    const QByteArray image = bytes(pcmHeader(8000, 1, 16, 2)).append("xyz").left(size);
    Wav wav;
    wav.setWavHeader(pcmHeader(44100, 2, 16, 8));
    wav.setAudioData("previous audio");
    wav.setFileName("previous.wav");
    viaSetWavHeader ? wav.setWavHeader(image) : wav.setRawData(image);
    QCOMPARE(wav.fileName(), QString());
    QCOMPARE(wav.crc(), 0u);
    QCOMPARE(wav.sampleRate(), hasHeader ? 8000u : 0u);
    QCOMPARE(wav.chunkId(), hasHeader ? QStringLiteral("RIFF") : QString(4, QChar(0)));
    QCOMPARE(wav.audioData().size(), audioBytes);
    QCOMPARE(wav.audioData().isNull(), audioBytes == 0);
    QCOMPARE(wav.calculateCrc(), ZuCrc::crc32(image, image.size()));

    // Whatever was taken is written back, header or not; and reads back the same way.
    QVERIFY(wav.saveFile("odd.wav"));
    QCOMPARE(readAll("odd.wav"), image);
    Wav again;
    QVERIFY(again.readFile("odd.wav"));
    QCOMPARE(again.sampleRate(), size >= 44 ? 8000u : 0u);
    QCOMPARE(again.duration(), size >= 44 ? 2.0 / 16000 : 0.0);
}

void tst_Wav::fileFailures()
{
    QVERIFY(QDir().mkpath("folder/inside"));
    Wav wav;
    wav.setWavHeader(pcmHeader(8000, 1, 16, 0));
    QVERIFY(!wav.readFile("missing.wav"));
    QCOMPARE(wav.sampleRate(), 0u); // cleared, although it held a header before
    QVERIFY(wav.audioData().isNull());
    QVERIFY(wav.saveFile("empty.wav"));
    QCOMPARE(readAll("empty.wav"), QByteArray());
    QVERIFY(wav.readFile("empty.wav"));
    QVERIFY(!wav.readFile("folder"));
    QCOMPARE(wav.fileName(), QString());

    wav.setWavHeader(pcmHeader(8000, 1, 16, 0));
    QVERIFY(!wav.saveFile("folder")); // a folder that can't be removed
    QVERIFY(QFileInfo("folder/inside").isDir());
    QVERIFY(!wav.saveFile("no/such/folder/x.wav"));
    QCOMPARE(wav.fileName(), QString());
}

ZU_TEST_MAIN(tst_Wav)
#include "tst_wav.moc"
