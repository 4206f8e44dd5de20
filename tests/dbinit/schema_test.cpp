// A fresh database as the program finds it, the demo data, and the compat functions.

#include "dbhelp.h"

namespace {

using FreshDb = dbhelp::MadeDb<false>;

TEST_F(FreshDb, TheProgramsStatementsRunOnIt) {
    // Shaped as the forms write them: mixed case, brackets, SQL Server functions.
    // clang-format off
    for (const char* sql : {
        "Select cgkID,bookName,ISBN,fieldsname From CGK Left Join cgkStatus On fieldsstatus=status Where (status=0 OR status=1)",
        "Select ZSKID as IDs,bookname,publisher,ISBN,edition,bookcount From ZSK Union Select ZSKID,bookname,publisher,ISBN,edition,'' From taolutable",
        "Update cgk Set ysname='a',ysdate='2003-01-01',batch='1',ysprice=1,yscount=1,fpcode='',sjcode='',ysjine=1,status=1 Where cgkid=1",
        "Select publisher,pubplace,address,zipcode,tel,fax,email,web,pubclass From cggys",
        "Insert Into printCG (bookname,publisher,pubdate,price,zdcode,bookcount,jine) Select bookname,publisher,pubdate,price,zdcode,bookcount,price*bookcount From cgk",
        "Insert Into printMX (ysdate,bookname,author,publisher,bookfrom,price,[count]) Select convert(varchar(10),ysdate,111),bookname,author,publisher,bookfrom,price,yscount From cgk",
        "Insert Into printLeiBie (type,batch,bookfrom,typecount,[count],jine) Select 'x',batch,bookfrom,1,1,1 From cgk",
        "Insert Into printTotalJE (name,ydtype,ydcount,ydjine,ystype,yscount,ysjine) Values ('x',1,1,1,1,1,1)",
        "Insert Into printYStotal (batch,bookfrom,typecount,counts,jine) Values ('1','x',1,1,1)",
        "Insert Into printYSmx (batch,bookname,author,publisher,price,counts) Values ('1','x','x','x',1,1)"})
        EXPECT_EQ(db->text(sql).rfind("error: ", 0), std::string::npos) << sql;
    // clang-format on
    // The query builder puts every dictionary field of the order tables into a statement.
    for (const auto& f : db->rows("Select FieldName From FDict Where DbName Like 'cgk%'"))
        EXPECT_EQ(db->text("Select " + f[0] + " From cgk").rfind("error: ", 0), std::string::npos)
            << f[0];
    // A name shown twice in one list could not be told apart in the builder.
    EXPECT_EQ(db->text("Select DbName||CnName From FDict Group By DbName,CnName Having count(*)>1"),
              "");
}

TEST_F(FreshDb, NewOrdersAreOpenWithNormalisedDatesAndCodesCompareAsOnTheServer) {
    db->exec("Insert Into cgk (cgkid,bookfrom,bookname,price,cgff,yddate,bookcount) "
             "Values (901,'新华书店','测试','12.5','预订','2003-05-01',2)");
    EXPECT_EQ(db->text("Select count(*) From cgk Where status=0 And cgkid=901"), "1");
    // The key refuses a second order with the same id, as two workstations may try.
    EXPECT_NE(db->text("Insert Into cgk (cgkid,bookname) Values (901,'x')"), "");
    // Codes compare as on the server too; the guest may not order.
    EXPECT_EQ(db->text("Select (Select count(*) From Global Where type='CGKID '),(Select cgk From "
                       "LibUse Where username='Guest' AND password='guest')"),
              "1/0");
    // Order dates are stored normalised, by an insert or an update.
    db->exec("Insert Into cgk (cgkid,bookname,yddate) Values (801,'a','2003/1/1'),"
             "(804,'d','2003-1-31 00:00:00')");
    EXPECT_EQ(db->text("Select cgkid,yddate From cgk Where cgkid In (801,804)"),
              "801/2003-01-01|804/2003-01-31");
    // Acceptance writes ysdate by an update; a later update of another column keeps it.
    db->exec("Update cgk Set ysname='admin',ysdate='2003/2/5',status=1 Where cgkid=801");
    db->exec("Update cgk Set yddate='2002/12/30' Where cgkid=801");
    EXPECT_EQ(db->text("Select yddate,ysdate From cgk Where cgkid=801"), "2002-12-30/2003-02-05");
}

TEST_F(FreshDb, PublisherPrefixesAreThere) {
    // Publisher prefixes: whole, each once, at least the common ones. formatIsbn takes the
    // shortest prefix found, so one that begins another would hide it.
    EXPECT_EQ(db->text("Select count(*)>=36,count(*)-count(Distinct C_SBN),sum(C_CBD Is Null Or "
                       "C_CBS Is Null Or C_SBN Not Glob '7-[0-9][0-9]*' Or length(C_SBN)>9 Or "
                       "substr(C_SBN,3) Glob '*[^0-9]*') From cbk"),
              "1/0/0");
    EXPECT_EQ(db->text("Select a.C_SBN||' hides '||b.C_SBN From cbk a Join cbk b On "
                       "a.C_SBN<>b.C_SBN And substr(b.C_SBN,1,length(a.C_SBN))=a.C_SBN"),
              "");
}

// The demo data: each query counts rows that break a rule the forms rely on, or is 1 when
// a kind of row they need is there.
using DemoDb = dbhelp::MadeDb<true>;

TEST_F(DemoDb, SizesStatesVouchersAndTextsAreWhatTheFormsExpect) {
    // clang-format off
    const std::pair<const char*, const char*> cases[] = {
        {"Select (Select count(*) From ZSK),(Select count(*) From taolutable),(Select count(*) From cggys),(Select count(*)>=2000 From cgk)", "10000/1000/30/1"},
        // ISBNs whole, their publisher and place those of their prefix (the entry form fills them in by it).
        {"Select count(*) From (Select isbn,publisher,pubplace From cgk Union All Select isbn,publisher,pubplace From ZSK Union All Select isbn,publisher,pubplace From taolutable) b Where isbn Is Not Null And (length(isbn)<>13 Or Not Exists (Select 1 From cbk Where b.isbn Like C_SBN||'-%' And C_CBS=b.publisher And C_CBD=b.pubplace))", "0"},
        // At least a hundred in each state, and no other state.
        {"Select coalesce(status,'null'),count(*)>=100 From cgk Group By status Order By status", "0/1|1/1|2/1"},
        // Accepted rows whole.
        {"Select count(*) From cgk Where status<>0 And (batch Is Null Or ysname Is Null Or ysdate Is Null Or ysprice Is Null Or yscount Is Null Or ysjine Is Null Or (fpcode Is Null And sjcode Is Null))", "0"},
        // One voucher: one source, one day, its total on every row; numbered 1, 2, ... without a gap.
        {"Select batch From cgk Where batch Is Not Null Group By batch Having count(Distinct ysjine)>1 Or count(Distinct bookfrom)>1 Or count(Distinct ysdate)>1", ""},
        {"Select count(Distinct batch)>10,max(cast(batch as integer))=count(Distinct batch) From cgk", "1/1"},
        // The entry form keeps ids in 16 bits.
        {"Select cast(Code as integer)=max(cgkid)+1 And cast(Code as integer)<32000 From Global,cgk Where type='cgkid'", "1"},
        // Titles for the duplicate check; titles keep their quotes as they are.
        {"Select (Select count(*)>0 From cgk Where bookname Like '%红楼梦%'),(Select count(*)>=3 From cgk Where bookname Like '%''%'),(Select count(*) From cgk Where bookname Like '%''''%')", "1/1/0"},
        // Texts fit the fields of the entry form.
        {"Select count(*) From cgk Where length(bookfrom)>30 Or length(bookname)>50 Or length(author)>30 Or length(zdcode)>20 Or length(isbn)>13 Or length(publisher)>30 Or length(pubplace)>10 Or length(pubdate)>11 Or length(edition)>20 Or length(measure)>10 Or length(classcode)>10 Or length(docclass)>10 Or length(lagclass)>15 Or length(cgff)>8 Or length(batch)>20 Or length(fpcode)>20 Or length(sjcode)>20", "0"},
        {"Select count(*) From cgk Where bookfrom Not In (Select publisher From cggys) Or lagclass Not In (Select code From Global Where type='language') Or (cgff<>'补定' And cgff Not In (Select code From Global Where type='cgkcgff'))", "0"},
    };
    // clang-format on
    for (const auto& [sql, want] : cases) EXPECT_EQ(db->text(sql), want) << sql;
}

// The compat functions answer as the server does, and raise an error where it does.
TEST(CompatFunction, AnswersOrRefusesAsTheServerDoes) {
    // The expression and its answer, or "error: " and a part of the server's message.
    // clang-format off
    const std::pair<const char*, std::string> cases[] = {
        {"vb_left('abc', 2)", "ab"}, {"vb_left('中文书名', 2)", "中文"}, {"vb_left(NULL, 2)", "<null>"},
        {"varchar(8000)", "8000"},
        // Beyond 32 bits the count is not cut down to something small.
        {"vb_left('abc', 4294967296)", "error: Arithmetic overflow"},
        {"vb_left('abc', -1)", "error: Invalid length parameter passed to the left function."},
        {"varchar(99999999999)", "error: The size (99999999999) given to the type 'varchar' exceeds the maximum allowed for any data type (8000)."},
        // Style 23 is the date alone, however wide the target.
        {"convert(varchar(30),'2003/1/5 10:20:30',23)", "2003-01-05"},
        {"convert(varchar(10),'2003/1/5',111)", "2003/01/05"},
        {"convert(varchar(3),'书名很长')", "书名很"},
        // A style it cannot write is said, not answered with another form.
        {"convert(varchar(30),'2003-01-05',101)", "error: style 101"},
    };
    // clang-format on
    dbhelp::Db db(":memory:");
    for (const auto& [expr, expected] : cases) {
        const std::string got = db.text(std::string("SELECT ") + expr);
        if (expected.rfind("error: ", 0) == 0)
            EXPECT_TRUE(got.rfind("error: ", 0) == 0 &&
                        got.find(expected.substr(7)) != std::string::npos)
                << expr << ": " << got;
        else
            EXPECT_EQ(got, expected) << expr;
    }
}

} // namespace
