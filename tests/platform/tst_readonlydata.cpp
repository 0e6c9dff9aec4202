#include "platform/ReadOnlyData.h"
#include "support/ZuTest.h"

#include <QByteArray>

#include <memory>

namespace {
char writableText[] = "void f()";
} // namespace

// The function-name cache trusts an address only where isReadOnlyData() says the text cannot
// change; every writable place must answer false.
class TestReadOnlyData : public QObject
{
    Q_OBJECT

private slots:
    void places()
    {
        char onStack[] = "void f()";
        const auto onHeap = std::make_unique<char[]>(16);
        QVERIFY(ZuPlatform::isReadOnlyData("void f()"));
        QVERIFY(ZuPlatform::isReadOnlyData(Q_FUNC_INFO));
        QVERIFY(!ZuPlatform::isReadOnlyData(onStack));
        QVERIFY(!ZuPlatform::isReadOnlyData(onHeap.get()));
        QVERIFY(!ZuPlatform::isReadOnlyData(writableText));
        QVERIFY(!ZuPlatform::isReadOnlyData(nullptr));
    }
};

ZU_TEST_MAIN(TestReadOnlyData)
#include "tst_readonlydata.moc"
