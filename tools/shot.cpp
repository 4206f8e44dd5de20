#include "tools/shot.h"

#include "data/dbinit/dbinit.h"
#include "data/globals.h"

#include <QPainter>
#include <QPixmap>
#include <QTest>
#include <QWidget>

#include <cstdio>
#include <string>

namespace shot {

DemoDatabase::DemoDatabase(const char* tool, const QString& user) {
    std::string error;
    if (!m_dir.isValid()) {
        std::fprintf(stderr, "%s: no temporary folder\n", tool);
        return;
    }
    if (!orvane::dbinit::createDatabase(path().toStdString(), true, &error)) {
        std::fprintf(stderr, "%s: %s\n", tool, error.c_str());
        return;
    }
    gConnStr = QStringLiteral("PROVIDER=MSDASQL;Driver=SQLite3;Database=%1;LoadExt=%2;")
                   .arg(path(), QStringLiteral(ORVANE_COMPAT_MODULE));
    gUserName = user;
    m_ok = true;
}

bool save(QWidget* w, const QString& path, const char* tool, bool captionStrip) {
    if (!QTest::qWaitForWindowExposed(w)) {
        std::fprintf(stderr, "%s: the window did not show\n", tool);
        return false;
    }
    QTest::qWait(200);
    QPixmap picture = w->grab();
    if (captionStrip) {
        const QPixmap body = picture;
        const int strip = w->fontMetrics().height() + 10;
        picture = QPixmap(body.width(), body.height() + strip);
        picture.fill(w->palette().color(QPalette::Highlight));
        QPainter p(&picture);
        p.setPen(w->palette().color(QPalette::HighlightedText));
        p.drawText(QRect(8, 0, body.width() - 8, strip), Qt::AlignVCenter, w->windowTitle());
        p.drawPixmap(0, strip, body);
    }
    if (!picture.save(path)) {
        std::fprintf(stderr, "%s: cannot write %s\n", tool, qPrintable(path));
        return false;
    }
    return true;
}

} // namespace shot
