#pragma once

#include <zucore/zucore_export.h>

#include <QByteArray>
#include <QObject>
#include <QString>

/**
 * @brief A WAV file held in memory: the whole file image plus a decoded copy of its canonical
 * 44-byte header.
 *
 * @code #include <zucore/Wav.h> @endcode
 *
 * Only the canonical RIFF WAVE layout is known: a 44-byte header, then the audio data. No chunk
 * is walked and no tag, size or format is checked; a file with further chunks ahead of the data
 * chunk is read by the same fixed offsets. Audio is never decoded.
 *
 * | Offset | Size | Accessor        | Canonical content                  |
 * |--------|------|-----------------|------------------------------------|
 * | 0      | 4    | chunkId()       | "RIFF"                             |
 * | 4      | 4    | chunkSize()     | size of the rest of the file       |
 * | 8      | 4    | format()        | "WAVE"                             |
 * | 12     | 4    | formatId()      | "fmt "                             |
 * | 16     | 4    | formatSize()    | 16 for PCM                         |
 * | 20     | 2    | audioFormat()   | 1 for PCM                          |
 * | 22     | 2    | numChannels()   | channels                           |
 * | 24     | 4    | sampleRate()    | samples per second                 |
 * | 28     | 4    | byteRate()      | bytes per second                   |
 * | 32     | 2    | blockAlign()    | bytes per sample frame             |
 * | 34     | 2    | bitsPerSample() | bits per sample                    |
 * | 36     | 4    | dataId()        | "data"                             |
 * | 40     | 4    | dataSize()      | bytes of audio data                |
 * | 44     | rest | audioData()     | the audio data                     |
 *
 * Integers are little-endian. Data shorter than 44 bytes is kept as it is but gives no header:
 * every accessor then reads zero. Failures are told by the results of readFile() and saveFile()
 * alone; nothing is logged.
 *
 * The file name and the CRC-32 that setAudioData() stores can be read back through fileName()
 * and crc().
 */
class ZUCORE_EXPORT Wav : public QObject
{
    Q_OBJECT
public:
    /**
     * The canonical header as it lies in the file: thirteen fields of raw bytes, 44 bytes in
     * all, copied to and from the file image byte for byte. Values are decoded only when read.
     */
    struct wavheader_t
    {
        uchar chunkId[4]; ///< "RIFF"
        uchar chunkSize[4]; ///< size of the rest of the file
        uchar format[4]; ///< "WAVE"
        uchar formatId[4]; ///< "fmt "
        uchar formatSize[4]; ///< 16 for PCM
        uchar audioFormat[2]; ///< 1 for PCM
        uchar numChannels[2]; ///< channels
        uchar sampleRate[4]; ///< samples per second
        uchar byteRate[4]; ///< bytes per second
        uchar blockAlign[2]; ///< bytes per sample frame
        uchar bitsPerSample[2]; ///< bits per sample
        uchar dataId[4]; ///< "data"
        uchar dataSize[4]; ///< bytes of audio data
    };

    /// The size of wavheader_t and the offset of the audio data.
    static constexpr int HeaderSize = 44;

    /// An empty object (see clear()).
    explicit Wav(QObject *parent = nullptr);
    ~Wav() override;

    /// @name Header fields
    /// Tags come as four Latin-1 characters, zero bytes included; integers are decoded from
    /// little-endian. All read zero while no header is held.
    /// @{

    /// Bytes 0-3, "RIFF" in a canonical file.
    QString chunkId() const;
    /// Bytes 4-7: the size of the rest of the file.
    quint32 chunkSize() const;
    /// Bytes 8-11, "WAVE".
    QString format() const;
    /// Bytes 12-15, "fmt ".
    QString formatId() const;
    /// Bytes 16-19: the size of the format chunk, 16 for PCM.
    quint32 formatSize() const;
    /// Bytes 20-21: 1 for PCM.
    quint16 audioFormat() const;
    /// Bytes 22-23: the number of channels.
    quint16 numChannels() const;
    /// Bytes 24-27: samples per second.
    quint32 sampleRate() const;
    /// Bytes 28-31: bytes per second.
    quint32 byteRate() const;
    /// Bytes 32-33: bytes per sample frame.
    quint16 blockAlign() const;
    /// Bytes 34-35: bits per sample.
    quint16 bitsPerSample() const;
    /// Bytes 36-39, "data".
    QString dataId() const;
    /// Bytes 40-43: the bytes of audio data the header announces.
    quint32 dataSize() const;
    /// @}

    /**
     * dataSize() divided by byteRate(), in seconds. The size comes from the header, not from
     * the length of the data held.
     * @return 0.0 when byteRate() is 0.
     */
    double duration() const;

    /**
     * An HTML summary of every header field and the duration, one "Label:<b>value</b><br>"
     * piece per field and "duration:<b>N secs</b>" at the end, without a trailing line break.
     */
    QString formatString() const;

    /// The bytes behind the 44-byte header; a null array when the image is 44 bytes or shorter.
    QByteArray audioData() const;

    /**
     * Clears the object, then reads the whole file into it (see setRawData()) and stores the
     * name. Anything readable is taken; a file shorter than 44 bytes gives no header.
     * @return false, with the object left empty, when the file can't be opened.
     */
    bool readFile(const QString &fileName);

    /**
     * Writes the image held, whole, to @p fileName after removing a file of that name, and
     * stores the name. The result of the write itself is not looked at.
     * @return false when an existing file can't be removed, or the file can't be opened for
     * writing; in the latter case the old file is already gone.
     */
    virtual bool saveFile(const QString &fileName);

    /**
     * Clears the object (file name and CRC included), takes @p data as the whole image and
     * copies its first 44 bytes into the header. Shorter data is kept but gives no header.
     * The CRC is not computed.
     */
    virtual void setRawData(const QByteArray &data);

    /**
     * Appends @p data to the image and stores the CRC-32 of the whole image, header included.
     * A second call adds to the first. The size fields of the header are left as they are:
     * the caller puts the right sizes in the header beforehand.
     */
    virtual void setAudioData(const QByteArray &data);

    /// Stores the file name; nothing else.
    virtual void setFileName(const QString &fileName);

    /// Empties the file name and the image, sets the CRC to 0 and the header to zero bytes.
    virtual void clear();

    /**
     * Clears the object and takes @p data as the image, whatever its size. Only data of exactly
     * 44 bytes becomes the header; otherwise the header stays zero.
     */
    void setWavHeader(const QByteArray &data);

    /// Clears the object, takes @p header as the header and its 44 bytes as the image.
    void setWavHeader(const Wav::wavheader_t &header);

    /// The CRC-32 of the whole image, header included. It is not stored in crc().
    quint32 calculateCrc();

    /// The name given to readFile(), saveFile() or setFileName(); empty after clear().
    QString fileName() const;

    /// The CRC-32 stored by the last setAudioData(); 0 after clear() and setRawData().
    quint32 crc() const;

private:
    QString m_fileName;
    QByteArray m_rawData;
    wavheader_t m_header;
    quint32 m_crc;
};
