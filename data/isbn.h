#pragma once
// The ISBN-10 check character: the one piece of ISBN arithmetic, shared by the client's
// rules and the database tool, which has no Qt.

#include <string_view>

namespace orvane {

// The check character of the first nine digits, weights 10 down to 2: '0'..'9', or 'X'
// for ten. '\0' when `nine` is not exactly nine ASCII digits.
char isbn10Check(std::string_view nine);

} // namespace orvane
