#include "carddriver.h"

#include "kapianfmt.h"
#include "platform/vb.h"

#include <cmath>
#include <vector>

namespace card {

namespace {

constexpr QStringView kCrLf = u"\r\n";
constexpr QStringView kArea = u"·—";
constexpr QStringView kDots = u"···"; // three U+00B7

enum class Rule {
    Isbn,
    Title,
    Edition,
    Area206,
    Area207,
    Area208,
    Area230,
    Publication,
    Physical,
    Series,
    Note,
    Note324,
    Note327,
    Subject,
    Author,
    Class,
    Class686,
};

struct Pass {
    const char16_t* tag;
    Rule rule;
};

// The order of the passes: the card's areas come out in this order whatever the record's.
constexpr Pass kPasses[] = {
    {u"010", Rule::Isbn},    {u"200", Rule::Title},       {u"205", Rule::Edition},
    {u"206", Rule::Area206}, {u"207", Rule::Area207},     {u"208", Rule::Area208},
    {u"230", Rule::Area230}, {u"210", Rule::Publication}, {u"215", Rule::Physical},
    {u"225", Rule::Series},  {u"300", Rule::Note},        {u"301", Rule::Note},
    {u"302", Rule::Note},    {u"303", Rule::Note},        {u"304", Rule::Note},
    {u"305", Rule::Note},    {u"306", Rule::Note},        {u"307", Rule::Note},
    {u"308", Rule::Note},    {u"310", Rule::Note},        {u"312", Rule::Note},
    {u"313", Rule::Note},    {u"314", Rule::Note},        {u"315", Rule::Note},
    {u"316", Rule::Note},    {u"317", Rule::Note},        {u"320", Rule::Note},
    {u"322", Rule::Note},    {u"323", Rule::Note},        {u"324", Rule::Note324},
    {u"325", Rule::Note},    {u"327", Rule::Note327},     {u"328", Rule::Note},
    {u"330", Rule::Note},    {u"332", Rule::Note},        {u"333", Rule::Note},
    {u"336", Rule::Note},    {u"337", Rule::Note},        {u"600", Rule::Subject},
    {u"601", Rule::Subject}, {u"602", Rule::Subject},     {u"605", Rule::Subject},
    {u"606", Rule::Subject}, {u"607", Rule::Subject},     {u"608", Rule::Subject},
    {u"610", Rule::Subject}, {u"615", Rule::Subject},     {u"700", Rule::Author},
    {u"701", Rule::Author},  {u"702", Rule::Author},      {u"710", Rule::Author},
    {u"711", Rule::Author},  {u"712", Rule::Author},      {u"720", Rule::Author},
    {u"721", Rule::Author},  {u"722", Rule::Author},      {u"675", Rule::Class},
    {u"676", Rule::Class},   {u"680", Rule::Class},       {u"686", Rule::Class686},
    {u"690", Rule::Class},   {u"692", Rule::Class},
};
static_assert(std::size(kPasses) == 62);

// Pass index of a three-digit tag, -1 for the tags the card doesn't look at.
struct PassIndex {
    std::array<signed char, 1000> byNumber{};
    PassIndex() {
        byNumber.fill(-1);
        for (int i = 0; i < int(std::size(kPasses)); ++i) {
            const char16_t* t = kPasses[i].tag;
            byNumber[(t[0] - u'0') * 100 + (t[1] - u'0') * 10 + (t[2] - u'0')] =
                static_cast<signed char>(i);
        }
    }
    int of(QStringView tag) const {
        if (tag.size() != 3) return -1;
        int n = 0;
        for (QChar c : tag) {
            if (c < u'0' || c > u'9') return -1; // exact compare: only ASCII digits match
            n = n * 10 + (c.unicode() - u'0');
        }
        return byNumber[n];
    }
};

// The prefix parse of the card's directory numbers (Val: blanks skipped, no digits is 0).
double prefixNumber(QStringView s) {
    int n = 0;
    bool plain = !s.isEmpty();
    for (QChar c : s) {
        if (c < u'0' || c > u'9') {
            plain = false;
            break;
        }
        n = n * 10 + (c.unicode() - u'0');
    }
    return plain ? double(n) : vb::Val(s.toString());
}

QString cat(std::initializer_list<QStringView> parts) {
    qsizetype n = 0;
    for (QStringView p : parts) n += p.size();
    QString r;
    r.reserve(n);
    for (QStringView p : parts) r += p;
    return r;
}

// One numbered entry of a tracing section. A lone entry has no number; the second brings
// "①" in front of the first, with the lone blank before "②" that our cards have always
// had. From the eleventh on, entries are dropped.
void addNumbered(QString& slot, int& traceCount, QStringView e1, QStringView e2 = {}) {
    if (traceCount == 1) {
        slot.reserve(64); // a section rarely outgrows it
        slot += e1;
        slot += e2;
    } else if (traceCount == 2) {
        slot.prepend(u"①");
        slot += u" ②";
        slot += e1;
        slot += e2;
    } else if (traceCount <= 10) {
        slot += QChar(char16_t(0x2460 + traceCount - 1));
        slot += e1;
        slot += e2;
    }
    ++traceCount;
}

struct Slots {
    QString isbnText, titleText, edition205, area206, area207, area208, area230, pubText, physText,
        seriesText, noteText, subjectTrace, authorTrace, classTrace;
    int subjectCount = 1, authorCount = 1, classCount = 1; // traceCount of each section
};

// A slot that joins a repeated field behind a mark, or takes the first one as it is.
void joinSlot(QString& slot, QStringView mark, QString&& t) {
    if (slot.isEmpty()) {
        slot = std::move(t);
    } else {
        slot += mark;
        slot += t;
    }
}

void apply(Rule rule, QStringView field, Slots& s, const MessageFn& message) {
    using namespace card::view;
    switch (rule) {
    case Rule::Isbn:
        joinSlot(s.isbnText, u"\r\n  ", Kapian010(field));
        break;
    case Rule::Title:
        s.titleText = Kapian200(field, message);
        break; // the last 200 wins
    case Rule::Edition:
        joinSlot(s.edition205, u"；", Kapian205(field));
        break;
    case Rule::Area206:
        joinSlot(s.area206, u"；", Kapian206(field));
        break;
    case Rule::Area207:
        joinSlot(s.area207, u"；", Kapian207(field));
        break;
    case Rule::Area208:
        s.area208 = Kapian208(field);
        break;
    case Rule::Area230:
        s.area230 += s.area230.isEmpty() ? kArea : QStringView(u"；");
        s.area230 += KapianZiduanA(field);
        break;
    case Rule::Publication:
        s.pubText = Kapian210(field);
        break;
    case Rule::Physical:
        joinSlot(s.physText, u"\r\n  ", Kapian215(field));
        break;
    case Rule::Series:
        // No test of T: an empty series still leaves its brackets.
        s.seriesText += cat({u"·—（", Kapian225(field), u"）"});
        break;
    case Rule::Note:
    case Rule::Note327: {
        const QString t327 = rule == Rule::Note327 ? Kapian327(field) : QString();
        const QStringView t = rule == Rule::Note327 ? QStringView(t327) : KapianZiduanA(field);
        if (s.noteText.isEmpty()) {
            s.noteText = cat({u"\r\n\r\n  ", t});
        } else {
            s.noteText += kArea;
            s.noteText += t;
        }
        break;
    }
    case Rule::Note324:
        // A 324 starts the notes afresh: what came before it from 300 on is gone.
        s.noteText = cat({u"\r\n\r\n  ", KapianZiduanA(field)});
        break;
    case Rule::Subject:
        if (const QStringView t = KapianZiduanA(field); !t.isEmpty())
            addNumbered(s.subjectTrace, s.subjectCount, t);
        break;
    case Rule::Author:
        // A tracing names a person by the first character alone.
        if (const QStringView t = KapianZiduanA(field); !t.isEmpty())
            addNumbered(s.authorTrace, s.authorCount, t.left(1), kDots);
        break;
    case Rule::Class:
        if (const QStringView t = KapianZiduanA(field); !t.isEmpty())
            addNumbered(s.classTrace, s.classCount, t);
        break;
    case Rule::Class686:
        // Kapian686 consumes the field: the test takes its text and the entry is made from
        // a second call on what is left, which is empty. So a 686 takes a number and
        // shows none of its own text; kept as the cards have always been.
        if (!Kapian686(field).isEmpty()) {
            const QString e = Kapian686(field);
            addNumbered(s.classTrace, s.classCount, e);
        }
        break;
    }
}

} // namespace

const std::array<const char16_t*, 62> kCardTags = [] {
    std::array<const char16_t*, 62> tags{};
    for (size_t i = 0; i < tags.size(); ++i) tags[i] = kPasses[i].tag;
    return tags;
}();

QString noTitleText() {
    return QStringLiteral("没有正题名,无法显示卡片!");
}

std::optional<QString> showKapian(const MarcText& marc, const MessageFn& message) {
    static const PassIndex passIndex;
    const auto dir = findDirectory(marc.text(), message);
    if (!dir) return std::nullopt;

    // ziduanTable: tag, length and start of each entry. The passes visit the entries of
    // each tag in directory order, tag after tag: the same as sorting the entries the
    // card looks at by their pass, keeping directory order within one tag.
    struct Entry {
        int pass;
        int index;
        double length;
        double start;
    };
    std::vector<Entry> entries;
    entries.reserve(size_t(dir->count));
    for (int j = 0; j < dir->count; ++j) {
        // Every entry's numbers are read, as the table held them all.
        const double length = prefixNumber(dir->lengthText(j));
        const double start = prefixNumber(dir->startText(j));
        const int pass = passIndex.of(dir->tag(j));
        if (pass >= 0) entries.push_back({pass, j, length, start});
    }
    // A record has a few dozen entries: an insertion sort, stable and without a buffer.
    for (size_t i = 1; i < entries.size(); ++i) {
        const Entry e = entries[i];
        size_t k = i;
        for (; k > 0 && entries[k - 1].pass > e.pass; --k) entries[k] = entries[k - 1];
        entries[k] = e;
    }

    Slots s;
    QString scratch;
    for (const Entry& e : entries) {
        // fetchField: the closing 30 stays on the field.
        const QStringView field = midB(marc, toLong(std::trunc(e.start) + dir->base + 1),
                                       toLong(std::trunc(e.length)), scratch);
        apply(kPasses[e.pass].rule, field, s, message);
    }

    if (!s.classTrace.isEmpty()) s.classTrace.prepend(u"Ⅳ.");
    if (!s.subjectTrace.isEmpty()) s.subjectTrace.prepend(u"Ⅲ.");
    if (!s.authorTrace.isEmpty()) s.authorTrace.prepend(u"Ⅱ.");
    // A card without notes (or without an ISBN) keeps an empty line before the ISBN
    // lines, even when there are none.
    const QStringView isbnLead = !s.noteText.isEmpty() && !s.isbnText.isEmpty()
                                     ? QStringView(u"\r\n  ")
                                     : QStringView(u"\r\n\r\n  ");
    if (s.titleText.isEmpty()) return noTitleText();

    const QString first = vb::Trim(s.titleText).left(1);
    // With a series, its first character (position 4, behind "·—（") is traced too.
    const QString tracingHead =
        s.seriesText.isEmpty()
            ? cat({u"  Ⅰ.", first, kDots})
            : cat({u"  Ⅰ.①", first, u"···②", QStringView(s.seriesText).mid(3, 1), kDots});

    return cat({kCrLf,         kCrLf,          u"  ",      s.titleText, s.edition205, s.area206,
                s.area207,     s.area208,      s.area230,  s.pubText,   s.physText,   s.seriesText,
                s.noteText,    isbnLead,       s.isbnText, kCrLf,       kCrLf,        tracingHead,
                s.authorTrace, s.subjectTrace, u" ",       s.classTrace});
}

} // namespace card
