// GBK both ways, and what a byte cut inside a character gives.
#include "platform/gbk.h"

#include <gtest/gtest.h>

namespace {

TEST(Gbk, RoundTripAndByteCounts) {
    const QString s = QStringLiteral("中图法 ABC 《红楼梦》①Ⅳ");
    const QByteArray b = gbk::encode(s);
    EXPECT_EQ(gbk::decode(b), s);
    EXPECT_EQ(b.size(), gbk::byteLength(s));
    EXPECT_EQ(gbk::byteLength(QStringLiteral("a中")), 3);
    // Known code points: 中 is D6 D0 in GBK.
    EXPECT_EQ(gbk::encode(QStringLiteral("中")), QByteArray("\xD6\xD0"));
}

TEST(Gbk, CutInsideACharacterAndBadPairs) {
    const QByteArray b = gbk::encode(QStringLiteral("中文"));
    ASSERT_EQ(b.size(), 4);
    // The last lead byte without its trail becomes one '?'.
    EXPECT_EQ(gbk::decode(b.left(3)), QStringLiteral("中?"));
    // Starting one byte late pairs the wrong bytes: the trail of 中 is itself a lead byte,
    // so it takes the lead of 文 as its trail, and that character's trail stands alone.
    const QString late = gbk::decode(b.mid(1));
    EXPECT_EQ(late.size(), 2);
    EXPECT_EQ(late.back(), QChar(u'?'));
    EXPECT_NE(late.front(), QChar(u'文'));
    // A lead followed by a control character: '?' then the control character.
    EXPECT_EQ(gbk::decode(QByteArray("\xD6\x1E"
                                     "a")),
              QStringLiteral("?\x1E"
                             "a"));
    EXPECT_EQ(gbk::decode(QByteArray("\xFF")), QStringLiteral("?"));
    EXPECT_EQ(gbk::decode(QByteArray()), QString());
}

TEST(Gbk, CharactersGbkCannotHoldBecomeOneQuestionMark) {
    EXPECT_EQ(gbk::encode(QStringLiteral("a😀b")), QByteArray("a?b"));
    EXPECT_EQ(gbk::byteLength(QStringLiteral("a😀b")), 3);
    EXPECT_EQ(gbk::encode(QString(QChar(0x0E01))), QByteArray("?")); // Thai is not in GBK
}

} // namespace
