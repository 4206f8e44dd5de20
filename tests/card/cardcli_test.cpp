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

namespace {

QByteArray gbkRecord(const std::vector<Field>& fields) {
    return gbk::encode(record(fields));
}

struct ToolRun {
    int status;
    QString out, err;
};

// The tool in process; `writable` false gives it an output that refuses every write.
ToolRun runTool(const QStringList& args, QByteArray input, bool writable = true) {
    QString error;
    const auto options = card::parseArguments(args, &error);
    EXPECT_TRUE(options) << error.toStdString();
    QBuffer in(&input), out, err;
    in.open(QIODevice::ReadOnly);
    out.open(writable ? QIODevice::WriteOnly : QIODevice::ReadOnly);
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
    auto o = card::parseArguments({}, &error);
    ASSERT_TRUE(o);
    EXPECT_TRUE(o->layout == card::Layout::Card && !o->view && o->files.isEmpty());
    o = card::parseArguments({"--fields", "a.mrc", "-", "--gbk", "--", "--raw"}, &error);
    ASSERT_TRUE(o);
    EXPECT_TRUE(o->layout == card::Layout::Fields && o->gbkOutput);
    EXPECT_EQ(o->files, (QStringList{"a.mrc", "-", "--raw"}));
    const std::pair<QStringList, const char*> bad[] = {{{"--card", "--raw"}, "只能选一个"},
                                                       {{"--view", "--fields"}, "不能与"},
                                                       {{"--cards"}, "未知选项: --cards"}};
    for (const auto& [args, said] : bad) {
        error.clear();
        EXPECT_FALSE(card::parseArguments(args, &error)) << args.join(' ').toStdString();
        EXPECT_TRUE(error.contains(QString::fromUtf8(said))) << error.toStdString();
    }
    EXPECT_TRUE(card::parseArguments({"--raw", "--raw"}, &error));
}

TEST(CardCli, SplitterCutsAtRecordEndsAcrossChunks) {
    auto split = [](const QByteArray& stream, bool byteByByte) {
        QList<QByteArray> got;
        card::RecordSplitter s(
            [&](const QByteArray& r) { got << QByteArray(r.constData(), r.size()); });
        if (byteByByte) {
            for (char c : stream) s.feed(&c, 1);
        } else {
            s.feed(stream.constData(), stream.size());
        }
        s.finish();
        return got;
    };
    const QByteArray stream = QByteArray("AAA\x1d\r\nBBB\x1d\n\x1d") + "CC";
    const QList<QByteArray> expected{"AAA\x1d", "BBB\x1d", "\x1d", "CC"};
    EXPECT_EQ(split(stream, true), expected);
    EXPECT_EQ(split(stream, false), expected);
    // Line breaks after the last record are no record.
    EXPECT_EQ(split("X\x1d\r\n\n", false), QList<QByteArray>{"X\x1d"});
}

TEST(CardCli, BatchWithABadRecord) {
    const QByteArray input =
        gbkRecord({{"200", "␟a甲书␞"}}) + "\n" + QByteArray("00010nam0 22xxxxx   450 \x1e\x1d") +
        "\n" + gbkRecord({{"200", "␟f某著␟a乙书␞"}}) +
        gbkRecord(workedFields()).replace(23, 1, "!") // leader junk does no harm
        + QByteArray("00100nam0 2200030   450 2001\x1e\x1d");
    const ToolRun r = runTool({}, input);
    EXPECT_EQ(r.status, 1);
    const QStringList cards = r.out.split(QStringLiteral("\f\n"));
    ASSERT_EQ(cards.size(), 3);
    EXPECT_EQ(cards[0], QStringLiteral("\n\n  甲书\x1e\n\n  \n\n  Ⅰ.甲··· \n"));
    EXPECT_TRUE(cards[1].startsWith(QStringLiteral("\n\n  乙书\x1e")));
    EXPECT_TRUE(cards[2].contains(QStringLiteral("Ⅳ.TP311.12")));
    // Each refused record and each message is named by its number.
    EXPECT_EQ(
        r.err,
        QStringLiteral("orvane-card: (标准输入): 第2条记录: 实时错误 '13': 类型不匹配\n"
                       "orvane-card: (标准输入): 第3条记录: 本条记录缺少题名，无法正常显示！\n"
                       "orvane-card: (标准输入): 第5条记录: 地址目次区数据出现错误，校验失败！\n"));
}

TEST(CardCli, LongBatchKeepsOrderAndNumbers) {
    // More records than one batch: the cards come out in input order on every core, and a
    // bad record deep in the file is named by its number.
    QByteArray input;
    for (int i = 1; i <= 5000; ++i)
        input += i == 3001 ? QByteArray("00010nam0 22xxxxx   450 \x1e\x1d")
                           : gbkRecord({{"200", QStringLiteral("␟a书%1␞").arg(i)}});
    const ToolRun r = runTool({}, input);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err,
              QStringLiteral("orvane-card: (标准输入): 第3001条记录: 实时错误 '13': 类型不匹配\n"));
    const QStringList cards = r.out.split(QStringLiteral("\f\n"));
    ASSERT_EQ(cards.size(), 4999);
    for (int k = 0; k < cards.size(); ++k)
        ASSERT_TRUE(
            cards[k].startsWith(QStringLiteral("\n\n  书%1\x1e\n").arg(k < 3000 ? k + 1 : k + 2)))
            << k;
}

