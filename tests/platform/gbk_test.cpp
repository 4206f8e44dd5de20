// GBK both ways, and what a byte cut inside a character gives.
#include "platform/gbk.h"
#include "tests/support/printto.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

TEST(Gbk, RoundTripAndByteCounts) {
    const QString s = u"中图法 ABC 《红楼梦》①Ⅳ"_s;
    EXPECT_EQ(gbk::decode(gbk::encode(s)), s);
    EXPECT_EQ(gbk::byteLength(u"a中"_s), 3);
    EXPECT_EQ(gbk::encode(u"中"_s), QByteArray("\xD6\xD0"));
    // What GBK cannot hold is one '?', one byte.
    EXPECT_EQ(gbk::encode(u"a😀b"_s), QByteArray("a?b"));
    EXPECT_EQ(gbk::byteLength(u"a😀b"_s), 3);
}

TEST(Gbk, CutInsideACharacterAndBadPairs) {
    const QByteArray b = gbk::encode(u"中文"_s);
    ASSERT_EQ(b.size(), 4);
    // The last lead byte without its trail becomes one '?'.
    EXPECT_EQ(gbk::decode(b.left(3)), u"中?"_s);
    // One byte late: the trail of 中 is itself a lead byte and takes the lead of 文 as its
    // trail, and that character's trail stands alone.
    const QString late = gbk::decode(b.mid(1));
    EXPECT_EQ(late.size(), 2);
    EXPECT_EQ(late.back(), QChar(u'?'));
    EXPECT_NE(late.front(), QChar(u'文'));
    // A lead followed by a control character: '?' then the control character.
    EXPECT_EQ(gbk::decode(QByteArray("\xD6\x1E"
                                     "a")),
              u"?\x1E"
              "a"_s);
    EXPECT_EQ(gbk::decode(QByteArray("\xFF")), u"?"_s);
}

} // namespace
