#include "data/isbn.h"

namespace orvane {

char isbn10Check(std::string_view nine) {
    if (nine.size() != 9) return '\0';
    int sum = 0;
    for (size_t i = 0; i < 9; ++i) {
        const char c = nine[i];
        if (c < '0' || c > '9') return '\0';
        sum += int(10 - i) * (c - '0');
    }
    const int r = sum % 11;
    if (r == 0) return '0';
    if (r == 1) return 'X';
    return char('0' + 11 - r);
}

} // namespace orvane
