#pragma once
// The rules of one purchase record (one row of cgk) apart from any form: the column of each
// field, what happens when a field is left, and what must hold before a save. CaiGoufrm
// drives them; tests call them directly.
//
// A rule works on the record's 19 texts, may rewrite fields, ask one yes/no question,
// read or write the database, and names the field that should get the focus.

#include <QString>

#include <array>
#include <cstdint>

namespace adodb {
class Connection;
}

namespace caigou {

constexpr int kFieldCount = 19; // Text1(0)..Text1(18)
using Record = std::array<QString, kFieldCount>;

// addType of CaiGoufrm: the rules run only while adding or editing.
enum AddType : int16_t { addClosed = 0, addAdding = 1, addEditing = 10, addEmpty = 100 };

// Column of field 0..17; "" for anything else (18, the batch, is never written).
QString fieldName(int16_t index);
// Fields whose value goes into SQL bare: pages, price, copies.
bool isNumberField(int index);
// Characters a field takes on the form (0: no limit).
int maxLength(int index);
// The caption of the field's label.
QString fieldLabel(int index);

// Doubles every single quote, as text goes into SQL.
QString sqlText(const QString& s);

struct LeaveResult {
    int focus = -1;         // the field that takes the focus back (a refused value)
    bool addSource = false; // the user wants the unknown source added to the suppliers
};

// The rule of field `index` when it is left. Nothing at all happens (not even the trim)
// unless addType is adding or editing. Questions go through vb::MsgBox; code-list inserts
// and look-ups run on `conn`; a failing statement raises.
LeaveResult leaveField(int addType, int index, Record& rec, adodb::Connection& conn);

// The ISBN rule alone (also used by the accepted-item edit, without formatting first).
LeaveResult isbnRule(int index, Record& rec, bool formatFirst, adodb::Connection& conn);

// "7-5000" of "7-5000-1234-5": left of the second hyphen; "" with fewer than two.
QString isbnPrefix(const QString& isbn);

struct CheckResult {
    bool ok = true;
    int focus = -1;
};
// The save test in its fixed order; tells the user the first fault.
CheckResult checkInput(const Record& rec);

} // namespace caigou
