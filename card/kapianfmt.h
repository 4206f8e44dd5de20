#pragma once
// The field formatters of the card: one per kind of field, each turning a field's text
// into a piece of card text with the program's own punctuation (full-width and ASCII
// marks side by side, brackets that do not always match: all of it is how our cards have
// always looked, and stays).
//
// Each takes the field by reference and walks it with walkSubfields, so the caller's
// variable is consumed: a second call on the same variable finds no delimiter. Only
// KapianZiduanA works on a copy.

#include "marcreader.h"

#include <QString>

namespace card {

// Shown by Kapian200 when a $f or $g comes before any title.
QString missingTitleText(); // "本条记录缺少题名，无法正常显示！"

QString Kapian010(QString& ziduan);
QString Kapian200(QString& ziduan, const MessageFn& message = msgBoxMessage);
QString Kapian205(QString& ziduan);
QString Kapian206(QString& ziduan);
QString Kapian207(QString& ziduan);
QString Kapian208(QString& ziduan);
QString Kapian210(QString& ziduan);
QString Kapian215(QString& ziduan);
QString Kapian225(QString& ziduan);
QString Kapian327(QString& ziduan);
QString Kapian686(QString& ziduan);

// Module zdxsKaPian: the value of the field's last $a, untrimmed; every tag of the card
// without a formatter of its own goes through it. Takes its text by value.
QString KapianZiduanA(QString ziduan);

// The same formatters over a view of the field variable, which each advances as its walk
// consumes the variable. The card driver works on views into one decoding of the record.
namespace view {
QString Kapian010(QStringView& ziduan);
QString Kapian200(QStringView& ziduan, const MessageFn& message);
QString Kapian205(QStringView& ziduan);
QString Kapian206(QStringView& ziduan);
QString Kapian207(QStringView& ziduan);
QString Kapian208(QStringView& ziduan);
QString Kapian210(QStringView& ziduan);
QString Kapian215(QStringView& ziduan);
QString Kapian225(QStringView& ziduan);
QString Kapian327(QStringView& ziduan);
QString Kapian686(QStringView& ziduan);
QStringView KapianZiduanA(QStringView ziduan);
} // namespace view

} // namespace card
