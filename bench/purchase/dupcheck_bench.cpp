// The duplicate check before a new order over a large ZSK, on the embedded database through
// ODBC: the union over ZSK, cgk and taolutable for an ISBN (indexed, exact) and for a title
// fragment (a contains match: three scans), each bound to the result grid with its widths.
//
//   bench_dupcheck [zsk-rows=1000000] [runs=5] [database-file] [title-fragment]
//
// A database file that does not exist yet is made with the demo data and the extra holdings
// (and kept, so later runs skip the minute it takes); without one a temporary file is used.
// Prints the median and the worst of each search, and the rows found.
#include "bench/bench.h"
#include "platform/flexgrid.h"
#include "purchase/CaiGoufrm.h"
#include "purchase/loadCheckDatafrm.h"

#include <QApplication>
#include <QLineEdit>
#include <QRadioButton>
#include <QTemporaryDir>

namespace {

// Times the search `runs` times and prints the median and the worst, and the rows found.
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

    if (!QFileInfo::exists(path)) {
        orvane::dbinit::Options options;
        options.demo = true;
        options.extraHoldings = std::max(0LL, zskRows - 10000); // the demo brings 10,000
        QElapsedTimer t;
        t.start();
        bench::useDatabase(path, options);
        std::printf("made %s in %.1f s\n", qPrintable(path), bench::ms(t) / 1000);
    }
    auto boxes = bench::useDatabase(path);

    const QString count = bench::first(QStringLiteral("Select count(*) From ZSK"));
    // A title and an ISBN from the middle of the holdings.
    const QString mid = bench::first(QStringLiteral("Select max(ZSKID)/2 From ZSK"));
    const QString isbn = bench::first(QStringLiteral("Select isbn From ZSK Where ZSKID=") + mid);
    const QString title =
        bench::first(QStringLiteral("Select bookname From ZSK Where ZSKID=") + mid);
    const QString fragment = argc > 4 ? QString::fromLocal8Bit(argv[4]) : title.mid(1, 3);
    std::printf("ZSK rows: %s; ISBN %s; title fragment \"%s\" (of \"%s\")\n", qPrintable(count),
                qPrintable(isbn), qPrintable(fragment), qPrintable(title));

    vb::form<CaiGoufrm>().Load(); // the check stands over the entry form
    search("ISBN search + grid:", isbn, false, runs);
    search("title fragment search + grid:", fragment, true, runs);
    if (!boxes->calls().empty())
        std::printf("boxes shown: %s\n", qPrintable(boxes->prompts().join(u'|')));
    vb::FormRegistry::destroyAll();
    return 0;
}
