#pragma once
// frmMarcKaPian: the read-only viewer of one MARC record. A caller sets MarcShuju and
// varSelect, then shows the form; it opens with the record text ("标准") or the card, and
// its four buttons switch between the record text, the card and the field layout.

#include "card/kapianfmt.h"
#include "platform/form.h"

#include <QPlainTextEdit>
#include <QString>

// The form's Text1. It keeps the text exactly as it was given (CR LF, and the
// character 30 that the card leaves on each field), and shows the record's control
// characters 29, 30 and 31 as §, ¶ and ‡.
class MarcTextBox : public QPlainTextEdit {
    Q_OBJECT
    Q_PROPERTY(QString text READ text WRITE setText)
public:
    explicit MarcTextBox(QWidget* parent = nullptr);
    const QString& text() const { return m_text; }
    void setText(const QString& text);

private:
    QString m_text;
};

class frmMarcKaPian : public vb::Form {
    Q_OBJECT
public:
    frmMarcKaPian();

    // The whole contract with a caller: set both before the form loads. Both are
    // cleared when the form unloads.
    QString MarcShuju;
    QString varSelect;

    QString Kapian010(QString& ziduan) { return card::Kapian010(ziduan); }
    QString Kapian200(QString& ziduan) { return card::Kapian200(ziduan); }
    QString Kapian205(QString& ziduan) { return card::Kapian205(ziduan); }
    QString Kapian206(QString& ziduan) { return card::Kapian206(ziduan); }
    QString Kapian207(QString& ziduan) { return card::Kapian207(ziduan); }
    QString Kapian208(QString& ziduan) { return card::Kapian208(ziduan); }
    QString Kapian210(QString& ziduan) { return card::Kapian210(ziduan); }
    QString Kapian215(QString& ziduan) { return card::Kapian215(ziduan); }
    QString Kapian225(QString& ziduan) { return card::Kapian225(ziduan); }
    QString Kapian327(QString& ziduan) { return card::Kapian327(ziduan); }
    QString Kapian686(QString& ziduan) { return card::Kapian686(ziduan); }

protected:
    void build(QWidget* w) override;
    void onLoad() override;
    void onUnload() override;

private:
    void cmdclick_Click(int index);
    void showZiduan();
    void showKapian();
    MarcTextBox* Text1();

    QString cmdTag;
};
