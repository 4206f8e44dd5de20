#pragma once
// The card layout ("卡片式"): one pass over the directory per tag, in a fixed order of 62
// tags, collecting what the formatters return into string slots, then the description,
// the notes, the ISBN lines and the tracing with its sections Ⅰ. to Ⅳ.
//
// No text is measured: lines end only where a CR LF is written, and the text box wraps.

#include "marcreader.h"

#include <QString>

#include <array>

namespace card {

// Shown in the text box (not a box) when the record has no title.
QString noTitleText(); // "没有正题名,无法显示卡片!"

// The tags the card looks at, in the order of its passes.
extern const std::array<const char16_t*, 62> kCardTags;

// The card text, or nullopt when the directory check refused the record. Messages of
// Kapian200 come during the passes; the reader's failures throw VbError.
std::optional<QString> showKapian(const MarcText& marc, const MessageFn& message);

} // namespace card
