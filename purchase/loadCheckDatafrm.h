#pragma once
// loadCheckDatafrm (检索结果): the check before every new order. The user gives an ISBN or
// part of a title; holdings (ZSK), orders in play (cgk) and the copy-cataloguing source
// (taolutable) are searched at once. Nothing found: the entry form goes straight into
// adding mode with what was typed. Something found: a new order anyway (新增), a copy of
// the found record into a new order (套录), or cancel.

#include "platform/form.h"

#include <QString>

#include <cstdint>

class QLineEdit;
class QPushButton;
class QRadioButton;

namespace vb {
class FlexGrid;
}

class loadCheckDatafrm : public vb::Form {
    Q_OBJECT
public:
    loadCheckDatafrm();

    QString searchText;     // the trimmed search box at the last search
    int16_t searchKind = 0; // 0 title, 1 ISBN

    // where: the condition with its leading " Where ".
    void loadData(const QString& where);

    QLineEdit* Text1();
    QRadioButton* Option1(int index);
    QPushButton* Command1(int index);
    vb::FlexGrid* Grid1();

    void Command1_Click(int index);
    void Option1_Click(int index);
    void gridFix();

protected:
    void build(QWidget* w) override;
    void onLoad() override;
    void onUnload() override;
    void onResize() override;

private:
    void Text1_LostFocus();
    void Grid1_MouseDown(int button);
    void emptyPath();
    void newOrder();
    void copyRecord();
    void centreColumns();
};
