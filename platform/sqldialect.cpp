#include "platform/sqldialect.h"

#include <QSet>

#include <vector>

namespace sqldialect {
namespace {

enum class Kind { Space, Word, Number, String, Quoted, Op, LParen, RParen, Comma, Other };

struct Token {
    Kind kind;
    QString text;
};

std::vector<Token> tokenize(const QString& s) {
    std::vector<Token> out;
    const qsizetype n = s.size();
    qsizetype i = 0;
    while (i < n) {
        const QChar c = s[i];
        qsizetype j = i + 1;
        Kind k;
        if (c.isSpace()) {
            while (j < n && s[j].isSpace()) ++j;
            k = Kind::Space;
        } else if (c == u'\'') {
            // '' inside a literal is a quote; an unclosed literal runs to the end
            while (j < n) {
                if (s[j] == u'\'') {
                    if (j + 1 < n && s[j + 1] == u'\'') {
                        j += 2;
                        continue;
                    }
                    ++j;
                    break;
                }
                ++j;
            }
            k = Kind::String;
        } else if (c == u'[' || c == u'"') {
            const QChar close = c == u'[' ? u']' : u'"';
            while (j < n && s[j] != close) ++j;
            if (j < n) ++j;
            k = Kind::Quoted;
        } else if (c.isLetter() || c == u'_' || c == u'@' || c == u'#') {
            while (j < n && (s[j].isLetterOrNumber() || s[j] == u'_' || s[j] == u'@' ||
                             s[j] == u'#' || s[j] == u'$'))
                ++j;
            k = Kind::Word;
        } else if (c.isDigit() || (c == u'.' && i + 1 < n && s[i + 1].isDigit())) {
            while (j < n && (s[j].isDigit() || s[j] == u'.')) ++j;
            k = Kind::Number;
        } else if (c == u'(') {
            k = Kind::LParen;
        } else if (c == u')') {
            k = Kind::RParen;
        } else if (c == u',') {
            k = Kind::Comma;
        } else if (QStringLiteral("+-*/%=<>!|&").contains(c)) {
            while (j < n && QStringLiteral("=<>|").contains(s[j]) && c != u'+' && c != u'-') ++j;
            k = Kind::Op;
        } else {
            k = Kind::Other;
        }
        out.push_back({k, s.mid(i, j - i)});
        i = j;
    }
    return out;
}

bool isBoundaryWord(const QString& w) {
    static const QSet<QString> words = {
        QStringLiteral("select"),  QStringLiteral("from"),     QStringLiteral("where"),
        QStringLiteral("and"),     QStringLiteral("or"),       QStringLiteral("as"),
        QStringLiteral("on"),      QStringLiteral("by"),       QStringLiteral("order"),
        QStringLiteral("group"),   QStringLiteral("having"),   QStringLiteral("like"),
        QStringLiteral("not"),     QStringLiteral("in"),       QStringLiteral("is"),
        QStringLiteral("between"), QStringLiteral("set"),      QStringLiteral("values"),
        QStringLiteral("when"),    QStringLiteral("then"),     QStringLiteral("else"),
        QStringLiteral("end"),     QStringLiteral("case"),     QStringLiteral("union"),
        QStringLiteral("join"),    QStringLiteral("left"),     QStringLiteral("inner"),
        QStringLiteral("into"),    QStringLiteral("distinct"), QStringLiteral("top"),
        QStringLiteral("asc"),     QStringLiteral("desc"),     QStringLiteral("insert"),
        QStringLiteral("update"),  QStringLiteral("delete"),   QStringLiteral("all"),
    };
    return words.contains(w.toLower());
}

bool isBoundaryOp(const QString& op) {
    return op == u'=' || op == u'<' || op == u'>' || op == QStringLiteral("<>") ||
           op == QStringLiteral("<=") || op == QStringLiteral(">=") || op == QStringLiteral("!=");
}

// Index of the next non-space token after i, or -1.
qsizetype nextSolid(const std::vector<Token>& t, qsizetype i) {
    for (qsizetype j = i + 1; j < static_cast<qsizetype>(t.size()); ++j)
        if (t[static_cast<size_t>(j)].kind != Kind::Space) return j;
    return -1;
}

} // namespace

QString toSQLite(const QString& sql) {
    // Most statements need none of the rewrites; the statistics send thousands of them.
    if (!sql.contains(u'+') && !sql.contains(QLatin1String("left"), Qt::CaseInsensitive) &&
        !sql.contains(QLatin1String("top"), Qt::CaseInsensitive))
        return sql;
    std::vector<Token> t = tokenize(sql);
    const qsizetype n = static_cast<qsizetype>(t.size());

    // left( -> vb_left(
    for (qsizetype i = 0; i < n; ++i) {
        auto& tok = t[static_cast<size_t>(i)];
        if (tok.kind == Kind::Word &&
            tok.text.compare(QStringLiteral("left"), Qt::CaseInsensitive) == 0) {
            const qsizetype j = nextSolid(t, i);
            if (j >= 0 && t[static_cast<size_t>(j)].kind == Kind::LParen)
                tok.text = QStringLiteral("vb_left");
        }
    }

    // + in a chain that holds a quoted literal -> ||. A chain is what lies between two
    // boundaries (a comma, a bracket, a keyword, a comparison) at one depth.
    struct Segment {
        std::vector<size_t> plus;
        bool text = false;
    };
    std::vector<Segment> stack(1);
    auto close = [&](Segment& seg) {
        if (seg.text)
            for (size_t p : seg.plus) t[p].text = QStringLiteral("||");
        seg = Segment{};
    };
    for (size_t i = 0; i < t.size(); ++i) {
        const Token& tok = t[i];
        switch (tok.kind) {
        case Kind::LParen:
            stack.emplace_back();
            break;
        case Kind::RParen:
            close(stack.back());
            if (stack.size() > 1) stack.pop_back();
            break;
        case Kind::Comma:
            close(stack.back());
            break;
        case Kind::Word:
            if (isBoundaryWord(tok.text)) close(stack.back());
            break;
        case Kind::Op:
            if (tok.text == u'+')
                stack.back().plus.push_back(i);
            else if (isBoundaryOp(tok.text))
                close(stack.back());
            break;
        case Kind::String:
            stack.back().text = true;
            break;
        default:
            break;
        }
    }
    while (!stack.empty()) {
        close(stack.back());
        stack.pop_back();
    }

    // Select [Distinct] Top n -> ... LIMIT n
    QString limit;
    {
        qsizetype i = nextSolid(t, -1);
        if (i >= 0 && t[static_cast<size_t>(i)].kind == Kind::Word &&
            t[static_cast<size_t>(i)].text.compare(QStringLiteral("select"), Qt::CaseInsensitive) ==
                0) {
            qsizetype j = nextSolid(t, i);
            if (j >= 0 && t[static_cast<size_t>(j)].text.compare(QStringLiteral("distinct"),
                                                                 Qt::CaseInsensitive) == 0)
                j = nextSolid(t, j);
            if (j >= 0 && t[static_cast<size_t>(j)].text.compare(QStringLiteral("top"),
                                                                 Qt::CaseInsensitive) == 0) {
                const qsizetype k = nextSolid(t, j);
                if (k >= 0 && t[static_cast<size_t>(k)].kind == Kind::Number) {
                    limit = t[static_cast<size_t>(k)].text;
                    for (qsizetype x = j; x <= k + 1 && x < n; ++x)
                        if (x == j || x == k || t[static_cast<size_t>(x)].kind == Kind::Space)
                            t[static_cast<size_t>(x)].text.clear();
                }
            }
        }
    }

    QString out;
    out.reserve(sql.size() + 16);
    for (const Token& tok : t) out += tok.text;
    if (!limit.isEmpty()) {
        while (out.endsWith(u';') || out.endsWith(u' ')) out.chop(1);
        out += QStringLiteral(" LIMIT ") + limit;
    }
    return out;
}

} // namespace sqldialect
