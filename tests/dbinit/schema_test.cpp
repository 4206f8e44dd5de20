// A fresh database as the program finds it: its statements run, the defaults, collation
// and date rules they rely on hold, and the seed rows are there.

#include "dbhelp.h"

#include <regex>
#include <set>

namespace {

using FreshDb = dbhelp::MadeDb<false>;

TEST_F(FreshDb, TheProgramsStatementsRunOnIt) {
    // Shaped as the forms write them: mixed case, brackets, SQL Server functions.
    // clang-format off
    for (const char* sql : {
        "Select cgkID,bookName,ISBN,fieldsname From CGK Left Join cgkStatus On fieldsstatus=status Where (status=0 OR status=1)",
        "Select ZSKID as IDs,bookname,publisher,ISBN,edition,bookcount From ZSK Union Select ZSKID,bookname,publisher,ISBN,edition,'' From taolutable",
        "Update cgk Set ysname='a',ysdate='2003-01-01',batch='1',ysprice=1,yscount=1,fpcode='',sjcode='',ysjine=1,status=1 Where cgkid=1",
        "Select Code From global Where type='cgkid'", "select cbkid from CBK where c_sbn='7-02'",
        "Select userid,cgk From libuse Where username='a' AND password='b'",
        "Select DBname,FieldName,CnName From FDict", "Select measure From cck", "Select docclass From wxlx", "Select type,name From type",
        "Select publisher,pubplace,address,zipcode,tel,fax,email,web,pubclass From cggys",
        "Insert Into printCG (bookname,publisher,pubdate,price,zdcode,bookcount,jine) Select bookname,publisher,pubdate,price,zdcode,bookcount,price*bookcount From cgk",
        "Insert Into printMX (ysdate,bookname,author,publisher,bookfrom,price,[count]) Select convert(varchar(10),ysdate,111),bookname,author,publisher,bookfrom,price,yscount From cgk",
        "Insert Into printLeiBie (type,batch,bookfrom,typecount,[count],jine) Select 'x',batch,bookfrom,1,1,1 From cgk",
        "Insert Into printTotalJE (name,ydtype,ydcount,ydjine,ystype,yscount,ysjine) Values ('x',1,1,1,1,1,1)",
        "Insert Into printYStotal (batch,bookfrom,typecount,counts,jine) Values ('1','x',1,1,1)",
        "Insert Into printYSmx (batch,bookname,author,publisher,price,counts) Values ('1','x','x','x',1,1)"})
        EXPECT_EQ(db->whyNot(sql), "") << sql;
    // clang-format on
}

TEST_F(FreshDb, NewOrderIsOpenAndTextComparesWithoutCaseAndTrailingBlanks) {
    db->exec("Insert Into cgk (cgkid,bookfrom,bookname,price,cgff,yddate,bookcount) "
             "Values (901,'新华书店','测试','12.5','预订','2003-05-01',2)");
    EXPECT_EQ(db->text("Select count(*) From cgk Where status=0 And cgkid=901"), "1");
    // The key refuses a second order with the same id, as two workstations may try.
    EXPECT_FALSE(db->runs("Insert Into cgk (cgkid,bookname) Values (901,'x')"));
    // Right, wrong case and trailing blank, wrong password; leading blanks still count.
    EXPECT_EQ(
        db->text(
            "Select (Select cgk From LibUse Where username='ADMIN ' AND password='admin')||'/'||"
            "(Select cgk From LibUse Where username='Guest' AND password='guest')||'/'||"
            "(Select count(*) From LibUse Where username='admin' AND password='wrong')||'/'||"
            "(Select count(*) From LibUse Where username=' admin')||'/'||"
            "(Select count(*) From Global Where type='CGKID ')"),
        "1/0/0/0/1");
}

TEST_F(FreshDb, OrderDatesAreStoredNormalisedAndCompareAsOnTheServer) {
    db->exec("Insert Into cgk (cgkid,bookname,yddate) Values (801,'a','2003/1/1'),"
             "(802,'b','2003-01-31 10:00'),(803,'c','2003-01-31'),(804,'d','2003-1-31 00:00:00')");
    EXPECT_EQ(db->text("Select cgkid,yddate From cgk Where cgkid In (801,804)"),
              "801/2003-01-01|804/2003-01-31");
    EXPECT_EQ(
        db->text("Select cgkid From cgk Where cgkid>800 And yddate<='2003-01-31' Order By cgkid"),
        "801|803|804");
    EXPECT_EQ(db->text("Select convert(varchar(10),yddate,111) From cgk Where cgkid=802"),
              "2003/01/31");
    // Acceptance writes ysdate by an update; a later update of another column keeps it.
    db->exec("Update cgk Set ysname='admin',ysdate='2003/2/5',status=1 Where cgkid=801");
    db->exec("Update cgk Set yddate='2002/12/30' Where cgkid=801");
    EXPECT_EQ(db->text("Select yddate,ysdate From cgk Where cgkid=801"), "2002-12-30/2003-02-05");
    db->exec("Update cgk Set yddate=Null Where cgkid=801");
    EXPECT_EQ(db->text("Select yddate From cgk Where cgkid=801"), "<null>");
}

TEST_F(FreshDb, DictionaryNamesMakeDatesAndNumbersOfTheRightColumns) {
    // The query builder decides a field's kind by these names alone.
    EXPECT_EQ(
        db->text(
            "Select CnName,DbName,FieldName From FDict Where CnName In ('预定日期','验收日期',"
            "'验收册数','验收价格','预定价格','预定册数','页码','日期') Order By DbName,FieldName"),
        "预定册数/cgk/bookcount|页码/cgk/pages|预定价格/cgk/price|预定日期/cgk/yddate|"
        "验收册数/cgkys/yscount|验收日期/cgkys/ysdate|验收价格/cgkys/ysprice");
    // A name shown twice in one list could not be told apart in the builder.
    EXPECT_EQ(db->text("Select DbName||CnName From FDict Group By DbName,CnName Having count(*)>1"),
              "");
    for (const auto& f : db->rows("Select FieldName From FDict Where DbName Like 'cgk%'"))
        EXPECT_EQ(db->whyNot("Select " + f[0] + " From cgk"), "") << f[0];
    EXPECT_GE(db->number("Select count(*) From FDict Where DbName='cggys'"), 9);
}

TEST_F(FreshDb, CodeListsAndCountersAreThere) {
    EXPECT_EQ(db->text("Select group_concat(fieldsname) From cgkStatus Where fieldsstatus<2"),
              "预定中,已验收");
    EXPECT_EQ(db->text("Select Code From Global Where type='cgkid'"), "1");
    EXPECT_EQ(db->text("Select count(*),count(Distinct code) From Global Where type='cgkcgff' And "
                       "code In ('预订','现购','邮购','赠送','交换')"),
              "5/5");
    EXPECT_EQ(
        db->text("Select (Select count(*)>0 From Global Where type='language' And code='中文')||"
                 "(Select measure From cck Where measure='大32开')||"
                 "(Select docclass From wxlx Where docclass='学位论文')"),
        "1大32开学位论文");
    // The statistics look up the first letter of every class number, and "其它".
    EXPECT_EQ(db->text("Select count(*) From type Where type In ('A','B','C','D','E','F','G',"
                       "'H','I','J','K','N','O','P','Q','R','S','T','U','V','X','Z','其它')"),
              "23");
    EXPECT_EQ(db->text("Select name From type Where type In ('A','T') Order By type"),
              "马克思主义、列宁主义、毛泽东思想、邓小平理论|工业技术");
}

TEST_F(FreshDb, PublisherPrefixesSplitBareNumbersUnambiguously) {
    EXPECT_EQ(db->text("Select C_SBN,C_CBS,C_CBD From cbk Where C_SBN In ('7-302','7-111','7-02') "
                       "Order By C_SBN"),
              "7-02/人民文学出版社/北京|7-111/机械工业出版社/北京|7-302/清华大学出版社/北京");
    const auto prefixes = db->rows("Select C_SBN,C_CBD,C_CBS From cbk");
    EXPECT_GE(prefixes.size(), 36u);
    std::set<std::string> seen;
    for (auto& p : prefixes) {
        EXPECT_TRUE(std::regex_match(p[0], std::regex("7-[0-9]{2,7}"))) << p[0];
        EXPECT_TRUE(seen.insert(p[0]).second) << "twice: " << p[0];
        EXPECT_TRUE(p[1] != "<null>" && p[2] != "<null>") << p[0];
    }
    // formatIsbn takes the shortest prefix found: one that begins another would hide it.
    for (auto& a : seen)
        for (auto& b : seen) EXPECT_TRUE(a == b || b.rfind(a, 0) != 0) << a << " hides " << b;
}

TEST(Populate, WorksOnAConnectionOfTheCaller) {
    sqlite3* raw = nullptr;
    ASSERT_EQ(sqlite3_open(":memory:", &raw), SQLITE_OK);
    ASSERT_EQ(orvane_compat_register(raw), SQLITE_OK);
    std::string error;
    ASSERT_TRUE(orvane::dbinit::populate(raw, {}, &error)) << error;
    ASSERT_TRUE(orvane::dbinit::addHoldings(raw, 250, &error)) << error;
    ASSERT_TRUE(orvane::dbinit::addHoldings(raw, 50, &error)) << error;
    sqlite3_stmt* st = nullptr;
    sqlite3_prepare_v2(raw, "Select count(*)||'/'||count(distinct ZSKID)||'/'||max(ZSKID) From ZSK",
                       -1, &st, nullptr);
    ASSERT_EQ(sqlite3_step(st), SQLITE_ROW);
    EXPECT_STREQ(reinterpret_cast<const char*>(sqlite3_column_text(st, 0)), "300/300/300");
    sqlite3_finalize(st);
    // A second populate on the same connection fails as a whole and says why.
    EXPECT_FALSE(orvane::dbinit::populate(raw, {}, &error));
    EXPECT_NE(error.find("already exists"), std::string::npos) << error;
    sqlite3_close(raw);
}

} // namespace
