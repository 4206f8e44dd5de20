#pragma once
// The small fixed data sets the nine reports are checked with (and pictured from): what
// the generators leave in the print tables, total rows included. Grouped reports get
// theirs through the shaped statement on a real database.

#include "platform/adodb.h"
#include "platform/report.h"

#include <QString>
#include <QVariant>

#include <ostream>
#include <vector>

namespace reportdata {

using Rows = std::vector<std::vector<QVariant>>;

struct Case {
    const char* report;
    QString title;
    bool landscape;
    // Flat: the rows as read; grouped: the print table to fill and shape by `shapeBy`.
    QStringList columns;
    Rows rows;
    QString table = {};   // grouped only
    QString shapeBy = {}; // grouped only
};

// A case is shown by its report's name in test output.
inline void PrintTo(const Case& c, std::ostream* os) {
    *os << c.report;
}

// Rows written as "a|b|c", typed by `types` (s text, i integer, n double); an empty
// place is NULL.
inline Rows parse(const char* types, std::initializer_list<const char*> lines) {
    Rows out;
    for (const char* line : lines) {
        std::vector<QVariant> row;
        const QStringList cells = QString::fromUtf8(line).split(u'|');
        for (qsizetype k = 0; k < cells.size(); ++k) {
            const QString& v = cells[k];
            row.push_back(v.isEmpty()       ? QVariant()
                          : types[k] == 's' ? QVariant(v)
                          : types[k] == 'i' ? QVariant(v.toInt())
                                            : QVariant(v.toDouble()));
        }
        out.push_back(std::move(row));
    }
    return out;
}

inline std::vector<Case> cases() {
    const QString longTitle = QStringLiteral("计算机程序设计艺术 第一卷 基本算法 第三版 中文版 "
                                             "影印本 附习题解答与索引");
    std::vector<Case> out;
    // A title longer than the two lines of its cell: the tail is cut.
    out.push_back({"printCG",
                   QStringLiteral("图书采购定单（17种）") +
                       QStringLiteral("一二三四五六七八九十").repeated(9) +
                       QStringLiteral("看不见的尾巴"),
                   true,
                   {"bookname", "publisher", "pubdate", "price", "zdcode", "bookcount", "jine"},
                   {}});
    const QStringList names =
        QStringLiteral("红楼梦 三国演义 水浒传 西游记 儒林外史 聊斋志异 老残游记 "
                       "镜花缘 官场现形记 儿女英雄传 封神演义 东周列国志 说岳全传 "
                       "隋唐演义 杨家将演义 七侠五义 海上花列传")
            .split(u' ');
    for (int k = 0; k < names.size(); ++k) {
        const double price = 10.5 + k * 1.25;
        out.back().rows.push_back({names[k], k % 2 ? "人民文学出版社" : "中华书局", "2003-01",
                                   price, QStringLiteral("1-%1").arg(100 + k), 1 + k % 3,
                                   price * (1 + k % 3)});
    }
    out.back().rows.push_back({"合  计", {}, {}, {}, {}, 34, 682.5});
    out.push_back(
        {"printMX",
         {},
         true,
         {"ysdate", "bookname", "author", "publisher", "bookfrom", "price", "count"},
         parse("sssssni",
               {"2003/05/06|数据库系统概论|萨师煊|高等教育出版社|新华书店|28.5|3",
                "2003/05/06||高德纳|国防工业出版社|外文书店|98|1",
                "2003/05/07|C++ Primer|Lippman|人民邮电出版社|新华书店|66.6|2", "合  计||||||6"})});
    out.back().rows[1][1] = longTitle;
    const char* classA = "A：马克思主义、列宁主义、毛泽东思想、邓小平理论》";
    out.push_back(
        {"printLeibie",
         {},
         false,
         {"type", "batch", "bookfrom", "typecount", "count", "jine"},
         parse("sssiin", {"|3|新华书店|2|5|120.5", "|4|外文书店|1|1|30", "|合计||3|6|150.5",
                          "I：文学》|3|新华书店|4|9|210.25", "I：文学》|合计||4|9|210.25"}),
         QStringLiteral("printLeiBie"),
         QStringLiteral("type")});
    for (int k = 0; k < 3; ++k) out.back().rows[size_t(k)][0] = QString::fromUtf8(classA);
    const QStringList totals = {"name",   "ydtype",  "ydcount", "ydjine",
                                "ystype", "yscount", "ysjine"};
    out.push_back({"printJinECB", QStringLiteral("作品语种"), false, totals,
                   parse("siiniin", {"中文|12|30|845.5|10|25|700.25", "英文|3|3|360|||",
                                     "未定义|1|2|40|1|2|40", "合计|16|35|1245.5|11|27|740.25"})});
    out.push_back({"printJinEYFZ", QStringLiteral("图书来源"), true, totals,
                   parse("siiniin", {"新华书店|8|20|500|8|18|450", "外文书店|2|2|180.8|1|1|90.4",
                                     "合计|10|22|680.8|9|19|540.4"})});
    // ydjine and ysjine hold the two percentages, truncated by integer division.
    out.push_back({"printJinELV", QString(), false, totals,
                   parse("siiiiii", {"新华书店|8|20|87|7|18|90", "外文书店|2|2||||",
                                     "合计|10|22|70|7|18|81"})});
    out.push_back({"printTotalJine",
                   {},
                   false,
                   {"name", "ydtype", "ydcount", "ydjine", "ysjine", "ystype"},
                   parse("siinnn", {"新华书店|8|18|450|300|66.6666666666667", "|1|1|90.4|90.4|100",
                                    "合计|9|19|540.4|390.4|72.2427831236121"})});
    out.push_back({"printYStotal",
                   {},
                   false,
                   {"batch", "bookfrom", "typecount", "counts", "jine"},
                   parse("ssiin", {"第 3 批采购验收传票|新华书店|2|5|120.5",
                                   "第 3 批采购验收传票|外文书店|1|1|30",
                                   "第 4 批采购验收传票|新华书店|4|9|210.25"}),
                   QStringLiteral("printYStotal"),
                   QStringLiteral("batch")});
    out.push_back(
        {"printYSmx",
         {},
         true,
         {"batch", "bookname", "author", "publisher", "price", "counts"},
         parse("ssssni", {"第 3 批书目采购明细表|数据库系统概论|萨师煊|高等教育出版社|28.5|3",
                          "第 3 批书目采购明细表||高德纳|国防工业出版社|98|1",
                          "第 4 批书目采购明细表|红楼梦|曹雪芹|人民文学出版社|45.8|2"}),
         QStringLiteral("printYSmx"),
         QStringLiteral("batch")});
    out.back().rows[1][1] = longTitle;
    return out;
}

} // namespace reportdata
