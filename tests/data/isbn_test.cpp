// The ISBN-10 check character against numbers worked out by hand (weights 10..2, mod 11).
#include "data/isbn.h"

#include <gtest/gtest.h>

#include <string>

namespace {

struct Case {
    const char* nine;
    char check; // '\0': not nine digits, no check character
};

void PrintTo(const Case& c, std::ostream* os) {
    *os << '"' << c.nine << '"';
}

class Isbn10Check : public ::testing::TestWithParam<Case> {};

TEST_P(Isbn10Check, IsTheHandWorkedCharacter) {
    EXPECT_EQ(orvane::isbn10Check(GetParam().nine), GetParam().check);
}

INSTANTIATE_TEST_SUITE_P(Table, Isbn10Check,
                         ::testing::Values(
                             // 0+27+0+42+24+0+24+3+10 = 130, 130 mod 11 = 9, 11-9 = 2.
                             Case{"030640615", '2'},
                             // 70+45+0+0+0+5+8+9+8 = 145, mod 11 = 2: 9.
                             Case{"750001234", '9'},
                             // 70+9+8+7+0+35+20+21+18 = 188, mod 11 = 1: X, not "10".
                             Case{"711107579", 'X'},
                             // 70+27+0+14+0+0+0+0+10 = 121, mod 11 = 0: 0, not "11".
                             Case{"730200005", '0'},
                             // 5*2 = 10, mod 11 = 10: 1.
                             Case{"000000005", '1'},
                             // 9*54 = 486, mod 11 = 2: 9.
                             Case{"999999999", '9'},
                             // Not nine digits.
                             Case{"", '\0'}, Case{"12345678", '\0'}, Case{"1234567890", '\0'},
                             Case{"12345678X", '\0'}, Case{"-12345678", '\0'},
                             Case{"12345678:", '\0'}, Case{"/12345678", '\0'}));

} // namespace
