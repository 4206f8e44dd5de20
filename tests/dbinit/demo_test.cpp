// The demo data set: sizes, and the invariants the forms rely on when they work on it.

#include "data/isbn.h"
#include "dbhelp.h"

#include <fstream>
#include <iterator>
#include <map>
#include <regex>

namespace {

using DemoDb = dbhelp::MadeDb<true>;

TEST_F(DemoDb, HasTheAdvertisedSizeAndOrdersInEveryState) {
    EXPECT_EQ(
        db->text(
            "Select (Select count(*) From ZSK),(Select count(*) From taolutable),(Select count(*) "
            "From cggys),(Select count(*) From cggys Where pubplace Is Null Or address Is Null Or "
            "zipcode Is Null Or tel Is Null),(Select count(*)>=2000 From cgk)"),
        "10000/1000/30/0/1");
    // At least a hundred in each state, and no other state.
    EXPECT_EQ(db->text("Select coalesce(status,'null'),count(*)>=100 From cgk Group By status "
                       "Order By status"),
              "0/1|1/1|2/1");
    // Back-orders for the replenishment form, and some already replenished.
    EXPECT_EQ(db->text("Select (Select count(*)>0 From cgk Where status=1 And bookcount>yscount),"
                       "(Select count(*)>0 From cgk Where status=0 And cgff='补定')"),
              "1/1");
    const long long next = db->number("Select Code From Global Where type='cgkid'");
    EXPECT_EQ(next, db->number("Select max(cgkid) From cgk") + 1);
    EXPECT_LT(next, 32000); // the entry form keeps ids in 16 bits
}

TEST_F(DemoDb, AcceptedRowsCarryAWholeVoucher) {
    // Accepted rows whole, open rows without acceptance, no acceptance before its order.
    EXPECT_EQ(
        db->text(
            "Select (Select count(*) From cgk Where status<>0 And (batch Is Null Or ysname Is Null "
            "Or "
            "ysdate Is Null Or ysprice Is Null Or yscount Is Null Or ysjine Is Null Or (fpcode Is "
            "Null And sjcode Is Null))),(Select count(*) From cgk Where status=0 And (batch Is Not "
            "Null Or ysdate Is Not Null Or yscount Is Not Null)),(Select count(*) From cgk Where "
            "ysdate<yddate),(Select count(*)>0 From cgk Where sjcode Is Not Null),(Select "
            "count(*)>0 From cgk Where fpcode Is Not Null)"),
        "0/0/0/1/1");
    // One voucher: one source, one day, its total on every row.
    EXPECT_EQ(
        db->text(
            "Select batch From cgk Where batch Is Not Null Group By batch Having count(Distinct "
            "ysjine)>1 Or count(Distinct bookfrom)>1 Or count(Distinct ysdate)>1"),
        "");
    // Batches are numbered 1, 2, ... without a gap.
    const long long batches = db->number("Select count(Distinct batch) From cgk");
    EXPECT_GT(batches, 10);
    EXPECT_EQ(db->number("Select max(cast(batch as integer)) From cgk"), batches);
}

TEST_F(DemoDb, IsbnsAreSoundAndTheirPublishersMatchThePrefixes) {
    std::map<std::string, std::string> cbk;
    for (auto& r : db->rows("Select C_SBN,C_CBS,C_CBD From cbk")) cbk[r[0]] = r[1] + "/" + r[2];
    const std::regex form("(7-[0-9]+)-[0-9]+-[0-9X]");
    int checked = 0;
    for (const char* table : {"cgk", "ZSK", "taolutable"}) {
        for (auto& r : db->rows(std::string("Select isbn,publisher,pubplace From ") + table +
                                " Where isbn Is Not Null")) {
            std::smatch m;
            ASSERT_TRUE(std::regex_match(r[0], m, form) && r[0].size() == 13) << r[0];
            const std::string digits = std::regex_replace(r[0], std::regex("-"), "");
            EXPECT_EQ(digits.back(), orvane::isbn10Check(digits.substr(0, 9))) << r[0];
            EXPECT_EQ(r[1] + "/" + r[2], cbk[m[1].str()]) << r[0];
            ++checked;
        }
    }
    EXPECT_GT(checked, 12000);
}

TEST_F(DemoDb, TextsFitTheFormFieldsAndComeFromTheCodeLists) {
    // The entry and supplier forms hold at most these many characters.
    const std::map<std::string, std::string> limits{
        {"cgk", "bookfrom:30 bookname:50 author:30 zdcode:20 isbn:13 publisher:30 pubplace:10 "
                "pubdate:11 edition:20 measure:10 classcode:10 docclass:10 lagclass:15 cgff:8 "
                "batch:20 fpcode:20 sjcode:20"},
        {"cggys", "publisher:30 pubplace:10 address:30 zipcode:6 tel:15 fax:15 email:15 web:15"}};
    const std::regex item("(\\w+):(\\d+)");
    for (const auto& [table, list] : limits)
        for (std::sregex_iterator it(list.begin(), list.end(), item), end; it != end; ++it)
            EXPECT_LE(
                db->number("Select coalesce(max(length(" + (*it)[1].str() + ")),0) From " + table),
                std::stoi((*it)[2].str()))
                << table << "." << (*it)[1];
    // The supplier form picks the type from a fixed list of two.
    EXPECT_EQ(db->text("Select Distinct pubclass From cggys Order By pubclass"), "出版商|销售商");
    // Otherwise editing a demo order would ask to add the value to its list.
    for (const char* outside :
         {"bookfrom Not In (Select publisher From cggys)",
          "lagclass Not In (Select code From Global Where type='language')",
          "cgff<>'补定' And cgff Not In (Select code From Global Where type='cgkcgff')",
          "measure Not In (Select measure From cck)", "docclass Not In (Select docclass From wxlx)",
          // The class statistics need a name for every class letter in use.
          "substr(classcode,1,1) Not In (Select type From type)"})
        EXPECT_EQ(db->number(std::string("Select count(*) From cgk Where ") + outside), 0)
            << outside;
    EXPECT_GT(db->number("Select count(*) From cgk Where classcode Is Null"), 0);
}

TEST_F(DemoDb, TheDuplicateCheckHasTitlesInAllThreePlacesAndQuotesInTitles) {
    for (const std::string& c : std::vector<std::string>{"bookname", "isbn"})
        EXPECT_GT(db->number("Select count(*) From ZSK z Join taolutable t On t." + c + "=z." + c +
                             " Join cgk c On c." + c + "=z." + c + " And c.status In (0,1)"),
                  0)
            << c;
    EXPECT_GT(db->number("Select count(*) From cgk Where bookname Like '%红楼梦%'"), 0);
    // Titles with a quote, stored as they are.
    EXPECT_EQ(db->text("Select count(*)>=3 From cgk Where bookname Like '%''%'"), "1");
    EXPECT_EQ(db->text("Select count(*) From cgk Where bookname Like '%''''%'"), "0");
}

TEST_F(DemoDb, IsTheSameOnEveryRun) {
    std::string error;
    ASSERT_TRUE(orvane::dbinit::createDatabase(dir_->file("again.db"), true, &error)) << error;
    auto bytes = [](const std::string& path) {
        std::ifstream in(path, std::ios::binary);
        return std::string(std::istreambuf_iterator<char>(in), {});
    };
    const std::string a = bytes(path()), b = bytes(dir_->file("again.db"));
    EXPECT_GT(a.size(), 100000u);
    EXPECT_TRUE(a == b);
}

} // namespace
