// The demo data set: sizes, and the invariants the forms rely on when they work on it.

#include "data/dbinit/dbinit.h"
#include "dbhelp.h"

#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <regex>
#include <set>

using dbhelp::Db;

namespace {

class DemoDb : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        dir_ = new dbhelp::TempDir;
        std::string error;
        ASSERT_TRUE(orvane::dbinit::createDatabase(dir_->file("demo.db"), true, &error)) << error;
    }
    static void TearDownTestSuite() {
        delete dir_;
        dir_ = nullptr;
    }
    void SetUp() override { db = std::make_unique<Db>(dir_->file("demo.db")); }

    static dbhelp::TempDir* dir_;
    std::unique_ptr<Db> db;
};
dbhelp::TempDir* DemoDb::dir_ = nullptr;

// ISBN-10 check character, weights 10 down to 2.
char checkChar(const std::string& nine) {
    int sum = 0;
    for (int i = 0; i < 9; ++i) sum += (10 - i) * (nine[size_t(i)] - '0');
    const int r = sum % 11;
    return r == 0 ? '0' : r == 1 ? 'X' : char('0' + 11 - r);
}

TEST_F(DemoDb, HasTheAdvertisedSize) {
    EXPECT_GE(db->number("Select count(*) From cgk"), 2000);
    EXPECT_EQ(db->number("Select count(*) From ZSK"), 10000);
    EXPECT_EQ(db->number("Select count(*) From taolutable"), 1000);
    EXPECT_EQ(db->number("Select count(*) From cggys"), 30);
    EXPECT_EQ(db->number("Select count(*) From cggys Where pubplace Is Null Or address Is Null "
                         "Or zipcode Is Null Or tel Is Null"),
              0);
}

TEST_F(DemoDb, OrdersAreInEveryStateAndTheCounterIsAhead) {
    for (int status : {0, 1, 2})
        EXPECT_GE(db->number("Select count(*) From cgk Where status=" + std::to_string(status)),
                  100)
            << status;
    EXPECT_EQ(db->number("Select count(*) From cgk Where status Not In (0,1,2) Or status Is Null"),
              0);
    // Back-orders for the replenishment form, and some already replenished.
    EXPECT_GT(db->number("Select count(*) From cgk Where status=1 And bookcount>yscount"), 0);
    EXPECT_GT(db->number("Select count(*) From cgk Where status=0 And cgff='补定'"), 0);

    const long long next = std::stoll(db->value("Select Code From Global Where type='cgkid'"));
    EXPECT_EQ(next, db->number("Select max(cgkid) From cgk") + 1);
    EXPECT_LT(next, 32000); // the entry form keeps ids in 16 bits
}

TEST_F(DemoDb, AcceptedRowsCarryAWholeVoucher) {
    EXPECT_EQ(db->number("Select count(*) From cgk Where status<>0 And (batch Is Null Or "
                         "ysname Is Null Or ysdate Is Null Or ysprice Is Null Or yscount Is Null "
                         "Or ysjine Is Null Or (fpcode Is Null And sjcode Is Null))"),
              0);
    EXPECT_EQ(db->number("Select count(*) From cgk Where status=0 And (batch Is Not Null Or "
                         "ysdate Is Not Null Or yscount Is Not Null)"),
              0);
    EXPECT_EQ(db->number("Select count(*) From cgk Where ysdate<yddate"), 0);
    // One voucher: one source, one day, its total on every row.
    EXPECT_EQ(db->column("Select batch From cgk Where batch Is Not Null Group By batch Having "
                         "count(Distinct ysjine)>1 Or count(Distinct bookfrom)>1 Or "
                         "count(Distinct ysdate)>1"),
              std::vector<std::string>{});
    // Batches are numbered 1, 2, ... without a gap.
    const long long batches = db->number("Select count(Distinct batch) From cgk");
    EXPECT_GT(batches, 10);
    EXPECT_EQ(db->number("Select max(cast(batch as integer)) From cgk"), batches);
    EXPECT_GT(db->number("Select count(*) From cgk Where sjcode Is Not Null"), 0);
    EXPECT_GT(db->number("Select count(*) From cgk Where fpcode Is Not Null"), 0);
}

TEST_F(DemoDb, IsbnsAreValidAndTheirPublishersMatchThePrefixes) {
    std::map<std::string, std::pair<std::string, std::string>> cbk;
    for (auto& r : db->rows("Select C_SBN,C_CBS,C_CBD From cbk")) cbk[r[0]] = {r[1], r[2]};

    const std::regex form("(7-[0-9]+)-[0-9]+-[0-9X]");
    int checked = 0;
    for (const char* table : {"cgk", "ZSK", "taolutable"}) {
        for (auto& r : db->rows(std::string("Select isbn,publisher,pubplace From ") + table +
                                " Where isbn Is Not Null")) {
            std::smatch m;
            ASSERT_TRUE(std::regex_match(r[0], m, form)) << table << ": " << r[0];
            ASSERT_EQ(r[0].size(), 13u) << r[0];
            std::string digits;
            for (char c : r[0])
                if (c != '-') digits += c;
            EXPECT_EQ(digits.back(), checkChar(digits.substr(0, 9))) << r[0];
            auto p = cbk.find(m[1].str());
            ASSERT_NE(p, cbk.end()) << r[0];
            EXPECT_EQ(r[1], p->second.first) << r[0];
            EXPECT_EQ(r[2], p->second.second) << r[0];
            ++checked;
        }
    }
    EXPECT_GT(checked, 12000);
}

