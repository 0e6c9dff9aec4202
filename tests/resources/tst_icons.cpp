#include "support/ZuTest.h"

#include <QDirIterator>
#include <QImageReader>
#include <QPixmap>
#include <QResource>
#include <QSet>

namespace {

// Looked up before main(): the library's icons must be there without any Q_INIT_RESOURCE.
const bool registeredBeforeMain = QFile::exists(QStringLiteral(":/images/add"));

// Every path under :/images/, with its size in pixels where it is not 16 by 16.
// clang-format off
const QStringList icons = QStringLiteral(
    "add=22 csv zuc new pdf copy edit link open play save stop=14 view arrow clear email "
    "mark-delete=48 closetab esf-border=200x24 esf-clear-active=18 snapshot esf-search=18 "
    "copyclipboard undelete=48 selectcolumn delete arrow-left export filter download import "
    "esf-clear-hover=18 remove=22 revert submit update upload refresh esf-clear=18 pdf-email "
    "arrow-refresh comment connect disconnect arrow-right calculator readonly editrecord "
    "burger-menu=48 settings burger-settings=48 newrecord images/arrow-circle-double-135.png "
    "images/arrow-curve-180-left.png images/application_edit.png images/email_go.png "
    "images/document-break.png images/document-template.png images/layouts_split.png").split(' ');
// clang-format on

} // namespace

class tst_Icons : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void registeredAtLoad() { QVERIFY(registeredBeforeMain); }

    void image_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QSize>("size");
        for (const QString &icon : icons) {
            const QStringList size = icon.section('=', 1).split('x'); // "", "N" or "WxH"
            QTest::newRow(qPrintable(icon.section('=', 0, 0)))
                << ":/images/" + icon.section('=', 0, 0)
                << QSize(size[0].isEmpty() ? 16 : size[0].toInt(),
                         size.last().isEmpty() ? 16 : size.last().toInt());
        }
    }

    void image()
    {
        QFETCH(QString, path);
        QFETCH(QSize, size);
        QImageReader reader(path);
        QCOMPARE(reader.format(), QByteArray("png"));
        const QImage image = reader.read().convertToFormat(QImage::Format_ARGB32);
        QCOMPARE(image.size(), size);
        QCOMPARE(QPixmap(path).size(), size);
        QSet<QRgb> colours; // not blank: visible pixels of more than one colour
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                if (qAlpha(image.pixel(x, y)) > 0)
                    colours.insert(image.pixel(x, y));
        QVERIFY2(colours.size() > 1, qPrintable(QString::number(colours.size())));
        // Only esf-clear is stored compressed; reading hides the difference.
        QCOMPARE(QResource(path).compressionAlgorithm(),
                 path.endsWith("/esf-clear") ? QResource::ZlibCompression
                                             : QResource::NoCompression);
    }

    // Nothing else is there: no alias with its file's suffix, no sub-folder path without one.
    void nothingElse()
    {
        QSet<QString> expected;
        for (const QString &icon : icons)
            expected << ":/images/" + icon.section('=', 0, 0);
        QSet<QString> found;
        for (QDirIterator it(":/images", QDir::Files, QDirIterator::Subdirectories); it.hasNext();)
            found << it.next();
        QCOMPARE(found.size(), 59);
        QCOMPARE(found, expected);
        for (const char *path : { ":/images/add.png", ":/images/images/email_go", ":/add" })
            QVERIFY2(!QFile::exists(path), path);
    }
};

ZU_TEST_MAIN(tst_Icons)
#include "tst_icons.moc"
