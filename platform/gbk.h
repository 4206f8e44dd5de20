#pragma once
// GBK conversion of strings and back. MARC directories count GBK bytes, so the card
// reader cuts byte ranges of a record's GBK form and decodes the pieces.

#include <QByteArray>
#include <QString>

namespace gbk {

// Characters GBK cannot hold become '?' (one byte), as the legacy conversion did.
QByteArray encode(const QString& s);
// A byte run that ends inside a two-byte character (a lead byte 0x81..0xFE as the last
// byte) decodes that last byte as '?'. An invalid pair decodes as '?' for the lead byte
// and goes on with the next byte. Never reads outside `bytes`.
QString decode(const QByteArray& bytes);
QString decode(const char* data, qsizetype size);
// Bytes of `s` in GBK: ASCII 1, everything else GBK holds 2.
qsizetype byteLength(const QString& s);

} // namespace gbk
