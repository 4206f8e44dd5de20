#pragma once
// The small fixed data sets the nine reports are checked with (and pictured from): what
// the generators leave in the print tables, total rows included. Grouped reports get
// theirs through the shaped statement on a real database.

#include "platform/adodb.h"
#include "platform/report.h"

#include <QString>
#include <QVariant>

#include <memory>
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
    QString table;   // grouped only
    QString shapeBy; // grouped only
};

inline QVariant n(double d) {
    return QVariant(d);
}
inline QVariant i(int v) {
    return QVariant(v);
}
inline QVariant s(const char16_t* t) {
    return QVariant(QString::fromUtf16(t));
}

inline std::vector<Case> cases() {
    std::vector<Case> out;
    {
        Case c{"printCG", {}, true, {}, {}, {}, {}};
        // Longer than the two lines of the title cell: the tail is cut.
        c.title = QStringLiteral("图书采购定单（17种）") +
                  QStringLiteral("一二三四五六七八九十").repeated(9) +
                  QStringLiteral("看不见的尾巴");
        c.columns = {"bookname", "publisher", "pubdate", "price", "zdcode", "bookcount", "jine"};
        const char16_t* const names[] = {
            u"红楼梦",   u"三国演义", u"水浒传",     u"西游记",     u"儒林外史",  u"聊斋志异",
            u"老残游记", u"镜花缘",   u"官场现形记", u"儿女英雄传", u"封神演义",  u"东周列国志",
            u"说岳全传", u"隋唐演义", u"杨家将演义", u"七侠五义",   u"海上花列传"};
        int k = 0;
        for (const char16_t* name : names) {
            const double price = 10.5 + k * 1.25;
            const int count = 1 + k % 3;
            c.rows.push_back({s(name), s(k % 2 ? u"人民文学出版社" : u"中华书局"), s(u"2003-01"),
                              n(price), QVariant(QStringLiteral("1-%1").arg(100 + k)), i(count),
                              n(price * count)});
            ++k;
        }
        c.rows.push_back({s(u"合  计"), {}, {}, {}, {}, i(34), n(682.5)});
        out.push_back(c);
    }
    {
        Case c{"printMX", {}, true, {}, {}, {}, {}};
        c.columns = {"ysdate", "bookname", "author", "publisher", "bookfrom", "price", "count"};
        c.rows = {
            {s(u"2003/05/06"), s(u"数据库系统概论"), s(u"萨师煊"), s(u"高等教育出版社"),
             s(u"新华书店"), n(28.5), i(3)},
            {s(u"2003/05/06"),
             s(u"计算机程序设计艺术 第一卷 基本算法 第三版 中文版 影印本 附习题解答与索引"),
             s(u"高德纳"), s(u"国防工业出版社"), s(u"外文书店"), n(98), i(1)},
            {s(u"2003/05/07"), s(u"C++ Primer"), s(u"Lippman"), s(u"人民邮电出版社"),
             s(u"新华书店"), n(66.6), i(2)},
            {s(u"合  计"), {}, {}, {}, {}, {}, i(6)},
        };
        out.push_back(c);
    }
    {
        Case c{"printLeibie", {}, false, {}, {}, {}, {}};
        c.table = QStringLiteral("printLeiBie");
        c.shapeBy = QStringLiteral("type");
        c.columns = {"type", "batch", "bookfrom", "typecount", "count", "jine"};
        c.rows = {
            {s(u"A：马克思主义、列宁主义、毛泽东思想、邓小平理论》"), s(u"3"), s(u"新华书店"), i(2),
             i(5), n(120.5)},
            {s(u"A：马克思主义、列宁主义、毛泽东思想、邓小平理论》"), s(u"4"), s(u"外文书店"), i(1),
             i(1), n(30)},
            {s(u"A：马克思主义、列宁主义、毛泽东思想、邓小平理论》"),
             s(u"合计"),
             {},
             i(3),
             i(6),
             n(150.5)},
            {s(u"I：文学》"), s(u"3"), s(u"新华书店"), i(4), i(9), n(210.25)},
            {s(u"I：文学》"), s(u"合计"), {}, i(4), i(9), n(210.25)},
        };
        out.push_back(c);
    }
    const QStringList totals = {"name",   "ydtype",  "ydcount", "ydjine",
                                "ystype", "yscount", "ysjine"};
    {
        Case c{"printJinECB", QStringLiteral("作品语种"), false, totals, {}, {}, {}};
        c.rows = {
            {s(u"中文"), i(12), i(30), n(845.5), i(10), i(25), n(700.25)},
            {s(u"英文"), i(3), i(3), n(360), {}, {}, {}},
            {s(u"未定义"), i(1), i(2), n(40), i(1), i(2), n(40)},
            {s(u"合计"), i(16), i(35), n(1245.5), i(11), i(27), n(740.25)},
        };
        out.push_back(c);
    }
    {
        Case c{"printJinEYFZ", QStringLiteral("图书来源"), true, totals, {}, {}, {}};
        c.rows = {
            {s(u"新华书店"), i(8), i(20), n(500), i(8), i(18), n(450)},
            {s(u"外文书店"), i(2), i(2), n(180.8), i(1), i(1), n(90.4)},
            {s(u"合计"), i(10), i(22), n(680.8), i(9), i(19), n(540.4)},
        };
        out.push_back(c);
    }
    {
        // ydjine and ysjine hold the two percentages, truncated by integer division.
        Case c{"printJinELV", QString(), false, totals, {}, {}, {}};
        c.rows = {
            {s(u"新华书店"), i(8), i(20), i(87), i(7), i(18), i(90)},
            {s(u"外文书店"), i(2), i(2), {}, {}, {}, {}},
            {s(u"合计"), i(10), i(22), i(70), i(7), i(18), i(81)},
        };
        out.push_back(c);
    }
    {
        Case c{"printTotalJine",
               {},
               false,
               {"name", "ydtype", "ydcount", "ydjine", "ysjine", "ystype"},
               {},
               {},
               {}};
        c.rows = {
            {s(u"新华书店"), i(8), i(18), n(450), n(300), n(66.6666666666667)},
            {{}, i(1), i(1), n(90.4), n(90.4), n(100)},
            {s(u"合计"), i(9), i(19), n(540.4), n(390.4), n(72.2427831236121)},
        };
        out.push_back(c);
    }
    {
        Case c{"printYStotal",
               {},
               false,
               {"batch", "bookfrom", "typecount", "counts", "jine"},
               {},
               {},
               {}};
        c.table = QStringLiteral("printYStotal");
        c.shapeBy = QStringLiteral("batch");
        c.rows = {
            {s(u"第 3 批采购验收传票"), s(u"新华书店"), i(2), i(5), n(120.5)},
            {s(u"第 3 批采购验收传票"), s(u"外文书店"), i(1), i(1), n(30)},
            {s(u"第 4 批采购验收传票"), s(u"新华书店"), i(4), i(9), n(210.25)},
        };
        out.push_back(c);
    }
    {
        Case c{
            "printYSmx", {}, true, {"batch", "bookname", "author", "publisher", "price", "counts"},
            {},          {}, {}};
        c.table = QStringLiteral("printYSmx");
        c.shapeBy = QStringLiteral("batch");
        c.rows = {
            {s(u"第 3 批书目采购明细表"), s(u"数据库系统概论"), s(u"萨师煊"), s(u"高等教育出版社"),
             n(28.5), i(3)},
            {s(u"第 3 批书目采购明细表"),
             s(u"计算机程序设计艺术 第一卷 基本算法 第三版 中文版 影印本 附习题解答与索引"),
             s(u"高德纳"), s(u"国防工业出版社"), n(98), i(1)},
            {s(u"第 4 批书目采购明细表"), s(u"红楼梦"), s(u"曹雪芹"), s(u"人民文学出版社"), n(45.8),
             i(2)},
        };
        out.push_back(c);
    }
    return out;
}

} // namespace reportdata
