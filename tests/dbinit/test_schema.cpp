// A fresh database as the program finds it: tables and columns by the names the
// statements write, the defaults, collation and date rules the statements rely on,
// and the seed rows.

#include "data/dbinit/dbinit.h"
#include "dbhelp.h"

#include <map>
#include <memory>
#include <regex>
#include <set>

using dbhelp::Db;

namespace {

class FreshDb : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        dir_ = new dbhelp::TempDir;
        std::string error;
        ASSERT_TRUE(orvane::dbinit::createDatabase(dir_->file("fresh.db"), false, &error)) << error;
    }
    static void TearDownTestSuite() {
        delete dir_;
        dir_ = nullptr;
    }
    void SetUp() override { db = std::make_unique<Db>(dir_->file("fresh.db")); }

    static dbhelp::TempDir* dir_;
    std::unique_ptr<Db> db;
};
dbhelp::TempDir* FreshDb::dir_ = nullptr;

// The tables and columns as the forms' statements name them.
const std::map<std::string, std::string> expectedTables{
    {"cgk", "cgkid,bookfrom,bookname,author,zdcode,isbn,publisher,pubplace,pubdate,edition,"
            "pages,measure,classcode,docclass,lagclass,price,cgff,yddate,bookcount,cgname,"
            "status,batch,ysname,ysdate,ysprice,yscount,fpcode,sjcode,ysjine"},
    {"cgkStatus", "fieldsstatus,fieldsname"},
    {"cggys", "publisher,pubplace,address,zipcode,tel,fax,email,web,pubclass"},
    {"Global", "type,code"},
    {"cck", "measure"},
    {"wxlx", "docclass"},
    {"type", "type,name"},
    {"cbk", "cbkid,C_SBN,C_CBD,C_CBS"},
    {"ZSK", "ZSKID,bookname,author,isbn,publisher,pubplace,pubdate,edition,pages,measure,"
            "classcode,docclass,bookcount"},
    {"taolutable", "ZSKID,bookname,author,isbn,publisher,pubplace,pubdate,edition,pages,"
                   "measure,classcode,docclass"},
    {"LibUse", "userid,username,password,cgk"},
    {"FDict", "DbName,FieldName,CnName"},
    {"printCG", "bookname,publisher,pubdate,price,zdcode,bookcount,jine"},
    {"printMX", "ysdate,bookname,author,publisher,bookfrom,price,[count]"},
    {"printLeiBie", "type,batch,bookfrom,typecount,[count],jine"},
    {"printTotalJE", "name,ydtype,ydcount,ydjine,ystype,yscount,ysjine"},
    {"printYStotal", "batch,bookfrom,typecount,counts,jine"},
    {"printYSmx", "batch,bookname,author,publisher,price,counts"},
};

TEST_F(FreshDb, EveryTableAndColumnAnswersToItsName) {
    for (const auto& [table, columns] : expectedTables) {
        std::string why;
        EXPECT_TRUE(db->prepares("SELECT " + columns + " FROM " + table, &why))
            << table << ": " << why;
    }
    // The statements spell names in several cases; brackets as SQL Server writes them.
    for (const char* sql :
         {"SELECT cgkID,bookName,ISBN FROM CGK", "Select Code From global",
          "select cbkid from CBK where c_sbn='7-02'", "Select userid,cgk From libuse",
          "Select DBname From FDict", "select ISBN from zsk", "select [count] from printMX"}) {
        std::string why;
        EXPECT_TRUE(db->prepares(sql, &why)) << sql << ": " << why;
    }
}

TEST_F(FreshDb, NewOrderIsOpenWithoutNamingStatus) {
    db->exec("Insert Into cgk (cgkid,bookfrom,bookname,price,cgff,yddate,bookcount) "
             "Values (901,'新华书店','测试','12.5','预订','2003-05-01',2)");
    EXPECT_EQ(db->value("Select count(*) From cgk Where status=0 And cgkid=901"), "1");
    // The key refuses a second order with the same id, as two workstations may try.
    EXPECT_FALSE(sqlite3_exec(db->handle(), "Insert Into cgk (cgkid,bookname) Values (901,'x')",
                              nullptr, nullptr, nullptr) == SQLITE_OK);
}

TEST_F(FreshDb, TextComparesWithoutCaseAndTrailingBlanks) {
    EXPECT_EQ(db->value("Select cgk From LibUse Where username='ADMIN ' AND password='admin'"),
              "1");
    EXPECT_EQ(db->value("Select cgk From LibUse Where username='Guest' AND password='guest'"), "0");
    EXPECT_EQ(db->value("Select cgk From LibUse Where username='admin' AND password='wrong'"),
              "<none>");
    // Leading blanks still count.
    EXPECT_EQ(db->value("Select count(*) From LibUse Where username=' admin'"), "0");
    EXPECT_EQ(db->value("Select count(*) From Global Where type='CGKID '"), "1");
}

