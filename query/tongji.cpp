// The statistics generators. Each one reads top to bottom as it runs: its statements, its
// total row, then the common reading step. The texts are the system's contract with the
// database (and the reports read the print tables by these column names), so they are kept
// exactly, blanks included; what SQLite needs of them is done in the data-access layer.
#include "query/tongji.h"

#include "data/globals.h"
#include "platform/adodb.h"
#include "platform/errors.h"
#include "platform/msgbox.h"
#include "platform/vb.h"
#include "query/Findfrm.h"
#include "query/reports.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace tongji {

const QString kLandscapeMessage = QStringLiteral("请将打印机设置为A4横向打印！");
const QString kPortraitMessage = QStringLiteral("请将打印机设置为A4纵向(窄行)打印！");
const QString kNoRecordsMessage = QStringLiteral("没有符合条件的记录！");

namespace {

Trace& tracer() {
    static Trace t;
    return t;
}

void trace(const QString& sql) {
    if (tracer()) tracer()(sql);
}

// The connection of a run's statements. It goes before the paper message: the reading
// step opens its own.
//
// On the embedded database each statement on its own is a commit, with its sync to disk,
// and the totals send three statements per group (by subscription number, thousands of
// groups). There the run's statements share one transaction instead, which is committed
// whatever happens, also when a statement fails: the print table then stays as far as it
// was filled, as on the server, where each statement commits by itself.
class Db {
public:
    Db() = default;
    Db(const Db&) = delete;
    Db& operator=(const Db&) = delete;
    ~Db() {
        if (!m_batch) return;
        try {
            m_conn.CommitTrans();
        } catch (const std::exception&) {
            // the error that unwinds the run is the one to report
        }
    }
    void open() {
        m_conn.Open(gConnStr);
        if (m_conn.dbms() != adodb::Dbms::SQLite) return;
        m_conn.BeginTrans();
        m_batch = true;
    }
    // The end of the run's statements: what they wrote stands.
    void done() {
        if (!m_batch) return;
        m_batch = false;
        m_conn.CommitTrans();
    }
    void exec(const QString& sql, long* affected = nullptr) {
        trace(sql);
        m_conn.Execute(sql, affected);
    }
    std::unique_ptr<adodb::Recordset> query(const QString& sql) {
        trace(sql);
        auto rs = std::make_unique<adodb::Recordset>();
        rs->Open(sql, m_conn, adodb::adOpenDynamic, adodb::adLockOptimistic, adodb::adCmdText);
        return rs;
    }

private:
    adodb::Connection m_conn;
    bool m_batch = false;
};

// How a generator runs a step that may fail: "tclasscode" passes over the error, the
// others let it end the run.
using Step = std::function<void(const std::function<void()>&)>;
void stopOnError(const std::function<void()>& step) {
    step();
}
void passOver(const std::function<void()>& step) {
    vb::resume(step);
}

// A value joined into SQL text as the runtime joins it: Null adds nothing, numbers in
// their shortest form.
QString joined(const QVariant& v) {
    return vb::CStr(v);
}

// "='value'" or " IS Null". The value goes in as it is, quotes and all: a source with a
// quote in its name makes the statement fail.
QString valueTest(const QVariant& v) {
    if (v.isNull()) return QStringLiteral(" IS Null");
    return QStringLiteral("='") + joined(v) + u'\'';
}

// The accepted side's rows go on the ordered side's row of the same name; a sum that
// came out Null is written as Null.
QString acceptedUpdate(const adodb::Recordset& ys, const QString& name, bool amounts) {
    auto column = [&](const char* col, const char* lead) {
        const QVariant v = ys.value(QString::fromLatin1(col));
        return QString::fromLatin1(lead) + QString::fromLatin1(col) + u'=' +
               (v.isNull() ? QStringLiteral("Null") : joined(v));
    };
    QString sql =
        QStringLiteral("Update printTotalJE Set ") + column("ystype", "") + column("yscount", ",");
    if (amounts) sql += column("ysjine", ",");
    return sql + QStringLiteral(" Where name='") + name + u'\'';
}

// The accepted rows of a condition: " And status<>0" behind it, or a Where of its own.
// The two blanks before Where are part of the text.
QString acceptedCondition(const QString& iiWhere) {
    return iiWhere.isEmpty() ? QStringLiteral("  Where status<>0")
                             : iiWhere + QStringLiteral(" And status<>0");
}

// The ordered and the accepted condition of one group.
struct GroupConditions {
    QString ordered;
    QString accepted;
};
GroupConditions groupConditions(const QString& iiWhere, const QString& test) {
    if (iiWhere.isEmpty())
        return {QStringLiteral(" Where ") + test, QStringLiteral(" Where status<>0 And ") + test};
    return {iiWhere + QStringLiteral(" And ") + test,
            iiWhere + QStringLiteral(" And status<>0 And ") + test};
}

// What one group of a totals statistic sends: the insert of its row, the select of the
// figures that go onto that row, and the update made of them when the select found a row.
struct GroupSql {
    QString insert;
    QString figures;
    std::function<QString(const adodb::Recordset&)> update;
};

// The loop the totals statistics share: for each row of the list, the group's statements.
void eachGroup(Db& db, const QString& list, const std::function<GroupSql(const QVariant&)>& group,
               const Step& step) {
    std::unique_ptr<adodb::Recordset> groups;
    step([&] { groups = db.query(list); });
    auto more = [&] {
        bool m = false;
        step([&] { m = groups && !groups->EOF_(); });
        return m;
    };
    while (more()) {
        QVariant value;
        step([&] { value = groups->value(0); });
        const GroupSql g = group(value);
        step([&] { db.exec(g.insert); });
        step([&] {
            auto found = db.query(g.figures);
            if (!found->EOF_()) db.exec(g.update(*found));
        });
        step([&] { groups->MoveNext(); });
    }
}

const QString kNullIsUndefined =
    QStringLiteral("Update printTotalJE Set name='未定义' Where name IS Null");

// The common tail: the paper message, then, with errors passed over, a new connection,
// the reading statement and the report (or the message that nothing was found), and
// Findfrm unloaded.
struct Reading {
    vb::DataReport& report;
    bool landscape = false;
    QString sql;
    std::optional<QString> title; // left as the report has it when not given
    QString connStr = gConnStr;
};

void readingStep(const Reading& r, const Present& present) {
    vb::MsgBox(r.landscape ? kLandscapeMessage : kPortraitMessage, vb::vbInformation,
               vb::kMsgTitle);
    adodb::Connection conn;
    auto rs = std::make_shared<adodb::Recordset>();
    vb::resume([&] { conn.Open(r.connStr); });
    vb::resume([&] {
        trace(r.sql);
        rs->Open(r.sql, conn, adodb::adOpenDynamic, adodb::adLockOptimistic, adodb::adCmdText);
    });
    // A recordset that could not be opened fails the end-of-file test, and the runtime
    // then goes on inside the If: the user is told that nothing was found.
    bool eof = true;
    vb::resume([&] { eof = rs->EOF_(); });
    if (eof) {
        vb::MsgBox(kNoRecordsMessage, vb::vbInformation, vb::kMsgTitle);
    } else {
        r.report.DataSource = rs;
        if (r.title) r.report.Title = *r.title;
        r.report.landscape = r.landscape;
        vb::resume([&] { present(r.report); });
    }
    vb::resume([&] { vb::form<Findfrm>().Unload(); });
}

const QString kReadTotalJE =
    QStringLiteral("select name,ydtype,ydcount,ydjine,ystype,yscount,ysjine from printTotalJE");

// ---- order list: "print" --------------------------------------------------------------

void orderList(const QString& iiWhere, const QString& iiOrderby, const Present& present) {
    int16_t kinds = 0;
    {
        Db db;
        db.open();
        db.exec(QStringLiteral("Delete From printCG"));
        long affected = 0;
        db.exec(QStringLiteral("Insert Into printCG (bookname,publisher,pubdate,price,zdcode,"
                               "bookcount,jine) Select bookname,publisher,") +
                    QStringLiteral("pubdate,price,zdcode,bookcount,bookcount*price From cgk ") +
                    iiWhere + iiOrderby,
                &affected);
        // Kept in a 16-bit integer, as the ids are.
        kinds = vb::CInt(static_cast<double>(affected));
        db.exec(QStringLiteral("Insert into printCG (bookname,bookcount,jine) Select '合  计',"
                               "sum(bookcount),sum(jine) From printCG"));
        db.done();
    }
    readingStep(
        {vb::form<printCG>(), true,
         QStringLiteral("select bookname,publisher,pubdate,price,zdcode,bookcount,jine "
                        "from printCG"),
         QStringLiteral("图书采购定单（") + QString::number(kinds) + QStringLiteral("种）")},
        present);
}

// ---- detail: "totalmx" ----------------------------------------------------------------

void detail(const QString& iiWhere, const QString& iiOrderby, const Present& present) {
    const QString condition = acceptedCondition(iiWhere);
    {
        Db db;
        db.open();
        db.exec(QStringLiteral("Delete From printMX"));
        db.exec(QStringLiteral("Insert Into printMX (ysdate,bookname,author,publisher,bookfrom,"
                               "price,[count]) Select convert(varchar(10),ysdate,111),bookname,") +
                QStringLiteral("author,publisher,bookfrom,price,yscount From cgk ") + condition +
                iiOrderby);
        db.exec(QStringLiteral(
            "Insert into printMX (ysdate,[count]) Select '合  计',sum([count]) From printMX"));
        db.done();
    }
    readingStep({vb::form<printMX>(), true,
                 QStringLiteral("select ysdate,bookname,author,publisher,bookfrom,price,[count] "
                                "from printMX"),
                 std::nullopt},
                present);
}

// ---- class by batch: "totaltotal" -------------------------------------------------------

void classByBatch(const QString& iiWhere, const Present& present) {
    const QString condition = acceptedCondition(iiWhere);
    {
        Db db;
        db.open();
        db.exec(QStringLiteral("Delete From printLeiBie"));
        auto classes = db.query(
            QStringLiteral("Select Distinct left(classcode,1) AS type From cgk ") + condition);
        while (!classes->EOF_()) {
            const QVariant value = classes->value(0);
            QString label, classCondition;
            if (value.isNull()) {
                label = QStringLiteral("其它");
                classCondition =
                    condition + QStringLiteral(" And (classcode IS NUll OR classcode='')");
            } else {
                label = vb::Left(joined(value), 1);
                classCondition =
                    condition + QStringLiteral(" And left(classcode,1)='") + joined(value) + u'\'';
            }
            {
                // No test for an empty result: type holds a row for every class letter.
                auto name =
                    db.query(QStringLiteral("Select name From type Where type='") + label + u'\'');
                label = label + QStringLiteral("：") + joined(name->value(QStringLiteral("name"))) +
                        QStringLiteral("》");
            }
            db.exec(
                QStringLiteral("Insert Into printLeiBie (type,batch,bookfrom,typecount,[count],"
                               "jine)") +
                QStringLiteral(" Select '") + label +
                QStringLiteral("' AS iType,batch,bookfrom,count(bookname),sum(ic),sum(ip) From ") +
                QStringLiteral(" (Select batch,Bookfrom,bookname,sum(yscount) as iC,"
                               "sum(ysprice*yscount) as iP From cgk ") +
                classCondition + QStringLiteral(" Group By batch,bookfrom,bookname) as TT") +
                QStringLiteral(" Group By batch,bookfrom Order by batch,bookfrom"));
            db.exec(QStringLiteral("Insert Into printLeiBie (type,batch,typecount,[count],jine) "
                                   "Select '") +
                    label +
                    QStringLiteral("','合计',sum(typecount),sum([count]),sum(jine) From "
                                   "printLeiBie Where type='") +
                    label + u'\'');
            classes->MoveNext();
        }
        db.done();
    }
    // The report groups by class: the rows are read shaped, one parent row per type.
    Reading r{vb::form<printLeibie>(), false,
              QStringLiteral(" SHAPE {") +
                  QStringLiteral("select type,batch,bookfrom,typecount,[count],jine from "
                                 "printLeiBie") +
                  QStringLiteral("}  AS myPrint COMPUTE myPrint BY 'type'"),
              std::nullopt};
    r.connStr = vb::Replace(gConnStr, QStringLiteral("MSDASQL"), QStringLiteral("MSDataShape"));
    readingStep(r, present);
}

// ---- totals by field: "tlagclass", "tcgff", "tzdcode", "tbookfrom" ---------------------------

void totalsByField(const QString& field, const QString& title, vb::DataReport& report,
                   bool landscapePaper, const QString& iiWhere, const Present& present) {
    {
        Db db;
        db.open();
        db.exec(QStringLiteral("Delete From printTotalJE"));
        eachGroup(
            db, QStringLiteral("Select Distinct ") + field + QStringLiteral(" From cgk ") + iiWhere,
            [&](const QVariant& value) {
                const GroupConditions c = groupConditions(iiWhere, field + valueTest(value));
                return GroupSql{
                    QStringLiteral("Insert into printTotalJE (name,ydtype,ydcount,ydjine) ") +
                        QStringLiteral("Select ") + field +
                        QStringLiteral(",count(bookname) as ydtype,sum(iC) as ydcount,sum(iJ) as "
                                       "ydjine From ") +
                        QStringLiteral("(Select ") + field +
                        QStringLiteral(",bookname,sum(bookcount) as iC,sum(price*bookcount) as iJ "
                                       "From cgk ") +
                        c.ordered + QStringLiteral(" Group By ") + field +
                        QStringLiteral(",bookname) as TT ") + QStringLiteral("Group by ") + field +
                        QStringLiteral(" Order By ") + field,
                    QStringLiteral("Select ") + field +
                        QStringLiteral(",count(bookname) as ystype,sum(iC) as yscount,sum(iJ) as "
                                       "ysjine From ") +
                        QStringLiteral("(Select ") + field +
                        QStringLiteral(",bookname,sum(yscount) as iC,sum(ysprice*yscount) as iJ "
                                       "From cgk ") +
                        c.accepted + QStringLiteral(" Group By ") + field +
                        QStringLiteral(",bookname) as TT ") + QStringLiteral("Group by ") + field +
                        QStringLiteral(" Order By ") + field,
                    // The Null group's name compares with an empty text: it keeps no
                    // accepted figures.
                    [name = joined(value)](const adodb::Recordset& ys) {
                        return acceptedUpdate(ys, name, true);
                    }};
            },
            stopOnError);
        db.exec(QStringLiteral("Insert Into printTotalJE (name,ydtype,ydcount,ydjine,ystype,"
                               "yscount,ysjine) ") +
                QStringLiteral("Select '合计',sum(ydtype),sum(ydcount),sum(ydjine),sum(ystype),"
                               "sum(yscount),sum(ysjine) From printTotalJE"));
        // After the total row, so it cannot be renamed.
        db.exec(kNullIsUndefined);
        db.done();
    }
    readingStep({report, landscapePaper, kReadTotalJE, title}, present);
}

// ---- totals by class: "tclasscode" ------------------------------------------------------------
// Every error is passed over here: a statement that fails leaves its row out.

void totalsByClass(const QString& iiWhere, const Present& present) {
    {
        Db db;
        const Step& go = passOver;
        go([&] { db.open(); });
        go([&] { db.exec(QStringLiteral("Delete From printTotalJE")); });
        eachGroup(
            db, QStringLiteral("Select Distinct left(classcode,1) AS type From cgk ") + iiWhere,
            [&](const QVariant& value) {
                QString test, label;
                if (value.isNull()) {
                    test = QStringLiteral("(classcode IS NUll OR classcode='')");
                    label = QStringLiteral("其它");
                } else {
                    test = QStringLiteral("left(classcode,1)='") + joined(value) + u'\'';
                    label = vb::Left(joined(value), 1);
                }
                const GroupConditions c = groupConditions(iiWhere, test);
                // A letter the type table does not know keeps the letter.
                go([&] {
                    auto name = db.query(QStringLiteral("Select name From type Where type='") +
                                         label + u'\'');
                    label = joined(name->value(QStringLiteral("name")));
                });
                return GroupSql{
                    QStringLiteral("Insert into printTotalJE (name,ydtype,ydcount,ydjine) ") +
                        QStringLiteral("Select iType,count(bookname) as ydtype,sum(iC) as "
                                       "ydcount,sum(iJ) as ydjine From ") +
                        QStringLiteral("(Select '") + label +
                        QStringLiteral("' as iType,bookname,sum(bookcount) as iC,"
                                       "sum(price*bookcount) as iJ From cgk ") +
                        c.ordered + QStringLiteral(" Group By bookname) as TT ") +
                        QStringLiteral("Group by iType Order By iType"),
                    QStringLiteral("Select iType,count(bookname) as ystype,sum(iC) as yscount,"
                                   "sum(iJ) as ysjine From ") +
                        QStringLiteral("(Select '") + label +
                        QStringLiteral("' as iType,bookname,sum(yscount) as iC,"
                                       "sum(ysprice*yscount) as iJ From cgk ") +
                        c.accepted + QStringLiteral(" Group By bookname) as TT ") +
                        QStringLiteral("Group by iType Order By iType"),
                    [label](const adodb::Recordset& ys) {
                        return acceptedUpdate(ys, label, true);
                    }};
            },
            go);
        go([&] {
            db.exec(QStringLiteral("Insert Into printTotalJE (name,ydtype,ydcount,ydjine,ystype,"
                                   "yscount,ysjine) ") +
                    QStringLiteral("Select '合计',sum(ydtype),sum(ydcount),sum(ydjine),"
                                   "sum(ystype),sum(yscount),sum(ysjine) From printTotalJE"));
        });
        go([&] { db.exec(kNullIsUndefined); });
        go([&] { db.done(); });
    }
    readingStep({vb::form<printJinECB>(), false, kReadTotalJE, QStringLiteral("作品分类")},
                present);
}

// ---- arrival rate: "tyscount" ---------------------------------------------------------------

void arrivalRate(const QString& iiWhere, const Present& present) {
    const QString field = QStringLiteral("bookfrom");
    {
        Db db;
        db.open();
        db.exec(QStringLiteral("Delete From printTotalJE"));
        eachGroup(
            db, QStringLiteral("Select Distinct ") + field + QStringLiteral(" From cgk ") + iiWhere,
            [&](const QVariant& value) {
                const GroupConditions c = groupConditions(iiWhere, field + valueTest(value));
                // The blank before the bracket of the inner select is part of the text.
                return GroupSql{
                    QStringLiteral("Insert into printTotalJE (name,ydtype,ydcount) ") +
                        QStringLiteral("Select ") + field +
                        QStringLiteral(",count(bookname) as ydtype,sum(iC) as ydcount From ") +
                        QStringLiteral("(Select ") + field +
                        QStringLiteral(",bookname,sum(bookcount) as iC From cgk ") + c.ordered +
                        QStringLiteral(" Group By ") + field +
                        QStringLiteral(",bookname ) as TT ") + QStringLiteral("Group by ") + field +
                        QStringLiteral(" Order By ") + field,
                    QStringLiteral("Select ") + field +
                        QStringLiteral(",count(bookname) as ystype,sum(iC) as yscount From ") +
                        QStringLiteral("(Select ") + field +
                        QStringLiteral(",bookname,sum(yscount) as iC From cgk ") + c.accepted +
                        QStringLiteral(" Group By ") + field + QStringLiteral(",bookname) as TT ") +
                        QStringLiteral("Group by ") + field + QStringLiteral(" Order By ") + field,
                    [name = joined(value)](const adodb::Recordset& ys) {
                        return acceptedUpdate(ys, name, false);
                    }};
            },
            stopOnError);
        db.exec(QStringLiteral("Insert Into printTotalJE (name,ydtype,ydcount,ystype,yscount) ") +
                QStringLiteral("Select '合计',sum(ydtype),sum(ydcount),sum(ystype),sum(yscount) "
                               "From printTotalJE"));
        db.exec(kNullIsUndefined);
        // The two amount columns take the percentages, in the database's own arithmetic:
        // whole numbers divide to a whole number.
        db.exec(QStringLiteral(
            "Update printTotalJE Set ydjine=100*ystype/ydtype,ysjine=100*yscount/ydcount"));
        db.done();
    }
    readingStep({vb::form<printJinELV>(), false, kReadTotalJE, QString()}, present);
}

// ---- payment: "tjine" -----------------------------------------------------------------------

void payment(const QString& iiWhere, const Present& present) {
    {
        Db db;
        db.open();
        db.exec(QStringLiteral("Delete From printTotalJE"));
        eachGroup(
            db, QStringLiteral("Select Distinct bookfrom From cgk ") + iiWhere,
            [&](const QVariant& value) {
                const QString test = valueTest(value);
                const QString condition =
                    iiWhere.isEmpty()
                        ? QStringLiteral(" Where status<>0 And bookfrom") + test
                        : iiWhere + QStringLiteral(" And status<>0 And bookfrom") + test;
                return GroupSql{
                    // ydjine here is what the accepted books are worth: the amount payable.
                    QStringLiteral("Insert Into printTotalJE (name,ydtype,ydcount,ydjine) ") +
                        QStringLiteral("Select bookfrom,count(bookname) as ydtype,sum(iC) as "
                                       "ydcount,sum(iJ) as ydjine From ") +
                        QStringLiteral("(Select bookfrom,bookname,sum(yscount) as iC,"
                                       "sum(ysprice*yscount) as iJ From cgk ") +
                        condition + QStringLiteral(" Group By bookfrom,bookname) as TT ") +
                        QStringLiteral("Group by bookfrom Order By bookfrom"),
                    // Every row of a voucher carries the voucher's whole amount: grouping by
                    // batch and amount first makes the sum count each voucher once.
                    QStringLiteral("Select bookfrom,sum(ysjine) From ") +
                        QStringLiteral("(Select bookfrom,batch,ysjine From cgk ") + condition +
                        QStringLiteral(" Group By bookfrom,batch,ysjine) as TT ") +
                        QStringLiteral("Group By bookfrom Order By bookfrom"),
                    [test](const adodb::Recordset& paid) {
                        return QStringLiteral("Update printTotalJE Set ysjine=") +
                               joined(paid.value(1)) + QStringLiteral(" Where name") + test;
                    }};
            },
            stopOnError);
        db.exec(QStringLiteral("Insert Into printTotalJE (name,ydtype,ydcount,ydjine,ysjine) ") +
                QStringLiteral("Select '合计',sum(ydtype),sum(ydcount),sum(ydjine),sum(ysjine) "
                               "From printTotalJE"));
        db.exec(QStringLiteral("Update printTotalJE Set ystype=(ysjine/ydjine)*100"));
        db.done();
    }
    readingStep(
        {vb::form<printTotalJine>(), false,
         QStringLiteral("select name,ydtype,ydcount,ydjine,ysjine,ystype from printTotalJE"),
         std::nullopt},
        present);
}

} // namespace

