#include "purchase/caigouRules.h"

#include "data/publicHanshu.h"
#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/formkit.h"
#include "platform/msgbox.h"
#include "platform/vb.h"

namespace caigou {

namespace {

struct FieldDef {
    const char* column;
    const char16_t* label;
    int maxLen;
};

// The form's fields in index order: column, label, characters allowed.
constexpr FieldDef kFields[kFieldCount] = {
    {"bookfrom", u"来  源：", 30},   {"bookname", u"书  名：", 50},
    {"author", u"著  者：", 30},     {"zdcode", u"征订号：", 20},
    {"isbn", u"  ISBN：", 13},       {"publisher", u"出版者：", 30},
    {"pubplace", u"出版地：", 10},   {"pubdate", u"出版日期：", 11},
    {"edition", u"版本版次：", 20},  {"pages", u"  页  码：", 0},
    {"measure", u"  开  本：", 10},  {"classcode", u"  预分类：", 10},
    {"docclass", u"文献类型：", 10}, {"lagclass", u"作品语种：", 15},
    {"price", u"  估  价：", 0},     {"cgff", u"采购方式：", 8},
    {"yddate", u"预定日期：", 0},    {"bookcount", u"预定册数：", 0},
    {"", u"  批  号：", 20},
};

struct CodeList {
    int index;
    const char16_t* lookup;
    bool doubleInLookup;
    const char16_t* label;
    const char16_t* insert;
};

// The four open code lists. The book-size look-up alone takes the text raw: a quote in a
// book size makes that statement fail, and so it has always been.
constexpr CodeList kCodeLists[] = {
    {10, u"Select measure From cck Where measure='", false, u"图书尺寸：‘",
     u"Insert Into cck (measure) Values ('"},
    {12, u"Select docclass From wxlx Where docclass='", true, u"文献类型：‘",
     u"Insert Into wxlx (docclass) Values ('"},
    {13, u"Select code From global Where type='language' And code='", true, u"作品语言：‘",
     u"Insert Into global (type,code) Values ('language','"},
    {15, u"Select code From global Where type='cgkcgff' And code='", true, u"采购方式：‘",
     u"Insert Into global (type,code) Values ('cgkcgff','"},
};

bool found(adodb::Connection& conn, const QString& sql) {
    adodb::Recordset rs;
    rs.Open(sql, conn, adodb::adOpenDynamic, adodb::adLockOptimistic, adodb::adCmdText);
    return !rs.EOF_();
}

LeaveResult sourceRule(const QString& text, adodb::Connection& conn) {
    LeaveResult r;
    if (found(conn, QStringLiteral("Select publisher From cggys Where publisher='") +
                        sqlText(text) + QStringLiteral("'")))
        return r;
    // A source need not be a listed supplier: on No the text stays and the focus moves on.
    if (vb::MsgBox(QStringLiteral("采购来源：‘") + text + QStringLiteral("’不存在，是否添加。"),
                   vb::vbYesNo + vb::vbCritical, vb::kMsgTitle) == vb::vbYes)
        r.addSource = true;
    return r;
}

LeaveResult numberRule(int index, Record& rec) {
    LeaveResult r;
    if (!vb::IsNumeric(rec[index])) {
        vb::MsgBox(QStringLiteral("无效数字格式，取消该操作。"), vb::vbCritical, vb::kMsgTitle);
        rec[index].clear();
        r.focus = index;
        return r;
    }
    // Val reads from the left: "007" -> 7, "12.50" -> 12.5, "1,200" -> 1.
    rec[index] = vb::CStr(vb::Val(rec[index]));
    return r;
}

LeaveResult codeListRule(const CodeList& list, Record& rec, adodb::Connection& conn) {
    LeaveResult r;
    const QString& text = rec[list.index];
    const QString key = list.doubleInLookup ? sqlText(text) : text;
    if (found(conn, QString::fromUtf16(list.lookup) + key + QStringLiteral("'"))) return r;
    if (vb::MsgBox(QString::fromUtf16(list.label) + text + QStringLiteral("’不存在，是否添加。"),
                   vb::vbYesNo + vb::vbCritical, vb::kMsgTitle) == vb::vbYes) {
        conn.Execute(QString::fromUtf16(list.insert) + sqlText(text) + QStringLiteral("')"));
        return r;
    }
    rec[list.index].clear();
    r.focus = list.index;
    return r;
}

} // namespace

QString fieldName(int16_t index) {
    if (index < 0 || index > 17) return {};
    return QString::fromLatin1(kFields[index].column);
}

bool isNumberField(int index) {
    return index == 9 || index == 14 || index == 17;
}

int maxLength(int index) {
    return index >= 0 && index < kFieldCount ? kFields[index].maxLen : 0;
}

QString fieldLabel(int index) {
    return index >= 0 && index < kFieldCount ? QString::fromUtf16(kFields[index].label) : QString();
}

QString sqlText(const QString& s) {
    return vb::Replace(s, QStringLiteral("'"), QStringLiteral("''"));
}

QString isbnPrefix(const QString& isbn) {
    const int first = vb::InStr(isbn, QStringLiteral("-"));
    if (first == 0) return {};
    const int second = vb::InStr(first + 1, isbn, QStringLiteral("-"));
    if (second == 0) return {};
    return vb::Left(isbn, second - 1);
}

LeaveResult isbnRule(int index, Record& rec, bool formatFirst, adodb::Connection& conn) {
    LeaveResult r;
    if (formatFirst) rec[index] = formatIsbn(rec[index]);
    const QString verdict = checkIsbn(rec[index]);
    if (verdict != QStringLiteral("yes")) {
        if (vb::MsgBox(verdict + QStringLiteral("\r\n") +
                           QStringLiteral("是否使用该错误的ISBN号？(y/n)"),
                       vb::vbYesNo + vb::vbInformation, vb::kMsgTitle) != vb::vbYes) {
            rec[index].clear();
            r.focus = index;
            return r;
        }
    }
    const QString prefix = isbnPrefix(rec[index]);
    if (prefix.isEmpty()) return r;
    // The prefix goes in as it stands: an ISBN is digits and hyphens once it got here.
    adodb::Recordset rs;
    rs.Open(QStringLiteral("Select C_CBD,C_CBS From cbk Where C_SBN='") + prefix +
                QStringLiteral("'"),
            conn, adodb::adOpenDynamic, adodb::adLockOptimistic, adodb::adCmdText);
    if (rs.EOF_()) return r;
    if (rs.isNull(1) || rs.isNull(0)) vb::raise(94, QStringLiteral("无效使用 Null"));
    rec[5] = rs.text(1);
    rec[6] = rs.text(0);
    return r;
}

LeaveResult leaveField(int addType, int index, Record& rec, adodb::Connection& conn) {
    if (addType != addAdding && addType != addEditing) return {};
    if (index < 0 || index >= kFieldCount) return {};
    rec[index] = vb::Trim(rec[index]);
    if (rec[index].isEmpty() || index >= 18) return {};
    switch (index) {
    case 0:
        return sourceRule(rec[0], conn);
    case 4:
        return isbnRule(4, rec, true, conn);
    case 9:
    case 14:
    case 17:
        return numberRule(index, rec);
    case 11:
        rec[11] = vb::UCase(rec[11]);
        return {};
    default:
        for (const CodeList& list : kCodeLists)
            if (list.index == index) return codeListRule(list, rec, conn);
        return {};
    }
}

CheckResult checkInput(const Record& rec) {
    struct Required {
        int index;
        const char16_t* text;
    };
    static constexpr Required before[] = {
        {0, u"图书采购'来 源'不能为空，取消该操作。"},
        {1, u"图书采购'书  名'不能为空，取消该操作。"},
        {14, u"图书采购'估 价'不能为空，取消该操作。"},
        {15, u"图书采购'采购方式'不能为空，取消该操作。"},
    };
    for (const Required& q : before)
        if (rec[q.index].isEmpty()) {
            vb::MsgBox(QString::fromUtf16(q.text), vb::vbCritical, vb::kMsgTitle);
            return {false, q.index};
        }
    const QString& d = rec[16];
    if (d.isEmpty() || !vb::IsDate(d)) {
        vb::MsgBox(QStringLiteral("请输入正确的日期格式(例如:2003-01-01)"), vb::vbInformation,
                   vb::kMsgTitle);
        return {false, 16};
    }
    // A date that does not begin with its year (1/2/2003) is refused too.
    if (!vb::IsNumeric(vb::Left(d, 4))) {
        vb::MsgBox(QStringLiteral("请输入完整的日期格式!(例如:2003-01-01)"), vb::vbInformation,
                   vb::kMsgTitle);
        return {false, 16};
    }
    if (rec[17].isEmpty()) {
        vb::MsgBox(QStringLiteral("图书采购'预定册数'不能为空，取消该操作。"), vb::vbCritical,
                   vb::kMsgTitle);
        return {false, 17};
    }
    return {};
}

} // namespace caigou
