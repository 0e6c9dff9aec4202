// Makes zucore's icon set: the PNG images and icons.qrc in the resource folder, and a contact
// sheet of them all. Images come from the public-domain Tango icon theme where one fits the
// role (its hand-tuned PNG where the theme has the size, else its SVG); the rest are drawn with
// QPainter in Tango's palette and manner: a dark outline, a lighter fill, soft gradients.
//
//   make-icons <resource folder> <contact sheet.png> [Tango theme folder]
//
// Run it under QT_QPA_PLATFORM=offscreen; the same inputs give the same PNG bytes.
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QImageWriter>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QSvgRenderer>
#include <QTextStream>
#include <QtMath>

#include <cstdio>
#include <functional>
#include <vector>

namespace {

QString tangoDir = QStringLiteral("/usr/share/icons/Tango");

// The Tango palette, light to dark.
const QColor butter1(0xfc, 0xe9, 0x4f), butter2(0xed, 0xd4, 0x00), butter3(0xc4, 0xa0, 0x00);
const QColor orange1(0xfc, 0xaf, 0x3e), orange2(0xf5, 0x79, 0x00), orange3(0xce, 0x5c, 0x00);
const QColor choc1(0xe9, 0xb9, 0x6e);
const QColor green1(0x8a, 0xe2, 0x34), green2(0x73, 0xd2, 0x16), green3(0x4e, 0x9a, 0x06);
const QColor blue1(0x72, 0x9f, 0xcf), blue2(0x34, 0x65, 0xa4), blue3(0x20, 0x4a, 0x87);
const QColor red1(0xef, 0x29, 0x29), red2(0xcc, 0x00, 0x00), red3(0xa4, 0x00, 0x00);
const QColor alu1(0xee, 0xee, 0xec), alu2(0xd3, 0xd7, 0xcf), alu3(0xba, 0xbd, 0xb6),
    alu4(0x88, 0x8a, 0x85), alu5(0x55, 0x57, 0x53), alu6(0x2e, 0x34, 0x36);

QImage blank(QSize size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

QImage svg(const QString &name, int size)
{
    QSvgRenderer renderer(tangoDir + QStringLiteral("/scalable/") + name + QStringLiteral(".svg"));
    if (!renderer.isValid())
        qFatal("no Tango image %s", qPrintable(name));
    QImage image = blank(QSize(size, size));
    QPainter painter(&image);
    renderer.render(&painter);
    return image;
}

// A Tango image at a square size: the theme's own pixels where it has that size.
QImage tango(const QString &name, int size)
{
    const QImage png(QStringLiteral("%1/%2x%2/%3.png").arg(tangoDir).arg(size).arg(name));
    if (png.size() == QSize(size, size))
        return png.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    return svg(name, size);
}

QLinearGradient vertical(qreal top, qreal bottom, const QColor &light, const QColor &dark)
{
    QLinearGradient gradient(0, top, 0, bottom);
    gradient.setColorAt(0, light);
    gradient.setColorAt(1, dark);
    return gradient;
}

// Draws @p path twice, a wide dark stroke under a narrower light one: Tango's outlined line.
void outlinedStroke(QPainter &p, const QPainterPath &path, qreal width, const QColor &dark,
                    const QBrush &light)
{
    p.strokePath(path, QPen(dark, width + 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.strokePath(path, QPen(light, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
}

// 3 x 5 pixel letters for the labels of the file-type badges: legible where no font is.
void pixelText(QPainter &p, int x, int y, const QString &text, const QColor &color)
{
    static const QHash<QChar, QStringList> glyphs = {
        { QLatin1Char('C'), { ".##", "#..", "#..", "#..", ".##" } },
        { QLatin1Char('S'), { ".##", "#..", ".#.", "..#", "##." } },
        { QLatin1Char('V'), { "#.#", "#.#", "#.#", ".#.", ".#." } },
        { QLatin1Char('P'), { "##.", "#.#", "##.", "#..", "#.." } },
        { QLatin1Char('D'), { "##.", "#.#", "#.#", "#.#", "##." } },
        { QLatin1Char('F'), { "###", "#..", "##.", "#..", "#.." } },
    };
    for (const QChar c : text) {
        const QStringList rows = glyphs.value(c);
        for (int row = 0; row < rows.size(); ++row)
            for (int column = 0; column < 3; ++column)
                if (rows[row][column] == QLatin1Char('#'))
                    p.fillRect(x + column, y + row, 1, 1, color);
        x += 4;
    }
}

// A page with a coloured band that names its file type.
QImage fileTypeBadge(const QString &label, const QColor &light, const QColor &dark)
{
    QImage image = tango(QStringLiteral("mimetypes/text-x-generic"), 16);
    QPainter p(&image);
    p.fillRect(1, 8, 14, 7, dark);
    p.fillRect(2, 9, 12, 5, light);
    pixelText(p, 2, 9, label, Qt::white);
    return image;
}

// A pencil from the bottom left (its point) to the top right, in a 16-unit box placed at @p box.
void pencil(QPainter &p, const QRectF &box)
{
    p.save();
    p.setRenderHint(QPainter::Antialiasing);
    p.translate(box.center());
    p.scale(box.width() / 16, box.height() / 16);
    p.rotate(-45);
    QPainterPath wood;
    wood.moveTo(-7.5, 0);
    wood.lineTo(-3.5, -2.2);
    wood.lineTo(-3.5, 2.2);
    wood.closeSubpath();
    p.setPen(QPen(orange3, 0.8));
    p.setBrush(choc1);
    p.drawPath(wood);
    QPainterPath lead;
    lead.moveTo(-7.8, 0);
    lead.lineTo(-6, -1);
    lead.lineTo(-6, 1);
    lead.closeSubpath();
    p.fillPath(lead, alu6);
    QLinearGradient body(0, -2.2, 0, 2.2);
    body.setColorAt(0, orange1);
    body.setColorAt(1, orange2);
    p.setBrush(body);
    p.drawRect(QRectF(-3.5, -2.2, 8, 4.4));
    p.setPen(QPen(alu5, 0.8));
    p.setBrush(alu3);
    p.drawRect(QRectF(4.5, -2.2, 1.6, 4.4));
    p.setPen(QPen(red3, 0.8));
    p.setBrush(red1);
    p.drawRect(QRectF(6.1, -2.2, 1.6, 4.4));
    p.restore();
}

// A small table: grey rules, a header row, and one row or column picked out in selection blue.
QImage table(int selectedRow, int selectedColumn)
{
    QImage image = blank(QSize(16, 16));
    QPainter p(&image);
    const int left = 1, top = 2, columns = 3, rows = 4, cellWidth = 4, cellHeight = 3;
    const QRect frame(left, top, columns * cellWidth + 1, rows * cellHeight + 1);
    p.fillRect(frame, Qt::white);
    p.fillRect(left, top, frame.width(), cellHeight + 1, alu2);
    if (selectedRow >= 0)
        p.fillRect(left, top + selectedRow * cellHeight, frame.width(), cellHeight + 1, blue1);
    if (selectedColumn >= 0)
        p.fillRect(left + selectedColumn * cellWidth, top, cellWidth + 1, frame.height(), blue1);
    p.setPen(alu3);
    for (int column = 1; column < columns; ++column)
        p.drawLine(left + column * cellWidth, top, left + column * cellWidth, frame.bottom());
    for (int row = 1; row < rows; ++row)
        p.drawLine(left, top + row * cellHeight, frame.right(), top + row * cellHeight);
    p.setPen(alu4);
    p.setBrush(Qt::NoBrush);
    p.drawRect(frame.adjusted(0, 0, -1, -1));
    if (selectedRow >= 0) {
        p.setPen(blue2);
        p.drawRect(left, top + selectedRow * cellHeight, frame.width() - 1, cellHeight);
    }
    if (selectedColumn >= 0) {
        p.setPen(blue2);
        p.drawRect(left + selectedColumn * cellWidth, top, cellWidth, frame.height() - 1);
    }
    return image;
}

// An application window: a blue title bar over a white client area.
void window(QPainter &p, const QRect &frame)
{
    p.fillRect(frame, Qt::white);
    p.fillRect(frame.x(), frame.y(), frame.width(), 4,
               vertical(frame.y(), frame.y() + 4, blue1, blue2));
    p.setPen(alu5);
    p.setBrush(Qt::NoBrush);
    p.drawRect(frame.adjusted(0, 0, -1, -1));
    p.setPen(blue3);
    p.drawLine(frame.x(), frame.y() + 4, frame.right(), frame.y() + 4);
}

// A point on a circle at @p degrees, counter-clockwise from three o'clock as QPainterPath has it.
QPointF onCircle(const QPointF &centre, qreal radius, qreal degrees)
{
    const qreal a = qDegreesToRadians(degrees);
    return centre + QPointF(radius * qCos(a), -radius * qSin(a));
}

// A circular arrow: an outlined arc with a head at its end, turning counter-clockwise.
void arcArrow(QPainter &p, const QPointF &centre, qreal radius, qreal start, qreal span,
              qreal width, const QColor &light, const QColor &dark)
{
    p.save();
    p.setRenderHint(QPainter::Antialiasing);
    QPainterPath arc;
    arc.arcMoveTo(QRectF(centre.x() - radius, centre.y() - radius, 2 * radius, 2 * radius), start);
    arc.arcTo(QRectF(centre.x() - radius, centre.y() - radius, 2 * radius, 2 * radius), start,
              span - 25);
    outlinedStroke(p, arc, width, dark, light);
    // The head: its base across the arc, its point further along the circle.
    const qreal baseAngle = start + span - 32;
    const QPointF inner = onCircle(centre, radius - width * 1.3, baseAngle);
    const QPointF outer = onCircle(centre, radius + width * 1.3, baseAngle);
    const QPointF tip = onCircle(centre, radius, start + span);
    QPainterPath head;
    head.moveTo(inner);
    head.lineTo(outer);
    head.lineTo(tip);
    head.closeSubpath();
    p.setPen(QPen(dark, 1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(light);
    p.drawPath(head);
    p.restore();
}

QImage arrowRefresh()
{
    QImage image = blank(QSize(16, 16));
    QPainter p(&image);
    arcArrow(p, QPointF(8, 8), 5, 80, 290, 2, green1, green3);
    return image;
}

QImage arrowCircleDouble()
{
    QImage image = blank(QSize(16, 16));
    QPainter p(&image);
    arcArrow(p, QPointF(8, 8), 5, 135, 150, 2, blue1, blue3);
    arcArrow(p, QPointF(8, 8), 5, 315, 150, 2, blue1, blue3);
    return image;
}

QImage arrowCurve180Left()
{
    QImage image = blank(QSize(16, 16));
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    QPainterPath path;
    path.moveTo(12.5, 14);
    path.lineTo(12.5, 7);
    path.arcTo(QRectF(4, 2.5, 8.5, 9), 0, 180);
    path.lineTo(4, 9);
    outlinedStroke(p, path, 2, blue3, blue1);
    QPainterPath head;
    head.moveTo(0.8, 9);
    head.lineTo(7.2, 9);
    head.lineTo(4, 14.5);
    head.closeSubpath();
    p.setPen(QPen(blue3, 1, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    p.setBrush(blue1);
    p.drawPath(head);
    return image;
}

QImage checkMark()
{
    QImage image = blank(QSize(16, 16));
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    QPainterPath tick;
    tick.moveTo(2.5, 8.5);
    tick.lineTo(6.2, 12.2);
    tick.lineTo(13.5, 3.5);
    outlinedStroke(p, tick, 2.6, green3, vertical(3, 13, green1, green2));
    return image;
}

QImage funnel()
{
    QImage image = blank(QSize(16, 16));
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    QPainterPath path;
    path.moveTo(1.5, 2.5);
    path.lineTo(14.5, 2.5);
    path.lineTo(9.5, 8.5);
    path.lineTo(9.5, 14.5);
    path.lineTo(6.5, 12.5);
    path.lineTo(6.5, 8.5);
    path.closeSubpath();
    p.setPen(QPen(blue3, 1, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    QLinearGradient fill(1, 0, 15, 0);
    fill.setColorAt(0, blue1);
    fill.setColorAt(1, blue2);
    p.setBrush(fill);
    p.drawPath(path);
    p.setPen(QPen(QColor(255, 255, 255, 140), 1));
    p.drawLine(QPointF(3.5, 3.5), QPointF(12.5, 3.5));
    return image;
}

QImage speechBubble()
{
    QImage image = blank(QSize(16, 16));
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    QPainterPath bubble;
    bubble.addRoundedRect(QRectF(1.5, 2.5, 13, 9), 3, 3);
    QPainterPath tail;
    tail.moveTo(4, 10);
    tail.lineTo(3.5, 14.5);
    tail.lineTo(8.5, 10);
    tail.closeSubpath();
    p.setPen(QPen(butter3, 1));
    p.setBrush(vertical(2, 14, butter1, butter2));
    p.drawPath(bubble.united(tail).simplified());
    p.setPen(QPen(butter3, 1));
    p.drawLine(QPointF(4.5, 5.5), QPointF(11.5, 5.5));
    p.drawLine(QPointF(4.5, 8), QPointF(9.5, 8));
    return image;
}

// A chain of two links, for a hyperlink.
QImage chain()
{
    QImage image = blank(QSize(16, 16));
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.translate(8, 8);
    p.rotate(-45);
    for (const qreal x : { -8.0, -1.0 }) {
        QPainterPath link;
        link.addRoundedRect(QRectF(x, -2.6, 9, 5.2), 2.6, 2.6);
        outlinedStroke(p, link, 1.3, alu5, vertical(-2.6, 2.6, alu2, alu3));
    }
    return image;
}

// The round button that clears a search field, or closes a tab: a white cross on a disc.
QImage crossDisc(int size, const QColor &disc, const QColor &rim)
{
    QImage image = blank(QSize(size, size));
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const qreal c = size / 2.0, r = size * 0.38, arm = size * 0.15;
    p.setPen(QPen(rim, 1));
    p.setBrush(disc);
    p.drawEllipse(QPointF(c, c), r, r);
    p.setPen(QPen(Qt::white, size / 10.0, Qt::SolidLine, Qt::RoundCap));
    p.drawLine(QPointF(c - arm, c - arm), QPointF(c + arm, c + arm));
    p.drawLine(QPointF(c + arm, c - arm), QPointF(c - arm, c + arm));
    return image;
}

// The frame of a search field: white, rounded, with a faint shadow under its top edge.
QImage searchFieldBorder()
{
    QImage image = blank(QSize(200, 24));
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(alu4, 1));
    p.setBrush(Qt::white);
    p.drawRoundedRect(QRectF(0.5, 0.5, 199, 23), 5, 5);
    p.setPen(QPen(alu2, 1));
    p.drawLine(QPointF(4, 1.5), QPointF(196, 1.5));
    return image;
}

QImage zuc()
{
    QImage image = blank(QSize(16, 16));
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(blue3, 1));
    p.setBrush(vertical(0, 16, blue1, blue2));
    p.drawRoundedRect(QRectF(0.5, 0.5, 15, 15), 3, 3);
    QPainterPath z;
    z.moveTo(4.5, 4.5);
    z.lineTo(11.5, 4.5);
    z.lineTo(4.5, 11.5);
    z.lineTo(11.5, 11.5);
    p.strokePath(z, QPen(Qt::white, 2, Qt::SolidLine, Qt::SquareCap, Qt::MiterJoin));
    return image;
}

QImage burger(bool withGear)
{
    QImage image = blank(QSize(48, 48));
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(alu6, 1));
    const qreal width = withGear ? 34 : 38;
    for (const qreal y : { 10.5, 21.5, 32.5 }) {
        p.setBrush(vertical(y, y + 6, alu4, alu5));
        p.drawRoundedRect(QRectF(withGear ? 3.5 : 5.5, y, width, 6), 3, 3);
    }
    if (withGear)
        p.drawImage(QRect(22, 22, 26, 26), svg(QStringLiteral("emblems/emblem-system"), 26));
    return image;
}

// A big page marked with a red cross, to be deleted.
QImage markDelete()
{
    QImage image = svg(QStringLiteral("mimetypes/text-x-generic"), 48);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    QPainterPath cross;
    cross.moveTo(20, 20);
    cross.lineTo(42, 42);
    cross.moveTo(42, 20);
    cross.lineTo(20, 42);
    outlinedStroke(p, cross, 6, red3, vertical(20, 42, red1, red2));
    return image;
}

// The same page, brought back by the undo arrow.
QImage undelete()
{
    QImage image = svg(QStringLiteral("mimetypes/text-x-generic"), 48);
    QPainter p(&image);
    p.drawImage(QRect(16, 16, 32, 32), svg(QStringLiteral("actions/edit-undo"), 32));
    return image;
}

// A page with an arrow going out of it (export) or into it (import).
QImage pageArrow(bool out)
{
    QImage image = blank(QSize(16, 16));
    QPainter p(&image);
    p.drawImage(out ? -2 : 3, 0, tango(QStringLiteral("mimetypes/text-x-generic"), 16));
    p.drawImage(out ? 6 : 0, 5, svg(QStringLiteral("actions/go-next"), 10));
    return image;
}

QImage editRecord()
{
    QImage image = table(2, -1);
    QPainter p(&image);
    pencil(p, QRectF(5, 0, 11, 11));
    return image;
}

QImage applicationEdit()
{
    QImage image = blank(QSize(16, 16));
    QPainter p(&image);
    window(p, QRect(0, 1, 14, 12));
    pencil(p, QRectF(5, 4, 11, 11));
    return image;
}

QImage layoutsSplit()
{
    QImage image = blank(QSize(16, 16));
    QPainter p(&image);
    window(p, QRect(0, 1, 16, 14));
    p.fillRect(2, 6, 5, 7, alu1);
    p.fillRect(9, 6, 5, 7, alu1);
    p.setPen(alu4);
    p.drawLine(8, 5, 8, 13);
    return image;
}

// A page cut in two by a dashed line, for a page break.
QImage documentBreak()
{
    const QImage page = tango(QStringLiteral("mimetypes/text-x-generic"), 16);
    QImage image = blank(QSize(16, 16));
    QPainter p(&image);
    p.drawImage(QPoint(0, 0), page, QRect(0, 0, 16, 7));
    p.drawImage(QPoint(0, 10), page, QRect(0, 10, 16, 6));
    p.setPen(QPen(red2, 1, Qt::DashLine));
    p.drawLine(0, 8, 15, 8);
    return image;
}

// An envelope carrying a PDF file: the envelope above, the file's red badge across its foot.
QImage pdfEmail()
{
    QImage image = blank(QSize(16, 16));
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(alu5, 1));
    p.setBrush(vertical(1, 12, Qt::white, alu2));
    p.drawRect(QRectF(0.5, 1.5, 15, 10));
    QPainterPath flap;
    flap.moveTo(0.5, 1.5);
    flap.lineTo(8, 7.5);
    flap.lineTo(15.5, 1.5);
    p.setBrush(Qt::NoBrush);
    p.drawPath(flap);
    p.setRenderHint(QPainter::Antialiasing, false);
    p.fillRect(1, 9, 14, 7, red2);
    p.fillRect(2, 10, 12, 5, red1);
    pixelText(p, 2, 10, QStringLiteral("PDF"), Qt::white);
    return image;
}

// The media player's stop: a dark square.
QImage stopSquare()
{
    QImage image = blank(QSize(14, 14));
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(alu6, 1));
    p.setBrush(vertical(2, 12, alu4, alu5));
    p.drawRoundedRect(QRectF(2.5, 2.5, 9, 9), 1, 1);
    p.setPen(QPen(QColor(255, 255, 255, 90), 1));
    p.drawLine(QPointF(3.5, 3.5), QPointF(10.5, 3.5));
    return image;
}

// A table with a new row: the green plus of an addition over its foot.
QImage newRecord()
{
    QImage image = table(2, -1);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    QPainterPath plus;
    plus.moveTo(11.5, 7.5);
    plus.lineTo(11.5, 13.5);
    plus.moveTo(8.5, 10.5);
    plus.lineTo(14.5, 10.5);
    p.strokePath(plus, QPen(green3, 4, Qt::SolidLine, Qt::SquareCap));
    p.strokePath(plus, QPen(green1, 2, Qt::SolidLine, Qt::SquareCap));
    return image;
}

struct Icon
{
    const char *name; // resource name; names with a '/' keep their folder and file name
    QSize size;
    std::function<QImage()> make;
};

QImage t16(const char *name)
{
    return tango(QLatin1String(name), 16);
}

std::vector<Icon> icons()
{
    const QSize s16(16, 16), s18(18, 18), s22(22, 22), s48(48, 48);
    // In the order of the resource collection.
    return {
        { "add", s22, [] { return tango(QStringLiteral("actions/list-add"), 22); } },
        { "csv", s16, [] { return fileTypeBadge(QStringLiteral("CSV"), green2, green3); } },
        { "zuc", s16, zuc },
        { "new", s16, [] { return t16("actions/document-new"); } },
        { "pdf", s16, [] { return fileTypeBadge(QStringLiteral("PDF"), red1, red2); } },
        { "copy", s16, [] { return t16("actions/edit-copy"); } },
        { "edit", s16, [] { return t16("apps/accessories-text-editor"); } },
        { "link", s16, chain },
        { "open", s16, [] { return t16("actions/document-open"); } },
        { "play", s16, [] { return t16("actions/media-playback-start"); } },
        { "save", s16, [] { return t16("actions/document-save"); } },
        { "stop", QSize(14, 14), stopSquare },
        { "view", s16, [] { return t16("actions/document-print-preview"); } },
        { "arrow", s16, [] { return t16("actions/go-jump"); } },
        { "clear", s16, [] { return t16("actions/edit-clear"); } },
        { "email", s16, [] { return t16("apps/internet-mail"); } },
        { "mark-delete", s48, markDelete },
        { "closetab", s16, [] { return crossDisc(16, alu4, alu5); } },
        { "esf-border", QSize(200, 24), searchFieldBorder },
        { "esf-clear-active", s18, [] { return crossDisc(18, alu5, alu6); } },
        { "snapshot", s16, [] { return t16("devices/camera-photo"); } },
        { "esf-search", s18, [] { return tango(QStringLiteral("actions/system-search"), 18); } },
        { "copyclipboard", s16, [] { return t16("actions/edit-paste"); } },
        { "undelete", s48, undelete },
        { "selectcolumn", s16, [] { return table(-1, 1); } },
        { "delete", s16, [] { return t16("actions/edit-delete"); } },
        { "arrow-left", s16, [] { return t16("actions/go-previous"); } },
        { "export", s16, [] { return pageArrow(true); } },
        { "filter", s16, funnel },
        { "download", s16, [] { return t16("actions/go-bottom"); } },
        { "import", s16, [] { return pageArrow(false); } },
        { "esf-clear-hover", s18, [] { return crossDisc(18, alu4, alu5); } },
        { "remove", s22, [] { return tango(QStringLiteral("actions/list-remove"), 22); } },
        { "revert", s16, [] { return t16("actions/edit-undo"); } },
        { "submit", s16, checkMark },
        { "update", s16, [] { return t16("apps/system-software-update"); } },
        { "upload", s16, [] { return t16("actions/go-top"); } },
        { "refresh", s16, [] { return t16("actions/view-refresh"); } },
        { "esf-clear", s18, [] { return crossDisc(18, alu3, alu4); } },
        { "pdf-email", s16, pdfEmail },
        { "arrow-refresh", s16, arrowRefresh },
        { "comment", s16, speechBubble },
        { "connect", s16, [] { return t16("status/network-idle"); } },
        { "disconnect", s16, [] { return t16("status/network-offline"); } },
        { "arrow-right", s16, [] { return t16("actions/go-next"); } },
        { "calculator", s16, [] { return t16("apps/accessories-calculator"); } },
        { "readonly", s16, [] { return t16("emblems/emblem-readonly"); } },
        { "editrecord", s16, editRecord },
        { "burger-menu", s48, [] { return burger(false); } },
        { "settings", s16, [] { return t16("categories/preferences-system"); } },
        { "burger-settings", s48, [] { return burger(true); } },
        { "newrecord", s16, newRecord },
        { "images/arrow-circle-double-135.png", s16, arrowCircleDouble },
        { "images/arrow-curve-180-left.png", s16, arrowCurve180Left },
        { "images/application_edit.png", s16, applicationEdit },
        { "images/email_go.png", s16, [] { return t16("actions/mail-forward"); } },
        { "images/document-break.png", s16, documentBreak },
        { "images/document-template.png", s16,
          [] { return t16("mimetypes/x-office-document-template"); } },
        { "images/layouts_split.png", s16, layoutsSplit },
    };
}

// The one image that the resource compiler stores compressed. It is written without PNG's own
// deflate so that compressing it pays.
const char *const compressedName = "esf-clear";

QString fileName(const Icon &icon)
{
    const QString name = QLatin1String(icon.name);
    return name.contains(QLatin1Char('/')) ? name : name + QStringLiteral(".png");
}

bool writeQrc(const QString &path, const std::vector<Icon> &all)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    QTextStream out(&file);
    out << "<!DOCTYPE RCC>\n<RCC version=\"1.0\">\n<qresource prefix=\"/images\">\n";
    for (const Icon &icon : all) {
        const QString name = QLatin1String(icon.name);
        if (name.contains(QLatin1Char('/')))
            out << "    <file>" << name << "</file>\n";
        else if (name == QLatin1String(compressedName))
            out << "    <file alias=\"" << name
                << "\" compression-algorithm=\"zlib\" compress=\"9\" threshold=\"0\">"
                << fileName(icon) << "</file>\n";
        else
            out << "    <file alias=\"" << name << "\">" << fileName(icon) << "</file>\n";
    }
    out << "</qresource>\n</RCC>\n";
    return true;
}

// Every image at eight times its size (whole pixels, to judge them) and at its own size.
QImage contactSheet(const std::vector<Icon> &all, const QString &folder)
{
    const int columns = 6, cellWidth = 200, cellHeight = 170;
    const int rows = int(all.size() + columns - 1) / columns;
    QImage sheet(columns * cellWidth, rows * cellHeight, QImage::Format_ARGB32_Premultiplied);
    sheet.fill(Qt::white);
    QPainter p(&sheet);
    QFont font = p.font();
    font.setPixelSize(12);
    p.setFont(font);
    for (size_t i = 0; i < all.size(); ++i) {
        const QImage image(folder + QLatin1Char('/') + fileName(all[i]));
        const int x = int(i % columns) * cellWidth, y = int(i / columns) * cellHeight;
        p.setPen(alu2);
        p.drawRect(x, y, cellWidth - 1, cellHeight - 1);
        const int zoom = qMax(1, qMin(8, qMin(180 / image.width(), 120 / image.height())));
        const QSize zoomed = image.size() * zoom;
        p.fillRect(QRect(QPoint(x + 6, y + 6), zoomed), alu1);
        p.drawImage(QRect(QPoint(x + 6, y + 6), zoomed), image);
        if (zoom > 1)
            p.drawImage(x + cellWidth - 6 - image.width(), y + cellHeight - 40 - image.height(),
                        image);
        p.setPen(alu6);
        p.drawText(QRect(x + 4, y + cellHeight - 34, cellWidth - 8, 16), Qt::AlignLeft,
                   QString::fromLatin1(all[i].name).section(QLatin1Char('/'), -1));
        p.setPen(alu4);
        p.drawText(QRect(x + 4, y + cellHeight - 18, cellWidth - 8, 16), Qt::AlignLeft,
                   QStringLiteral("%1 x %2").arg(image.width()).arg(image.height()));
    }
    return sheet;
}

} // namespace

int main(int argc, char *argv[])
{
    QGuiApplication app(argc, argv);
    const QStringList args = app.arguments();
    if (args.size() < 3) {
        std::fprintf(stderr,
                     "usage: make-icons <resource folder> <contact sheet.png> [Tango folder]\n");
        return 2;
    }
    const QString folder = args.at(1);
    if (args.size() > 3)
        tangoDir = args.at(3);

    const std::vector<Icon> all = icons();
    for (const Icon &icon : all) {
        const QImage image = icon.make().convertToFormat(QImage::Format_ARGB32);
        if (image.size() != icon.size)
            qFatal("%s came out %dx%d", icon.name, image.width(), image.height());
        const QString path = folder + QLatin1Char('/') + fileName(icon);
        QDir().mkpath(QFileInfo(path).absolutePath());
        QImageWriter writer(path, "png");
        if (qstrcmp(icon.name, compressedName) == 0)
            writer.setQuality(100); // no deflate inside the PNG
        if (!writer.write(image))
            qFatal("can't write %s: %s", qPrintable(path), qPrintable(writer.errorString()));
    }
    if (!writeQrc(folder + QStringLiteral("/icons.qrc"), all))
        qFatal("can't write the .qrc");
    if (!contactSheet(all, folder).save(args.at(2)))
        qFatal("can't write %s", qPrintable(args.at(2)));
    std::printf("%d images, icons.qrc and %s written\n", int(all.size()), qPrintable(args.at(2)));
    return 0;
}
