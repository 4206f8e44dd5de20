// The duplicate check before a new order over a large ZSK through ODBC: the union over
// ZSK, cgk and taolutable for an ISBN (indexed) and for a title fragment (three scans),
// each bound to the result grid. A database file given is made once and kept.
//   bench_dupcheck [zsk-rows=1000000] [runs=5] [database-file]
#include "bench/bench.h"
#include "platform/flexgrid.h"
#include "purchase/CaiGoufrm.h"
#include "purchase/loadCheckDatafrm.h"

#include <QApplication>
#include <QLineEdit>
#include <QRadioButton>
#include <QTemporaryDir>

namespace {

void search(const char* label, const QString& text, bool byTitle, int runs) {
    std::vector<double> ms;
    int rows = 0;
    for (int i = 0; i < runs; ++i) {
        auto& d = vb::form<loadCheckDatafrm>();
        d.Option1(byTitle ? 0 : 1)->setChecked(true);
        d.Text1()->setText(text);
        QElapsedTimer t;
        t.start();
        d.Command1_Click(0);
        ms.push_back(bench::ms(t));
        rows = d.isLoaded() ? d.Grid1()->Rows() - 1 : 0;
        d.Unload();
    }
    std::printf("%-30smedian %8.1f ms, worst %8.1f ms, %d rows\n", label, bench::median(ms),
                *std::max_element(ms.begin(), ms.end()), rows);
}

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const long long zskRows = argc > 1 ? std::atoll(argv[1]) : 1000000;
    const int runs = argc > 2 ? std::max(1, std::atoi(argv[2])) : 5;
    QTemporaryDir tmp;
    const QString path =
        argc > 3 ? QString::fromLocal8Bit(argv[3]) : tmp.path() + QStringLiteral("/bench.db");

    orvane::dbinit::Options options; // used only when the file is not there yet
    options.demo = true;
    options.extraHoldings = std::max(0LL, zskRows - 10000); // the demo brings 10,000
    bench::useDatabase(path, options);

    const QString count = bench::first(QStringLiteral("Select count(*) From ZSK"));
    // A title and an ISBN from the middle of the holdings.
    const QString mid = QStringLiteral(" From ZSK Where ZSKID=(Select max(ZSKID)/2 From ZSK)");
    const QString isbn = bench::first(QStringLiteral("Select isbn") + mid);
    const QString title = bench::first(QStringLiteral("Select bookname") + mid);
    const QString fragment = title.mid(1, 3);
    std::printf("ZSK rows: %s; ISBN %s; title fragment \"%s\" (of \"%s\")\n", qPrintable(count),
                qPrintable(isbn), qPrintable(fragment), qPrintable(title));

    vb::form<CaiGoufrm>().Load(); // the check stands over the entry form
    search("ISBN search + grid:", isbn, false, runs);
    search("title fragment search + grid:", fragment, true, runs);
    vb::FormRegistry::destroyAll();
    return 0;
}
