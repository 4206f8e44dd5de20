// The field formatters, one table of fields and the card text each gives, past what the
// worked card already shows; the results keep the ␞ where the last value carries it.

#include "cardrecords.h"

#include "card/kapianfmt.h"

#include <gtest/gtest.h>

#include <functional>

using namespace cardtest;

namespace {

using Formatter = std::function<QString(QString&, QStringList&)>;
template <QString (*F)(QString&)> QString plain(QString& s, QStringList&) {
    return F(s);
}

const std::map<QString, Formatter>& formatters() {
    // clang-format off
    static const std::map<QString, Formatter> table = {
        {"010", plain<card::Kapian010>}, {"205", plain<card::Kapian205>}, {"206", plain<card::Kapian206>},
        {"207", plain<card::Kapian207>}, {"208", plain<card::Kapian208>}, {"210", plain<card::Kapian210>},
        {"215", plain<card::Kapian215>}, {"225", plain<card::Kapian225>}, {"327", plain<card::Kapian327>},
        {"686", plain<card::Kapian686>}, {"A", [](QString& s, QStringList&) { return card::KapianZiduanA(s); }},
        {"200", [](QString& s, QStringList& msgs) { return card::Kapian200(s, [&](const QString& m) { msgs << m; }); }}};
    // clang-format on
    return table;
}

} // namespace

TEST(CardFormatter, GivesTheCardText) {
    struct {
        const char* formatter;
        const char* field;
        const char* expected;
        int messages = 0; // boxes of Kapian200
    } const cases[] = {
        // clang-format off
    // 010: "ISBN " on each number, $z on a line of its own, ASCII colon before the price.
        {"010", "␟a甲␟z乙␟dCNY5␞", "ISBN 甲\r\n  无效的ISBN:乙:CNY5␞"},
        {"010", "␟b平装␟a甲␞", "（平装）\r\n  ISBN 甲␞"},
        {"010", "␟A甲␞", ""},
    // 200: field order, its marks, and the two ways of a responsibility without a title.
        {"200", "␟f王小明著␟g李华译␞", "李华译␞", 2},
        {"200", "␟g李华译␟f王小明著␞", "李华译／王小明著␞", 1},
        {"200", "␟a甲␟a乙␟c丙␟d丁␟h戊␟i己␟v庚␞", "甲，乙，丙＝丁·戊，己．庚␞"},
        {"200", "␟e副题␟a正题␞", "副题，正题␞"},
        {"200", "␟a  甲书  ␟b电子资源␞", "甲书"}, // $b is not one of its codes
        {"200", "␟a  ␞", "␞"},
    // 205: only $a and $f, the ASCII comma, a lone $f is lost.
        {"205", "␟a第1版␟a第2版␞", "·—第2版␞"},
        {"205", "␟f甲␟a第2版␟f乙␞", "·—第2版,甲；乙␞"},
        {"205", "␟f张三修订␞", ""},
        {"206", "␟a甲␟a乙␞", "·—甲、乙␞"},
        {"207", "␟a甲␟a乙␞", "·—乙␞"},
        {"208", "␟a甲␟d乙␟d丙␞", "·—甲=乙=丙␞"},
        {"208", "␟d甲␞", ""},
    // 210: the bracket of $b opens full-width and closes ASCII; printing in brackets.
        {"210", "␟a北京␟e上海␟h工厂␞", "·—北京（上海，工厂␞）"},
        {"210", "␟c出版社␟b地址␟a北京␟a上海␞", "·—：出版社（地址)；北京；上海␞"},
        {"210", "␟b地址␞", "·—（地址␞)"},
        {"210", "␟d2001␟e甲␟f乙␟g丙␟h丁␟e戊␞", "·—，2001（甲,乙：丙，丁；戊␞）"},
    // 215: its own line, fixed order, not trimmed.
        {"215", "␟e光盘␟d26cm␟c图␟a320页␞", "\r\n  320页␞：图；26cm+光盘"},
        {"215", "␟a甲␟a乙␟c丙␟c丁␟d戊␟d己␟e庚␟e辛 ␞", "\r\n  甲、乙：丁；戊、己+庚、辛 ␞"},
    // 225: its marks; a $f before a title is dropped without a word.
        {"225", "␟f主编␟a丛书␟d并列␟e副␟h分␟i名␟x1234␟f编␞", "丛书＝并列：副·分，名，1234／编␞"},
        {"327", "␟a第一章␟a第二章␞", "第一章·—第二章␞"},
        {"686", "␟aTP3␟aTP31 ␞", "TP3,TP31 ␞"},
        {"686", "␟bTP3␞", ""},
    // KapianZiduanA: the last $a, untrimmed.
        {"A", "␟a甲␟a乙␟b丙␞", "乙"},
        {"A", "0 ␟a 甲 ␞", " 甲 ␞"},
        // clang-format on
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.formatter) + " " + c.field);
        QString field = in(QString::fromUtf8(c.field));
        QStringList msgs;
        EXPECT_EQ(vis(formatters().at(QString::fromUtf8(c.formatter))(field, msgs)),
                  QString::fromUtf8(c.expected));
        EXPECT_EQ(msgs.size(), c.messages);
        for (const QString& m : msgs)
            EXPECT_EQ(m, QStringLiteral("本条记录缺少题名，无法正常显示！"));
    }
}
