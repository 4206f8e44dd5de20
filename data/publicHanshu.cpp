#include "data/publicHanshu.h"

#include "data/globals.h"
#include "data/isbn.h"
#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/msgbox.h"
#include "platform/vb.h"

QDateTime serverDate() {
    QDateTime result = QDateTime::currentDateTime();
    vb::Err().Clear();
    // Errors jump to the report at the end; the local time stays the answer.
    vb::resume([&] {
        adodb::Connection conn;
        conn.Open(gConnStr, QString(), QString(), adodb::adOptionUnspecified);
        adodb::Recordset rs;
        rs.Open(QStringLiteral("select getdate()"), conn, adodb::adOpenKeyset,
                adodb::adLockOptimistic, adodb::adOptionUnspecified);
        if (rs.RecordCount() > 0) {
            const QVariant v = rs.value(0);
            QDateTime d = v.toDateTime();
            if (!d.isValid()) {
                // A driver that hands the date over as text ("2003-01-31 10:00:00.000").
                const QString s = v.toString();
                d = QDateTime::fromString(s.left(23), QStringLiteral("yyyy-MM-dd HH:mm:ss.zzz"));
                if (!d.isValid())
                    d = QDateTime::fromString(s.left(19), QStringLiteral("yyyy-MM-dd HH:mm:ss"));
            }
            if (d.isValid()) result = d;
        }
    });
    if (vb::Err().Number != 0)
        vb::MsgBox(QStringLiteral("获取服务器日期时出现错误！原因如下：") + QStringLiteral("\r\n") +
                       vb::Err().Description,
                   vb::vbInformation, vb::kMsgTitle);
    return result;
}

int16_t fieldKind(const QString& name) {
    if (name == QStringLiteral("日期") || name == QStringLiteral("预定日期") ||
        name == QStringLiteral("验收日期"))
        return 2;
    if (name == QStringLiteral("验收册数") || name == QStringLiteral("验收价格") ||
        name == QStringLiteral("预定价格") || name == QStringLiteral("预定册数") ||
        name == QStringLiteral("页码"))
        return 1;
    return 0;
}

QString isbnCheckChar(const QString& nine) {
    // A character outside Latin-1 turns into '?', which is no digit either.
    const char c = orvane::isbn10Check(nine.toLatin1().toStdString());
    return c ? QString(QChar::fromLatin1(c)) : QString();
}

QString checkIsbn(const QString& text) {
    const QString crlf = QStringLiteral("\r\n");
    if (vb::Len(text) != 13) return QStringLiteral("Error:ISBN格式错误.ISBN号长度应该为13位");
    if (text.count(u'-') != 3)
        return QStringLiteral("Error:ISBN格式错误.ISBN号应该分为4段") + crlf +
               QStringLiteral("      第一段:国家、区域或语言集号") + crlf +
               QStringLiteral("      第二段:出版商代号") + crlf +
               QStringLiteral("      第三段:图书号") + crlf +
               QStringLiteral("      第四段:校验位") + crlf;

    const QStringList seg = vb::Split(text, QStringLiteral("-"));
    struct SegmentRule {
        const char16_t* empty;
        const char16_t* fault;
    };
    static constexpr SegmentRule rules[4] = {
        {u"       ISBN号第一段:国家、区域或语言集号不能为空！",
         u"       ISBN号第一段:国家、区域或语言集号只能为数字！"},
        {u"       ISBN号第二段:出版商代号不能为空！",
         u"       ISBN号第二段:出版商代号只能为数字！"},
        {u"       ISBN号第三段:图书号不能为空！", u"       ISBN号第三段:图书号只能为数字！"},
        {u"       ISBN号第四段:校验位不能为空！", u"       ISBN号第四段:校验位只应为一位字符！"},
    };
    QString result = QStringLiteral("ISBN格式错误！") + crlf;
    bool fault = false;
    for (int i = 0; i < 4; ++i) {
        const QString& s = seg[i];
        if (s.isEmpty()) {
            result += QString::fromUtf16(rules[i].empty) + crlf;
            fault = true;
        } else if (i < 3 ? !vb::IsNumeric(s) : vb::Len(s) >= 2) {
            result += QString::fromUtf16(rules[i].fault) + crlf;
            fault = true;
        }
    }
    if (fault) return result;

    const QString nine = vb::Left(vb::Replace(text, QStringLiteral("-"), QString()), 9);
    if (!vb::IsNumeric(nine))
        return QStringLiteral("Error:ISBN格式错误.ISBN号除校验位外只能为数字字符");
    // A numeric text with a sign or a point in it has no check character: it is simply wrong.
    const QString check = isbnCheckChar(nine);
    if (!check.isEmpty() && vb::Right(text, 1) == check) return QStringLiteral("yes");
    return QStringLiteral("Error:ISBN号校验位错误");
}

QString formatIsbn(const QString& text) {
    const QString bare = vb::Replace(text, QStringLiteral(" "), QString());
    const int len = vb::Len(bare);
    if ((len != 10 && len != 13) || !vb::IsNumeric(bare)) return bare;

    // From here a failure returns what we have; the typed (or EAN) check digit is dropped.
    const QString nine = vb::Left(vb::Right(bare, 10), 9);
    const QString check = isbnCheckChar(nine);
    if (check.isEmpty()) return bare; // "1,234,5678" passes the numeric test but has no digits
    const QString group = vb::Left(nine, 1);
    const QString rest = vb::Mid(nine, 2);
    QString found;
    try {
        adodb::Connection conn;
        conn.Open(gConnStr);
        for (int n = 2; n <= 7 && found.isEmpty(); ++n) {
            const QString publisher = vb::Left(rest, n);
            adodb::Recordset rs;
            rs.Open(QStringLiteral("select cbkid from CBK where c_sbn='") + group +
                        QStringLiteral("-") + publisher + QStringLiteral("'"),
                    conn, adodb::adOpenDynamic, adodb::adLockOptimistic, adodb::adCmdText);
            if (!rs.EOF_())
                found = group + QStringLiteral("-") + publisher + QStringLiteral("-") +
                        vb::Mid(rest, n + 1) + QStringLiteral("-") + check;
        }
    } catch (const vb::VbError&) {
        found.clear();
    }
    vb::Err().Clear();
    return found.isEmpty() ? bare : found;
}
