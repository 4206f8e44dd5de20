#pragma once
// GBK conversion at the speed a batch of a hundred thousand records needs. The tables are
// taken once from the platform's conversion (gbk::decode of every byte pair, gbk::encode of
// every UTF-16 unit), so the results are the platform's by construction; only the per
// character work is cheaper. The tests compare both on random input.

#include <QByteArray>
#include <QString>
#include <QStringView>

#include <cstdint>
#include <vector>

namespace card::cardgbk {

// As gbk::decode. `exact`, when given, tells whether encode() of the result gives the
// input back byte for byte (no invalid or cut pair, no unit of two spellings).
// `charAt`, when given, receives for each byte the index of the character it starts, or
// -1 for the second byte of a pair, and one more entry for the end.
QString decode(const char* data, qsizetype size, bool* exact = nullptr,
               std::vector<int32_t>* charAt = nullptr);
// Whether a piece of bytes cut where characters begin and end decodes to the same
// characters as that part of the whole (true for GBK; checked on the tables).
bool cutsDecodeAlike();
// As gbk::encode.
QByteArray encode(QStringView s);
// As gbk::byteLength.
qsizetype byteLength(QStringView s);

} // namespace card::cardgbk
