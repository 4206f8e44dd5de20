#include "kapianfmt.h"

#include "platform/vb.h"

namespace card {

namespace {

const QString kCrLf = QStringLiteral("\r\n");
const QString kArea = QStringLiteral("·—"); // U+00B7 U+2014, opens an area

// Join with a mark: an empty slot takes the value, a filled one gets mark and value.
void join(QString& slot, const QString& mark, const QString& value) {
    if (slot.isEmpty()) {
        slot = value;
    } else {
        slot += mark;
        slot += value;
    }
}

QString trimmed(const QString& s) {
    return s.isEmpty() ? QString() : vb::Trim(s);
}

} // namespace

QString missingTitleText() {
    return QStringLiteral("本条记录缺少题名，无法正常显示！");
}

QString Kapian010(QString& ziduan) {
    QString r;
    walkSubfields(ziduan, [&](char16_t code, const QString& v) {
        switch (code) {
        case u'a':
            r = r.isEmpty() ? QStringLiteral("ISBN ") + v
                            : r + kCrLf + QStringLiteral("  ISBN ") + v;
            break;
        case u'b':
            r += QStringLiteral("（") + v + QStringLiteral("）");
            break;
        case u'd':
            r += QStringLiteral(":") + v;
            break;
        case u'z':
            // A cancelled or invalid number starts its own line like a new $a.
            r = r.isEmpty() ? QStringLiteral("无效的ISBN:") + v
                            : r + kCrLf + QStringLiteral("  无效的ISBN:") + v;
            break;
        default:
            break;
        }
    });
    return trimmed(r);
}

QString Kapian200(QString& ziduan, const MessageFn& message) {
    QString r;
    walkSubfields(ziduan, [&](char16_t code, const QString& v) {
        switch (code) {
        case u'a':
            join(r, QStringLiteral("，"), v);
            break;
        case u'c':
            join(r, QStringLiteral("，"), v);
            break;
        case u'd':
            join(r, QStringLiteral("＝"), v);
            break;
        case u'e':
            join(r, QStringLiteral("："), v);
            break;
        case u'f':
            // A responsibility without a title is dropped after the warning...
            if (r.isEmpty()) {
                message(missingTitleText());
            } else {
                r += QStringLiteral("／") + v;
            }
            break;
        case u'g':
            // ...while a subsequent one is kept: the two codes have always differed here.
            if (r.isEmpty()) {
                message(missingTitleText());
                r = v;
            } else {
                r += QStringLiteral("；") + v;
            }
            break;
        case u'h':
            join(r, QStringLiteral("·"), v);
            break;
        case u'i':
            join(r, QStringLiteral("，"), v);
            break;
        case u'v':
            join(r, QStringLiteral("．"), v);
            break;
        default:
            break;
        }
    });
    return trimmed(r);
}

QString Kapian205(QString& ziduan) {
    QString a, f;
    walkSubfields(ziduan, [&](char16_t code, const QString& v) {
        if (code == u'a')
            a = v;
        else if (code == u'f')
            join(f, QStringLiteral("；"), v);
    });
    if (a.isEmpty()) return QString(); // a lone $f has nothing to hang on
    return trimmed(f.isEmpty() ? kArea + a : kArea + a + QStringLiteral(",") + f);
}

QString Kapian206(QString& ziduan) {
    QString a;
    walkSubfields(ziduan, [&](char16_t code, const QString& v) {
        if (code == u'a') join(a, QStringLiteral("、"), v);
    });
    return a.isEmpty() ? QString() : kArea + vb::Trim(a);
}

QString Kapian207(QString& ziduan) {
    QString r;
    // Each $a replaces the one before: this area has never joined repeats.
    walkSubfields(ziduan, [&](char16_t code, const QString& v) {
        if (code == u'a') r = kArea + v;
    });
    return trimmed(r);
}

QString Kapian208(QString& ziduan) {
    QString a, d;
    walkSubfields(ziduan, [&](char16_t code, const QString& v) {
        if (code == u'a')
            a = v;
        else if (code == u'd')
            join(d, QStringLiteral("="), v);
    });
    if (a.isEmpty()) return QString();
    return trimmed(d.isEmpty() ? kArea + a : kArea + a + QStringLiteral("=") + d);
}

QString Kapian210(QString& ziduan) {
    QString p, q; // publication, printing
    walkSubfields(ziduan, [&](char16_t code, const QString& v) {
        switch (code) {
        case u'a':
            join(p, QStringLiteral("；"), v);
            break;
        case u'b':
            p += QStringLiteral("（") + v + QStringLiteral(")");
            break;
        case u'c':
            p += QStringLiteral("：") + v;
            break;
        case u'd':
            p += QStringLiteral("，") + v;
            break;
        case u'e':
            join(q, QStringLiteral("；"), v);
            break;
        case u'f':
            join(q, QStringLiteral(","), v);
            break;
        case u'g':
            join(q, QStringLiteral("："), v);
            break;
        case u'h':
            join(q, QStringLiteral("，"), v);
            break;
        default:
            break;
        }
    });
    if (q.isEmpty()) return kArea + vb::Trim(p);
    return kArea + vb::Trim(p) + QStringLiteral("（") + vb::Trim(q) + QStringLiteral("）");
}

QString Kapian215(QString& ziduan) {
    QString a, c, d, e;
    walkSubfields(ziduan, [&](char16_t code, const QString& v) {
        switch (code) {
        case u'a':
            join(a, QStringLiteral("、"), v);
            break;
        case u'c':
            c = v;
            break;
        case u'd':
            join(d, QStringLiteral("、"), v);
            break;
        case u'e':
            join(e, QStringLiteral("、"), v);
            break;
        default:
            break;
        }
    });
    if (a.isEmpty() && c.isEmpty() && d.isEmpty() && e.isEmpty()) return QString();
    if (!c.isEmpty()) c.prepend(u'：');
    if (!d.isEmpty()) d.prepend(u'；');
    if (!e.isEmpty()) e.prepend(u'+');
    // Always its own line on the card, in this order whatever the field's order.
    return kCrLf + QStringLiteral("  ") + a + c + d + e;
}

QString Kapian225(QString& ziduan) {
    QString r;
    walkSubfields(ziduan, [&](char16_t code, const QString& v) {
        switch (code) {
        case u'a':
            join(r, QStringLiteral("，"), v);
            break;
        case u'd':
            join(r, QStringLiteral("＝"), v);
            break;
        case u'e':
            join(r, QStringLiteral("："), v);
            break;
        case u'f':
            if (!r.isEmpty()) r += QStringLiteral("／") + v;
            break;
        case u'h':
            join(r, QStringLiteral("·"), v);
            break;
        case u'i':
            join(r, QStringLiteral("，"), v);
            break;
        case u'v':
            join(r, QStringLiteral("；"), v);
            break;
        case u'x':
            join(r, QStringLiteral("，"), v);
            break;
        default:
            break;
        }
    });
    return trimmed(r);
}

QString Kapian327(QString& ziduan) {
    QString r;
    walkSubfields(ziduan, [&](char16_t code, const QString& v) {
        if (code == u'a') join(r, kArea, v);
    });
    return trimmed(r);
}

QString Kapian686(QString& ziduan) {
    QString r;
    walkSubfields(ziduan, [&](char16_t code, const QString& v) {
        if (code == u'a') join(r, QStringLiteral(","), v);
    });
    return trimmed(r);
}

QString KapianZiduanA(QString ziduan) {
    if (ziduan.isEmpty()) return QString();
    QString a;
    // The last $a wins; repeats are not joined.
    walkSubfields(ziduan, [&](char16_t code, const QString& v) {
        if (code == u'a') a = v;
    });
    return a;
}

} // namespace card
