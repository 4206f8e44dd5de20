// orvane-card: arguments, cutting a stream into records, the output of a batch with bad
// records in it, and the executable itself once.

#include "cardrecords.h"

#include "card/cardcli.h"
#include "platform/gbk.h"

#include <QBuffer>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace cardtest;
using namespace Qt::StringLiterals;

namespace {

QByteArray gbkRecord(const std::vector<Field>& fields) {
    return gbk::encode(record(fields));
}

struct ToolRun {
    int status;
    QString out, err;
};

ToolRun runTool(const QStringList& args, QByteArray input) {
    QString error;
    const auto options = card::parseArguments(args, &error);
    EXPECT_TRUE(options) << error.toStdString();
    QBuffer in(&input), out, err;
    in.open(QIODevice::ReadOnly);
    out.open(QIODevice::WriteOnly);
    err.open(QIODevice::WriteOnly);
    const int status = card::runCardTool(*options, in, out, err);
    const auto text = [&](const QByteArray& b) {
        return options->gbkOutput ? gbk::decode(b) : QString::fromUtf8(b);
    };
    return {status, text(out.data()), text(err.data())};
}

} // namespace

TEST(CardCli, Arguments) {
    QString error;
    auto o = card::parseArguments({"--fields", "a.mrc", "-", "--gbk", "--", "--raw"}, &error);
    ASSERT_TRUE(o);
    EXPECT_TRUE(o->layout == card::Layout::Fields && o->gbkOutput && !o->view);
    EXPECT_EQ(o->files, (QStringList{"a.mrc", "-", "--raw"}));
    // Two layouts, or the viewer with a layout, are refused; so is an unknown option.
    for (const QStringList& args :
         {QStringList{"--card", "--raw"}, {"--view", "--fields"}, {"--cards"}})
        EXPECT_FALSE(card::parseArguments(args, &error)) << args.join(' ').toStdString();
    EXPECT_EQ(error, QStringLiteral("未知选项: --cards"));
}

TEST(CardCli, SplitterCutsAtRecordEndsAcrossChunks) {
    const QByteArray stream = QByteArray("AAA\x1d\r\nBBB\x1d\n\x1d") + "CC";
    for (qsizetype chunk : {1, 1000}) {
        QList<QByteArray> got;
        card::RecordSplitter s(
            [&](const QByteArray& r) { got << QByteArray(r.constData(), r.size()); });
        for (qsizetype at = 0; at < stream.size(); at += chunk)
            s.feed(stream.constData() + at, std::min(chunk, stream.size() - at));
        s.finish();
        EXPECT_EQ(got, (QList<QByteArray>{"AAA\x1d", "BBB\x1d", "\x1d", "CC"})) << chunk;
    }
}

TEST(CardCli, LongBatchWithBadRecords) {
    // More records than one batch: the cards come out in input order on every core, each
    // refused record and each message is named by its number, and the tool goes on.
    QByteArray input;
    for (int i = 1; i <= 5000; ++i) {
        if (i == 2)
            input += QByteArray("00010nam0 22xxxxx   450 \x1e\x1d");
        else if (i == 3001)
            input += QByteArray("00100nam0 2200030   450 2001\x1e\x1d");
        else
            input += gbkRecord({{"200", (i == 3 ? u"␟f某著␟a书%1␞"_s : u"␟a书%1␞"_s).arg(i)}});
    }
    const ToolRun r = runTool({}, input);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err,
              QStringLiteral(
                  "orvane-card: (标准输入): 第2条记录: 实时错误 '13': 类型不匹配\n"
                  "orvane-card: (标准输入): 第3条记录: 本条记录缺少题名，无法正常显示！\n"
                  "orvane-card: (标准输入): 第3001条记录: 地址目次区数据出现错误，校验失败！\n"));
    const QStringList cards = r.out.split(QStringLiteral("\f\n"));
    ASSERT_EQ(cards.size(), 4998);
    EXPECT_EQ(cards[0], QStringLiteral("\n\n  书1\x1e\n\n  \n\n  Ⅰ.书··· \n"));
    for (int k = 1; k < cards.size(); ++k)
        ASSERT_TRUE(
            cards[k].startsWith(QStringLiteral("\n\n  书%1\x1e\n").arg(k < 2999 ? k + 2 : k + 3)))
            << k;
}

TEST(CardCli, FieldsRawGbkAndBlankInput) {
    const QByteArray input = gbkRecord(workedFields());
    // LF line ends in place of CR LF, one record after another.
    ToolRun r = runTool({"--fields"}, input + input);
    const QString fields =
        card::showZiduan(workedRecord(), [](const QString&) {})->replace("\r\n", "\n");
    EXPECT_EQ(r.status, 0);
    EXPECT_EQ(r.out + r.err, fields + QStringLiteral("\f\n") + fields);
    // The record text as it stands, control characters included.
    r = runTool({"--raw", "--gbk"}, input + input);
    EXPECT_EQ(r.out,
              record(workedFields()) + QStringLiteral("\n\f\n") + record(workedFields()) + u'\n');
    // Only blanks and line breaks: no record, and that is no failure.
    r = runTool({}, "\r\n\n");
    EXPECT_TRUE(r.status == 0 && r.out.isEmpty());
}

// The executable itself: its exit status and what it says.
TEST(CardCli, Executable) {
    QTemporaryDir dir;
    const auto file = [&](const char* name, const QByteArray& bytes) {
        QFile f(dir.filePath(name));
        EXPECT_TRUE(f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size());
        return f.fileName();
    };
    const QString good =
        file("good.mrc", gbkRecord(workedFields()) + gbkRecord({{"200", "␟a甲书␞"}}));
    const QString bad = file("bad.mrc", "00010nam0 2200024   450 2\x1e\x1d");
    const QString missing = dir.filePath("missing.mrc");
    const QString tool = QStringLiteral(ORVANE_CARD_TOOL);
    struct Case {
        QStringList args;
        QString output; // "" the pipe, or "/dev/full"
        int status;
        QString said, shown; // parts of standard error and output
    };
    // clang-format off
    const Case cases[] = {
        {{"--card", good, missing}, {}, 2, "无法打开 " + missing, QStringLiteral("Ⅳ.TP311.12\x1e\n\f\n\n\n  甲书\x1e")},
        {{"--fields", bad}, {}, 1, "第1条记录", {}},
#ifdef Q_OS_UNIX
        {{"--card", good}, "/dev/full", 2, "无法写出结果", {}},
#endif
    };
    // clang-format on
    for (const Case& c : cases) {
        QProcess p;
        if (!c.output.isEmpty()) p.setStandardOutputFile(c.output);
        p.start(tool, c.args);
        p.closeWriteChannel();
        ASSERT_TRUE(p.waitForFinished(30000));
        const QString out = QString::fromUtf8(p.readAllStandardOutput());
        const QString err = QString::fromUtf8(p.readAllStandardError());
        SCOPED_TRACE(c.args.join(' ').toStdString() + " > " + c.output.toStdString() + ": " +
                     err.toStdString());
        EXPECT_EQ(p.exitCode(), c.status);
        EXPECT_TRUE(err.contains(c.said) && out.contains(c.shown));
    }
}
