// orvane-card: arguments, cutting a stream into records, the output of a batch with bad
// records in it, and the executable itself once.

#include "cardrecords.h"

#include "card/cardcli.h"
#include "card/carddriver.h"
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
    QString out;
    QString err;
};

ToolRun runTool(const QStringList& args, const QByteArray& input) {
    QString error;
    const auto options = card::parseArguments(args, &error);
    EXPECT_TRUE(options) << error.toStdString();
    QByteArray inBytes = input;
    QBuffer in(&inBytes);
    in.open(QIODevice::ReadOnly);
    QBuffer out, err;
    out.open(QIODevice::WriteOnly);
    err.open(QIODevice::WriteOnly);
    const int status = card::runCardTool(*options, in, out, err);
    const bool gbkOut = options->gbkOutput;
    auto text = [gbkOut](const QByteArray& b) {
        return gbkOut ? gbk::decode(b) : QString::fromUtf8(b);
    };
    return {status, text(out.data()), text(err.data())};
}

} // namespace

TEST(CardCli, Arguments) {
    QString error;
    auto o = card::parseArguments({}, &error);
    ASSERT_TRUE(o);
    EXPECT_EQ(o->layout, card::Layout::Card);
    EXPECT_FALSE(o->view);
    EXPECT_TRUE(o->files.isEmpty());

    o = card::parseArguments({"--fields", "a.mrc", "-", "--gbk", "--", "--raw"}, &error);
    ASSERT_TRUE(o);
    EXPECT_EQ(o->layout, card::Layout::Fields);
    EXPECT_TRUE(o->gbkOutput);
    EXPECT_EQ(o->files, (QStringList{"a.mrc", "-", "--raw"}));

    struct Bad {
        QStringList args;
        const char* error;
    } bad[] = {
        {{"--card", "--raw"}, "只能选一个"},
        {{"--view", "--fields"}, "不能与"},
        {{"--cards"}, "未知选项: --cards"},
    };
    for (const Bad& b : bad) {
        error.clear();
        EXPECT_FALSE(card::parseArguments(b.args, &error)) << b.args.join(' ').toStdString();
        EXPECT_TRUE(error.contains(QString::fromUtf8(b.error))) << error.toStdString();
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
    for (int i = 1; i <= 5000; ++i) {
        if (i == 3001)
            input += "00010nam0 22xxxxx   450 \x1e\x1d";
        else
            input += gbkRecord({{"200", QStringLiteral("␟a书%1␞").arg(i)}});
    }
    const ToolRun r = runTool({}, input);
    EXPECT_EQ(r.status, 1);
    EXPECT_EQ(r.err,
              QStringLiteral("orvane-card: (标准输入): 第3001条记录: 实时错误 '13': 类型不匹配\n"));
    const QStringList cards = r.out.split(QStringLiteral("\f\n"));
    ASSERT_EQ(cards.size(), 4999);
    for (int k = 0; k < cards.size(); ++k) {
        const int n = k < 3000 ? k + 1 : k + 2;
        ASSERT_TRUE(cards[k].startsWith(QStringLiteral("\n\n  书%1\x1e\n").arg(n))) << k;
    }
}

TEST(CardCli, FieldsRawAndGbkOutput) {
    const QByteArray input = gbkRecord(workedFields());
    ToolRun r = runTool({"--fields"}, input);
    EXPECT_EQ(r.status, 0);
    EXPECT_TRUE(r.err.isEmpty());
    EXPECT_EQ(r.out.section(u'\n', 3, 3),
              QStringLiteral("2001 $a数据结构$e算法与实践$f王小明著$g李华译"));
    EXPECT_EQ(r.out.count(u'\n'), 15); // the leader and 14 fields, each line ended

    // The record text as it stands, control characters included.
    r = runTool({"--raw", "--gbk"}, input + input);
    EXPECT_EQ(r.out, record(workedFields()) + u'\n' + QStringLiteral("\f\n") +
                         record(workedFields()) + u'\n');

    // Only blanks and line breaks: no record, and that is no failure.
    r = runTool({}, "\r\n\n");
    EXPECT_EQ(r.status, 0);
    EXPECT_TRUE(r.out.isEmpty());
}

TEST(CardCli, RecordTextOfBadBytes) {
    // A lead byte cut short reads as "?", and the cuts are made on what the text encodes
    // to, so directory and text still agree.
    const card::MarcText t = card::recordText(QByteArray("AB\xd6"));
    EXPECT_EQ(t.text(), QStringLiteral("AB?"));
    EXPECT_EQ(t.bytes(), QByteArray("AB?"));
    const card::MarcText ok = card::recordText(gbk::encode(QStringLiteral("甲书")));
    EXPECT_EQ(ok.text(), QStringLiteral("甲书"));
}

TEST(CardCli, OutputThatCannotBeWrittenIsSaidAndFails) {
    // A device that refuses every write.
    QString error;
    const auto options = card::parseArguments({"--fields"}, &error);
    ASSERT_TRUE(options);
    QByteArray inBytes = gbkRecord(workedFields()), outBytes;
    QBuffer in(&inBytes), out(&outBytes), err;
    in.open(QIODevice::ReadOnly);
    out.open(QIODevice::ReadOnly);
    err.open(QIODevice::WriteOnly);
    EXPECT_EQ(card::runCardTool(*options, in, out, err), 2);
    EXPECT_TRUE(
        QString::fromUtf8(err.data()).startsWith(QStringLiteral("orvane-card: 无法写出结果")))
        << err.data().toStdString();
}

// The executable itself: its exit status and what it says, for files, standard input,
// bad arguments and output that cannot be written.
TEST(CardCli, Executable) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
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
        QString said;  // part of standard error
        QString shown; // part of standard output
        int cards = 0; // form feeds between the cards written
    };
    const Case cases[] = {
        {{"--card", good, missing},
         {},
         {},
         2,
         "无法打开 " + missing,
         QStringLiteral("  ISBN 7-5000-1234-5（精装）:CNY25.00\x1e\n"),
         1},
        {{"--fields"}, "00010nam0 2200024   450 2\x1e\x1d", {}, 1, "第1条记录", {}},
        {{"--bogus"}, {}, {}, 2, "用法", {}},
#ifdef Q_OS_UNIX
        {{"--card", good}, {}, "/dev/full", 2, "无法写出结果", {}},
        {{"--help"}, {}, "/dev/full", 2, "无法写出用法说明", {}},
        {{"--raw", good}, {}, "-", 2, "无法写出结果", {}},
#endif
    };
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
        const std::string what = c.args.join(' ').toStdString() + " > " + c.output.toStdString();
        EXPECT_EQ(p.exitCode(), c.status) << what << ": " << err.toStdString();
        EXPECT_TRUE(err.contains(c.said)) << what << ": " << err.toStdString();
        EXPECT_TRUE(out.contains(c.shown)) << what;
        if (c.output.isEmpty()) {
            EXPECT_EQ(out.count(u'\f'), c.cards) << what;
        }
    }
}
