#include "kapianfmt.h"

#include "platform/vb.h"

namespace card {

namespace {

constexpr QStringView kCrLf = u"\r\n";
constexpr QStringView kArea = u"·—"; // U+00B7 U+2014, opens an area

// Join with a mark: an empty slot takes the value, a filled one gets mark and value.
void join(QString& slot, QStringView mark, QStringView value) {
    if (!slot.isEmpty()) slot += mark;
    slot += value;
}

// Trim takes blanks alone off both ends: a closing 30 stays and shields a blank before it.
QStringView trimView(QStringView s) {
    qsizetype b = 0, e = s.size();
    while (b < e && s[b] == u' ') ++b;
    while (e > b && s[e - 1] == u' ') --e;
    return s.mid(b, e - b);
}
QString trimmed(QString&& s) {
    const QStringView t = trimView(s);
    if (t.size() == s.size()) return std::move(s);
    return t.toString();
}

QString cat(std::initializer_list<QStringView> parts) {
    qsizetype n = 0;
    for (QStringView p : parts) n += p.size();
    QString r;
    r.reserve(n);
    for (QStringView p : parts) r += p;
    return r;
}

// The walk on the formatter's field variable, which keeps what the walk leaves of it.
template <class Fn> void walk(QStringView& f, Fn&& onSubfield) {
    f = f.mid(walkSubfields(f, onSubfield));
}

template <class F> QString consume(QString& ziduan, F&& format) {
    QStringView v(ziduan);
    QString r = format(v);
    ziduan.remove(0, ziduan.size() - v.size());
    return r;
}

} // namespace

QString missingTitleText() {
    return QStringLiteral("本条记录缺少题名，无法正常显示！");
}

namespace view {

QString Kapian010(QStringView& ziduan) {
    QString r;
    r.reserve(ziduan.size() + 16);
    walk(ziduan, [&](char16_t code, QStringView v) {
        switch (code) {
        case u'a':
            if (!r.isEmpty()) r += u"\r\n  ";
            r += u"ISBN ";
            r += v;
            break;
        case u'b':
            r += u"（";
            r += v;
            r += u"）";
            break;
        case u'd':
            r += u":";
            r += v;
            break;
        case u'z':
            // A cancelled or invalid number starts its own line like a new $a.
            if (!r.isEmpty()) r += u"\r\n  ";
            r += u"无效的ISBN:";
            r += v;
            break;
        default:
            break;
        }
    });
    return trimmed(std::move(r));
}

QString Kapian200(QStringView& ziduan, const MessageFn& message) {
    QString r;
    r.reserve(ziduan.size() + 8);
    walk(ziduan, [&](char16_t code, QStringView v) {
        switch (code) {
        case u'a':
            join(r, u"，", v);
            break;
        case u'c':
            join(r, u"，", v);
            break;
        case u'd':
            join(r, u"＝", v);
            break;
        case u'e':
            join(r, u"：", v);
            break;
        case u'f':
            // A responsibility without a title is dropped after the warning...
            if (r.isEmpty()) {
                message(missingTitleText());
            } else {
                r += u"／";
                r += v;
            }
            break;
        case u'g':
            // ...while a subsequent one is kept: the two codes have always differed here.
            if (r.isEmpty()) {
                message(missingTitleText());
                r = v.toString();
            } else {
                r += u"；";
                r += v;
            }
            break;
        case u'h':
            join(r, u"·", v);
            break;
        case u'i':
            join(r, u"，", v);
            break;
        case u'v':
            join(r, u"．", v);
            break;
        default:
            break;
        }
    });
    return trimmed(std::move(r));
}

QString Kapian205(QStringView& ziduan) {
    QStringView a;
    QString f;
    walk(ziduan, [&](char16_t code, QStringView v) {
        if (code == u'a')
            a = v;
        else if (code == u'f')
            join(f, u"；", v);
    });
    if (a.isEmpty()) return QString(); // a lone $f has nothing to hang on
    return trimmed(f.isEmpty() ? cat({kArea, a}) : cat({kArea, a, u",", f}));
}

QString Kapian206(QStringView& ziduan) {
    QString a;
    walk(ziduan, [&](char16_t code, QStringView v) {
        if (code == u'a') join(a, u"、", v);
    });
    return a.isEmpty() ? QString() : cat({kArea, trimView(a)});
}

QString Kapian207(QStringView& ziduan) {
    QStringView r;
    bool seen = false;
    // Each $a replaces the one before: this area has never joined repeats.
    walk(ziduan, [&](char16_t code, QStringView v) {
        if (code == u'a') {
            r = v;
            seen = true;
        }
    });
    return seen ? trimmed(cat({kArea, r})) : QString();
}

QString Kapian208(QStringView& ziduan) {
    QStringView a;
    QString d;
    walk(ziduan, [&](char16_t code, QStringView v) {
        if (code == u'a')
            a = v;
        else if (code == u'd')
            join(d, u"=", v);
    });
    if (a.isEmpty()) return QString();
    return trimmed(d.isEmpty() ? cat({kArea, a}) : cat({kArea, a, u"=", d}));
}

QString Kapian210(QStringView& ziduan) {
    QString p, q; // publication, printing
    p.reserve(ziduan.size() + 8);
    walk(ziduan, [&](char16_t code, QStringView v) {
        switch (code) {
        case u'a':
            join(p, u"；", v);
            break;
        case u'b':
            p += u"（";
            p += v;
            p += u")";
            break;
        case u'c':
            p += u"：";
            p += v;
            break;
        case u'd':
            p += u"，";
            p += v;
            break;
        case u'e':
            join(q, u"；", v);
            break;
        case u'f':
            join(q, u",", v);
            break;
        case u'g':
            join(q, u"：", v);
            break;
        case u'h':
            join(q, u"，", v);
            break;
        default:
            break;
        }
    });
    if (q.isEmpty()) return cat({kArea, trimView(p)});
    return cat({kArea, trimView(p), u"（", trimView(q), u"）"});
}

QString Kapian215(QStringView& ziduan) {
    QString a, d, e;
    QStringView c;
    walk(ziduan, [&](char16_t code, QStringView v) {
        switch (code) {
        case u'a':
            join(a, u"、", v);
            break;
        case u'c':
            c = v;
            break;
        case u'd':
            join(d, u"、", v);
            break;
        case u'e':
            join(e, u"、", v);
            break;
        default:
            break;
        }
    });
    if (a.isEmpty() && c.isEmpty() && d.isEmpty() && e.isEmpty()) return QString();
    // Always its own line on the card, in this order whatever the field's order.
    return cat({kCrLf, u"  ", a, c.isEmpty() ? QStringView() : QStringView(u"："), c,
                d.isEmpty() ? QStringView() : QStringView(u"；"), d,
                e.isEmpty() ? QStringView() : QStringView(u"+"), e});
}

QString Kapian225(QStringView& ziduan) {
    QString r;
    r.reserve(ziduan.size() + 8);
    walk(ziduan, [&](char16_t code, QStringView v) {
        switch (code) {
        case u'a':
            join(r, u"，", v);
            break;
        case u'd':
            join(r, u"＝", v);
            break;
        case u'e':
            join(r, u"：", v);
            break;
        case u'f':
            if (!r.isEmpty()) {
                r += u"／";
                r += v;
            }
            break;
        case u'h':
            join(r, u"·", v);
            break;
        case u'i':
            join(r, u"，", v);
            break;
        case u'v':
            join(r, u"；", v);
            break;
        case u'x':
            join(r, u"，", v);
            break;
        default:
            break;
        }
    });
    return trimmed(std::move(r));
}

QString Kapian327(QStringView& ziduan) {
    QString r;
    walk(ziduan, [&](char16_t code, QStringView v) {
        if (code == u'a') join(r, kArea, v);
    });
    return trimmed(std::move(r));
}

QString Kapian686(QStringView& ziduan) {
    QString r;
    walk(ziduan, [&](char16_t code, QStringView v) {
        if (code == u'a') join(r, u",", v);
    });
    return trimmed(std::move(r));
}

QStringView KapianZiduanA(QStringView ziduan) {
    if (ziduan.isEmpty()) return QStringView();
    QStringView a;
    // The last $a wins; repeats are not joined.
    walkSubfields(ziduan, [&](char16_t code, QStringView v) {
        if (code == u'a') a = v;
    });
    return a;
}

} // namespace view

QString Kapian010(QString& z) {
    return consume(z, view::Kapian010);
}
QString Kapian200(QString& z, const MessageFn& message) {
    return consume(z, [&](QStringView& v) { return view::Kapian200(v, message); });
}
QString Kapian205(QString& z) {
    return consume(z, view::Kapian205);
}
QString Kapian206(QString& z) {
    return consume(z, view::Kapian206);
}
QString Kapian207(QString& z) {
    return consume(z, view::Kapian207);
}
QString Kapian208(QString& z) {
    return consume(z, view::Kapian208);
}
QString Kapian210(QString& z) {
    return consume(z, view::Kapian210);
}
QString Kapian215(QString& z) {
    return consume(z, view::Kapian215);
}
QString Kapian225(QString& z) {
    return consume(z, view::Kapian225);
}
QString Kapian327(QString& z) {
    return consume(z, view::Kapian327);
}
QString Kapian686(QString& z) {
    return consume(z, view::Kapian686);
}

QString KapianZiduanA(QString ziduan) {
    return view::KapianZiduanA(ziduan).toString();
}

} // namespace card
