#include "query/findsql.h"

namespace findsql {

namespace {
const QString kEq = QStringLiteral("等于");
const QString kNe = QStringLiteral("不等于");
const QString kLike = QStringLiteral("包含");
const QString kGt = QStringLiteral("大于");
const QString kGe = QStringLiteral("不小于");
const QString kLt = QStringLiteral("小于");
const QString kLe = QStringLiteral("不大于");
} // namespace

QStringList fuhaoList(int kind) {
    if (kind == 1 || kind == 2) return {kEq, kNe, kGt, kGe, kLt, kLe};
    return {kEq, kNe, kLike};
}

QString fuhaoToSql(const QString& name) {
    if (name == kEq) return QStringLiteral("=");
    if (name == kNe) return QStringLiteral("<>");
    if (name == kLike) return QStringLiteral("Like");
    if (name == kGt) return QStringLiteral(">");
    if (name == kGe) return QStringLiteral(">=");
    if (name == kLt) return QStringLiteral("<");
    if (name == kLe) return QStringLiteral("<=");
    return QString();
}

QString doubleQuotes(const QString& s) {
    QString out = s;
    out.replace(u'\'', QStringLiteral("''"));
    return out;
}

QString dateCondition(const QString& field, const QString& op, const QString& value) {
    // Style 111 writes yyyy/mm/dd, so the typed separators must match it.
    QString v = value;
    v.replace(u'-', u'/');
    const QString p = QStringLiteral("Convert(varchar(10),") + field;
    // An unfilled place is the lowest or the highest digit, whichever keeps the whole
    // partial date inside (or outside) the comparison.
    auto filled = [&](QChar digit) {
        QString t = v;
        t.replace(u'_', digit);
        return t;
    };
    if (op == QLatin1String("="))
        return p + QStringLiteral(",111) Like '") + v + u'\''; // "_" stays a wildcard
    if (op == QLatin1String(">") || op == QLatin1String("<="))
        return p + QStringLiteral(",111) ") + op + u'\'' + filled(u'9') + u'\'';
    if (op == QLatin1String(">=") || op == QLatin1String("<"))
        return p + QStringLiteral(",111) ") + op + u'\'' + filled(u'0') + u'\'';
    return p + QStringLiteral(",111) ") + op + u'\'' + v + u'\'';
}

QString condition(const Field& f, const QString& op, const QString& value) {
    switch (f.kind) {
    case 1:
        return f.fieldname + op + value;
    case 2:
        return dateCondition(f.fieldname, op, value);
    default:
        if (op == QLatin1String("Like"))
            return f.fieldname + QStringLiteral(" Like '%") + value + QStringLiteral("%'");
        return f.fieldname + op + u'\'' + value + u'\'';
    }
}

QString direction(int labelIndex) {
    return labelIndex == 0 ? QStringLiteral(" Asc") : QStringLiteral(" Desc");
}

void Builder::addCondition(const Field& f, const QString& fuhaoName, const QString& rawValue) {
    const QString value = doubleQuotes(rawValue);
    const QString c = condition(f, fuhaoToSql(fuhaoName), value);
    groupSql = groupSql.isEmpty() ? c : groupSql + QStringLiteral(" And ") + c;
    const QString sign = f.cnname + u'\'' + fuhaoName + u'\'' + value;
    signText = signText.isEmpty() ? sign : signText + u';' + sign;
}

bool Builder::closeGroup() {
    if (groupSql.isEmpty()) return false;
    totalTexts << signText;
    mergedSql = mergedSql.isEmpty() ? QStringLiteral("(") + groupSql + u')'
                                    : mergedSql + QStringLiteral(" OR (") + groupSql + u')';
    signText.clear();
    groupSql.clear();
    return true;
}

void Builder::addOrder(const Field& f, int labelIndex, const QString& caption) {
    const QString dir = direction(labelIndex);
    const QString mark = u'\'' + f.cnname + u'\'' + caption.left(1);
    if (orderSql.isEmpty()) {
        orderSql = f.fieldname + dir;
        orderText = mark;
    } else {
        orderSql += u',' + f.fieldname + dir;
        orderText += u';' + mark;
    }
}

void Builder::clear() {
    mergedSql.clear();
    orderSql.clear();
    groupSql.clear();
    signText.clear();
    totalTexts.clear();
    orderText.clear();
}

Clause Builder::finish(const QString& fixtureWhere, const QString& totalWhere) {
    // A group left open counts as one more group; alone it keeps no parentheses.
    if (!groupSql.isEmpty())
        mergedSql =
            mergedSql.isEmpty() ? groupSql : mergedSql + QStringLiteral(" OR (") + groupSql + u')';
    if (!mergedSql.isEmpty() && !fixtureWhere.isEmpty())
        mergedSql = fixtureWhere + QStringLiteral(" AND (") + mergedSql + u')';
    else if (!mergedSql.isEmpty())
        mergedSql = QStringLiteral(" Where ") + mergedSql;
    else
        mergedSql = totalWhere;
    if (!orderSql.isEmpty()) orderSql = QStringLiteral(" Order By ") + orderSql;
    return {mergedSql, orderSql};
}

} // namespace findsql
