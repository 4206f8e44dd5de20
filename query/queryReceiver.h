#pragma once
// What a form must have to take a query from Findfrm. Findfrm finds the form by its name
// at run time (FormRegistry::byName) and reaches it through this base; a form that lacks
// it is passed over without a word, and the dialog still closes.
//
// A receiver derives from it beside vb::Form:
//     class CaiGoufrm : public vb::Form, public QueryReceiver { ...
//         void loadGridData(const QString& iiWhere, const QString& iiOrderby) override;
// and sets fixture_Where / total_Where (each with its own " Where ") before it shows
// Findfrm, or leaves them empty.

#include <QString>

class QueryReceiver {
public:
    virtual ~QueryReceiver() = default;

    QString fixture_Where;  // a condition every result keeps, with its " Where ", or empty
    QString total_Where;    // the clause to use when only an order was chosen
    QString orderby_String; // kept by receivers that remember their order

    // Runs the query with the finished clauses.
    virtual void loadGridData(const QString& iiWhere, const QString& iiOrderby) = 0;
};
