#pragma once
// Made-up outline files for the tests: UTF-8 lines in, GBK bytes with CR LF out, the way
// the shipped file is laid down.

#include "tests/support/printto.h"

#include <QFile>
#include <QStringEncoder>
#include <QStringList>

namespace fenleitest {

inline bool writeOutline(const QString& path, const QStringList& lines) {
    QStringEncoder enc("GBK");
    QByteArray bytes;
    for (const QString& l : lines) bytes += enc.encode(l) + QByteArray("\r\n");
    QFile f(path);
    return f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(bytes) == bytes.size();
}

// A small file of the shipped form that has every corner the reader must get right.
inline QStringList sampleOutline() {
    // clang-format off
    return {
        "说明：节前的行不读",
        "[大类表] 甲",
        "[二级类目]",
        "A0 近似的表头不开节",
        "   [二级类目表]",
        "A1 第一大类的第一个类",
        " A2 前有空格，不属于A",
        "TB 工业类的第一个类",
        "B1 第二大类的第一个类",
        "A3 第一大类的第三个类",
        "TP 工业类的第二个类",
        "[A8] 第一大类中方括号类目",
        "t1 小写类的类",
        "[A9]",
        "A10 结束行之后，不读",
        "A 不是大类，在节外",
        "  [大类表]   ",
        "A 第一大类",
        "   B 第二大类，前有空格",
        "",
        "T 工业类",
        "t 小写的类",
        " [X] 前有空格的方括号行不结束本节]",
        "[未完] ",
        "[随便什么]",
        "Z 结束行之后，不读",
    };
    // clang-format on
}

} // namespace fenleitest
