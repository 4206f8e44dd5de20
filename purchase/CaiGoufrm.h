#pragma once
// CaiGoufrm (采购订单): order entry, one purchase record at a time, with the arrows walking a
// list of cgkids. It keeps the form's state, tracks changes, asks before they are lost,
// draws new ids from Global and writes cgk. New records are begun by loadCheckDatafrm.

#include "platform/form.h"
#include "purchase/caigouRules.h"
#include "query/queryReceiver.h"

#include <QString>

#include <array>
#include <cstdint>
#include <functional>
#include <memory>

class QLineEdit;
class QPushButton;

namespace adodb {
class Connection;
class Recordset;
} // namespace adodb

class CaiGoufrm : public vb::Form, public QueryReceiver {
    Q_OBJECT
public:
    CaiGoufrm();
    ~CaiGoufrm() override;

    // 100 empty or loading, 1 adding, 10 editing, 0 closed. loadCheckDatafrm sets 1.
    int16_t addType = 0;

    // The query builder hands back through QueryReceiver (fixture_Where, total_Where,
    // orderby_String). cond goes between "Select cgkID From cgk " and " Order by cgkid";
    // order is only kept for the browser. Shows no record: the form stands blank on the
    // first match.
    void loadGridData(const QString& iiWhere, const QString& iiOrderby) override;

    QLineEdit* Text1(int index);
    QPushButton* Command1(int index);
    QPushButton* Command2(int index);

    int16_t cgkIDs() const { return m_cgkIDs; }
    bool fieldChanged(int index) const { return m_fieldChanged.at(static_cast<size_t>(index)); }
    bool anyFieldChanged() const;
    bool saveFailed() const { return m_saveFailed; }
    const QString& lastCond() const { return m_lastCond; }
    const QString& lastOrder() const { return m_lastOrder; }

    // The arrows |< << >> >|, the command buttons, the pick-list buttons.
    void Command1_Click(int index);
    void Command2_Click(int index);
    void cList_Click(int index);

protected:
    void build(QWidget* w) override;
    void onLoad() override;
    void onUnload() override;
    bool previewKeyDown(QKeyEvent* e) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Text1_Change(int index);
    void Text1_LostFocus(int index);
    void Text1_KeyDown(int index, int& keyCode, int shift);
    void Text1_KeyPress(int& keyAscii);
    bool checkInput();
    void showRecord();
    void newCgkId();
    void addCaiGou();
    void updateCaiGou();
    void clearChanged();
    void focusField(int index);
    caigou::Record record();
    void setRecord(const caigou::Record& rec);
    bool editing() const { return addType == caigou::addAdding || addType == caigou::addEditing; }

    std::unique_ptr<adodb::Connection> m_conn;
    std::unique_ptr<adodb::Recordset> m_idList;
    int16_t m_cgkIDs = 0;
    std::array<bool, 18> m_fieldChanged{};
    bool m_saveFailed = false;
    QString m_lastCond;
    QString m_lastOrder;
};
