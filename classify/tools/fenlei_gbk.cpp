// Turns the outline's UTF-8 source into fenlei.Qvx: GBK, CR LF line ends, as the program
// reads it. Refuses, with the line number, any text GBK cannot hold, so a stray character
// fails the build instead of showing as "?" to the librarian.
//
//   fenlei_gbk <source.txt> <fenlei.Qvx>

#include <QByteArray>
#include <QFile>
#include <QSaveFile>
#include <QString>
#include <QStringDecoder>
#include <QStringEncoder>

#include <cstdio>

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: fenlei_gbk <source.txt> <fenlei.Qvx>\n");
        return 2;
    }
    QFile in(QString::fromLocal8Bit(argv[1]));
    if (!in.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "fenlei_gbk: cannot read %s\n", argv[1]);
        return 1;
    }
    QByteArray raw = in.readAll();
    if (raw.startsWith("\xEF\xBB\xBF")) raw.remove(0, 3);

    QStringDecoder fromUtf8(QStringDecoder::Utf8);
    const QString text = fromUtf8.decode(raw);
    if (fromUtf8.hasError()) {
        std::fprintf(stderr, "fenlei_gbk: %s is not valid UTF-8\n", argv[1]);
        return 1;
    }

    QStringList lines = text.split(QLatin1Char('\n'));
    if (!lines.isEmpty() && lines.back().isEmpty()) lines.removeLast();

    QByteArray out;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        QString line = lines[i];
        if (line.endsWith(QLatin1Char('\r'))) line.chop(1);
        QStringEncoder toGbk("GBK");
        if (!toGbk.isValid()) {
            std::fprintf(stderr, "fenlei_gbk: no GBK codec in this Qt\n");
            return 1;
        }
        const QByteArray bytes = toGbk.encode(line);
        if (toGbk.hasError()) {
            std::fprintf(stderr, "%s:%lld: text that GBK cannot hold\n", argv[1],
                         static_cast<long long>(i + 1));
            return 1;
        }
        out += bytes;
        out += "\r\n";
    }

    QSaveFile file(QString::fromLocal8Bit(argv[2]));
    if (!file.open(QIODevice::WriteOnly) || file.write(out) != out.size() || !file.commit()) {
        std::fprintf(stderr, "fenlei_gbk: cannot write %s\n", argv[2]);
        return 1;
    }
    return 0;
}