TEST(CardCli, FieldsRawGbkAndUnwritableOutput) {
    const QByteArray input = gbkRecord(workedFields());
    ToolRun r = runTool({"--fields"}, input);
    EXPECT_EQ(r.status, 0);
    EXPECT_TRUE(r.err.isEmpty());
    EXPECT_EQ(r.out.section(u'\n', 3, 3),
              QStringLiteral("2001 $a数据结构$e算法与实践$f王小明著$g李华译"));
    EXPECT_EQ(r.out.count(u'\n'), 15); // the leader and 14 fields, each line ended
    // The record text as it stands, control characters included.
    r = runTool({"--raw", "--gbk"}, input + input);
    EXPECT_EQ(r.out,
              record(workedFields()) + QStringLiteral("\n\f\n") + record(workedFields()) + u'\n');
    // Only blanks and line breaks: no record, and that is no failure.
    r = runTool({}, "\r\n\n");
    EXPECT_TRUE(r.status == 0 && r.out.isEmpty());
    r = runTool({"--fields"}, input, false);
    EXPECT_EQ(r.status, 2);
    EXPECT_TRUE(r.err.startsWith(QStringLiteral("orvane-card: 无法写出结果")))
        << r.err.toStdString();
}

TEST(CardCli, RecordTextOfBadBytes) {
    // A lead byte cut short reads as "?", and the cuts are made on what the text encodes
    // to, so directory and text still agree.
    const card::MarcText t = card::recordText(QByteArray("AB\xd6"));
    EXPECT_EQ(t.text(), QStringLiteral("AB?"));
    EXPECT_EQ(t.bytes(), QByteArray("AB?"));
    EXPECT_EQ(card::recordText(gbk::encode(QStringLiteral("甲书"))).text(), QStringLiteral("甲书"));
}

// The executable itself: its exit status and what it says, for files, standard input,
// bad arguments and output that cannot be written.
TEST(CardCli, Executable) {
    QTemporaryDir dir;
    const QString good = dir.filePath("good.mrc"), missing = dir.filePath("missing.mrc");
    QFile f(good);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(gbkRecord(workedFields()) + gbkRecord({{"200", "␟a甲书␞"}}));
    f.close();
    const QString tool = QStringLiteral(ORVANE_CARD_TOOL);
    struct Case {
        QStringList args;
        QByteArray input;
        QString output; // "" the pipe, "/dev/full", or "-" for a closed standard output
        int status;
        QString said, shown; // parts of standard error and output
        int cards = 0;       // form feeds between the cards written
    };
    // clang-format off
    const Case cases[] = {
        {{"--card", good, missing}, {}, {}, 2, "无法打开 " + missing, QStringLiteral("  ISBN 7-5000-1234-5（精装）:CNY25.00\x1e\n"), 1},
        {{"--fields"}, "00010nam0 2200024   450 2\x1e\x1d", {}, 1, "第1条记录", {}},
        {{"--bogus"}, {}, {}, 2, "用法", {}},
#ifdef Q_OS_UNIX
        {{"--card", good}, {}, "/dev/full", 2, "无法写出结果", {}},
        {{"--help"}, {}, "/dev/full", 2, "无法写出用法说明", {}},
        {{"--raw", good}, {}, "-", 2, "无法写出结果", {}},
#endif
    };
    // clang-format on
    for (const Case& c : cases) {
        QProcess p;
        if (c.output == QLatin1String("-")) {
            p.start(QStringLiteral("/bin/sh"),
                    QStringList{"-c", "exec \"$0\" \"$@\" >&-", tool} + c.args);
        } else {
            if (!c.output.isEmpty()) p.setStandardOutputFile(c.output);
            p.start(tool, c.args);
        }
        ASSERT_TRUE(p.waitForStarted());
        p.write(c.input);
        p.closeWriteChannel();
        ASSERT_TRUE(p.waitForFinished(30000));
        const QString out = QString::fromUtf8(p.readAllStandardOutput());
        const QString err = QString::fromUtf8(p.readAllStandardError());
        SCOPED_TRACE(c.args.join(' ').toStdString() + " > " + c.output.toStdString() + ": " +
                     err.toStdString());
        EXPECT_EQ(p.exitCode(), c.status);
        EXPECT_TRUE(err.contains(c.said) && out.contains(c.shown));
        EXPECT_EQ(c.output.isEmpty() ? out.count(u'\f') : c.cards, c.cards);
    }
}
