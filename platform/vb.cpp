#include "platform/vb.h"

#include "platform/errors.h"

#include <QLocale>

#include <cmath>
#include <cstdio>

namespace vb {

// ---- strings ---------------------------------------------------------------------------

QString LTrim(const QString& s) {
    qsizetype i = 0;
    while (i < s.size() && s[i] == u' ') ++i;
    return s.mid(i);
}

QString RTrim(const QString& s) {
    qsizetype n = s.size();
    while (n > 0 && s[n - 1] == u' ') --n;
    return s.left(n);
}

QString Trim(const QString& s) {
    return LTrim(RTrim(s));
}
QString UCase(const QString& s) {
    return s.toUpper();
}
QString LCase(const QString& s) {
    return s.toLower();
}
int Len(const QString& s) {
    return static_cast<int>(s.size());
}

int InStr(int start, const QString& hay, const QString& needle) {
    if (start < 1) raise(errInvalidCall);
    if (start > hay.size() + 1) return 0;
    if (needle.isEmpty()) return start;
    const qsizetype i = hay.indexOf(needle, start - 1, Qt::CaseSensitive);
    return i < 0 ? 0 : static_cast<int>(i + 1);
}

int InStr(const QString& hay, const QString& needle) {
    return InStr(1, hay, needle);
}

int InStrRev(const QString& hay, const QString& needle) {
    if (needle.isEmpty()) return static_cast<int>(hay.size());
    const qsizetype i = hay.lastIndexOf(needle);
    return i < 0 ? 0 : static_cast<int>(i + 1);
}

QString Mid(const QString& s, int start) {
    if (start < 1) raise(errInvalidCall);
    return s.mid(start - 1);
}

QString Mid(const QString& s, int start, int length) {
    if (start < 1 || length < 0) raise(errInvalidCall);
    if (start > s.size()) return QString();
    return s.mid(start - 1, length);
}

QString Left(const QString& s, int n) {
    if (n < 0) raise(errInvalidCall);
    return s.left(n);
}

QString Right(const QString& s, int n) {
    if (n < 0) raise(errInvalidCall);
    return s.right(n);
}

QStringList Split(const QString& s, const QString& delimiter) {
    if (delimiter.isEmpty()) return {s};
    return s.split(delimiter, Qt::KeepEmptyParts, Qt::CaseSensitive);
}

QString Replace(const QString& s, const QString& find, const QString& with) {
    if (find.isEmpty()) return s;
    QString r = s;
    return r.replace(find, with, Qt::CaseSensitive);
}

QString Space(int n) {
    return QString(std::max(0, n), u' ');
}
QString Chr(int code) {
    return QString(QChar(static_cast<char16_t>(code)));
}

// ---- numbers ---------------------------------------------------------------------------

namespace {

bool isDigit(QChar c) {
    return c >= u'0' && c <= u'9';
}
bool isHexDigit(QChar c) {
    return isDigit(c) || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
}
bool isOctDigit(QChar c) {
    return c >= u'0' && c <= u'7';
}

// The body of a decimal number: digits with commas in the integer part, a point, an
// exponent. Returns true when the whole of s[i..] is such a number.
bool decimalBody(const QString& s, qsizetype i) {
    const qsizetype n = s.size();
    bool digits = false;
    bool lastComma = false;
    while (i < n && (isDigit(s[i]) || (s[i] == u',' && digits))) {
        lastComma = s[i] == u',';
        if (!lastComma) digits = true;
        ++i;
    }
    if (lastComma) return false;
    if (i < n && s[i] == u'.') {
        ++i;
        while (i < n && isDigit(s[i])) {
            digits = true;
            ++i;
        }
    }
    if (!digits) return false;
    if (i < n && (s[i] == u'e' || s[i] == u'E' || s[i] == u'd' || s[i] == u'D')) {
        ++i;
        if (i < n && (s[i] == u'+' || s[i] == u'-')) ++i;
        bool exp = false;
        while (i < n && isDigit(s[i])) {
            exp = true;
            ++i;
        }
        if (!exp) return false;
    }
    return i == n;
}

} // namespace

bool IsNumeric(const QString& text) {
    QString s = Trim(text);
    if (s.isEmpty()) return false;
    if (s.size() > 2 && s[0] == u'&') {
        const QChar k = s[1].toUpper();
        if (k == u'H' || k == u'O') {
            for (qsizetype i = 2; i < s.size(); ++i)
                if (k == u'H' ? !isHexDigit(s[i]) : !isOctDigit(s[i])) return false;
            return true;
        }
        return false;
    }
    if (s.front() == u'(' && s.back() == u')') {
        s = Trim(s.mid(1, s.size() - 2));
        if (s.isEmpty() || s[0] == u'-' || s[0] == u'+') return false;
        return decimalBody(s, 0);
    }
    qsizetype i = 0;
    if (s[0] == u'+' || s[0] == u'-') {
        ++i;
        while (i < s.size() && s[i] == u' ') ++i;
    }
    return decimalBody(s, i);
}

bool IsNumeric(const QVariant& v) {
    if (v.isNull()) return false;
    switch (v.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::Float:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Bool:
        return true;
    default:
        return IsNumeric(v.toString());
    }
}

double Val(const QString& text) {
    // Blanks, tabs and line feeds are skipped wherever they stand.
    QString s;
    s.reserve(text.size());
    for (QChar c : text)
        if (c != u' ' && c != u'\t' && c != u'\n' && c != u'\r') s.append(c);
    const qsizetype n = s.size();
    if (n >= 2 && s[0] == u'&' && (s[1].toUpper() == u'H' || s[1].toUpper() == u'O')) {
        const bool hex = s[1].toUpper() == u'H';
        qint64 v = 0;
        for (qsizetype i = 2; i < n; ++i) {
            const QChar c = s[i];
            int d;
            if (hex && isHexDigit(c))
                d = isDigit(c) ? c.unicode() - u'0' : (c.toUpper().unicode() - u'A' + 10);
            else if (!hex && isOctDigit(c))
                d = c.unicode() - u'0';
            else
                break;
            v = v * (hex ? 16 : 8) + d;
            if (v > 0xFFFFFFFFLL) break;
        }
        // &H literals of up to 4 digits are 16-bit, as the runtime reads them.
        if (v <= 0xFFFF && v > 0x7FFF) v -= 0x10000;
        return static_cast<double>(v);
    }
    qsizetype i = 0;
    QString num;
    if (i < n && (s[i] == u'+' || s[i] == u'-')) num.append(s[i++]);
    bool digits = false;
    while (i < n && isDigit(s[i])) {
        num.append(s[i++]);
        digits = true;
    }
    if (i < n && s[i] == u'.') {
        num.append(s[i++]);
        while (i < n && isDigit(s[i])) {
            num.append(s[i++]);
            digits = true;
        }
    }
    if (!digits) return 0.0;
    if (i < n && (s[i] == u'e' || s[i] == u'E' || s[i] == u'd' || s[i] == u'D')) {
        QString exp = QStringLiteral("e");
        qsizetype j = i + 1;
        if (j < n && (s[j] == u'+' || s[j] == u'-')) exp.append(s[j++]);
        bool expDigits = false;
        while (j < n && isDigit(s[j])) {
            exp.append(s[j++]);
            expDigits = true;
        }
        if (expDigits) num += exp;
    }
    bool ok = false;
    const double d = QLocale::c().toDouble(num, &ok);
    return ok ? d : 0.0;
}

QString CStr(double d) {
    if (d == 0) return QStringLiteral("0");
    char buf[64];
    std::snprintf(buf, sizeof buf, "%.15g", d);
    QString s = QString::fromLatin1(buf);
    const qsizetype e = s.indexOf(u'e');
    if (e < 0) return s;
    // 1e+15 -> 1E+15, 1e-05 -> 1E-05: the runtime keeps at least two exponent digits.
    QString mant = s.left(e);
    QString exp = s.mid(e + 1);
    const QChar sign = exp[0];
    QString digits = exp.mid(1);
    while (digits.size() > 2 && digits[0] == u'0') digits.remove(0, 1);
    if (digits.size() < 2) digits.prepend(u'0');
    return mant + u'E' + sign + digits;
}

QString CStr(const QVariant& v) {
    if (v.isNull()) return QString();
    switch (v.typeId()) {
    case QMetaType::Double:
    case QMetaType::Float:
        return CStr(v.toDouble());
    case QMetaType::Bool:
        return v.toBool() ? QStringLiteral("True") : QStringLiteral("False");
    case QMetaType::QDateTime: {
        const QDateTime dt = v.toDateTime();
        if (dt.time() == QTime(0, 0)) return dt.date().toString(QStringLiteral("yyyy-M-d"));
        return dt.toString(QStringLiteral("yyyy-M-d H:mm:ss"));
    }
    case QMetaType::QDate:
        return v.toDate().toString(QStringLiteral("yyyy-M-d"));
    default:
        return v.toString();
    }
}

// ---- dates -----------------------------------------------------------------------------

namespace {

struct Parts {
    QList<int> nums;
    QList<int> widths;
};

// Reads "h:mm[:ss]" with an optional fraction; true when the whole text is a time.
bool parseTime(const QString& t, QTime* out) {
    const QStringList p = t.split(u':');
    if (p.size() < 2 || p.size() > 3) return false;
    int v[3] = {0, 0, 0};
    for (int i = 0; i < p.size(); ++i) {
        QString part = p[i];
        if (i == 2) {
            const qsizetype dot = part.indexOf(u'.');
            if (dot >= 0) part = part.left(dot);
        }
        if (part.isEmpty() || part.size() > 2) return false;
        for (QChar c : part)
            if (!isDigit(c)) return false;
        v[i] = part.toInt();
    }
    if (v[0] > 23 || v[1] > 59 || v[2] > 59) return false;
    *out = QTime(v[0], v[1], v[2]);
    return true;
}

int fullYear(int y, int width) {
    if (width > 2) return y;
    return y < 30 ? 2000 + y : 1900 + y; // the runtime's two-digit window
}

} // namespace

std::optional<QDateTime> CDate(const QString& text) {
    QString s = Trim(text);
    if (s.isEmpty()) return std::nullopt;
    QTime time(0, 0);
    // Split off a time part after the date.
    const qsizetype sp = s.indexOf(u' ');
    if (sp > 0) {
        const QString rest = Trim(s.mid(sp + 1));
        if (!rest.isEmpty() && !parseTime(rest, &time)) return std::nullopt;
        s = s.left(sp);
    }
    // 2003年1月1日
    if (s.endsWith(u'日') && s.contains(u'年') && s.contains(u'月')) {
        s.chop(1);
        s.replace(u'年', u'-').replace(u'月', u'-');
    }
    QChar sep;
    for (QChar c : s)
        if (c == u'-' || c == u'/' || c == u'.') {
            sep = c;
            break;
        }
    if (sep.isNull()) return std::nullopt; // a lone number is no date
    const QStringList p = s.split(sep);
    if (p.size() != 3) return std::nullopt;
    int v[3];
    int w[3];
    for (int i = 0; i < 3; ++i) {
        if (p[i].isEmpty() || p[i].size() > 4) return std::nullopt;
        for (QChar c : p[i])
            if (!isDigit(c)) return std::nullopt;
        v[i] = p[i].toInt();
        w[i] = static_cast<int>(p[i].size());
    }
    QDate d;
    if (w[0] > 2) {
        d = QDate(v[0], v[1], v[2]); // y-m-d
    } else {
        const int y = fullYear(v[2], w[2]);
        d = QDate(y, v[0], v[1]);                   // m/d/y
        if (!d.isValid()) d = QDate(y, v[1], v[0]); // d/m/y when m/d/y cannot be
    }
    if (!d.isValid()) return std::nullopt;
    return QDateTime(d, time);
}

bool IsDate(const QString& s) {
    return CDate(s).has_value();
}

QString Format(const QDateTime& d, const QString& pattern) {
    static const char16_t* const longDays[] = {u"星期一", u"星期二", u"星期三", u"星期四",
                                               u"星期五", u"星期六", u"星期日"};
    static const char16_t* const shortDays[] = {u"周一", u"周二", u"周三", u"周四",
                                                u"周五", u"周六", u"周日"};
    QString out;
    const QString p = pattern;
    bool afterHour = false;
    qsizetype i = 0;
    auto run = [&](QChar c) {
        qsizetype j = i;
        while (j < p.size() && p[j].toLower() == c) ++j;
        return j - i;
    };
    auto two = [](int v) { return QStringLiteral("%1").arg(v, 2, 10, QLatin1Char('0')); };
    while (i < p.size()) {
        const QChar c = p[i].toLower();
        qsizetype n = 1;
        if (c == u'y') {
            n = run(u'y');
            out += n >= 3 ? QString::number(d.date().year()) : two(d.date().year() % 100);
        } else if (c == u'm') {
            n = run(u'm');
            const int v = afterHour ? d.time().minute() : d.date().month();
            out += n >= 2 ? two(v) : QString::number(v);
            afterHour = false;
        } else if (c == u'n') {
            n = run(u'n');
            out += n >= 2 ? two(d.time().minute()) : QString::number(d.time().minute());
        } else if (c == u'd') {
            n = run(u'd');
            const int dow = d.date().dayOfWeek() - 1;
            if (n >= 4)
                out += QString::fromUtf16(longDays[dow]);
            else if (n == 3)
                out += QString::fromUtf16(shortDays[dow]);
            else
                out += n == 2 ? two(d.date().day()) : QString::number(d.date().day());
        } else if (c == u'h') {
            n = run(u'h');
            out += n >= 2 ? two(d.time().hour()) : QString::number(d.time().hour());
            afterHour = true;
        } else if (c == u's') {
            n = run(u's');
            out += n >= 2 ? two(d.time().second()) : QString::number(d.time().second());
        } else {
            out += p[i];
        }
        i += n;
    }
    return out;
}

QString Format(double n, const QString& pattern) {
    const qsizetype dot = pattern.indexOf(u'.');
    if (pattern.startsWith(u'0') || pattern.startsWith(u'#')) {
        const int decimals = dot < 0 ? 0 : static_cast<int>(pattern.size() - dot - 1);
        const bool group = pattern.contains(u',');
        QString s = QString::number(n, 'f', decimals);
        if (group) {
            QLocale c = QLocale::c();
            c.setNumberOptions(QLocale::DefaultNumberOptions);
            s = c.toString(n, 'f', decimals);
        }
        if (pattern.startsWith(u'#') && s.startsWith(QStringLiteral("0.")))
            s.remove(0, 1); // "#.00" leaves out the leading zero
        return s;
    }
    return CStr(n);
}

QString Format(const QVariant& v, const QString& pattern) {
    if (v.isNull()) return QString();
    if (v.typeId() == QMetaType::QDateTime) return Format(v.toDateTime(), pattern);
    if (v.typeId() == QMetaType::QDate) return Format(QDateTime(v.toDate(), QTime(0, 0)), pattern);
    const QString s = v.toString();
    const QChar first = pattern.isEmpty() ? QChar() : pattern[0].toLower();
    const bool datePattern = first == u'y' || first == u'm' || first == u'd' || first == u'h';
    if (datePattern) {
        if (auto d = CDate(s)) return Format(*d, pattern);
        // Date texts with a fraction of a second, as the server gives them.
        const QDateTime iso =
            QDateTime::fromString(s.left(19), QStringLiteral("yyyy-MM-dd HH:mm:ss"));
        if (iso.isValid()) return Format(iso, pattern);
        return s;
    }
    if (IsNumeric(s)) return Format(Val(s), pattern);
    return s;
}

// ---- 16-bit conversions ----------------------------------------------------------------

namespace {
double roundEven(double d) {
    return std::nearbyint(d);
} // FE_TONEAREST: half to even
} // namespace

int16_t CInt(double d) {
    if (std::isnan(d)) raise(errOverflow);
    const double r = roundEven(d);
    if (r < -32768.0 || r > 32767.0) raise(errOverflow);
    return static_cast<int16_t>(r);
}

int16_t CInt(const QString& s) {
    if (!IsNumeric(s)) raise(errTypeMismatch);
    QString t = Trim(s);
    t.remove(u',');
    if (t.startsWith(u'(') && t.endsWith(u')')) t = u'-' + t.mid(1, t.size() - 2);
    return CInt(Val(t));
}

int32_t CLng(double d) {
    if (std::isnan(d)) raise(errOverflow);
    const double r = roundEven(d);
    if (r < -2147483648.0 || r > 2147483647.0) raise(errOverflow);
    return static_cast<int32_t>(r);
}

int32_t CLng(const QString& s) {
    if (!IsNumeric(s)) raise(errTypeMismatch);
    QString t = Trim(s);
    t.remove(u',');
    if (t.startsWith(u'(') && t.endsWith(u')')) t = u'-' + t.mid(1, t.size() - 2);
    return CLng(Val(t));
}

double CDbl(const QString& s) {
    if (!IsNumeric(s)) raise(errTypeMismatch);
    QString t = Trim(s);
    t.remove(u',');
    if (t.startsWith(u'(') && t.endsWith(u')')) t = u'-' + t.mid(1, t.size() - 2);
    return Val(t);
}

} // namespace vb
