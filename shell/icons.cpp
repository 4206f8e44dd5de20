#include "shell/icons.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

namespace shellicons {
namespace {

const QColor kInk(0x2b, 0x4a, 0x6f);
const QColor kPaper(0xfb, 0xf8, 0xef);
const QColor kRed(0xc0, 0x39, 0x2b);
const QColor kGreen(0x2e, 0x8b, 0x57);
const QColor kGold(0xd4, 0xa0, 0x17);

QPen pen(const QColor& c, qreal w = 3) {
    return QPen(c, w, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
}

// A closed book seen from the front, in a 64 x 64 box.
void book(QPainter& p, const QRectF& r, const QColor& cover) {
    p.setPen(pen(kInk, 2.5));
    p.setBrush(cover);
    p.drawRoundedRect(r, 3, 3);
    p.setBrush(kPaper);
    p.drawRect(QRectF(r.left() + 4, r.bottom() - 7, r.width() - 8, 5));
    p.setPen(pen(kPaper, 2));
    p.drawLine(QPointF(r.left() + 9, r.top() + 10), QPointF(r.right() - 6, r.top() + 10));
    p.drawLine(QPointF(r.left() + 9, r.top() + 16), QPointF(r.right() - 10, r.top() + 16));
}

void sheet(QPainter& p, const QRectF& r) {
    p.setPen(pen(kInk, 2.5));
    p.setBrush(kPaper);
    QPainterPath path;
    path.moveTo(r.topLeft());
    path.lineTo(r.right() - 10, r.top());
    path.lineTo(r.right(), r.top() + 10);
    path.lineTo(r.bottomRight());
    path.lineTo(r.bottomLeft());
    path.closeSubpath();
    p.drawPath(path);
}

void lines(QPainter& p, qreal x, qreal y, qreal w, int n, qreal step = 8) {
    p.setPen(pen(kInk, 2.5));
    for (int i = 0; i < n; ++i) p.drawLine(QPointF(x, y + i * step), QPointF(x + w, y + i * step));
}

void magnifier(QPainter& p, const QPointF& c, qreal r) {
    p.setPen(pen(kInk, 4));
    p.setBrush(QColor(0xcf, 0xe6, 0xf7));
    p.drawEllipse(c, r, r);
    p.drawLine(c + QPointF(r * 0.7, r * 0.7), c + QPointF(r * 1.7, r * 1.7));
}

void check(QPainter& p, const QPointF& at, qreal s, const QColor& c) {
    p.setPen(pen(c, 5));
    p.setBrush(Qt::NoBrush);
    QPainterPath path;
    path.moveTo(at);
    path.lineTo(at + QPointF(s * 0.35, s * 0.35));
    path.lineTo(at + QPointF(s, -s * 0.45));
    p.drawPath(path);
}

void cylinder(QPainter& p, const QRectF& r, const QColor& c) {
    p.setPen(pen(kInk, 2.5));
    p.setBrush(c);
    const qreal e = r.height() * 0.22;
    QPainterPath body;
    body.moveTo(r.left(), r.top() + e / 2);
    body.lineTo(r.left(), r.bottom() - e / 2);
    body.arcTo(QRectF(r.left(), r.bottom() - e, r.width(), e), 180, 180);
    body.lineTo(r.right(), r.top() + e / 2);
    p.drawPath(body);
    p.drawEllipse(QRectF(r.left(), r.top(), r.width(), e));
    p.setBrush(Qt::NoBrush);
    p.drawArc(QRectF(r.left(), r.top() + r.height() / 3, r.width(), e), 180 * 16, 180 * 16);
}

void draw(QPainter& p, const QString& name) {
    if (name == QLatin1String("caigou")) {
        book(p, QRectF(8, 6, 38, 50), QColor(0x3d, 0x7e, 0xbf));
        p.setPen(pen(kGreen, 6));
        p.drawLine(QPointF(48, 36), QPointF(48, 58));
        p.drawLine(QPointF(37, 47), QPointF(59, 47));
    } else if (name == QLatin1String("browse")) {
        sheet(p, QRectF(8, 4, 40, 52));
        lines(p, 15, 18, 24, 4);
        magnifier(p, QPointF(40, 40), 11);
    } else if (name == QLatin1String("print")) {
        p.setPen(pen(kInk, 2.5));
        p.setBrush(kPaper);
        p.drawRect(QRectF(18, 6, 28, 20));
        p.setBrush(QColor(0x9a, 0xa7, 0xb4));
        p.drawRoundedRect(QRectF(6, 24, 52, 24), 4, 4);
        p.setBrush(kPaper);
        p.drawRect(QRectF(16, 40, 32, 18));
        lines(p, 21, 47, 22, 2, 6);
        p.setBrush(kGreen);
        p.drawEllipse(QPointF(50, 31), 2.5, 2.5);
    } else if (name == QLatin1String("yanshou")) {
        p.setPen(pen(kInk, 2.5));
        p.setBrush(QColor(0xd9, 0xb3, 0x82));
        p.drawRect(QRectF(6, 22, 44, 34));
        p.drawLine(QPointF(6, 32), QPointF(50, 32));
        check(p, QPointF(28, 22), 30, kGreen);
    } else if (name == QLatin1String("ysbrowse")) {
        sheet(p, QRectF(8, 4, 40, 52));
        check(p, QPointF(14, 18), 10, kGreen);
        check(p, QPointF(14, 30), 10, kGreen);
        lines(p, 28, 17, 12, 2, 12);
        magnifier(p, QPointF(42, 42), 10);
    } else if (name == QLatin1String("buding")) {
        sheet(p, QRectF(8, 4, 40, 52));
        lines(p, 15, 18, 24, 2);
        p.setPen(pen(kRed, 5));
        p.drawArc(QRectF(24, 28, 28, 26), 30 * 16, 280 * 16);
        p.drawLine(QPointF(50, 30), QPointF(51, 38));
        p.drawLine(QPointF(51, 38), QPointF(43, 37));
    } else if (name == QLatin1String("fenlei")) {
        p.setPen(pen(kInk, 2.5));
        p.setBrush(QColor(0x3d, 0x7e, 0xbf));
        p.drawPie(QRectF(6, 8, 50, 50), 90 * 16, 150 * 16);
        p.setBrush(kGold);
        p.drawPie(QRectF(6, 8, 50, 50), 240 * 16, 80 * 16);
        p.setBrush(kGreen);
        p.drawPie(QRectF(10, 4, 50, 50), 320 * 16, 130 * 16);
    } else if (name == QLatin1String("mingxi")) {
        p.setPen(pen(kInk, 2.5));
        p.setBrush(kPaper);
        p.drawRect(QRectF(6, 8, 52, 48));
        p.setBrush(QColor(0x3d, 0x7e, 0xbf));
        p.drawRect(QRectF(6, 8, 52, 10));
        for (int i = 0; i < 3; ++i) p.drawLine(QPointF(6, 28 + i * 10), QPointF(58, 28 + i * 10));
        p.drawLine(QPointF(24, 18), QPointF(24, 56));
    } else if (name == QLatin1String("jine")) {
        p.setPen(pen(kInk, 2.5));
        p.setBrush(kGold);
        p.drawEllipse(QRectF(6, 6, 52, 52));
        p.setPen(pen(kInk, 4));
        p.drawLine(QPointF(22, 18), QPointF(32, 32));
        p.drawLine(QPointF(42, 18), QPointF(32, 32));
        p.drawLine(QPointF(32, 32), QPointF(32, 48));
        p.drawLine(QPointF(23, 34), QPointF(41, 34));
        p.drawLine(QPointF(23, 41), QPointF(41, 41));
    } else if (name == QLatin1String("exit")) {
        p.setPen(pen(kInk, 2.5));
        p.setBrush(QColor(0x8b, 0x5a, 0x2b));
        p.drawRect(QRectF(10, 6, 28, 52));
        p.setBrush(kGold);
        p.drawEllipse(QPointF(32, 33), 2.5, 2.5);
        p.setPen(pen(kRed, 5));
        p.drawLine(QPointF(34, 20), QPointF(58, 20));
        p.drawLine(QPointF(50, 12), QPointF(58, 20));
        p.drawLine(QPointF(50, 28), QPointF(58, 20));
    } else if (name == QLatin1String("datasource")) {
        cylinder(p, QRectF(10, 6, 44, 52), QColor(0x8f, 0xb8, 0xde));
    } else if (name == QLatin1String("app")) {
        book(p, QRectF(6, 10, 30, 46), QColor(0x3d, 0x7e, 0xbf));
        book(p, QRectF(28, 6, 30, 50), kRed);
    }
}

} // namespace

QPixmap pixmap(const QString& name, int size) {
    QPixmap pm(size, size);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    p.scale(size / 64.0, size / 64.0);
    draw(p, name);
    return pm;
}

QIcon icon(const QString& name) {
    QIcon ic;
    for (int s : {16, 24, 32, 48}) ic.addPixmap(pixmap(name, s));
    return ic;
}

QPixmap banner(int width, int height) {
    QPixmap pm(width, height);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    QLinearGradient g(0, 0, width, height);
    g.setColorAt(0, QColor(0x1f, 0x3b, 0x5c));
    g.setColorAt(1, QColor(0x3d, 0x7e, 0xbf));
    p.fillRect(pm.rect(), g);
    // A shelf of books along the right side.
    const QColor spines[] = {kRed, kGold, kGreen, QColor(0xe8, 0xe2, 0xd0),
                             QColor(0x8e, 0x44, 0xad)};
    qreal x = width - 150;
    for (int i = 0; i < 9; ++i) {
        const qreal w = 10 + (i * 7) % 6;
        const qreal h = height * (0.55 + 0.06 * ((i * 5) % 4));
        p.setPen(pen(QColor(0, 0, 0, 80), 1));
        p.setBrush(spines[i % 5]);
        p.drawRect(QRectF(x, height - 8 - h, w, h));
        x += w + 2;
    }
    p.fillRect(QRectF(width - 156, height - 8, 150, 4), QColor(0xd9, 0xb3, 0x82));
    QFont f = p.font();
    f.setPixelSize(height / 4);
    f.setBold(true);
    p.setFont(f);
    p.setPen(Qt::white);
    p.drawText(QRectF(18, 0, width - 170, height * 0.62), Qt::AlignLeft | Qt::AlignBottom,
               QStringLiteral("Orvane"));
    f.setPixelSize(height / 7);
    f.setBold(false);
    p.setFont(f);
    p.setPen(QColor(0xdd, 0xe8, 0xf3));
    p.drawText(QRectF(20, height * 0.64, width - 170, height * 0.3), Qt::AlignLeft | Qt::AlignTop,
               QStringLiteral("图书馆管理系统 · 采购子系统"));
    return pm;
}

QPixmap startPicture(int width, int height) {
    QPixmap pm(width, height);
    QPainter p(&pm);
    p.setRenderHint(QPainter::Antialiasing);
    QLinearGradient g(0, 0, 0, height);
    g.setColorAt(0, QColor(0xf4, 0xef, 0xe1));
    g.setColorAt(1, QColor(0xe2, 0xd6, 0xb8));
    p.fillRect(pm.rect(), g);
    // Three shelves of books.
    const QColor spines[] = {
        QColor(0x3d, 0x7e, 0xbf), kRed, kGold, kGreen, QColor(0x8e, 0x44, 0xad),
        QColor(0x2b, 0x4a, 0x6f)};
    const qreal shelfH = height / 3.0;
    for (int s = 0; s < 3; ++s) {
        const qreal base = shelfH * (s + 1) - 6;
        qreal x = 12;
        int i = s * 3;
        while (x < width - 24) {
            const qreal w = 12 + (i * 7) % 9;
            const qreal h = shelfH * (0.55 + 0.08 * ((i * 5) % 4));
            p.setPen(pen(QColor(0, 0, 0, 70), 1));
            p.setBrush(spines[i % 6]);
            if (i % 11 == 4) {
                // One book leaning on its neighbour.
                p.save();
                p.translate(x, base);
                p.rotate(-12);
                p.drawRect(QRectF(0, -h, w, h));
                p.restore();
                x += 8;
            } else {
                p.drawRect(QRectF(x, base - h, w, h));
            }
            x += w + 2;
            ++i;
        }
        p.fillRect(QRectF(4, base, width - 8, 6), QColor(0x8b, 0x5a, 0x2b));
    }
    return pm;
}

} // namespace shellicons
