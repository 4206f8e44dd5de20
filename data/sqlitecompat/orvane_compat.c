/* SQL Server dialect pieces for SQLite; see orvane_compat.h. */
#include "data/sqlitecompat/orvane_compat.h"

#include <sqlite3.h>

#include <ctype.h>
#include <stdio.h>
#include <string.h>
#include <time.h>

/* ---- dates -------------------------------------------------------------------------- */

typedef struct {
    int y, m, d, hh, mi, ss, ms;
    int hasTime;
} vbdate;

static int readInt(const char** p, int maxDigits, int* out) {
    int n = 0, v = 0;
    while (n < maxDigits && isdigit((unsigned char)**p)) {
        v = v * 10 + (**p - '0');
        ++*p;
        ++n;
    }
    *out = v;
    return n;
}

static int daysIn(int y, int m) {
    static const int dm[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (m == 2 && ((y % 4 == 0 && y % 100 != 0) || y % 400 == 0)) return 29;
    return dm[m - 1];
}

/* Reads "y-m-d", "y/m/d" or "y.m.d" with an optional time "[ T]h:mm[:ss[.fff]]".
 * Anything else (trailing words, invalid days) is not a date. */
static int parseDate(const char* s, vbdate* out) {
    const char* p = s;
    char sep;
    memset(out, 0, sizeof *out);
    while (*p == ' ') ++p;
    if (readInt(&p, 4, &out->y) != 4) return 0;
    sep = *p;
    if (sep != '-' && sep != '/' && sep != '.') return 0;
    ++p;
    if (readInt(&p, 2, &out->m) < 1) return 0;
    if (*p != sep) return 0;
    ++p;
    if (readInt(&p, 2, &out->d) < 1) return 0;
    if (out->m < 1 || out->m > 12 || out->d < 1 || out->d > daysIn(out->y, out->m)) return 0;
    if (*p == ' ' || *p == 'T') {
        const char* q = p + 1;
        while (*q == ' ') ++q;
        if (*q == 0) {
            p = q;
        } else {
            if (readInt(&q, 2, &out->hh) < 1 || *q != ':') return 0;
            ++q;
            if (readInt(&q, 2, &out->mi) != 2) return 0;
            if (*q == ':') {
                ++q;
                if (readInt(&q, 2, &out->ss) != 2) return 0;
                if (*q == '.') {
                    int digits;
                    ++q;
                    digits = readInt(&q, 3, &out->ms);
                    while (digits > 0 && digits < 3) {
                        out->ms *= 10;
                        ++digits;
                    }
                    while (isdigit((unsigned char)*q)) ++q;
                }
            }
            if (out->hh > 23 || out->mi > 59 || out->ss > 59) return 0;
            out->hasTime = out->hh || out->mi || out->ss || out->ms;
            p = q;
        }
    }
    while (*p == ' ') ++p;
    return *p == 0;
}

static void normDateFunc(sqlite3_context* ctx, int argc, sqlite3_value** argv) {
    vbdate d;
    char buf[96];
    const char* s;
    (void)argc;
    if (sqlite3_value_type(argv[0]) != SQLITE_TEXT) {
        sqlite3_result_value(ctx, argv[0]);
        return;
    }
    s = (const char*)sqlite3_value_text(argv[0]);
    if (!s || !parseDate(s, &d)) {
        sqlite3_result_value(ctx, argv[0]);
        return;
    }
    if (d.hasTime) {
        if (d.ms)
            snprintf(buf, sizeof buf, "%04d-%02d-%02d %02d:%02d:%02d.%03d", d.y, d.m, d.d, d.hh,
                     d.mi, d.ss, d.ms);
        else
            snprintf(buf, sizeof buf, "%04d-%02d-%02d %02d:%02d:%02d", d.y, d.m, d.d, d.hh, d.mi,
                     d.ss);
    } else {
        snprintf(buf, sizeof buf, "%04d-%02d-%02d", d.y, d.m, d.d);
    }
    sqlite3_result_text(ctx, buf, -1, SQLITE_TRANSIENT);
}

/* varchar(n) only marks the target type for convert(); it returns n. A length the
 * server would refuse is refused here too, rather than cut to 32 bits. The largest
 * length allowed (8000, 4000 for nvarchar) comes as the function's user data. */
static int typeLength(sqlite3_context* ctx, sqlite3_value* arg, const char* type, int max,
                      sqlite3_int64* out) {
    const sqlite3_int64 n = sqlite3_value_int64(arg);
    char msg[160];
    if (n >= 1 && n <= max) {
        *out = n;
        return 1;
    }
    if (n < 1)
        snprintf(msg, sizeof msg, "Length or precision specification %lld is invalid.",
                 (long long)n);
    else
        snprintf(msg, sizeof msg,
                 "The size (%lld) given to the type '%s' exceeds the maximum allowed for any "
                 "data type (%d).",
                 (long long)n, type, max);
    sqlite3_result_error(ctx, msg, -1);
    return 0;
}

static void varcharFunc(sqlite3_context* ctx, int argc, sqlite3_value** argv) {
    const int max = (int)(sqlite3_int64)(size_t)sqlite3_user_data(ctx);
    sqlite3_int64 n = 30;
    if (argc > 0 && !typeLength(ctx, argv[0], max == 4000 ? "nvarchar" : "varchar", max, &n))
        return;
    sqlite3_result_int64(ctx, n);
}

/* convert(varchar(n), x [, style]). Dates by style: 111 yyyy/mm/dd, 102 yyyy.mm.dd,
 * 112 yyyymmdd, 23 yyyy-mm-dd, 108 hh:mm:ss, 120 (and none) yyyy-mm-dd hh:mm:ss; any
 * other style is an error rather than a wrong text. A value that is no date is
 * converted to text and cut to n. */
static void convertFunc(sqlite3_context* ctx, int argc, sqlite3_value** argv) {
    sqlite3_int64 width = 30;
    sqlite3_int64 style = argc > 2 ? sqlite3_value_int64(argv[2]) : 0;
    const char* s;
    char buf[96];
    vbdate d;
    if (sqlite3_value_type(argv[0]) != SQLITE_NULL &&
        !typeLength(ctx, argv[0], "varchar", 8000, &width))
        return;
    if (sqlite3_value_type(argv[1]) == SQLITE_NULL) {
        sqlite3_result_null(ctx);
        return;
    }
    s = (const char*)sqlite3_value_text(argv[1]);
    if (!s) {
        sqlite3_result_null(ctx);
        return;
    }
    if (parseDate(s, &d)) {
        switch (style) {
        case 23:
            snprintf(buf, sizeof buf, "%04d-%02d-%02d", d.y, d.m, d.d);
            break;
        case 111:
            snprintf(buf, sizeof buf, "%04d/%02d/%02d", d.y, d.m, d.d);
            break;
        case 102:
            snprintf(buf, sizeof buf, "%04d.%02d.%02d", d.y, d.m, d.d);
            break;
        case 112:
            snprintf(buf, sizeof buf, "%04d%02d%02d", d.y, d.m, d.d);
            break;
        case 108:
            snprintf(buf, sizeof buf, "%02d:%02d:%02d", d.hh, d.mi, d.ss);
            break;
        case 0:
        case 20:
        case 120:
            snprintf(buf, sizeof buf, "%04d-%02d-%02d %02d:%02d:%02d", d.y, d.m, d.d, d.hh, d.mi,
                     d.ss);
            break;
        default: {
            char msg[120];
            snprintf(msg, sizeof msg, "convert: style %lld for a date is not supported.",
                     (long long)style);
            sqlite3_result_error(ctx, msg, -1);
            return;
        }
        }
        s = buf;
    }
    {
        /* cut to n characters of UTF-8 */
        const unsigned char* u = (const unsigned char*)s;
        int chars = 0;
        size_t i = 0;
        while (u[i] && chars < width) {
            unsigned char c = u[i];
            size_t len = c < 0x80 ? 1 : (c >> 5) == 6 ? 2 : (c >> 4) == 14 ? 3 : 4;
            size_t k;
            for (k = 1; k < len && u[i + k]; ++k) {
            }
            i += k;
            ++chars;
        }
        sqlite3_result_text(ctx, s, (int)i, SQLITE_TRANSIENT);
    }
}

static void getdateFunc(sqlite3_context* ctx, int argc, sqlite3_value** argv) {
    struct timespec ts;
    struct tm tmv;
    char buf[96];
    (void)argc;
    (void)argv;
    clock_gettime(CLOCK_REALTIME, &ts);
    localtime_r(&ts.tv_sec, &tmv);
    snprintf(buf, sizeof buf, "%04d-%02d-%02d %02d:%02d:%02d.%03ld", tmv.tm_year + 1900,
             tmv.tm_mon + 1, tmv.tm_mday, tmv.tm_hour, tmv.tm_min, tmv.tm_sec,
             ts.tv_nsec / 1000000L);
    sqlite3_result_text(ctx, buf, -1, SQLITE_TRANSIENT);
}

/* left(s, n) by characters. A count below 0 or beyond a 32-bit int is the server's
 * error, not an empty text. */
static void leftFunc(sqlite3_context* ctx, int argc, sqlite3_value** argv) {
    const unsigned char* u;
    sqlite3_int64 n, chars = 0;
    size_t i = 0;
    (void)argc;
    if (sqlite3_value_type(argv[0]) == SQLITE_NULL || sqlite3_value_type(argv[1]) == SQLITE_NULL) {
        sqlite3_result_null(ctx);
        return;
    }
    n = sqlite3_value_int64(argv[1]);
    if (n < 0) {
        sqlite3_result_error(ctx, "Invalid length parameter passed to the left function.", -1);
        return;
    }
    if (n > 2147483647) {
        sqlite3_result_error(
            ctx, "Arithmetic overflow error converting expression to data type int.", -1);
        return;
    }
    u = sqlite3_value_text(argv[0]);
    if (!u) {
        sqlite3_result_null(ctx);
        return;
    }
    while (u[i] && chars < n) {
        unsigned char c = u[i];
        size_t len = c < 0x80 ? 1 : (c >> 5) == 6 ? 2 : (c >> 4) == 14 ? 3 : 4;
        size_t k;
        for (k = 1; k < len && u[i + k]; ++k) {
        }
        i += k;
        ++chars;
    }
    sqlite3_result_text(ctx, (const char*)u, (int)i, SQLITE_TRANSIENT);
}

/* ---- the collation ------------------------------------------------------------------ */

/* Decodes one UTF-8 character; returns its length (at least 1). */
static int utf8Next(const unsigned char* s, int len, unsigned* cp) {
    unsigned char c = s[0];
    int n, i;
    if (c < 0x80) {
        *cp = c;
        return 1;
    }
    n = (c >> 5) == 6 ? 2 : (c >> 4) == 14 ? 3 : (c >> 3) == 30 ? 4 : 1;
    if (n == 1 || n > len) {
        *cp = c;
        return 1;
    }
    *cp = c & (0x7F >> n);
    for (i = 1; i < n; ++i) *cp = (*cp << 6) | (s[i] & 0x3F);
    return n;
}

static unsigned foldCase(unsigned cp) {
    if (cp >= 'A' && cp <= 'Z') return cp + 32;
    if (cp >= 0xFF21 && cp <= 0xFF3A) return cp + 32; /* full-width Latin */
    if (cp >= 0xC0 && cp <= 0xDE && cp != 0xD7) return cp + 32;
    return cp;
}

static int vbtextCompare(void* arg, int n1, const void* v1, int n2, const void* v2) {
    const unsigned char* a = (const unsigned char*)v1;
    const unsigned char* b = (const unsigned char*)v2;
    int i = 0, j = 0;
    (void)arg;
    /* trailing blanks do not count */
    while (n1 > 0 && a[n1 - 1] == ' ') --n1;
    while (n2 > 0 && b[n2 - 1] == ' ') --n2;
    while (i < n1 && j < n2) {
        unsigned ca, cb;
        i += utf8Next(a + i, n1 - i, &ca);
        j += utf8Next(b + j, n2 - j, &cb);
        ca = foldCase(ca);
        cb = foldCase(cb);
        if (ca != cb) return ca < cb ? -1 : 1;
    }
    if (i < n1) return 1;
    if (j < n2) return -1;
    return 0;
}

int orvane_compat_register(sqlite3* db) {
    int rc = SQLITE_OK;
    const int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC;
    if (rc == SQLITE_OK)
        rc = sqlite3_create_function(db, "vb_normdate", 1, flags, 0, normDateFunc, 0, 0);
    if (rc == SQLITE_OK)
        rc = sqlite3_create_function(db, "varchar", 1, flags, (void*)(size_t)8000, varcharFunc, 0,
                                     0);
    if (rc == SQLITE_OK)
        rc = sqlite3_create_function(db, "varchar", 0, flags, (void*)(size_t)8000, varcharFunc, 0,
                                     0);
    if (rc == SQLITE_OK)
        rc = sqlite3_create_function(db, "nvarchar", 1, flags, (void*)(size_t)4000, varcharFunc, 0,
                                     0);
    if (rc == SQLITE_OK)
        rc = sqlite3_create_function(db, "convert", 2, flags, 0, convertFunc, 0, 0);
    if (rc == SQLITE_OK)
        rc = sqlite3_create_function(db, "convert", 3, flags, 0, convertFunc, 0, 0);
    if (rc == SQLITE_OK)
        rc = sqlite3_create_function(db, "getdate", 0, SQLITE_UTF8, 0, getdateFunc, 0, 0);
    if (rc == SQLITE_OK) rc = sqlite3_create_function(db, "vb_left", 2, flags, 0, leftFunc, 0, 0);
    if (rc == SQLITE_OK) rc = sqlite3_create_collation(db, "VBTEXT", SQLITE_UTF8, 0, vbtextCompare);
    return rc;
}