const QStringList& printTypes() {
    static const QStringList words = {
        QStringLiteral("print"),     QStringLiteral("totalmx"),    QStringLiteral("totaltotal"),
        QStringLiteral("tlagclass"), QStringLiteral("tzdcode"),    QStringLiteral("tcgff"),
        QStringLiteral("tbookfrom"), QStringLiteral("tclasscode"), QStringLiteral("tyscount"),
        QStringLiteral("tjine"),
    };
    return words;
}

bool isPrintType(const QString& printType) {
    return printTypes().contains(printType);
}

bool landscape(const QString& printType) {
    return printType == QLatin1String("print") || printType == QLatin1String("totalmx") ||
           printType == QLatin1String("tbookfrom");
}

void showReport(vb::DataReport& report) {
    vb::resume([&] { report.Refresh(); });
    vb::resume([&] { report.Show(); });
}

bool run(const QString& printType, const QString& iiWhere, const QString& iiOrderby,
         const Present& present) {
    const QString& t = printType;
    if (t == QLatin1String("print")) {
        orderList(iiWhere, iiOrderby, present);
    } else if (t == QLatin1String("totalmx")) {
        detail(iiWhere, iiOrderby, present);
    } else if (t == QLatin1String("totaltotal")) {
        classByBatch(iiWhere, present);
    } else if (t == QLatin1String("tlagclass")) {
        totalsByField(QStringLiteral("lagclass"), QStringLiteral("作品语种"),
                      vb::form<printJinECB>(), false, iiWhere, present);
    } else if (t == QLatin1String("tzdcode")) {
        totalsByField(QStringLiteral("zdcode"), QStringLiteral("征 订 号"), vb::form<printJinECB>(),
                      false, iiWhere, present);
    } else if (t == QLatin1String("tcgff")) {
        totalsByField(QStringLiteral("cgff"), QStringLiteral("采购方式"), vb::form<printJinECB>(),
                      false, iiWhere, present);
    } else if (t == QLatin1String("tbookfrom")) {
        // The narrow report, and still the landscape paper.
        totalsByField(QStringLiteral("bookfrom"), QStringLiteral("图书来源"),
                      vb::form<printJinEYFZ>(), true, iiWhere, present);
    } else if (t == QLatin1String("tclasscode")) {
        totalsByClass(iiWhere, present);
    } else if (t == QLatin1String("tyscount")) {
        arrivalRate(iiWhere, present);
    } else if (t == QLatin1String("tjine")) {
        payment(iiWhere, present);
    } else {
        return false;
    }
    return true;
}

Trace setTrace(Trace trace) {
    Trace old = std::move(tracer());
    tracer() = std::move(trace);
    return old;
}

} // namespace tongji
