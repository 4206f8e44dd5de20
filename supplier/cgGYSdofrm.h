#pragma once

#include <QVariantList>
// cgGYSdofrm: one supplier, added (from the manager or for the purchase form) or changed.

#include "platform/form.h"

#include <QString>

#include <array>
#include <cstdint>

class QComboBox;
class QLineEdit;

class cgGYSdofrm : public vb::Form {
    Q_OBJECT
public:
    cgGYSdofrm();

    // 0 add from the manager, 1 change, 2 add for the purchase form, 6 unloaded.
    int16_t gysMode = 0;
    // In a change, the name the record had when loaded: the key of the UPDATE.
    QString oldName;
    // The last name that passed the uniqueness test.
    QString checkedName;
    // Which fields were changed in a change (8 is the type).
    std::array<bool, 9> fieldChanged{};

    // The column of each field.
    static QString fieldName(int index);

    // Takes the current row of the manager's grid for a change.
    void loadData();

    void Command1_Click(int index);
    void Text1_LostFocus(int index);
    bool checkInput();
    void addGYS(int index);
    void updateGYS(int index);
    void clearForNext();
    // The nine texts as the manager's grid shows them.
    QVariantList gridRow();
    // After a save: "保存增加" (index 0) clears for the next record, the others close.
    void afterSave(int index);

    QLineEdit* Text1(int index);
    QComboBox* Combo1();

protected:
    void build(QWidget* w) override;
    void onLoad() override;
    void onUnload() override;

private:
    void fieldChange(int index);
};