TEST_F(FreshDb, OrderDatesAreStoredNormalisedAndCompareAsOnTheServer) {
    db->exec("Insert Into cgk (cgkid,bookname,yddate) Values (801,'a','2003/1/1')");
    db->exec("Insert Into cgk (cgkid,bookname,yddate) Values (802,'b','2003-01-31 10:00')");
    db->exec("Insert Into cgk (cgkid,bookname,yddate) Values (803,'c','2003-01-31')");
    db->exec("Insert Into cgk (cgkid,bookname,yddate) Values (804,'d','2003-1-31 00:00:00')");
    EXPECT_EQ(db->value("Select yddate From cgk Where cgkid=801"), "2003-01-01");
    EXPECT_EQ(db->value("Select yddate From cgk Where cgkid=804"), "2003-01-31");
    EXPECT_EQ(db->column("Select cgkid From cgk Where cgkid>800 And yddate<='2003-01-31' "
                         "Order By cgkid"),
              (std::vector<std::string>{"801", "803", "804"}));
    EXPECT_EQ(db->value("Select convert(varchar(10),yddate,111) From cgk Where cgkid=802"),
              "2003/01/31");

    // Acceptance writes ysdate by an update; a later update of another column keeps it.
    db->exec("Update cgk Set ysname='admin',ysdate='2003/2/5',status=1 Where cgkid=801");
    EXPECT_EQ(db->value("Select ysdate From cgk Where cgkid=801"), "2003-02-05");
    db->exec("Update cgk Set yddate='2002/12/30' Where cgkid=801");
    EXPECT_EQ(db->value("Select yddate||' '||ysdate From cgk Where cgkid=801"),
              "2002-12-30 2003-02-05");
    db->exec("Update cgk Set yddate=Null Where cgkid=801");
    EXPECT_EQ(db->value("Select yddate From cgk Where cgkid=801"), "<null>");
}

TEST_F(FreshDb, DictionaryNamesDriveTheFieldKinds) {
    // Names that make a field a date or a number in the query builder, by column.
    const std::map<std::string, std::string> kinded{
        {"yddate", "预定日期"},  {"ysdate", "验收日期"}, {"yscount", "验收册数"},
        {"ysprice", "验收价格"}, {"price", "预定价格"},  {"bookcount", "预定册数"},
        {"pages", "页码"}};
    const std::set<std::string> kindNames{"日期",     "预定日期", "验收日期", "验收册数",
                                          "验收价格", "预定价格", "预定册数", "页码"};

    auto entries = db->rows("Select DbName,FieldName,CnName From FDict Where DBname='cgk' OR "
                            "DBname='cgkys'");
    std::map<std::string, std::string> byField;
    std::set<std::string> names;
    for (auto& e : entries) {
        EXPECT_TRUE(byField.emplace(e[1], e[2]).second) << "twice: " << e[1];
        EXPECT_TRUE(names.insert(e[2]).second) << "name shown twice: " << e[2];
        EXPECT_TRUE(db->prepares("Select " + e[1] + " From cgk")) << e[1];
        if (kindNames.count(e[2])) {
            ASSERT_TRUE(kinded.count(e[1])) << e[2] << " on " << e[1];
            EXPECT_EQ(kinded.at(e[1]), e[2]);
        }
    }
    for (auto& [field, name] : kinded) EXPECT_EQ(byField[field], name) << field;

    // Every column of an order is offered; acceptance columns only in 'cgkys'.
    const std::set<std::string> acceptance{"batch",   "ysname", "ysdate", "ysprice",
                                           "yscount", "fpcode", "sjcode", "ysjine"};
    for (auto& c : db->column("Select FieldName From FDict Where DbName='cgkys'"))
        EXPECT_TRUE(acceptance.count(c)) << c;
    const auto order = db->column("Select FieldName From FDict Where DbName='cgk'");
    std::regex comma(",");
    const std::string cgk = expectedTables.at("cgk");
    for (std::sregex_token_iterator it(cgk.begin(), cgk.end(), comma, -1), end; it != end; ++it)
        if (!acceptance.count(*it)) {
            EXPECT_NE(std::find(order.begin(), order.end(), *it), order.end()) << *it;
        }

    const auto supplier = db->column("Select FieldName From FDict Where DbName='cggys'");
    EXPECT_EQ(std::set<std::string>(supplier.begin(), supplier.end()),
              (std::set<std::string>{"publisher", "pubplace", "address", "zipcode", "tel", "fax",
                                     "email", "web", "pubclass"}));
}

