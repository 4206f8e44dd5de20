#pragma once
// YanShouBrowerdofrm (验收明细资料): one accepted title of the browser's list in full, for
// correction. It walks the browser's grid directly, so it is only ever opened from there,
// modally. Saves send the changed columns alone.
//
// Field 9 (册 数) shows the accepted copies, yscount, and a change to it is written to the
// ordered copies, bookcount: yscount is never written here. The list keeps showing what
// was typed until the next search reads yscount again.

#include "platform/form.h"

#include <QString>

#include <array>
#include <cstdint>

class QKeyEvent;
class QLabel;
class QLineEdit;
class QPushButton;

class YanShouBrowerdofrm : public vb::Form {
    Q_OBJECT
public:
    static constexpr int kFields = 13;
    // The state word: loading (Change events are not counted) or a record standing.
    static constexpr int16_t kLoading = 0;
    static constexpr int16_t kShown = 10;

    YanShouBrowerdofrm();

    // The row of the browser's grid shown here; the browser sets it before loadDate.
    int16_t listRow = 0;

    // Shows the record of that cgkid; an id with no row leaves the form empty.
    void loadDate(int16_t id);

    int16_t cgkid() const { return m_cgkid; }
    int16_t state() const { return m_state; }
    bool fieldChanged(int index) const { return m_changed.at(static_cast<size_t>(index)); }
    bool anyFieldChanged() const;

    // The column a field is saved to, and whether its value goes in quoted.
    static QString saveColumn(int index);
    static bool quoted(int index);

    // |<, <<, >>, >| and 保存, 关闭.
    void Command1_Click(int index);
    void Command2_Click(int index);

    QLineEdit* Text1(int index);
    QLabel* Label2(int index);
    QPushButton* Command1(int index);
    QPushButton* Command2(int index);

protected:
    void build(QWidget* w) override;
    void onLoad() override;
    bool queryUnload(int mode) override;
    void onUnload() override;
    bool previewKeyDown(QKeyEvent* e) override;

private:
    void Text1_Change(int index);
    void Text1_LostFocus(int index);
    void isbnRule(QLineEdit* t);
    bool checkInput();
    void save();
    // The question before changes are lost: false when the user wants them saved and
    // they do not pass the checks.
    bool settleChanges();
    void showEmpty();
    void focusBack(int index);

    int16_t m_cgkid = 0;
    int16_t m_state = kLoading;
    std::array<bool, kFields> m_changed{};
};
