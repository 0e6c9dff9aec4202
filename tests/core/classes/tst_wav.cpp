#include "support/ZuTest.h"

#include <zucore/Wav.h>
#include <zucore/ZuCrc.h>

#include <QProcess>

#include <cstring>

namespace {

#define REQUIRE_SOX()                                                                              \
    if (QStandardPaths::findExecutable("sox").isEmpty())                                           \
    QSKIP("sox is not installed: real WAV files can't be made or checked (apt-get install sox)")

// sox's standard output, trimmed.
QString sox(const QStringList &arguments)
{
    QProcess process;
    process.start(QStandardPaths::findExecutable("sox"), arguments);
    process.waitForFinished(30000);
    return QString::fromLatin1(process.readAllStandardOutput()).trimmed();
}

QByteArray readAll(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<unreadable>");
}

// A canonical PCM header whose sizes announce dataSize bytes of audio.
QByteArray pcmHeader(quint32 rate, quint16 channels, quint16 bits, quint32 dataSize)
{
    QByteArray h;
    QDataStream s(&h, QIODevice::WriteOnly);
    s.setByteOrder(QDataStream::LittleEndian);
    const quint16 align = channels * bits / 8;
    s.writeRawData("RIFF", 4);
    s << quint32(36 + dataSize);
    s.writeRawData("WAVEfmt ", 8);
    s << quint32(16) << quint16(1) << channels << rate << quint32(rate * align) << align << bits;
    s.writeRawData("data", 4);
    s << dataSize;
    return h;
}

} // namespace

class tst_Wav : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void readsSoxFiles_data();
    void readsSoxFiles();
    void soxReadsWhatWeBuild();
    void formatString();
    void shortImages_data();
    void shortImages();
    void fileFailures();
};

void tst_Wav::readsSoxFiles_data()
{
    QTest::addColumn<quint32>("rate");
    QTest::addColumn<quint32>("channels");
    QTest::addColumn<quint32>("bits");
    QTest::addColumn<QString>("seconds"); // a whole number of samples
    QTest::newRow("mono 8 kHz 16 bit") << 8000u << 1u << 16u << "0.25";
    QTest::newRow("stereo 44.1 kHz 16 bit") << 44100u << 2u << 16u << "0.25";
    QTest::newRow("mono 11025 Hz 8 bit") << 11025u << 1u << 8u << "0.2";
}

void tst_Wav::readsSoxFiles()
{
    REQUIRE_SOX();
    QFETCH(quint32, rate);
    QFETCH(quint32, channels);
    QFETCH(quint32, bits);
    QFETCH(QString, seconds);
    sox({ "-n", "-r", QString::number(rate), "-c", QString::number(channels), "-b",
          QString::number(bits), "in.wav", "synth", seconds, "sine", "440" });
    const QByteArray image = readAll("in.wav");
    const quint32 align = channels * bits / 8;

    Wav wav;
    QVERIFY(wav.readFile("in.wav"));
    QCOMPARE(wav.chunkId() + wav.format() + wav.formatId() + wav.dataId(),
             QStringLiteral("RIFFWAVEfmt data"));
    const QList<quint32> fields { wav.chunkSize(),   wav.formatSize(),    wav.audioFormat(),
                                  wav.numChannels(), wav.sampleRate(),    wav.byteRate(),
                                  wav.blockAlign(),  wav.bitsPerSample(), wav.dataSize() };
    const quint32 dataSize = quint32(seconds.toDouble() * rate) * align;
    QCOMPARE(fields,
             (QList<quint32> { quint32(image.size() - 8), 16, 1, channels, rate, rate * align,
                               align, bits, dataSize }));
    QCOMPARE(wav.duration(), seconds.toDouble());
    QCOMPARE(wav.audioData(), image.mid(44));
    QCOMPARE(wav.calculateCrc(), ZuCrc::crc32(image, image.size()));
    QCOMPARE(wav.crc(), 0u); // only setAudioData stores one
    QCOMPARE(wav.fileName(), QStringLiteral("in.wav"));

    QVERIFY(wav.saveFile("copy.wav"));
    QCOMPARE(readAll("copy.wav"), image);
}

// A header and two pieces of audio; sox must read the file as the header says.
void tst_Wav::soxReadsWhatWeBuild()
{
    REQUIRE_SOX();
    const QByteArray header = pcmHeader(22050, 2, 16, 44100), a(11025, '\x11'), b(33075, '\x22');
    Wav::wavheader_t h;
    std::memcpy(&h, header.constData(), sizeof h);
    Wav wav;
    wav.setWavHeader(h);
    wav.setAudioData(a);
    wav.setAudioData(b);
    QCOMPARE(wav.crc(), ZuCrc::crc32(header + a + b, header.size() + a.size() + b.size()));
    QCOMPARE(wav.calculateCrc(), wav.crc());
    QVERIFY(wav.saveFile("ours.wav"));
    QCOMPARE(readAll("ours.wav"), header + a + b);

    QCOMPARE(sox({ "--i", "-r", "ours.wav" }), QStringLiteral("22050"));
    QCOMPARE(sox({ "--i", "-c", "ours.wav" }), QStringLiteral("2"));
    QCOMPARE(sox({ "--i", "-D", "ours.wav" }).toDouble(), 0.5);
    QCOMPARE(wav.duration(), 0.5);
}

