// The nine report layouts. Left and width of every control are those the reports have
// always had; the tops and type sizes are ours: titles in 16 or 18 pt bold, column headings
// in 10.5 pt, rows and page lines in 9 pt, all 宋体.
#include "query/reports.h"

#include <array>
#include <vector>

namespace {

using vb::ReportAlign;
using vb::ReportControl;
using vb::ReportLayout;
using vb::ReportRole;
using vb::ReportSection;

constexpr auto L = ReportAlign::Left;
constexpr auto C = ReportAlign::Centre;
constexpr auto R = ReportAlign::Right;

constexpr int kRow = 180;     // 9 pt
constexpr int kHeading = 210; // 10.5 pt
constexpr int kTitle = 320;   // 16 pt
constexpr int kBig = 360;     // 18 pt
constexpr int kGroup = 280;   // 14 pt

// Height of a cell of n lines at a type size, with a little air above and below.
constexpr int cell(int font, int n = 1) {
    return (font * 13 / 10) * n + 40;
}

ReportControl make(ReportRole role, const char16_t* text, int left, int width, ReportAlign a,
                   int top, int height, int font, bool bold = false) {
    ReportControl c;
    c.role = role;
    c.text = QString::fromUtf16(text);
    c.left = left;
    c.width = width;
    c.align = a;
    c.top = top;
    c.height = height;
    c.fontTwips = font;
    c.bold = bold;
    return c;
}

// A title over the page, in bold.
ReportControl title(const char16_t* text, int left, int width, int top, int font = kBig) {
    return make(ReportRole::Text, text, left, width, C, top, cell(font), font, true);
}

// The row of column headings, ruled, at `top` of its section.
struct Headings {
    int top;
    int height = 480;
    ReportControl operator()(const char16_t* text, int left, int width, ReportAlign a) const {
        return make(ReportRole::Heading, text, left, width, a, top, height, kHeading);
    }
};

// A detail field: its ruled cell is the whole row.
ReportControl field(const char16_t* column, int left, int width, ReportAlign a, int rowHeight,
                    bool grows = false) {
    ReportControl c = make(ReportRole::Field, column, left, width, a, 0, rowHeight, kRow);
    c.canGrow = grows;
    return c;
}

// "%D" at the left, "页码：" and "%p" at the right of a page line.
void pageLine(ReportSection& s, int top, int pageLabelLeft, int pageLabelWidth, int pageLeft,
              int pageWidth, int dateWidth) {
    const int h = cell(kRow);
    s.controls.push_back(make(ReportRole::PageInfo, u"%D", 0, dateWidth, L, top, h, kRow));
    s.controls.push_back(make(ReportRole::PageInfo, u"%p", pageLeft, pageWidth, R, top, h, kRow));
    s.controls.push_back(
        make(ReportRole::PageInfo, u"页码：", pageLabelLeft, pageLabelWidth, R, top, h, kRow));
}

ReportLayout printCGLayout() {
    ReportLayout r;
    r.caption = QStringLiteral("采购打印报表");
    r.width = 14250;
    r.pageHeader.height = 1740;
    // The order's title holds two lines and is cut beyond them.
    ReportControl t = title(u"%i", 0, 14100, 120, kTitle);
    t.lines = 2;
    t.height = cell(kTitle, 2);
    const Headings h{1260};
    r.pageHeader.controls = {t,
                             h(u"书     名", 0, 5340, L),
                             h(u"出版社", 5355, 3690, L),
                             h(u"出版日期", 9075, 1170, C),
                             h(u"价格", 10215, 750, R),
                             h(u"征订号", 10980, 1395, C),
                             h(u"册数", 12390, 720, R),
                             h(u"金额", 13125, 975, R)};
    const int d = r.detail.height = 540;
    r.detail.controls = {field(u"bookname", 45, 5295, L, d),  field(u"publisher", 5370, 3690, L, d),
                         field(u"pubdate", 9090, 1110, C, d), field(u"price", 10230, 705, R, d),
                         field(u"zdcode", 10965, 1395, C, d), field(u"bookcount", 12390, 705, R, d),
                         field(u"jine", 13125, 960, R, d)};
    r.pageFooter.height = 510;
    pageLine(r.pageFooter, 105, 8520, 870, 9285, 690, 1725);
    return r;
}

ReportLayout printMXLayout() {
    ReportLayout r;
    r.caption = QStringLiteral("图书采购明细统计");
    r.width = 16560;
    r.pageHeader.height = 1650;
    const Headings h{1170};
    r.pageHeader.controls = {h(u"书    名", 1134, 5295, L),
                             h(u"著 者", 6480, 1700, L),
                             h(u"出版社", 8200, 3300, L),
                             h(u"图书来源", 11521, 2800, L),
                             h(u"验收日期", 0, 1134, C),
                             h(u"价格", 14306, 1134, R),
                             title(u"图书采购明细统计表", 0, 16550, 250),
                             h(u"册数", 15460, 1100, R)};
    const int d = r.detail.height = 530;
    r.detail.controls = {
        field(u"bookname", 1134, 5295, L, d, true), field(u"author", 6480, 1700, L, d),
        field(u"publisher", 8200, 3300, L, d),      field(u"bookfrom", 11521, 2800, L, d),
        field(u"price", 14306, 1134, R, d),         field(u"ysdate", 15, 1155, C, d),
        field(u"count", 15460, 1100, R, d)};
    r.pageFooter.height = 330;
    pageLine(r.pageFooter, 15, 11208, 2385, 13368, 765, 1695);
    return r;
}

ReportLayout printLeibieLayout() {
    ReportLayout r;
    r.caption = QStringLiteral("采购图书类别统计");
    r.width = 9075;
    r.groupBy = QStringLiteral("type");
    r.pageHeader.height = 0;
    r.groupHeader.height = 1245;
    const Headings h{765};
    // "分类统计《" and the class, whose text ends in "》", read as one heading.
    ReportControl type =
        make(ReportRole::Field, u"type", 1500, 7455, L, 150, cell(kGroup), kGroup, true);
    type.canGrow = true;
    r.groupHeader.controls = {
        h(u"批 号", 0, 1140, C),
        h(u"图 书 来 源", 1140, 3390, L),
        h(u"种类", 4530, 1425, C),
        h(u"册数", 5970, 1395, R),
        h(u"金额", 7365, 1710, R),
        type,
        make(ReportRole::Text, u"分类统计《", 0, 1770, L, 150, cell(kGroup), kGroup, true)};
    const int d = r.detail.height = 504;
    r.detail.controls = {field(u"batch", 0, 1134, C, d), field(u"bookfrom", 1134, 3402, L, d),
                         field(u"typecount", 4536, 1419, C, d), field(u"count", 5970, 1395, R, d),
                         field(u"jine", 7371, 1701, R, d)};
    r.groupFooter.height = 0;
    r.pageFooter.height = 366;
    pageLine(r.pageFooter, 33, 7620, 870, 8385, 690, 1725);
    return r;
}

// The four amount statistics share their frame: a fixed heading, a row of headings at the
// foot of the page header, rows of 504 and a page line of 360.
ReportLayout amounts(const char16_t* caption, int width, const char16_t* heading,
                     std::vector<ReportControl> headings, std::vector<ReportControl> fields,
                     int pageLabelLeft, int pageLeft) {
    ReportLayout r;
    r.caption = QString::fromUtf16(caption);
    r.width = width;
    r.pageHeader.height = 1701;
    r.pageHeader.controls = std::move(headings);
    r.pageHeader.controls.push_back(title(heading, 0, width == 8508 ? 8504 : 9638, 200));
    r.detail.height = 504;
    r.detail.controls = std::move(fields);
    r.pageFooter.height = 360;
    pageLine(r.pageFooter, 30, pageLabelLeft, 870, pageLeft, 690, 1725);
    return r;
}

// Three of them are a table of the source's name, `nameWidth` wide, then six columns of 1134
// with a word over each. The heading over the names is listed after the six.
using Six = std::array<const char16_t*, 6>;
ReportLayout amountTable(const char16_t* caption, int width, const char16_t* heading, int nameWidth,
                         const char16_t* nameHeading, const Six& words, const Six& columns,
                         int pageLabelLeft, int pageLeft) {
    constexpr int kColumn = 1134;
    const Headings h{1221};
    const int d = 504;
    std::vector<ReportControl> headings;
    std::vector<ReportControl> fields{field(u"name", 0, nameWidth, C, d)};
    for (int k = 0; k < 6; ++k) {
        headings.push_back(h(words[k], nameWidth + k * kColumn, kColumn, C));
        fields.push_back(field(columns[k], nameWidth + k * kColumn, kColumn, C, d));
    }
    headings.push_back(h(nameHeading, 0, nameWidth, C));
    return amounts(caption, width, heading, std::move(headings), std::move(fields), pageLabelLeft,
                   pageLeft);
}

const Six kFundWords = {u"预定种数", u"预定册数", u"预定金额",
                        u"验收种数", u"验收册数", u"验收金额"};
const Six kFundColumns = {u"ydtype", u"ydcount", u"ydjine", u"ystype", u"yscount", u"ysjine"};

ReportLayout printJinECBLayout() {
    return amountTable(u"图书采购资金统计", 9645, u"图书采购资金统计管理", 2835, u"%i", kFundWords,
                       kFundColumns, 8187, 8952);
}

ReportLayout printJinEYFZLayout() {
    return amountTable(u"图书采购资金统计", 8508, u"图书采购资金统计管理", 1701, u"%i", kFundWords,
                       kFundColumns, 7053, 7818);
}

// The percentages sit in the amount columns: ydjine and ysjine print under 到书率.
ReportLayout printJinELVLayout() {
    return amountTable(u"图书采购到书统计", 9645, u"图书采购到书率统计管理", 2835, u"图书来源",
                       {u"预定种数", u"验收种数", u"到书率", u"预定册数", u"验收册数", u"到书率"},
                       {u"ydtype", u"ystype", u"ydjine", u"ydcount", u"yscount", u"ysjine"}, 8187,
                       8952);
}

ReportLayout printTotalJineLayout() {
    const Headings h{1221};
    const int d = 504;
    return amounts(u"应付金额统计", 9645, u"图书采购付款金额统计管理",
                   {h(u"验收种数", 3402, 1134, C), h(u"验收册数", 4536, 1134, C),
                    h(u"应付金额", 5670, 1437, C), h(u"实付金额", 7122, 1413, C),
                    h(u"付款率%", 8535, 1104, C), h(u"图书来源", 0, 3402, C)},
                   {field(u"name", 0, 3402, C, d), field(u"ydtype", 3402, 1134, C, d),
                    field(u"ydcount", 4536, 1134, C, d), field(u"ydjine", 5670, 1440, C, d),
                    field(u"ysjine", 7125, 1380, C, d), field(u"ystype", 8505, 1134, C, d)},
                   8187, 8952);
}

// The two voucher reports: date and page number at the head of the page, a group a batch
// under the batch's heading, no page footer.
struct PageLine {
    int top, pageLabelLeft, pageLabelWidth, pageLeft, pageWidth, dateWidth;
};
ReportLayout voucher(int width, int batchWidth, int pageHeaderHeight, const PageLine& p,
                     int groupHeaderHeight, std::vector<ReportControl> headings, int detailHeight,
                     std::vector<ReportControl> fields) {
    ReportLayout r;
    r.caption = QStringLiteral("采购验收传票打印");
    r.width = width;
    r.groupBy = QStringLiteral("batch");
    r.pageHeader.height = pageHeaderHeight;
    pageLine(r.pageHeader, p.top, p.pageLabelLeft, p.pageLabelWidth, p.pageLeft, p.pageWidth,
             p.dateWidth);
    r.groupHeader.height = groupHeaderHeight;
    r.groupHeader.controls = {
        make(ReportRole::Field, u"batch", 0, batchWidth, C, 250, cell(kTitle), kTitle, true)};
    for (ReportControl& c : headings) r.groupHeader.controls.push_back(std::move(c));
    r.detail.height = detailHeight;
    r.detail.controls = std::move(fields);
    r.groupFooter.height = 0;
    r.pageFooter.height = 0;
    return r;
}

ReportLayout printYStotalLayout() {
    const Headings h{1125};
    const int d = 570;
    return voucher(7380, 7365, 495, {97, 3465, 3450, 6210, 1125, 1800}, 1605,
                   {h(u"采 购 来 源", 0, 3975, L), h(u"种 类", 3975, 1125, C),
                    h(u"册 数", 5100, 1140, C), h(u"金 额", 6240, 1140, C)},
                   d,
                   {field(u"bookfrom", 40, 3969, L, d), field(u"typecount", 3969, 1134, C, d),
                    field(u"counts", 5103, 1134, C, d), field(u"jine", 6237, 1134, C, d)});
}

ReportLayout printYSmxLayout() {
    const Headings h{1155};
    const int d = 510;
    return voucher(13080, 13075, 585, {142, 6105, 2385, 8265, 765, 1695}, 1635,
                   {h(u"书    名", 0, 5295, L), h(u"著 者", 5380, 1700, L),
                    h(u"出版社", 7100, 3690, L), h(u"价格", 10803, 1134, R),
                    h(u"册数", 11937, 1140, R)},
                   d,
                   {field(u"bookname", 40, 5295, L, d, true), field(u"author", 5380, 1700, L, d),
                    field(u"publisher", 7095, 3690, L, d), field(u"price", 10803, 1134, R, d),
                    field(u"counts", 11937, 1134, R, d)});
}

} // namespace

#define ORVANE_REPORT_IMPL(name)                                                                   \
    name::name() : vb::DataReport(QStringLiteral(#name), name##Layout()) {}

ORVANE_REPORT_IMPL(printCG)
ORVANE_REPORT_IMPL(printMX)
ORVANE_REPORT_IMPL(printLeibie)
ORVANE_REPORT_IMPL(printJinECB)
ORVANE_REPORT_IMPL(printJinEYFZ)
ORVANE_REPORT_IMPL(printJinELV)
ORVANE_REPORT_IMPL(printTotalJine)
ORVANE_REPORT_IMPL(printYStotal)
ORVANE_REPORT_IMPL(printYSmx)
