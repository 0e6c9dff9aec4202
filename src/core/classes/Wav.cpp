#include <zucore/Wav.h>
#include <zucore/ZuCrc.h>
#include <zucore/ZuHex.h>

#include <QFile>

#include <cstring>

static_assert(sizeof(Wav::wavheader_t) == Wav::HeaderSize, "the header is copied byte for byte");

Wav::Wav(QObject *parent)
    : QObject(parent)
{
    // Not the virtual one: an override can't run before its class is built.
    Wav::clear();
}

Wav::~Wav() = default;

QString Wav::chunkId() const
{
    return ZuHex::ucharToQString(m_header.chunkId, 4);
}

quint32 Wav::chunkSize() const
{
    return ZuHex::ucharToUint(m_header.chunkSize);
}

QString Wav::format() const
{
    return ZuHex::ucharToQString(m_header.format, 4);
}

QString Wav::formatId() const
{
    return ZuHex::ucharToQString(m_header.formatId, 4);
}

quint32 Wav::formatSize() const
{
    return ZuHex::ucharToUint(m_header.formatSize);
}

quint16 Wav::audioFormat() const
{
    return ZuHex::ucharToUshort(m_header.audioFormat);
}

quint16 Wav::numChannels() const
{
    return ZuHex::ucharToUshort(m_header.numChannels);
}

quint32 Wav::sampleRate() const
{
    return ZuHex::ucharToUint(m_header.sampleRate);
}

quint32 Wav::byteRate() const
{
    return ZuHex::ucharToUint(m_header.byteRate);
}

quint16 Wav::blockAlign() const
{
    return ZuHex::ucharToUshort(m_header.blockAlign);
}

quint16 Wav::bitsPerSample() const
{
    return ZuHex::ucharToUshort(m_header.bitsPerSample);
}

QString Wav::dataId() const
{
    return ZuHex::ucharToQString(m_header.dataId, 4);
}

quint32 Wav::dataSize() const
{
    return ZuHex::ucharToUint(m_header.dataSize);
}

double Wav::duration() const
{
    const quint32 rate = byteRate();
    return rate == 0 ? 0.0 : double(dataSize()) / double(rate);
}

QString Wav::formatString() const
{
    QString text;
    text += QStringLiteral("ChunkId:<b>%1</b><br>").arg(chunkId());
    text += QStringLiteral("ChunkSize:<b>%1 Bytes</b><br>").arg(chunkSize());
    text += QStringLiteral("Format:<b>%1</b><br>").arg(format());
    text += QStringLiteral("SubChunk1Id:<b>%1</b><br>").arg(formatId());
    text += QStringLiteral("SubChunk1Size:<b>%1</b><br>").arg(formatSize());
    text += QStringLiteral("audioFormat:<b>%1</b><br>").arg(audioFormat());
    text += QStringLiteral("numChannels:<b>%1</b><br>").arg(numChannels());
    text += QStringLiteral("sampleRate:<b>%1</b><br>").arg(sampleRate());
    text += QStringLiteral("byteRate:<b>%1</b><br>").arg(byteRate());
    text += QStringLiteral("blockAlign:<b>%1</b><br>").arg(blockAlign());
    text += QStringLiteral("bitsPerSample:<b>%1</b><br>").arg(bitsPerSample());
    text += QStringLiteral("SubChunk2Id:<b>%1</b><br>").arg(dataId());
    text += QStringLiteral("subChunk2Size:<b>%1</b><br>").arg(dataSize());
    text += QStringLiteral("duration:<b>%1 secs</b>").arg(duration());
    return text;
}

QByteArray Wav::audioData() const
{
    if (m_rawData.size() <= HeaderSize)
        return QByteArray();
    return m_rawData.mid(HeaderSize);
}

bool Wav::readFile(const QString &fileName)
{
    clear();
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    setRawData(file.readAll());
    file.close();
    setFileName(fileName);
    return true;
}

bool Wav::saveFile(const QString &fileName)
{
    if (QFile::exists(fileName) && !QFile::remove(fileName))
        return false;
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(m_rawData);
    file.close();
    setFileName(fileName);
    return true;
}

void Wav::setRawData(const QByteArray &data)
{
    clear();
    m_rawData = data;
    if (m_rawData.size() >= HeaderSize)
        std::memcpy(&m_header, m_rawData.constData(), HeaderSize);
}

void Wav::setAudioData(const QByteArray &data)
{
    m_rawData.append(data);
    m_crc = ZuCrc::crc32(m_rawData, m_rawData.size());
}

void Wav::setFileName(const QString &fileName)
{
    m_fileName = fileName;
}

void Wav::clear()
{
    m_fileName.clear();
    m_rawData.clear();
    m_crc = 0;
    std::memset(&m_header, 0, sizeof m_header);
}

void Wav::setWavHeader(const QByteArray &data)
{
    clear();
    m_rawData = data;
    if (m_rawData.size() == HeaderSize)
        std::memcpy(&m_header, m_rawData.constData(), HeaderSize);
}

void Wav::setWavHeader(const Wav::wavheader_t &header)
{
    clear();
    m_header = header;
    m_rawData = QByteArray(reinterpret_cast<const char *>(&header), HeaderSize);
}

quint32 Wav::calculateCrc()
{
    return ZuCrc::crc32(m_rawData, m_rawData.size());
}

QString Wav::fileName() const
{
    return m_fileName;
}

quint32 Wav::crc() const
{
    return m_crc;
}
