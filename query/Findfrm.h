#pragma once
// Findfrm (查找资料): the one search dialog. The caller sets doType (and printType for the
// statistics), shows it modally, and gets back a Where and an Order By clause through its
// QueryReceiver members; for the statistics modes this form is its own receiver and hands
// the clauses to the generator of printType.

#include "platform/form.h"
#include "query/findsql.h"
#include "query/queryReceiver.h"

#include <QString>

#include <cstdint>
#include <functional>
#include <vector>

class QComboBox;
class QFrame;
class QLabel;
class QListWidget;
class QTextEdit;

namespace vb {
class MaskEdBox;
}

class Findfrm : public vb::Form, public QueryReceiver {
    Q_OBJECT
public:
    Findfrm();

    // Which statistic loadGridData runs; survives the unload, until the next caller sets it.
    QString printType;
    // The mode: which dictionary to load and which form gets the result.
    QString doType;

    // The dictionary as loaded (upper bound = row count; 45 when the dictionary is empty).
    std::vector<findsql::Field> fieldDict;
    // Kind of the current field; -1 before any field was taken.
    int16_t findKind = -1;
    // mergedSql, orderSql, groupSql and the texts shown for them.
    findsql::Builder q;

    // OK: hands the clauses to the receiver and unloads.
    void findData();
    // The statistics dispatcher: runs the generator of printType (tongji.h).
    void loadGridData(const QString& iiWhere, const QString& iiOrderby) override;

    // Stand-ins for the statistics generators of tongji.h, by printType (tests); an empty
    // function removes one, and the printType runs its own generator again.
    using Generator = std::function<void(const QString& iiWhere, const QString& iiOrderby)>;
    static void setGenerator(const QString& printType, Generator g);
    // The name of the form that receives the result for a doType; empty for an unknown one.
    static QString receiverName(const QString& doType);
    // The statement that loads the dictionary for a doType.
    static QString dictionarySql(const QString& doType);

    // The handlers, as the controls run them.
    void LFields_Click();
    void cSql_Click();
    void setFuhaoList();
    void lSql_KeyDown(int& keyCode, int shift);
    void Command3_Click();
    void Command1_Click(int index);
    void Command2_Click();
    void Label3_Click(int index);

protected:
    void build(QWidget* w) override;
    void onLoad() override;
    void onUnload() override;

private:
    QListWidget* LFields();
    QComboBox* cSql();
    QComboBox* cFuhao();
    vb::MaskEdBox* lSql();
    QTextEdit* signSql();
    QListWidget* totalSql();
    QComboBox* cOrderby();
    QTextEdit* lOrderby();
    // The flat-button look of Label3(index): 0 flat, 1 raised, 2 sunken.
    void setLabelLook(int index, int look);
    const findsql::Field& fieldAt(int index) const;
};
