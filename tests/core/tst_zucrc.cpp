#include "core/ZuCrc_p.h"
#include "support/ZuTest.h"

#include <zucore/ZuCrc.h>

#include <QRandomGenerator>

#include <zlib.h>

class tst_ZuCrc : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void checkValues_data()
    {
        QTest::addColumn<QByteArray>("data");
        QTest::addColumn<int>("length");
        QTest::addColumn<uint>("crc");
        QTest::newRow("front only") << QByteArray("123456789abc") << 9 << 0xCBF43926u;
        QTest::newRow("length 0") << QByteArray("abc") << 0 << 0u;
        QTest::newRow("negative length") << QByteArray("abc") << -4 << 0u;
        QTest::newRow("length beyond the data") << QByteArray("123456789") << 4096 << 0xCBF43926u;
    }

    void checkValues()
    {
        QFETCH(QByteArray, data);
        QFETCH(int, length);
        QFETCH(uint, crc);
        QCOMPARE(ZuCrc::crc32(data, length), crc);
    }

    void agreesWithZlib_data()
    {
        QTest::addColumn<int>("kernel"); // -1: the one crc32() picks
        QTest::newRow("crc32(), picked for this CPU") << -1;
        const QVector<ZuCrcKernels::Entry> kernels = ZuCrcKernels::all();
        for (int k = 0; k < kernels.size(); ++k)
            QTest::newRow(kernels.at(k).name) << k;
    }

    // Every size to 300 at each offset mod 16 (kernel steps of 8, 16, 64 bytes), and large sizes.
    void agreesWithZlib()
    {
        QFETCH(int, kernel);
        const ZuCrcKernels::Entry entry = ZuCrcKernels::all().value(kernel);
        if (kernel >= 0 && !entry.supported)
            QSKIP("this CPU cannot run this kernel");
        QByteArray pool(4 * 1024 * 1024 + 64, Qt::Uninitialized);
        QRandomGenerator(2024).fillRange(reinterpret_cast<quint32 *>(pool.data()), pool.size() / 4);
        QList<int> sizes = { 4095, 65536 + 17, 4 * 1024 * 1024 + 33 };
        for (int size = 0; size <= 300; ++size)
            sizes.append(size);
        for (int offset = 0; offset < 16; ++offset)
            for (int size : sizes) {
                const char *data = pool.constData() + offset;
                const uint ours = kernel < 0
                    ? ZuCrc::crc32(QByteArray::fromRawData(data, size), size)
                    : entry.kernel(0xFFFFFFFFu, reinterpret_cast<const uchar *>(data), size_t(size))
                        ^ 0xFFFFFFFFu;
                QCOMPARE(ours,
                         uint(::crc32(0L, reinterpret_cast<const Bytef *>(data), uInt(size))));
            }
    }
};

ZU_TEST_MAIN(tst_ZuCrc)
#include "tst_zucrc.moc"