void tst_Wav::formatString()
{
    Wav wav;
    const QString zero(4, QChar(0));
    QCOMPARE(wav.formatString(),
             "ChunkId:<b>" + zero + "</b><br>ChunkSize:<b>0 Bytes</b><br>Format:<b>" + zero
                 + "</b><br>SubChunk1Id:<b>" + zero
                 + "</b><br>SubChunk1Size:<b>0</b><br>audioFormat:<b>0</b><br>numChannels:<b>0</b>"
                   "<br>sampleRate:<b>0</b><br>byteRate:<b>0</b><br>blockAlign:<b>0</b><br>"
                   "bitsPerSample:<b>0</b><br>SubChunk2Id:<b>"
                 + zero + "</b><br>subChunk2Size:<b>0</b><br>duration:<b>0 secs</b>");
    wav.setRawData(pcmHeader(48000, 1, 8, 16000) + "tail");
    QCOMPARE(wav.formatString(),
             "ChunkId:<b>RIFF</b><br>ChunkSize:<b>16036 Bytes</b><br>Format:<b>WAVE</b><br>"
             "SubChunk1Id:<b>fmt </b><br>SubChunk1Size:<b>16</b><br>audioFormat:<b>1</b><br>"
             "numChannels:<b>1</b><br>sampleRate:<b>48000</b><br>byteRate:<b>48000</b><br>"
             "blockAlign:<b>1</b><br>bitsPerSample:<b>8</b><br>SubChunk2Id:<b>data</b><br>"
             "subChunk2Size:<b>16000</b><br>duration:<b>0.333333 secs</b>");
    // A huge size is taken as it stands: the duration comes from the header, not the data.
    wav.setRawData(pcmHeader(1, 1, 8, 0xFFFFFFFFu));
    QVERIFY(wav.formatString().endsWith("subChunk2Size:<b>4294967295</b><br>"
                                        "duration:<b>4.29497e+09 secs</b>"));
}

// Images of 44 bytes or less hold no audio; setWavHeader takes a header from 44 bytes only.
void tst_Wav::shortImages_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<bool>("viaSetWavHeader");
    QTest::addColumn<bool>("hasHeader");
    for (int size : { 0, 43, 44, 45 }) {
        const QByteArray name = QByteArray::number(size) + " bytes";
        QTest::newRow((name + ", setRawData").constData()) << size << false << (size >= 44);
        QTest::newRow((name + ", setWavHeader").constData()) << size << true << (size == 44);
    }
}

void tst_Wav::shortImages()
{
    QFETCH(int, size);
    QFETCH(bool, viaSetWavHeader);
    QFETCH(bool, hasHeader);
    const QByteArray image = (pcmHeader(8000, 1, 16, 2) + "xyz").left(size);
    Wav wav;
    wav.setRawData(pcmHeader(44100, 2, 16, 8));
    wav.setAudioData("previous audio");
    wav.setFileName("previous.wav");
    viaSetWavHeader ? wav.setWavHeader(image) : wav.setRawData(image);
    QCOMPARE(wav.fileName(), QString());
    QCOMPARE(wav.crc(), 0u);
    QCOMPARE(wav.sampleRate(), hasHeader ? 8000u : 0u);
    QCOMPARE(wav.chunkId(), hasHeader ? QStringLiteral("RIFF") : QString(4, QChar(0)));
    QCOMPARE(wav.audioData(), image.mid(44));
    QCOMPARE(wav.audioData().isNull(), size <= 44);

    // Whatever was taken is written back whole, and reads back the same way.
    QVERIFY(wav.saveFile("short.wav"));
    QCOMPARE(readAll("short.wav"), image);
    QVERIFY(wav.readFile("short.wav"));
    QCOMPARE(wav.duration(), size >= 44 ? 2.0 / 16000 : 0.0);
}

void tst_Wav::fileFailures()
{
    QVERIFY(QDir().mkpath("folder/inside"));
    Wav wav;
    wav.setRawData(pcmHeader(8000, 1, 16, 0));
    QVERIFY(!wav.readFile("missing.wav"));
    QCOMPARE(wav.sampleRate(), 0u); // cleared, although it held a header before
    QVERIFY(!wav.readFile("folder"));

    wav.setRawData(pcmHeader(8000, 1, 16, 0));
    QVERIFY(!wav.saveFile("folder")); // a folder can't be removed as a file
    QVERIFY(QFileInfo("folder/inside").isDir());
    QVERIFY(!wav.saveFile("no/such/folder/x.wav"));
    QCOMPARE(wav.fileName(), QString());
}

ZU_TEST_MAIN(tst_Wav)
#include "tst_wav.moc"
