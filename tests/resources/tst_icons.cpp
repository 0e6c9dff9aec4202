#include "support/ZuTest.h"

#include <QDirIterator>
#include <QImageReader>
#include <QPixmap>
#include <QResource>
#include <QSet>

namespace {

// Evaluated by this program's static initialisers, before main: the libraries it links have
// been initialised by then, so the icons must already be there without any Q_INIT_RESOURCE.
const bool registeredBeforeMain = QFile::exists(QStringLiteral(":/images/add"));

const QString prefix = QStringLiteral(":/images/");

struct Expected
{
    const char *name;
    int width, height;
};

const Expected icons[] = {
    { "add", 22, 22 },
    { "csv", 16, 16 },
    { "zuc", 16, 16 },
    { "new", 16, 16 },
    { "pdf", 16, 16 },
    { "copy", 16, 16 },
    { "edit", 16, 16 },
    { "link", 16, 16 },
    { "open", 16, 16 },
    { "play", 16, 16 },
    { "save", 16, 16 },
    { "stop", 14, 14 },
    { "view", 16, 16 },
    { "arrow", 16, 16 },
    { "clear", 16, 16 },
    { "email", 16, 16 },
    { "mark-delete", 48, 48 },
    { "closetab", 16, 16 },
    { "esf-border", 200, 24 },
    { "esf-clear-active", 18, 18 },
    { "snapshot", 16, 16 },
    { "esf-search", 18, 18 },
    { "copyclipboard", 16, 16 },
    { "undelete", 48, 48 },
    { "selectcolumn", 16, 16 },
    { "delete", 16, 16 },
    { "arrow-left", 16, 16 },
    { "export", 16, 16 },
    { "filter", 16, 16 },
    { "download", 16, 16 },
    { "import", 16, 16 },
    { "esf-clear-hover", 18, 18 },
    { "remove", 22, 22 },
    { "revert", 16, 16 },
    { "submit", 16, 16 },
    { "update", 16, 16 },
    { "upload", 16, 16 },
    { "refresh", 16, 16 },
    { "esf-clear", 18, 18 },
    { "pdf-email", 16, 16 },
    { "arrow-refresh", 16, 16 },
    { "comment", 16, 16 },
    { "connect", 16, 16 },
    { "disconnect", 16, 16 },
    { "arrow-right", 16, 16 },
    { "calculator", 16, 16 },
    { "readonly", 16, 16 },
    { "editrecord", 16, 16 },
    { "burger-menu", 48, 48 },
    { "settings", 16, 16 },
    { "burger-settings", 48, 48 },
    { "newrecord", 16, 16 },
    { "images/arrow-circle-double-135.png", 16, 16 },
    { "images/arrow-curve-180-left.png", 16, 16 },
    { "images/application_edit.png", 16, 16 },
    { "images/email_go.png", 16, 16 },
    { "images/document-break.png", 16, 16 },
    { "images/document-template.png", 16, 16 },
    { "images/layouts_split.png", 16, 16 },
};

} // namespace

class tst_Icons : public QObject
{
    Q_OBJECT
private Q_SLOTS:
    void registeredAtLoad();
    void image_data();
    void image();
    void absent_data();
    void absent();
    void nothingElse();
};

void tst_Icons::registeredAtLoad()
{
    QVERIFY(registeredBeforeMain);
}

void tst_Icons::image_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QSize>("size");
    for (const Expected &icon : icons)
        QTest::newRow(icon.name) << prefix + QLatin1String(icon.name)
                                 << QSize(icon.width, icon.height);
}

void tst_Icons::image()
{
    QFETCH(QString, path);
    QFETCH(QSize, size);
    QVERIFY(QFile::exists(path));
    QImageReader reader(path);
    QCOMPARE(reader.format(), QByteArray("png"));
    const QImage image = reader.read();
    QVERIFY2(!image.isNull(), qPrintable(reader.errorString()));
    QCOMPARE(image.size(), size);
    QCOMPARE(QPixmap(path).size(), size);

    // Not blank: visible pixels of more than one colour.
    QSet<QRgb> colours;
    const QImage argb = image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < argb.height(); ++y)
        for (int x = 0; x < argb.width(); ++x)
            if (qAlpha(argb.pixel(x, y)) > 0)
                colours.insert(argb.pixel(x, y));
    QVERIFY2(colours.size() > 1, qPrintable(QString::number(colours.size())));

    // Only esf-clear is stored compressed; reading hides the difference.
    const bool compressed = path == prefix + QLatin1String("esf-clear");
    QCOMPARE(QResource(path).compressionAlgorithm(),
             compressed ? QResource::ZlibCompression : QResource::NoCompression);
}

void tst_Icons::absent_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("alias with its file's suffix") << prefix + QStringLiteral("add.png");
    QTest::newRow("sub-folder path without suffix") << prefix + QStringLiteral("images/email_go");
    QTest::newRow("without the prefix") << QStringLiteral(":/add");
}

void tst_Icons::absent()
{
    QFETCH(QString, path);
    QVERIFY(!QFile::exists(path));
}

void tst_Icons::nothingElse()
{
    QSet<QString> expected;
    for (const Expected &icon : icons)
        expected.insert(prefix + QLatin1String(icon.name));
    QSet<QString> found;
    QDirIterator it(QStringLiteral(":/images"), QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        found.insert(it.next());
    QCOMPARE(found, expected);
}

ZU_TEST_MAIN(tst_Icons)
#include "tst_icons.moc"