TEST_F(DemoDb, TextsFitTheFormFields) {
    // The entry and supplier forms hold at most these many characters.
    const std::map<std::string, std::map<std::string, int>> limits{
        {"cgk",
         {{"bookfrom", 30},
          {"bookname", 50},
          {"author", 30},
          {"zdcode", 20},
          {"isbn", 13},
          {"publisher", 30},
          {"pubplace", 10},
          {"pubdate", 11},
          {"edition", 20},
          {"measure", 10},
          {"classcode", 10},
          {"docclass", 10},
          {"lagclass", 15},
          {"cgff", 8},
          {"batch", 20},
          {"fpcode", 20},
          {"sjcode", 20}}},
        {"cggys",
         {{"publisher", 30},
          {"pubplace", 10},
          {"address", 30},
          {"zipcode", 6},
          {"tel", 15},
          {"fax", 15},
          {"email", 15},
          {"web", 15}}},
    };
    for (const auto& [table, columns] : limits)
        for (const auto& [column, limit] : columns)
            EXPECT_LE(db->number("Select coalesce(max(length(" + column + ")),0) From " + table),
                      limit)
                << table << "." << column;
    // The supplier form picks the type from a fixed list of two.
    EXPECT_EQ(db->column("Select Distinct pubclass From cggys Order By pubclass"),
              (std::vector<std::string>{"出版商", "销售商"}));
}

TEST_F(DemoDb, ValuesComeFromTheCodeLists) {
    // Otherwise editing a demo order would ask to add the value to its list.
    EXPECT_EQ(db->column("Select Distinct bookfrom From cgk Where bookfrom Not In (Select "
                         "publisher From cggys)"),
              std::vector<std::string>{});
    EXPECT_EQ(db->column("Select Distinct lagclass From cgk Where lagclass Not In (Select code "
                         "From Global Where type='language')"),
              std::vector<std::string>{});
    EXPECT_EQ(db->column("Select Distinct cgff From cgk Where cgff<>'补定' And cgff Not In "
                         "(Select code From Global Where type='cgkcgff')"),
              std::vector<std::string>{});
    EXPECT_EQ(db->column("Select Distinct measure From cgk Where measure Not In (Select measure "
                         "From cck)"),
              std::vector<std::string>{});
    EXPECT_EQ(db->column("Select Distinct docclass From cgk Where docclass Not In (Select "
                         "docclass From wxlx)"),
              std::vector<std::string>{});
    // The class statistics need a name for every class letter in use.
    EXPECT_EQ(db->column("Select Distinct substr(classcode,1,1) From cgk Where classcode Is Not "
                         "Null And substr(classcode,1,1) Not In (Select type From type)"),
              std::vector<std::string>{});
    EXPECT_GT(db->number("Select count(*) From cgk Where classcode Is Null"), 0);
}

TEST_F(DemoDb, DuplicateCheckFindsTitlesInAllThreePlaces) {
    // The union of the duplicate check, by title and by ISBN.
    // The states found, one for each row.
    auto search = [&](const std::string& where) {
        std::vector<std::string> states;
        for (auto& row : db->rows(
                 "Select ZSKID as IDs,'已编目' as 状态,bookname AS [书   名],publisher as [出 版 "
                 "者],"
                 "ISBN,edition as [版本、版次],bookcount as [册 数] From ZSK" +
                 where +
                 " Union Select cgkid as IDs,fieldsname as 状态,bookname AS [书   名],publisher as "
                 "[出 版 者],ISBN,edition as [版本、版次],bookcount as [册 数] From CGK Left Join "
                 "cgkStatus On fieldsstatus=status " +
                 where +
                 " AND (status=0 OR status=1)  union Select ZSKID as IDs,'套录库' as 状态,bookname "
                 "AS "
                 "[书   名],publisher as [出 版 者],ISBN,edition as [版本、版次],'' as [册 数] "
                 "From "
                 "taolutable" +
                 where + " Order By 状态"))
            states.push_back(row.at(1));
        return states;
    };
    const auto byTitle = search(" Where bookname Like '%红楼梦%'");
    const std::set<std::string> states(byTitle.begin(), byTitle.end());
    EXPECT_TRUE(states.count("已编目"));
    EXPECT_TRUE(states.count("套录库"));
    EXPECT_TRUE(states.count("预定中") || states.count("已验收"));

    const std::string shared = db->value(
        "Select c.isbn From cgk c Join taolutable t On t.isbn=c.isbn Join ZSK z On z.isbn=c.isbn "
        "Where c.status=0 Or c.status=1");
    ASSERT_NE(shared, "<none>");
    const auto byIsbn = search(" Where ISBN ='" + shared + "'");
    ASSERT_GE(byIsbn.size(), 3u);
    EXPECT_NE(std::find(byIsbn.begin(), byIsbn.end(), "套录库"), byIsbn.end());
    EXPECT_NE(std::find(byIsbn.begin(), byIsbn.end(), "已编目"), byIsbn.end());

    // Titles with a quote, stored as they are.
    EXPECT_GE(db->number("Select count(*) From cgk Where bookname Like '%''%'"), 3);
    EXPECT_EQ(db->number("Select count(*) From cgk Where bookname Like '%''''%'"), 0);
}

TEST_F(DemoDb, IsTheSameOnEveryRun) {
    std::string error;
    ASSERT_TRUE(orvane::dbinit::createDatabase(dir_->file("again.db"), true, &error)) << error;
    auto bytes = [](const std::string& path) {
        std::ifstream in(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    };
    const std::string a = bytes(dir_->file("demo.db")), b = bytes(dir_->file("again.db"));
    EXPECT_GT(a.size(), 100000u);
    EXPECT_TRUE(a == b);
}

} // namespace
