// The demo data set: a library that has bought books from 2002 to mid 2004.
// Everything is drawn from one fixed seed, so every run gives the same database.

#include "seed.h"

#include "data/isbn.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <unordered_set>
#include <vector>

namespace orvane::dbinit {

namespace {

class Rng {
public:
    explicit Rng(std::uint64_t seed) : state_(seed) {}
    std::uint64_t next() {
        std::uint64_t z = (state_ += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    int range(int lo, int hi) { return lo + int(next() % std::uint64_t(hi - lo + 1)); }
    bool chance(int percent) { return range(0, 99) < percent; }
    template <class C> const auto& pick(const C& c) { return c[size_t(next() % c.size())]; }

private:
    std::uint64_t state_;
};

struct Subject {
    std::string_view name, classcode;
};

constexpr std::array subjects{
    Subject{"计算机网络", "TP393"},
    Subject{"数据结构", "TP311.12"},
    Subject{"操作系统", "TP316"},
    Subject{"数据库系统", "TP311.13"},
    Subject{"C语言程序设计", "TP312"},
    Subject{"Java程序设计", "TP312"},
    Subject{"软件工程", "TP311.5"},
    Subject{"人工智能", "TP18"},
    Subject{"计算机组成", "TP301"},
    Subject{"编译技术", "TP314"},
    Subject{"多媒体技术", "TP37"},
    Subject{"电子商务", "F713.36"},
    Subject{"高等数学", "O13"},
    Subject{"线性代数", "O151.2"},
    Subject{"概率论与数理统计", "O21"},
    Subject{"数学分析", "O17"},
    Subject{"大学物理", "O4"},
    Subject{"有机化学", "O62"},
    Subject{"无机化学", "O61"},
    Subject{"分子生物学", "Q7"},
    Subject{"细胞生物学", "Q2"},
    Subject{"微观经济学", "F016"},
    Subject{"宏观经济学", "F015"},
    Subject{"市场营销", "F713.50"},
    Subject{"管理学", "C93"},
    Subject{"财务管理", "F275"},
    Subject{"会计学", "F230"},
    Subject{"国际贸易", "F74"},
    Subject{"货币银行学", "F820"},
    Subject{"民法学", "D923"},
    Subject{"刑法学", "D924"},
    Subject{"宪法学", "D921"},
    Subject{"国际法", "D99"},
    Subject{"中国近代史", "K25"},
    Subject{"中国古代史", "K22"},
    Subject{"世界通史", "K10"},
    Subject{"中国地理", "K92"},
    Subject{"西方哲学史", "B5"},
    Subject{"中国哲学史", "B2"},
    Subject{"伦理学", "B82"},
    Subject{"心理学", "B84"},
    Subject{"社会学", "C91"},
    Subject{"教育学", "G40"},
    Subject{"体育保健学", "G804"},
    Subject{"图书馆学", "G250"},
    Subject{"信息检索", "G252.7"},
    Subject{"现代汉语", "H1"},
    Subject{"英语语法", "H314"},
    Subject{"英语写作", "H315"},
    Subject{"中国现代文学史", "I206.6"},
    Subject{"中国古代文学史", "I209.2"},
    Subject{"外国文学史", "I109"},
    Subject{"美学", "B83"},
    Subject{"音乐欣赏", "J605"},
    Subject{"书法", "J292"},
    Subject{"中国画技法", "J212"},
    Subject{"内科学", "R5"},
    Subject{"外科学", "R6"},
    Subject{"中医学", "R2"},
    Subject{"药理学", "R96"},
    Subject{"护理学", "R47"},
    Subject{"作物栽培学", "S31"},
    Subject{"园林设计", "TU986"},
    Subject{"机械设计", "TH122"},
    Subject{"机械制图", "TH126"},
    Subject{"电工学", "TM1"},
    Subject{"电路分析", "TM133"},
    Subject{"模拟电子技术", "TN710"},
    Subject{"数字电子技术", "TN79"},
    Subject{"自动控制", "TP13"},
    Subject{"建筑结构", "TU3"},
    Subject{"土木工程施工", "TU7"},
    Subject{"材料力学", "TB301"},
    Subject{"汽车构造", "U463"},
    Subject{"铁路运输组织", "U29"},
    Subject{"航空航天技术", "V2"},
    Subject{"环境保护", "X"},
    Subject{"环境工程", "X5"},
    Subject{"天文学", "P1"},
    Subject{"普通地质学", "P5"},
    Subject{"气象学", "P4"},
    Subject{"军事理论", "E0"},
    Subject{"马克思主义哲学", "A81"},
    Subject{"毛泽东思想", "A84"},
    Subject{"邓小平理论", "A849"},
    Subject{"自然科学史", "N09"},
    Subject{"科学技术哲学", "N02"},
    Subject{"百科知识", "Z228"},
};

constexpr std::array titlePrefixes{"", "", "", "", "现代", "实用", "新编", "大学", "简明", "高级"};
constexpr std::array titleSuffixes{"教程",     "概论",     "原理",     "基础",     "导论",
                                   "实用教程", "学习指导", "习题集",   "简明教程", "案例分析",
                                   "实验指导", "研究",     "应用",     "入门",     "手册",
                                   "专题研究", "题解",     "考试指南", "讲义",     "新论"};

struct Work {
    std::string_view title, author, classcode;
};

// Literature and classics, with their authors.
constexpr std::array works{
    Work{"红楼梦", "(清)曹雪芹著", "I242.4"},
    Work{"三国演义", "(明)罗贯中著", "I242.4"},
    Work{"水浒传", "(明)施耐庵著", "I242.4"},
    Work{"西游记", "(明)吴承恩著", "I242.4"},
    Work{"儒林外史", "(清)吴敬梓著", "I242.4"},
    Work{"聊斋志异", "(清)蒲松龄著", "I242.1"},
    Work{"呐喊", "鲁迅著", "I210.6"},
    Work{"彷徨", "鲁迅著", "I210.6"},
    Work{"朝花夕拾", "鲁迅著", "I210.5"},
    Work{"边城", "沈从文著", "I246.5"},
    Work{"围城", "钱钟书著", "I246.5"},
    Work{"骆驼祥子", "老舍著", "I246.5"},
    Work{"四世同堂", "老舍著", "I246.5"},
    Work{"茶馆", "老舍著", "I234"},
    Work{"家", "巴金著", "I246.5"},
    Work{"子夜", "茅盾著", "I246.5"},
    Work{"雷雨", "曹禺著", "I234"},
    Work{"城南旧事", "林海音著", "I246.5"},
    Work{"平凡的世界", "路遥著", "I247.5"},
    Work{"白鹿原", "陈忠实著", "I247.5"},
    Work{"活着", "余华著", "I247.5"},
    Work{"许三观卖血记", "余华著", "I247.5"},
    Work{"长恨歌", "王安忆著", "I247.5"},
    Work{"尘埃落定", "阿来著", "I247.5"},
    Work{"穆斯林的葬礼", "霍达著", "I247.5"},
    Work{"文化苦旅", "余秋雨著", "I267"},
    Work{"唐诗三百首", "(清)蘅塘退士编", "I222.742"},
    Work{"宋词三百首", "上彊村民编", "I222.844"},
    Work{"古文观止", "(清)吴楚材,吴调侯选", "I213"},
    Work{"人间词话", "王国维著", "I207.23"},
    Work{"浮生六记", "(清)沈复著", "I264.9"},
    Work{"论语译注", "杨伯峻译注", "B222.2"},
    Work{"孟子译注", "杨伯峻译注", "B222.5"},
    Work{"史记", "(汉)司马迁著", "K204.2"},
    Work{"资治通鉴", "(宋)司马光编著", "K204.3"},
    Work{"百年孤独", "(哥伦比亚)加西亚·马尔克斯著", "I775.45"},
    Work{"老人与海", "(美)海明威著", "I712.45"},
    Work{"简·爱", "(英)夏洛蒂·勃朗特著", "I561.44"},
    Work{"傲慢与偏见", "(英)简·奥斯汀著", "I561.44"},
    Work{"悲惨世界", "(法)雨果著", "I565.44"},
    Work{"战争与和平", "(俄)列夫·托尔斯泰著", "I512.44"},
    Work{"约翰·克利斯朵夫", "(法)罗曼·罗兰著", "I565.45"},
    Work{"设计模式:可复用面向对象软件的基础", "(美)Erich Gamma等著", "TP311.5"},
    Work{"C++ Primer中文版", "(美)Stanley B. Lippman著", "TP312"},
    Work{"Java编程思想", "(美)Bruce Eckel著", "TP312"},
    Work{"算法导论", "(美)Thomas H. Cormen等著", "TP301.6"},
    Work{"TCP/IP详解 卷1:协议", "(美)W. Richard Stevens著", "TN915.04"},
    Work{"UNIX环境高级编程", "(美)W. Richard Stevens著", "TP316.81"},
    Work{"经济学原理", "(美)N. Gregory Mankiw著", "F0"},
    Work{"国富论", "(英)亚当·斯密著", "F091.33"},
    Work{"时间简史", "(英)史蒂芬·霍金著", "P159"},
};

// Where literature and where translated technical books come out.
constexpr std::string_view literaryHousesList[]{"7-02",   "7-101",  "7-108",  "7-5063", "7-5321",
                                                "7-5325", "7-5327", "7-5339", "7-5354", "7-5360",
                                                "7-5399", "7-5404", "7-5442", "7-5447"};
constexpr std::string_view technicalHousesList[]{"7-03",  "7-04",  "7-111", "7-115",
                                                 "7-121", "7-302", "7-5083"};

constexpr std::span<const std::string_view> literaryHouses{literaryHousesList};
constexpr std::span<const std::string_view> technicalHouses{technicalHousesList};

// The works above the translated technical books.
constexpr int literaryWorks = 42;

// Titles with a quote in them: each must survive the doubling of quotes.
constexpr std::array quotedWorks{
    Work{"Perl语言入门(O'Reilly)", "(美)Randal L. Schwartz著", "TP312"},
    Work{"Linux设备驱动程序(O'Reilly)", "(美)Jonathan Corbet等著", "TP316.89"},
    Work{"《红楼梦》'脂评'辑校", "朱一玄编", "I207.411"},
    Work{"鲁迅《呐喊》'自序'讲疏", "王富仁著", "I210.96"},
    Work{"《论语》'学而'篇今读", "李泽厚著", "B222.25"},
    Work{"O'Neill戏剧选", "(美)奥尼尔著", "I712.35"},
};

// Imported originals, catalogued in English.
constexpr std::array englishWorks{
    Work{"Database System Concepts", "Abraham Silberschatz", "TP311.13"},
    Work{"Computer Networks", "Andrew S. Tanenbaum", "TP393"},
    Work{"The C Programming Language", "Brian W. Kernighan", "TP312"},
    Work{"Operating System Concepts", "Abraham Silberschatz", "TP316"},
    Work{"Principles of Economics", "N. Gregory Mankiw", "F0"},
    Work{"Molecular Biology of the Cell", "Bruce Alberts", "Q7"},
};

constexpr std::array surnames{
    "王", "李", "张", "刘", "陈", "杨", "黄", "赵", "吴", "周", "徐", "孙",  "马", "朱", "胡", "郭",
    "何", "高", "林", "罗", "郑", "梁", "谢", "宋", "唐", "许", "韩", "冯",  "邓", "曹", "彭", "曾",
    "肖", "田", "董", "袁", "潘", "于", "蒋", "蔡", "余", "杜", "叶", "程",  "苏", "魏", "吕", "丁",
    "任", "沈", "姚", "卢", "姜", "崔", "钟", "谭", "陆", "汪", "范", "金",  "石", "廖", "贾", "夏",
    "韦", "方", "白", "邹", "孟", "熊", "秦", "邱", "江", "尹", "薛", "欧阳"};
constexpr std::array givenNames{
    "伟",   "芳",   "娜",   "敏",   "静",   "丽",   "强",   "磊",   "军",   "洋",   "勇",
    "艳",   "杰",   "娟",   "涛",   "明",   "超",   "秀英", "华",   "慧",   "建华", "建国",
    "志强", "永",   "海",   "平",   "刚",   "桂英", "玉兰", "晓东", "文",   "斌",   "辉",
    "鹏",   "宇",   "浩",   "凯",   "健",   "俊",   "帆",   "旭",   "宁",   "林",   "欣",
    "晨",   "楠",   "瑞",   "琳",   "颖",   "倩",   "婷",   "雪",   "波",   "峰",   "春生",
    "红",   "霞",   "燕",   "玲",   "萍",   "云",   "成",   "新民", "东",   "德华", "荣",
    "国强", "胜利", "志明", "光明", "亮",   "立新", "庆",   "振华", "家驹", "福",   "清",
    "学文", "思远", "文涛", "晓明", "建平", "卫东", "丽华", "小红", "国庆", "海燕", "宏伟"};

constexpr std::array operators{"admin", "李红", "王建国", "admin", "张丽"};

// Publishers sell to the library directly; the rest are booksellers. Contact fields
// fit the supplier form (15 characters for telephone, fax, e-mail and web).
struct Supplier {
    std::string_view name, city, address, zip, area, pubclass, email, web;
};

constexpr std::array suppliers{
    Supplier{"北京新华书店图书发行中心", "北京", "北京市西城区西直门外大街12号", "100044", "010",
             "销售商", "bjxhfx@163.com", ""},
    Supplier{"北京智源图书有限公司", "北京", "北京市海淀区中关村南大街5号", "100081", "010",
             "销售商", "zyts@163.com", "www.zyts.com"},
    Supplier{"北京学苑书刊发行部", "北京", "北京市海淀区学院路30号", "100083", "010", "销售商",
             "xysk@sina.com", ""},
    Supplier{"上海新华图书馆配中心", "上海", "上海市黄浦区福州路465号", "200001", "021", "销售商",
             "shxh@163.com", "www.shxhsd.com"},
    Supplier{"上海博文图书经销公司", "上海", "上海市徐汇区漕溪北路88号", "200030", "021", "销售商",
             "bwts@263.net", ""},
    Supplier{"天津市新华书店馆配部", "天津", "天津市和平区南京路120号", "300041", "022", "销售商",
             "tjxhsd@163.com", ""},
    Supplier{"广州求知图书贸易有限公司", "广州", "广州市天河区天河路123号", "510620", "020",
             "销售商", "qzts@21cn.com", "www.qzts.com"},
    Supplier{"江苏新华书店图书馆服务部", "南京", "南京市鼓楼区中山北路56号", "210008", "025",
             "销售商", "jsxhtf@163.com", "www.jsxh.com"},
    Supplier{"南京书香图书有限公司", "南京", "南京市玄武区珠江路280号", "210018", "025", "销售商",
             "sxts@163.com", ""},
    Supplier{"杭州文汇图书经销部", "杭州", "杭州市西湖区文三路259号", "310012", "0571", "销售商",
             "whts@163.com", ""},
    Supplier{"湖北新华书店馆配中心", "武汉", "武汉市武昌区中南路18号", "430071", "027", "销售商",
             "hbxh@163.com", ""},
    Supplier{"武汉崇文图书发行公司", "武汉", "武汉市洪山区珞喻路152号", "430079", "027", "销售商",
             "cwts@163.com", "www.cwts.com"},
    Supplier{"成都蜀都图书贸易有限公司", "成都", "成都市锦江区春熙路36号", "610016", "028",
             "销售商", "sdts@163.com", ""},
    Supplier{"西安长安书刊经销部", "西安", "西安市雁塔区小寨东路66号", "710061", "029", "销售商",
             "casy@163.com", ""},
    Supplier{"湖南潇湘图书发行公司", "长沙", "长沙市芙蓉区五一大道98号", "410011", "0731", "销售商",
             "xxts@163.com", "www.xxts.com"},
    Supplier{"重庆西南书刊发行公司", "重庆", "重庆市渝中区解放碑民族路101号", "400010", "023",
             "销售商", "xnsk@163.com", ""},
    Supplier{"沈阳北方书刊发行公司", "沈阳", "沈阳市和平区太原北街86号", "110001", "024", "销售商",
             "bfsk@sina.com", ""},
    Supplier{"山东泉城图书发行公司", "济南", "济南市历下区泉城路180号", "250011", "0531", "销售商",
             "qcts@163.com", ""},
    Supplier{"郑州中原图书经销部", "郑州", "郑州市金水区花园路39号", "450008", "0371", "销售商",
             "zyjx@163.com", ""},
    Supplier{"哈尔滨龙江书刊发行部", "哈尔滨", "哈尔滨市南岗区西大直街118号", "150001", "0451",
             "销售商", "ljsk@163.com", ""},
    Supplier{"长春博文书店", "长春", "长春市朝阳区人民大街3456号", "130021", "0431", "销售商",
             "ccbw@163.com", ""},
    Supplier{"福州榕城图书有限公司", "福州", "福州市鼓楼区五四路75号", "350003", "0591", "销售商",
             "rcts@163.com", ""},
    Supplier{"厦门鹭江图书发行部", "厦门", "厦门市思明区中山路208号", "361001", "0592", "销售商",
             "ljts@163.com", ""},
    Supplier{"昆明春城书刊经销公司", "昆明", "昆明市五华区东风西路11号", "650032", "0871", "销售商",
             "ccsk@163.com", ""},
    Supplier{"青岛海润图书发行部", "青岛", "青岛市市南区香港中路20号", "266071", "0532", "销售商",
             "hrts@163.com", ""},
    Supplier{"人民文学出版社", "北京", "北京市朝内大街166号", "100705", "010", "出版商",
             "rw@rw-cn.com", "www.rw-cn.com"},
    Supplier{"机械工业出版社", "北京", "北京市西城区百万庄大街22号", "100037", "010", "出版商",
             "cmp@cmpbook.com", "www.cmpbook.com"},
    Supplier{"清华大学出版社", "北京", "北京市海淀区清华大学学研大厦", "100084", "010", "出版商",
             "tup@tup.com.cn", "www.tup.com.cn"},
    Supplier{"高等教育出版社", "北京", "北京市西城区德外大街4号", "100011", "010", "出版商",
             "hep@hep.com.cn", "www.hep.com.cn"},
    Supplier{"中华书局", "北京", "北京市丰台区太平桥西里38号", "100073", "010", "出版商",
             "zh@zhbc.com.cn", "www.zhbc.com.cn"},
};

constexpr std::array orderWays{"预订", "预订", "预订", "预订", "预订", "预订", "现购",
                               "现购", "现购", "邮购", "邮购", "赠送", "交换"};
constexpr std::array bookSizes{"16开",   "16开", "16开", "16开",   "大32开", "大32开",
                               "大32开", "32开", "32开", "小16开", "大16开", "64开"};
constexpr std::array editions{"第1版", "第1版", "第1版", "第1版", "第1版",  "第1版",
                              "第1版", "第2版", "第2版", "第3版", "修订版", "第4版"};

struct Book {
    std::string title, author, isbn, publisher, place, pubdate, edition, measure, classcode,
        docclass, language;
    int pages = 0;
    double price = 0;
};

struct Date {
    int y, m, d;
};

bool leap(int y) {
    return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0;
}
int daysIn(int y, int m) {
    static constexpr int days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return m == 2 && leap(y) ? 29 : days[m - 1];
}
Date addDays(Date dt, int n) {
    while (n-- > 0) {
        if (++dt.d > daysIn(dt.y, dt.m)) {
            dt.d = 1;
            if (++dt.m > 12) {
                dt.m = 1;
                ++dt.y;
            }
        }
    }
    return dt;
}
int ordinal(Date dt) {
    return dt.y * 372 + dt.m * 31 + dt.d;
}
std::string text(Date dt) {
    char buf[16];
    std::snprintf(buf, sizeof buf, "%04d-%02d-%02d", dt.y, dt.m, dt.d);
    return buf;
}

double roundHalf(double v) {
    return std::round(v * 2) / 2;
}
double roundCents(double v) {
    return std::round(v * 100) / 100;
}

class BookMaker {
public:
    BookMaker(Rng& rng, bool unique) : rng_(rng), unique_(unique) {}

    std::string person() {
        return std::string(rng_.pick(surnames)) + std::string(rng_.pick(givenNames));
    }

    std::string authorLine() {
        const int r = rng_.range(0, 99);
        if (r < 55) return person() + "著";
        if (r < 75) return person() + "主编";
        if (r < 87) return person() + "编著";
        if (r < 95) return person() + "等著";
        return person() + "," + person() + "著";
    }

    // A new ISBN of the given publisher that no other book of the data set has.
    std::string isbn(const Publisher& p) {
        const size_t digits = 8 - (p.prefix.size() - 2);
        std::uint64_t limit = 1;
        for (size_t i = 0; i < digits; ++i) limit *= 10;
        for (;;) {
            std::string number = std::to_string(rng_.next() % limit);
            number.insert(0, digits - number.size(), '0');
            std::string nine;
            for (char c : p.prefix)
                if (c != '-') nine += c;
            nine += number;
            std::string full =
                std::string(p.prefix) + "-" + number + "-" + orvane::isbn10Check(nine);
            if (!unique_ || used_.insert(full).second) return full;
        }
    }

    Book make(int firstYear, int lastYear, const Publisher* forced = nullptr,
              bool literary = false) {
        Book b;
        const Publisher* p = forced;
        const int kind = literary ? 80 : rng_.range(0, 99);
        if (kind < 72) {
            const Subject& s = rng_.pick(subjects);
            const std::string_view suffix = rng_.pick(titleSuffixes);
            b.title =
                std::string(rng_.pick(titlePrefixes)) + std::string(s.name) + std::string(suffix);
            b.author = authorLine();
            b.classcode = s.classcode;
            // Form subdivisions, where the number stays within the field's ten places.
            if (b.classcode.size() <= 7) {
                if (suffix.find("教程") != std::string_view::npos) b.classcode += "-43";
                if (suffix == "习题集" || suffix == "题解") b.classcode += "-44";
            }
        } else if (kind < 97) {
            // The literary publishers among the sources get no technical titles.
            const int at =
                literary ? rng_.range(0, literaryWorks - 1) : rng_.range(0, int(works.size()) - 1);
            const Work& w = works[size_t(at)];
            b.title = w.title;
            b.author = w.author;
            b.classcode = w.classcode;
            if (!p) p = house(at < literaryWorks ? literaryHouses : technicalHouses);
        } else {
            const Work& w = rng_.pick(englishWorks);
            b.title = w.title;
            b.author = w.author;
            b.classcode = w.classcode;
            b.language = "英文";
            if (!p) p = house(technicalHouses);
        }
        if (!p) {
            const auto all = publishers();
            p = &all[size_t(rng_.next() % all.size())];
        }
        b.publisher = p->name;
        b.place = p->place;
        b.isbn = isbn(*p);
        if (b.language.empty()) b.language = "中文";
        const int year = rng_.range(firstYear, lastYear);
        char buf[16];
        std::snprintf(buf, sizeof buf, "%04d.%02d", year, rng_.range(1, 12));
        b.pubdate = buf;
        b.edition = rng_.pick(editions);
        b.measure = rng_.pick(bookSizes);
        b.pages = rng_.range(8, 90) * 10 + rng_.range(0, 9);
        b.price = roundHalf(b.pages * 0.055 + rng_.range(3, 15));
        b.docclass = rng_.chance(97) ? "普通图书" : (rng_.chance(50) ? "工具书" : "会议录");
        return b;
    }

    Book quoted(size_t index) {
        const Work& w = quotedWorks[index % quotedWorks.size()];
        Book b = make(2001, 2004,
                      house(w.classcode.starts_with("TP") ? technicalHouses : literaryHouses));
        b.title = w.title;
        b.author = w.author;
        b.classcode = w.classcode;
        return b;
    }

private:
    const Publisher* house(std::span<const std::string_view> prefixes) {
        const std::string_view prefix = prefixes[size_t(rng_.next() % prefixes.size())];
        for (const Publisher& p : publishers())
            if (p.prefix == prefix) return &p;
        return nullptr;
    }

    Rng& rng_;
    bool unique_;
    std::unordered_set<std::string> used_;
};

Value textOrNull(const std::string& s) {
    return s.empty() ? Value::null() : Value(s);
}

struct Order {
    int id = 0;
    Book book;
    std::string bookfrom, zdcode, cgff, cgname;
    Date yddate{};
    int bookcount = 1;
    int status = 0;
    std::string batch, ysname, fpcode, sjcode;
    Date ysdate{};
    double ysprice = 0, ysjine = 0;
    int yscount = 0;
    bool noClass = false;
};

constexpr std::string_view orderColumns =
    "cgkid,bookfrom,bookname,author,zdcode,isbn,publisher,pubplace,pubdate,edition,pages,"
    "measure,classcode,docclass,lagclass,price,cgff,yddate,bookcount,cgname,status,batch,"
    "ysname,ysdate,ysprice,yscount,fpcode,sjcode,ysjine";

void writeOrder(RowSink& sink, const Order& o) {
    const bool accepted = !o.batch.empty();
    const Value row[] = {
        o.id,
        o.bookfrom,
        o.book.title,
        textOrNull(o.book.author),
        textOrNull(o.zdcode),
        textOrNull(o.book.isbn),
        o.book.publisher,
        o.book.place,
        o.book.pubdate,
        o.book.edition,
        o.book.pages > 0 ? Value(o.book.pages) : Value::null(),
        o.book.measure,
        o.noClass ? Value::null() : Value(o.book.classcode),
        o.book.docclass,
        o.book.language,
        o.book.price,
        o.cgff,
        text(o.yddate),
        o.bookcount,
        o.cgname,
        o.status,
        accepted ? Value(o.batch) : Value::null(),
        accepted ? Value(o.ysname) : Value::null(),
        accepted ? Value(text(o.ysdate)) : Value::null(),
        accepted ? Value(o.ysprice) : Value::null(),
        accepted ? Value(o.yscount) : Value::null(),
        accepted ? textOrNull(o.fpcode) : Value::null(),
        accepted ? textOrNull(o.sjcode) : Value::null(),
        accepted ? Value(o.ysjine) : Value::null(),
    };
    sink.insert("cgk", orderColumns, row);
}

constexpr std::string_view holdingColumns = "ZSKID,bookname,author,isbn,publisher,pubplace,"
                                            "pubdate,edition,pages,measure,classcode,docclass,"
                                            "bookcount";
constexpr std::string_view copyColumns = "ZSKID,bookname,author,isbn,publisher,pubplace,pubdate,"
                                         "edition,pages,measure,classcode,docclass";

void writeHolding(RowSink& sink, std::int64_t id, const Book& b, int copies) {
    const Value row[] = {id,        b.title,     textOrNull(b.author),
                         b.isbn,    b.publisher, b.place,
                         b.pubdate, b.edition,   b.pages,
                         b.measure, b.classcode, b.docclass,
                         copies};
    sink.insert("ZSK", holdingColumns, row);
}

void writeCopyRecord(RowSink& sink, int id, const Book& b) {
    const Value row[] = {id,        b.title,     textOrNull(b.author),
                         b.isbn,    b.publisher, b.place,
                         b.pubdate, b.edition,   b.pages,
                         b.measure, b.classcode, b.docclass};
    sink.insert("taolutable", copyColumns, row);
}

std::string digits(Rng& rng, int n) {
    std::string s;
    for (int i = 0; i < n; ++i) s += char('0' + rng.range(0, 9));
    return s;
}

void writeSuppliers(RowSink& sink, Rng& rng) {
    for (const Supplier& s : suppliers) {
        const std::string area(s.area);
        const int local = area.size() == 3 ? 8 : 7;
        const std::string tel =
            area + "-" + std::to_string(rng.range(5, 8)) + digits(rng, local - 1);
        const std::string fax =
            area + "-" + std::to_string(rng.range(5, 8)) + digits(rng, local - 1);
        const Value row[] = {
            s.name,
            s.city,
            s.address,
            s.zip,
            tel,
            rng.chance(85) ? Value(fax) : Value::null(),
            s.email.empty() ? Value::null() : Value(s.email),
            s.web.empty() ? Value::null() : Value(s.web),
            s.pubclass,
        };
        sink.insert("cggys", "publisher,pubplace,address,zipcode,tel,fax,email,web,pubclass", row);
    }
}

const Publisher* publisherNamed(std::string_view name) {
    for (const Publisher& p : publishers())
        if (p.name == name) return &p;
    return nullptr;
}

} // namespace

DemoFigures writeDemo(RowSink& sink) {
    Rng rng(20030801);
    BookMaker maker(rng, true);
    DemoFigures figures;

    writeSuppliers(sink, rng);
    figures.suppliers = int(suppliers.size());

    // Holdings first: some of them are ordered again, and the catalogued orders
    // (status 2) add theirs to the end.
    std::vector<Book> holdings;
    holdings.reserve(10000);
    for (int i = 0; i < 9500; ++i) holdings.push_back(maker.make(1985, 2003));
    holdings[137] = maker.quoted(2);
    holdings[4242] = maker.quoted(3);

    // Orders, placed in rounds: one source, one day, several titles.
    const Date today{2004, 6, 15};
    std::vector<Order> orders;
    Date day{2002, 9, 2};
    int round = 0;
    while (orders.size() < 2300) {
        day = addDays(day, rng.range(2, 5));
        ++round;
        const Supplier& s =
            suppliers[size_t(rng.range(0, 99) < 90 ? rng.range(0, 24) : rng.range(25, 29))];
        const Publisher* own = s.pubclass == "出版商" ? publisherNamed(s.name) : nullptr;
        const bool literary = s.name == "人民文学出版社" || s.name == "中华书局";
        const std::string way = rng.pick(orderWays);
        const std::string who = rng.pick(operators);
        const int titles = rng.range(4, 22);
        for (int t = 0; t < titles; ++t) {
            Order o;
            o.id = int(orders.size()) + 1;
            if (!own && rng.chance(6)) {
                o.book = holdings[size_t(rng.range(0, int(holdings.size()) - 1))];
            } else {
                o.book = maker.make(day.y - 1, day.y, own, literary);
            }
            if (o.id % 397 == 0) o.book = maker.quoted(size_t(o.id / 397));
            o.bookfrom = s.name;
            o.cgff = way;
            o.cgname = who;
            o.yddate = day;
            o.bookcount = rng.range(0, 99) < 55 ? 1 : rng.range(2, rng.chance(10) ? 30 : 5);
            if (rng.chance(55))
                o.zdcode = std::to_string(day.y % 100 + 100).substr(1) + "-" + digits(rng, 4);
            o.noClass = rng.chance(4);
            if (rng.chance(3)) o.book.author.clear();
            if (rng.chance(2)) o.book.isbn.clear();
            orders.push_back(std::move(o));
        }
    }

    // Deliveries: orders older than about two months came in, mostly in one
    // delivery per round, some split in two; a few titles never arrived.
    struct Voucher {
        Date date;
        std::vector<size_t> rows;
    };
    std::vector<Voucher> vouchers;
    size_t begin = 0;
    while (begin < orders.size()) {
        size_t end = begin;
        while (end < orders.size() &&
               ordinal(orders[end].yddate) == ordinal(orders[begin].yddate) &&
               orders[end].bookfrom == orders[begin].bookfrom)
            ++end;
        const Date arrival = addDays(orders[begin].yddate, rng.range(20, 150));
        if (ordinal(addDays(arrival, 20)) < ordinal(today)) {
            Voucher first{arrival, {}}, second{addDays(arrival, rng.range(10, 40)), {}};
            const bool split = rng.chance(15);
            for (size_t i = begin; i < end; ++i) {
                if (rng.chance(5)) continue;
                (split && rng.chance(40) ? second : first).rows.push_back(i);
            }
            if (!first.rows.empty()) vouchers.push_back(std::move(first));
            if (!second.rows.empty() && ordinal(second.date) < ordinal(today))
                vouchers.push_back(std::move(second));
        }
        begin = end;
    }
    std::stable_sort(vouchers.begin(), vouchers.end(), [](const Voucher& a, const Voucher& b) {
        return ordinal(a.date) < ordinal(b.date);
    });

    std::vector<size_t> shortRows;
    int batchNo = 0;
    for (const Voucher& v : vouchers) {
        const std::string batch = std::to_string(++batchNo);
        const int kind = rng.range(0, 99);
        std::string fp, sj;
        if (kind < 75 || kind >= 95) fp = digits(rng, 8);
        if (kind >= 75) sj = std::to_string(v.date.y) + "-" + digits(rng, 4);
        const std::string who = rng.pick(operators);
        double total = 0;
        for (size_t i : v.rows) {
            Order& o = orders[i];
            o.status = 1;
            o.batch = batch;
            o.ysname = who;
            o.ysdate = v.date;
            o.fpcode = fp;
            o.sjcode = sj;
            o.ysprice =
                rng.chance(90) ? o.book.price : roundHalf(o.book.price + rng.range(-4, 8) * 0.5);
            if (o.ysprice <= 0) o.ysprice = o.book.price;
            o.yscount = o.bookcount;
            if (o.bookcount >= 2 && rng.chance(14)) {
                o.yscount = o.bookcount - rng.range(1, o.bookcount - 1);
                shortRows.push_back(i);
            }
            total += o.ysprice * o.yscount;
        }
        // Booksellers often bill at a discount on the list price.
        const double discount = rng.chance(35) ? 0.75 + rng.range(0, 20) * 0.01 : 1.0;
        for (size_t i : v.rows) orders[i].ysjine = roundCents(total * discount);
    }

    // Catalogued since: older deliveries are mostly in the holdings by now.
    for (Order& o : orders) {
        if (o.status != 1 || ordinal(o.ysdate) > ordinal(Date{2004, 1, 31}) || !rng.chance(55))
            continue;
        o.status = 2;
        if (holdings.size() < 10000 && !o.book.isbn.empty()) holdings.push_back(o.book);
    }
    while (holdings.size() < 10000) holdings.push_back(maker.make(1985, 2003));

    // Half of the short deliveries have been re-ordered: the old row is closed at what
    // came, a new open row asks for the rest.
    std::vector<Order> reorders;
    for (size_t i : shortRows) {
        Order& o = orders[i];
        if (o.status != 1 || !rng.chance(50)) continue;
        Order r;
        r.book = o.book;
        r.noClass = o.noClass;
        r.bookfrom = o.bookfrom;
        r.zdcode = o.zdcode;
        r.cgff = "补定";
        r.cgname = o.ysname;
        r.yddate = o.ysdate;
        r.bookcount = o.bookcount - o.yscount;
        o.bookcount = o.yscount;
        reorders.push_back(std::move(r));
    }
    for (Order& r : reorders) {
        r.id = int(orders.size()) + 1;
        orders.push_back(std::move(r));
    }

    for (const Order& o : orders) writeOrder(sink, o);
    figures.orders = int(orders.size());
    figures.nextCgkid = orders.back().id + 1;

    for (size_t i = 0; i < holdings.size(); ++i)
        writeHolding(sink, std::int64_t(i) + 1, holdings[i], rng.range(1, rng.chance(20) ? 10 : 3));
    figures.holdings = int(holdings.size());

    // Copy-cataloguing records: many for titles on order, some for titles held, the
    // rest for titles nobody has ordered yet.
    std::vector<size_t> open;
    for (size_t i = 0; i < orders.size(); ++i)
        if (orders[i].status == 0 && !orders[i].book.isbn.empty()) open.push_back(i);
    int copyId = 0;
    const size_t onOrder = std::min<size_t>(350, open.size());
    for (size_t k = 0; k < onOrder; ++k)
        writeCopyRecord(sink, ++copyId, orders[open[k * open.size() / onOrder]].book);
    for (size_t k = 0; k < 150; ++k)
        writeCopyRecord(sink, ++copyId, holdings[(k * 61) % holdings.size()]);
    while (copyId < 1000) writeCopyRecord(sink, ++copyId, maker.make(2003, 2004));
    figures.copyRecords = copyId;
    return figures;
}

void writeExtraHoldings(RowSink& sink, std::int64_t firstId, std::int64_t count) {
    Rng rng(19491001 + std::uint64_t(firstId));
    // Load-test rows: a repeated ISBN now and then does no harm, and checking a
    // million of them would cost more memory than the rows themselves.
    BookMaker maker(rng, false);
    for (std::int64_t i = 0; i < count; ++i)
        writeHolding(sink, firstId + i, maker.make(1980, 2004), rng.range(1, 5));
}

} // namespace orvane::dbinit
