// printCG with 32,767 rows (the most the 16-bit order ids allow): time to the first page
// in the preview, the layout and the PDF of all pages, and the peak memory.
//   QT_QPA_PLATFORM=offscreen bench_report [rows] [out.pdf]
#include "platform/form.h"
#include "query/reports.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>

#include <sys/resource.h>

#include <cstdio>

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    const int rows = argc > 1 ? std::atoi(argv[1]) : 32767;
    QTemporaryDir tmp;
    const QString pdf =
        argc > 2 ? QString::fromLocal8Bit(argv[2]) : tmp.filePath(QStringLiteral("printCG.pdf"));

    std::vector<std::vector<QVariant>> data;
    data.reserve(static_cast<size_t>(rows) + 1);
    double sum = 0;
    for (int i = 1; i <= rows; ++i) {
        const double price = 10 + (i % 500) * 0.1;
        const int count = 1 + i % 4;
        sum += price * count;
        data.push_back({QStringLiteral("中国图书馆分类法研究 第%1卷").arg(i),
                        QStringLiteral("国家图书馆出版社"), QStringLiteral("2003-01"), price,
                        QStringLiteral("1-%1").arg(i), count, price * count});
    }
    data.push_back({QStringLiteral("合  计"), {}, {}, {}, {}, {}, sum});
    auto& r = vb::form<printCG>();
    r.DataSource = adodb::Recordset::fromRows(
        {"bookname", "publisher", "pubdate", "price", "zdcode", "bookcount", "jine"},
        std::move(data));
    r.Title = QStringLiteral("图书采购定单（%1种）").arg(rows);
    r.landscape = true;

    // The first page drawn as the preview window would draw it.
    QElapsedTimer t;
    t.start();
    r.Refresh();
    r.Show();
    const auto firstPage = [&r] {
        QImage page(1123, 794, QImage::Format_ARGB32_Premultiplied);
        page.fill(Qt::white);
        QPainter p(&page);
        r.renderPage(p, 0, 96);
        p.end();
        return page;
    };
    const QImage page = firstPage();
    const double firstMs = t.nsecsElapsed() / 1e6;
    const int laidOutAtFirst = r.pagesLaidOut();

    t.restart();
    const int pages = r.pageCount();
    const double layoutMs = t.nsecsElapsed() / 1e6;

    t.restart();
    r.exportPdf(pdf);
    const double pdfMs = t.nsecsElapsed() / 1e6;
    // What the engine keeps between pages is only an aid, never a different drawing.
    const bool same = firstPage() == page;

    rusage ru{};
    getrusage(RUSAGE_SELF, &ru);
    std::printf("rows %d, pages %d\n", rows, pages);
    std::printf("first page in the preview: %.1f ms (%d pages laid out by then)\n", firstMs,
                laidOutAtFirst);
    std::printf("layout of all pages:       %.1f ms\n", layoutMs);
    std::printf("PDF of all pages:          %.1f ms, %.1f MB\n", pdfMs,
                QFileInfo(pdf).size() / 1048576.0);
    std::printf("peak memory:               %.1f MB\n", ru.ru_maxrss / 1024.0);
    std::printf("first page drawn again:    %s\n", same ? "the same" : "DIFFERENT");
    vb::FormRegistry::destroyAll();
    return same ? 0 : 1;
}
