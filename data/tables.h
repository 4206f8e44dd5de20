#pragma once
// Names of the tables and columns as the statements write them. The database compares
// identifiers without regard to case; the statements keep the spelling they always had.

namespace tables {

// The purchase record, one row per ordered title.
inline constexpr const char* cgk = "cgk";
// Sources of supply.
inline constexpr const char* cggys = "cggys";
inline constexpr const char* cgkStatus = "cgkStatus";
inline constexpr const char* Global = "Global";
inline constexpr const char* cck = "cck";
inline constexpr const char* wxlx = "wxlx";
inline constexpr const char* type = "type";
inline constexpr const char* cbk = "cbk";
inline constexpr const char* ZSK = "ZSK";
inline constexpr const char* taolutable = "taolutable";
inline constexpr const char* LibUse = "LibUse";
inline constexpr const char* FDict = "FDict";
// Scratch tables of the reports.
inline constexpr const char* printCG = "printCG";
inline constexpr const char* printMX = "printMX";
inline constexpr const char* printLeiBie = "printLeiBie";
inline constexpr const char* printTotalJE = "printTotalJE";
inline constexpr const char* printYStotal = "printYStotal";
inline constexpr const char* printYSmx = "printYSmx";

// Columns of cgk in the order of the entry form's fields 0..17 and the acceptance columns.
inline constexpr const char* cgkColumns[] = {
    "cgkid",   "bookfrom", "bookname",  "author",  "zdcode",    "isbn",     "publisher", "pubplace",
    "pubdate", "edition",  "pages",     "measure", "classcode", "docclass", "lagclass",  "price",
    "cgff",    "yddate",   "bookcount", "cgname",  "status",    "batch",    "ysname",    "ysdate",
    "ysprice", "yscount",  "fpcode",    "sjcode",  "ysjine",
};

} // namespace tables