TEST_F(FreshDb, CodeListsAndCountersAreThere) {
    EXPECT_EQ(db->value("Select fieldsname From cgkStatus Where fieldsstatus=0"), "预定中");
    EXPECT_EQ(db->value("Select fieldsname From cgkStatus Where fieldsstatus=1"), "已验收");
    EXPECT_NE(db->value("Select fieldsname From cgkStatus Where fieldsstatus=2"), "<none>");

    EXPECT_EQ(db->value("Select Code From Global Where type='cgkid'"), "1");
    EXPECT_EQ(db->number("Select count(*) From Global Where type='cgkid'"), 1);
    const auto ways = db->column("Select Distinct code From Global Where type='cgkcgff'");
    for (const char* w : {"预订", "现购", "邮购", "赠送", "交换"})
        EXPECT_NE(std::find(ways.begin(), ways.end(), w), ways.end()) << w;
    EXPECT_GT(db->number("Select count(*) From Global Where type='language' And code='中文'"), 0);
    EXPECT_EQ(db->value("Select measure From cck Where measure='大32开'"), "大32开");
    EXPECT_EQ(db->value("Select docclass From wxlx Where docclass='学位论文'"), "学位论文");

    // The statistics look up the first letter of every class number, and "其它".
    for (const char* letter : {"A", "B", "C", "D", "E", "F", "G", "H", "I", "J", "K",   "N",
                               "O", "P", "Q", "R", "S", "T", "U", "V", "X", "Z", "其它"})
        EXPECT_NE(db->value(std::string("Select name From type Where type='") + letter + "'"),
                  "<none>")
            << letter;
    EXPECT_EQ(db->value("Select name From type Where type='T'"), "工业技术");
    EXPECT_EQ(db->value("Select name From type Where type='A'"),
              "马克思主义、列宁主义、毛泽东思想、邓小平理论");
}

TEST_F(FreshDb, PublisherPrefixesSplitBareNumbersUnambiguously) {
    EXPECT_EQ(db->value("Select C_CBS||'/'||C_CBD From cbk Where C_SBN='7-302'"),
              "清华大学出版社/北京");
    EXPECT_EQ(db->value("Select C_CBS From cbk Where C_SBN='7-111'"), "机械工业出版社");
    EXPECT_EQ(db->value("Select C_CBS From cbk Where C_SBN='7-02'"), "人民文学出版社");

    const auto prefixes = db->rows("Select C_SBN,C_CBD,C_CBS From cbk");
    EXPECT_GE(prefixes.size(), 36u);
    const std::regex form("7-[0-9]{2,7}");
    std::set<std::string> seen;
    for (auto& p : prefixes) {
        EXPECT_TRUE(std::regex_match(p[0], form)) << p[0];
        EXPECT_TRUE(seen.insert(p[0]).second) << "twice: " << p[0];
        EXPECT_NE(p[1], "<null>");
        EXPECT_NE(p[2], "<null>");
    }
    // formatIsbn takes the shortest prefix found: a prefix that begins another one
    // would hide the longer one for good.
    for (auto& a : seen)
        for (auto& b : seen)
            if (a != b) {
                EXPECT_NE(b.rfind(a, 0), 0u) << a << " hides " << b;
            }
}

TEST(Populate, WorksOnAConnectionOfTheCaller) {
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(":memory:", &db), SQLITE_OK);
    ASSERT_EQ(orvane_compat_register(db), SQLITE_OK);
    std::string error;
    ASSERT_TRUE(orvane::dbinit::populate(db, {}, &error)) << error;
    ASSERT_TRUE(orvane::dbinit::addHoldings(db, 250, &error)) << error;
    ASSERT_TRUE(orvane::dbinit::addHoldings(db, 50, &error)) << error;
    sqlite3_stmt* st = nullptr;
    sqlite3_prepare_v2(db, "Select count(*),count(distinct ZSKID),max(ZSKID) From ZSK", -1, &st,
                       nullptr);
    ASSERT_EQ(sqlite3_step(st), SQLITE_ROW);
    EXPECT_EQ(sqlite3_column_int(st, 0), 300);
    EXPECT_EQ(sqlite3_column_int(st, 1), 300);
    EXPECT_EQ(sqlite3_column_int(st, 2), 300);
    sqlite3_finalize(st);
    // A second populate on the same connection fails as a whole and says why.
    EXPECT_FALSE(orvane::dbinit::populate(db, {}, &error));
    EXPECT_NE(error.find("already exists"), std::string::npos) << error;
    sqlite3_close(db);
}

} // namespace
