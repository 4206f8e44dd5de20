#pragma once
// Made-up Chinese book records in ISO 2709 (GBK), the kind of batch a library loads from a
// cataloguing service. Leader lengths and base address are right, so yaz-marcdump reads the
// same file.

#include "platform/gbk.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <random>

namespace cardbench {

inline const QString kHan = QStringLiteral(
    "数据结构算法程序设计计算机网络操作系统原理应用基础教程中国历史文学研究现代汉语语法"
    "经济管理会计学市场营销心理学教育社会发展科学技术图书馆情报学信息检索编目分类法古籍");
inline const QStringList kPublishers = {"人民文学出版社", "机械工业出版社", "清华大学出版社",
                                        "高等教育出版社", "科学出版社",     "商务印书馆",
                                        "中华书局"};
inline const QStringList kClasses = {"TP311.12", "TP393", "I247.5", "K207", "F230", "O211"};

class Maker {
public:
    explicit Maker(unsigned seed) : m_rng(seed) {}

    QByteArray record(int n) {
        m_fields.clear();
        add("001", QStringLiteral("CAL%1").arg(n, 9, 10, QChar(u'0')));
        add("010",
            sub("  ",
                {{'a', QStringLiteral("7-%1-%2-X").arg(100 + pick(800)).arg(10000 + pick(89999))},
                 {'d', QStringLiteral("CNY%1.00").arg(10 + pick(90))}}));
        add("101", sub("0 ", {{'a', "chi"}}));
        const QString author = words(1) + QStringLiteral("著");
        QList<std::pair<char, QString>> title{{'a', words(2 + pick(4))}, {'f', author}};
        // Some records carry a subtitle or a summary, so their lengths vary as real ones do.
        if (pick(2)) title.insert(1, {'e', words(2 + pick(3))});
        add("200", sub("1 ", title));
        add("210", sub("  ", {{'a', "北京"},
                              {'c', kPublishers[pick(kPublishers.size())]},
                              {'d', QString::number(1990 + pick(36))}}));
        add("215", sub("  ", {{'a', QStringLiteral("%1页").arg(100 + pick(600))}, {'d', "26cm"}}));
        if (pick(3) == 0) add("330", sub("  ", {{'a', words(30 + pick(60))}}));
        for (int i = 0, k = 1 + pick(3); i < k; ++i) add("606", sub("0 ", {{'a', words(2)}}));
        add("690", sub("  ", {{'a', kClasses[pick(kClasses.size())]}, {'v', "4"}}));
        add("701", sub(" 0", {{'a', author}, {'4', "著"}}));
        return assemble();
    }

private:
    int pick(qsizetype n) { return int(m_rng() % unsigned(n)); }
    QString words(int n) {
        QString s;
        for (int i = 0; i < n; ++i) s += kHan.mid(pick(kHan.size() / 2) * 2, 2);
        return s;
    }
    QString sub(const char* indicators, const QList<std::pair<char, QString>>& subs) {
        QString s = QString::fromLatin1(indicators);
        for (const auto& [code, value] : subs) s += QString(QChar(31)) + QChar(code) + value;
        return s;
    }
    void add(const char* tag, const QString& text) {
        m_fields.append({QString::fromLatin1(tag), gbk::encode(text + QChar(30))});
    }
    QByteArray assemble() {
        QByteArray dir, data;
        for (const auto& [tag, bytes] : m_fields) {
            dir += tag.toLatin1();
            dir += QByteArray::number(bytes.size()).rightJustified(4, '0');
            dir += QByteArray::number(data.size()).rightJustified(5, '0');
            data += bytes;
        }
        dir += char(30);
        const qsizetype base = 24 + dir.size();
        const qsizetype total = base + data.size() + 1;
        return QByteArray::number(total).rightJustified(5, '0') + "nam0 22" +
               QByteArray::number(base).rightJustified(5, '0') + "   450 " + dir + data + char(29);
    }

    std::mt19937 m_rng;
    QList<std::pair<QString, QByteArray>> m_fields;
};

} // namespace cardbench
