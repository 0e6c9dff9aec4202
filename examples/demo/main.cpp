// The demo of zucore's models: a table loaded from JSON whose edits can be
// submitted or reverted, shown sorted by two columns and searched through a
// sort/filter proxy, then saved, reverted and opened again as a JSON document
// with a lock file; a tree with staged edits, searched through the tree proxy,
// the distinct values of a column and a read-only view. Headless it prints each
// step; with --gui it opens a table view with a search field, Submit and Revert
// in its menu and tool bar, and a File menu, and a window for the tree. Its log
// goes to demo.log, a new file each day, the last seven kept. The headless run
// ends with a WAV file written and read back, and the table's JSON scrambled
// and restored.
#include "CustomerDocument.h"
#include "CustomerModel.h"
#include "DemoWindow.h"
#include "TaskTreeModel.h"
#include "TreeWindow.h"

#include <zucore/Logger.h>
#include <zucore/LoggerRollingFileAppender.h>
#include <zucore/SimpleCrypt.h>
#include <zucore/Wav.h>
#include <zucore/ZuSortFilterProxyModel.h>

#include <QApplication>
#include <QFileInfo>
#include <QImage>
#include <QTemporaryDir>
#include <QTextStream>
#include <QtEndian>

#include <cstring>

namespace {

const char *const customers = R"([
  {"name": "Ada",   "city": "London", "balance": 120.5},
  {"name": "Linus", "city": "Turku",  "balance": 0},
  {"name": "Grace", "city": "Arlington", "balance": 42},
  {"name": "Alan",  "city": "London", "balance": 7},
  {"name": "Barbara", "city": "arlington", "balance": 64}
])";

QTextStream &out()
{
    static QTextStream stream(stdout);
    return stream;
}

void printCell(const CustomerModel &model, int row, int column)
{
    const QModelIndex index = model.index(row, column);
    out() << "  cell (" << row << ", " << column
          << ") = " << model.data(index, Qt::EditRole).toString() << ", previous "
          << model.data(index, ZuAbstractTableModel::PreviousValueRole).toString()
          << ", isDirty(cell) " << (model.isDirty(index) ? "true" : "false") << ", isDirty() "
          << (model.isDirty() ? "true" : "false") << Qt::endl;
}

void printRows(const QAbstractItemModel &proxy)
{
    for (int row = 0; row < proxy.rowCount(); ++row) {
        QStringList cells;
        for (int column = 0; column < proxy.columnCount(); ++column)
            cells << proxy.index(row, column).data().toString();
        out() << "  " << cells.join(QStringLiteral(" | ")) << Qt::endl;
    }
}

const char *yesNo(bool value)
{
    return value ? "yes" : "no";
}

// Saves the table as a document, edits and reverts it, starts a new one and opens the file again.
// Nothing here raises a box: the document is never modified when it would ask.
bool runDocument(CustomerModel &model, CustomerDocument &document)
{
    QTemporaryDir folder;
    const QString fileName = folder.filePath(QStringLiteral("customers.json"));
    const int city = CustomerModel::City;
    out() << "save the table as a document:" << Qt::endl;
    const bool saved = document.saveFile(fileName);
    out() << "  saved " << yesNo(saved) << ", " << QFileInfo(fileName).size()
          << " bytes; lock file " << QFileInfo(document.lockFileName()).fileName() << " held "
          << yesNo(QFileInfo::exists(document.lockFileName())) << Qt::endl;
    model.setData(model.index(0, city), QStringLiteral("Rome"));
    out() << "  edit the city of row 0 to Rome: document modified " << yesNo(document.isModified())
          << Qt::endl;
    document.revert();
    out() << "  revert the document: city " << model.index(0, city).data().toString()
          << ", modified " << yesNo(document.isModified()) << Qt::endl;
    document.newFile();
    out() << "  new document: " << model.rowCount() << " rows, lock file held "
          << yesNo(QFileInfo::exists(fileName.chopped(4) + QStringLiteral("lock"))) << Qt::endl;
    const int opened = document.openFile(fileName);
    out() << "  open it again: " << model.rowCount() << " rows, city of row 0 "
          << model.index(0, city).data().toString() << Qt::endl;
    document.closeFile();
    return saved && opened == 1 && model.rowCount() == 5;
}

// The first record after midnight renames demo.log to demo.log.yyyy-MM-dd, the day it covers.
void startLogging()
{
    auto *file = new LoggerRollingFileAppender(QStringLiteral("demo.log"));
    file->setFormat(
        QStringLiteral("%{time}{yyyy-MM-ddTHH:mm:ss.zzz} [%{type:-7}] <%{function}> %{message}\n"));
    file->setDatePattern(LoggerRollingFileAppender::DailyRollover);
    file->setLogFilesLimit(7); // today's file and six dated ones
    cuteLoggerInstance()->registerAppender(file);
    LOG_INFO().noquote() << "demo started; log file"
                         << QFileInfo(file->fileName()).absoluteFilePath();
}

