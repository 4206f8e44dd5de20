#pragma once
// Records for the card tests, written the way a cataloguer reads them: ␟ for character 31,
// ␞ for 30, ␝ for 29. `in` turns such a text into the real characters and `vis` turns
// results back, so a failing comparison shows where a control character went.

#include "card/carddriver.h"
#include "platform/errors.h"
#include "platform/gbk.h"
#include "tests/support/printto.h"

#include <QString>
#include <QStringList>

#include <ostream>
#include <vector>

namespace cardtest {

inline QString shifted(QString s, char16_t from, char16_t to, int by) {
    for (QChar& c : s)
        if (c.unicode() >= from && c.unicode() <= to) c = QChar(char16_t(c.unicode() + by));
    return s;
}
inline QString in(const QString& s) {
    return shifted(s, 0x241D, 0x241F, -0x2400);
}
inline QString vis(const QString& s) {
    return shifted(s, 29, 31, 0x2400);
}

struct Field {
    QString tag;
    QString text; // with ␟ and the closing ␞
};

// A whole record: leader with the right length and base address, a directory whose
// lengths and starts count GBK bytes, ␞, the fields, ␝.
inline QString record(const std::vector<Field>& fields) {
    QString dir, data;
    for (const Field& f : fields) {
        const qsizetype n = gbk::byteLength(in(f.text)), start = gbk::byteLength(data);
        dir += f.tag +
               QStringLiteral("%1%2").arg(n, 4, 10, QChar(u'0')).arg(start, 5, 10, QChar(u'0'));
        data += in(f.text);
    }
    const QString body = dir + QChar(30) + data + QChar(29);
    return QStringLiteral("%1nam0 22%2   450 ")
               .arg(24 + gbk::byteLength(body), 5, 10, QChar(u'0'))
               .arg(24 + gbk::byteLength(dir) + 1, 5, 10, QChar(u'0')) +
           body;
}

// The made-up record of our card documentation.
inline std::vector<Field> workedFields() {
    return {
        {"001", "012345678␞"},
        {"010", "  ␟a7-5000-1234-5␟b精装␟dCNY25.00␞"},
        {"200", "1 ␟a数据结构␟e算法与实践␟f王小明著␟g李华译␞"},
        {"205", "  ␟a第2版␟f张三修订␞"},
        {"210", "  ␟a北京␟c示例出版社␟d2001␞"},
        {"215", "  ␟a320页␟c图␟d26cm␞"},
        {"225", "2 ␟a计算机丛书␟v第3辑␞"},
        {"300", "  ␟a本书由讲义整理而成␞"},
        {"320", "  ␟a有书目␞"},
        {"606", "0 ␟a数据结构␟x教材␞"},
        {"606", "0 ␟a算法␞"},
        {"690", "  ␟aTP311.12␞"},
        {"701", " 0␟a王小明␟4著␞"},
        {"702", " 0␟a李华␟4译␞"},
    };
}

// Its leader, length 00473 and base 00193, is the one the documentation shows.
inline QString workedRecord() {
    return record(workedFields());
}

// A record through one layout: its text (none when refused), messages and runtime error.
struct Outcome {
    std::optional<QString> text;
    QStringList messages;
    int error = 0;
};
inline Outcome run(bool card, const QString& marc) {
    Outcome r;
    const auto say = [&](const QString& m) { r.messages << m; };
    try {
        r.text = card ? card::showKapian(marc, say) : card::showZiduan(marc, say);
    } catch (const vb::VbError& e) {
        r.error = e.number();
    }
    return r;
}

// Lines joined with CR LF, as the layouts write them.
inline QString lines(const QStringList& l) {
    return l.join(QStringLiteral("\r\n"));
}

} // namespace cardtest
