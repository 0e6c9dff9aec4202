#include "support/TestFiles.h"
#include "support/ZuTest.h"

#include <zucore/Wav.h>
#include <zucore/ZuCrc.h>

#include <QProcess>

static QString sox(const QStringList &arguments)
{
    QProcess process;
    process.start(QStandardPaths::findExecutable("sox"), arguments);
    process.waitForFinished(30000);
    return QString::fromLatin1(process.readAllStandardOutput()).trimmed();
}

// A canonical PCM header whose sizes announce `size` bytes of audio.
static QByteArray pcmHeader(quint32 rate, quint16 channels, quint16 bits, quint32 size)
{
    const auto le = [](quint32 v, int n) {
        v = qToLittleEndian(v);
        return QByteArray(reinterpret_cast<const char *>(&v), n);
    };
    const quint16 align = channels * bits / 8;
    return "RIFF" + le(36 + size, 4) + "WAVEfmt " + le(16, 4) + le(1, 2) + le(channels, 2)
        + le(rate, 4) + le(rate * align, 4) + le(align, 2) + le(bits, 2) + "data" + le(size, 4);
}

class tst_Wav : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    // Real files: sox's read field by field, and ours read by sox as its header says.
    void soxFiles()
    {
        if (QStandardPaths::findExecutable("sox").isEmpty())
            QSKIP("sox is not installed: real WAV files can't be made or checked");
        sox({ "-n", "-r", "48000", "-c", "2", "-b", "16", "in.wav", "synth", "16000s", "sine" });
        Wav wav;
        QVERIFY(wav.readFile("in.wav"));
        QCOMPARE(wav.formatString(),
                 "ChunkId:<b>RIFF</b><br>ChunkSize:<b>64036 Bytes</b><br>Format:<b>WAVE</b><br>"
                 "SubChunk1Id:<b>fmt </b><br>SubChunk1Size:<b>16</b><br>audioFormat:<b>1</b><br>"
                 "numChannels:<b>2</b><br>sampleRate:<b>48000</b><br>byteRate:<b>192000</b><br>"
                 "blockAlign:<b>4</b><br>bitsPerSample:<b>16</b><br>SubChunk2Id:<b>data</b><br>"
                 "subChunk2Size:<b>64000</b><br>duration:<b>0.333333 secs</b>");
        QCOMPARE(wav.audioData(), zutest::contentOf("in.wav").mid(44));
        QCOMPARE(wav.fileName(), "in.wav");

        const QByteArray header = pcmHeader(22050, 2, 16, 44100), a(11025, 'a'), b(33075, 'b');
        wav.setWavHeader(*reinterpret_cast<const Wav::wavheader_t *>(header.constData()));
        wav.setAudioData(a);
        wav.setAudioData(b);
        QCOMPARE(wav.crc(), ZuCrc::crc32(header + a + b, header.size() + a.size() + b.size()));
        QCOMPARE(wav.calculateCrc(), wav.crc());
        QVERIFY(wav.saveFile("ours.wav"));
        QCOMPARE(zutest::contentOf("ours.wav"), header + a + b);
        QCOMPARE(sox({ "--i", "-D", "ours.wav" }), "0.500000"); // 44100 bytes at 88200 a second
        wav.setRawData(header); // loses the name and the stored CRC
        QCOMPARE(wav.fileName() + QString::number(wav.crc()), "0");
    }

    // Images of 44 bytes or less hold no audio; setWavHeader takes a header from 44 bytes only.
    void shortImages_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<bool>("viaSetWavHeader");
        for (int i = 0; i < 6; ++i)
            QTest::addRow("%d bytes, %s", 43 + i / 2, i % 2 ? "setWavHeader" : "setRawData")
                << 43 + i / 2 << bool(i % 2);
    }

    void shortImages()
    {
        QFETCH(int, size);
        QFETCH(bool, viaSetWavHeader);
        const QByteArray image = (pcmHeader(8000, 1, 16, 2) + "xyz").left(size);
        Wav wav;
        wav.setRawData(pcmHeader(44100, 2, 16, 8) + "previous audio");
        viaSetWavHeader ? wav.setWavHeader(image) : wav.setRawData(image);
        QCOMPARE(wav.sampleRate(), (viaSetWavHeader ? size == 44 : size >= 44) ? 8000u : 0u);
        QCOMPARE(wav.audioData(), image.mid(44));
        QCOMPARE(wav.audioData().isNull(), size <= 44);
        // Written back whole; read back, the duration comes from the header, not the data.
        QVERIFY(wav.saveFile("short.wav"));
        QCOMPARE(zutest::contentOf("short.wav"), image);
        QVERIFY(wav.readFile("short.wav"));
        QCOMPARE(wav.duration(), size >= 44 ? 2.0 / 16000 : 0.0);
    }

    void fileFailures()
    {
        Wav wav;
        wav.setRawData(pcmHeader(8000, 1, 16, 0));
        QVERIFY(!wav.readFile("missing.wav"));
        // Cleared, although it held a header: zero tags and numbers, no division by zero.
        QCOMPARE(wav.formatString().count(QChar(0)) + wav.formatString().count(":<b>0"), 16 + 10);
        QVERIFY(wav.formatString().endsWith("subChunk2Size:<b>0</b><br>duration:<b>0 secs</b>"));
        // A folder can't be removed as a file; a file can't be made in a missing folder.
        QVERIFY(!wav.saveFile(".") && !wav.saveFile("no/such/folder/x.wav"));
        QCOMPARE(wav.fileName(), QString());
    }
};

ZU_TEST_MAIN(tst_Wav)
#include "tst_wav.moc"