// A tenth of a second of 8 kHz mono silence written by Wav, read back and summed up; then the
// table's JSON scrambled and restored by SimpleCrypt.
bool showCodecs(const QString &json)
{
    Wav::wavheader_t header {};
    const auto tag = [](uchar *field, const char *text) { std::memcpy(field, text, 4); };
    tag(header.chunkId, "RIFF");
    tag(header.format, "WAVE");
    tag(header.formatId, "fmt ");
    tag(header.dataId, "data");
    qToLittleEndian<quint32>(36 + 1600, header.chunkSize);
    qToLittleEndian<quint32>(16, header.formatSize);
    qToLittleEndian<quint16>(1, header.audioFormat);
    qToLittleEndian<quint16>(1, header.numChannels);
    qToLittleEndian<quint32>(8000, header.sampleRate);
    qToLittleEndian<quint32>(16000, header.byteRate);
    qToLittleEndian<quint16>(2, header.blockAlign);
    qToLittleEndian<quint16>(16, header.bitsPerSample);
    qToLittleEndian<quint32>(1600, header.dataSize);
    Wav written;
    written.setWavHeader(header);
    written.setAudioData(QByteArray(1600, '\0'));
    Wav read;
    if (!written.saveFile(QStringLiteral("demo.wav")) || !read.readFile(QStringLiteral("demo.wav")))
        return false;
    out() << "demo.wav, as Wav::formatString shows it:" << Qt::endl;
    out() << "  " << read.formatString().replace(QLatin1String("<br>"), QLatin1String("\n  "))
          << Qt::endl;

    SimpleCrypt crypt(0x1F2E3D4C5B6A7988ull);
    const QString scrambled = crypt.encryptToString(json);
    const QString restored = crypt.decryptToString(scrambled);
    out() << "the JSON scrambled by SimpleCrypt (obfuscation, not encryption): " << scrambled
          << Qt::endl;
    out() << "  and restored: " << (restored == json ? "equal" : "different") << Qt::endl;
    return restored == json;
}

int runHeadless(CustomerModel &model, CustomerDocument &document)
{
    QObject::connect(&model, &CustomerModel::dataSubmitted, [](bool wasDirty) {
        out() << "  dataSubmitted(wasDirty = " << (wasDirty ? "true" : "false") << ")" << Qt::endl;
    });
    const int city = CustomerModel::City;

    out() << "load " << model.rowCount() << " rows from JSON:" << Qt::endl;
    for (const QStringList &row : model.toStringsList())
        out() << "  " << row.join(QStringLiteral(" | ")) << Qt::endl;

    out() << "edit the city of row 0 to Paris:" << Qt::endl;
    model.setData(model.index(0, city), QStringLiteral("Paris"));
    printCell(model, 0, city);

    out() << "revert:" << Qt::endl;
    model.revert();
    printCell(model, 0, city);

    out() << "edit again to Oslo, then submit:" << Qt::endl;
    model.setData(model.index(0, city), QStringLiteral("Oslo"));
    printCell(model, 0, city);
    model.submit();
    printCell(model, 0, city);

    out() << "a negative balance is kept but flagged invalid, then reverted:" << Qt::endl;
    model.setData(model.index(1, CustomerModel::Balance), -5);
    const QModelIndex balance = model.index(1, CustomerModel::Balance);
    out() << "  row 1 valid: "
          << (model.data(balance, ZuAbstractTableModel::RowValidRole).toBool() ? "true" : "false")
          << " (" << model.itemInvalidReason(balance) << ")" << Qt::endl;
    model.revert();

    out() << "sorted by city, then name (natural order, case aside):" << Qt::endl;
    ZuSortFilterProxyModel proxy;
    proxy.setSourceModel(&model);
    proxy.setSortColumns({ CustomerModel::City, CustomerModel::Name });
    proxy.sort(CustomerModel::City);
    printRows(proxy);
    out() << "search \"on\" in any column:" << Qt::endl;
    proxy.setSearchString(QStringLiteral("on"));
    printRows(proxy);

    out() << "the table as JSON: " << model.toJsonString() << Qt::endl;
    // Loading the library registered its icons: no Q_INIT_RESOURCE here.
    const QImage icon(QStringLiteral(":/images/submit"));
    out() << "the library's icon :/images/submit is " << icon.width() << " x " << icon.height()
          << Qt::endl;
    if (!runDocument(model, document) || !showCodecs(model.toJsonString()))
        return 1;
    return model.data(model.index(0, city)).toString() == QLatin1String("Oslo") ? 0 : 1;
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    startLogging();
    CustomerModel model;
    if (!model.insertFromJsonString(QString::fromUtf8(customers)))
        return 1;
    CustomerDocument document(&model);
    if (!app.arguments().contains(QStringLiteral("--gui")))
        return runHeadless(model, document) | runTreeHeadless(out(), model);

    DemoWindow window(&model, &document);
    window.show();
    TaskTreeModel tasks;
    tasks.refresh();
    TreeWindow treeWindow(&tasks, &model);
    treeWindow.show();
    return app.exec();
}
