#include "seed.h"

#include <array>

namespace orvane::dbinit {

namespace {

// Publisher prefixes of group 7 that were in use when the system went into service.
// Only well-known assignments: formatIsbn relies on them to split a bare number, so a
// wrong entry here would hyphenate real ISBNs wrongly.
constexpr std::array publisherList{
    Publisher{"7-01", "北京", "人民出版社"},
    Publisher{"7-02", "北京", "人民文学出版社"},
    Publisher{"7-03", "北京", "科学出版社"},
    Publisher{"7-04", "北京", "高等教育出版社"},
    Publisher{"7-100", "北京", "商务印书馆"},
    Publisher{"7-101", "北京", "中华书局"},
    Publisher{"7-102", "北京", "人民美术出版社"},
    Publisher{"7-103", "北京", "人民音乐出版社"},
    Publisher{"7-107", "北京", "人民教育出版社"},
    Publisher{"7-108", "北京", "生活·读书·新知三联书店"},
    Publisher{"7-111", "北京", "机械工业出版社"},
    Publisher{"7-112", "北京", "中国建筑工业出版社"},
    Publisher{"7-113", "北京", "中国铁道出版社"},
    Publisher{"7-114", "北京", "人民交通出版社"},
    Publisher{"7-115", "北京", "人民邮电出版社"},
    Publisher{"7-116", "北京", "地质出版社"},
    Publisher{"7-117", "北京", "人民卫生出版社"},
    Publisher{"7-118", "北京", "国防工业出版社"},
    Publisher{"7-119", "北京", "外文出版社"},
    Publisher{"7-121", "北京", "电子工业出版社"},
    Publisher{"7-122", "北京", "化学工业出版社"},
    Publisher{"7-200", "北京", "北京出版社"},
    Publisher{"7-208", "上海", "上海人民出版社"},
    Publisher{"7-218", "广州", "广东人民出版社"},
    Publisher{"7-220", "成都", "四川人民出版社"},
    Publisher{"7-300", "北京", "中国人民大学出版社"},
    Publisher{"7-301", "北京", "北京大学出版社"},
    Publisher{"7-302", "北京", "清华大学出版社"},
    Publisher{"7-303", "北京", "北京师范大学出版社"},
    Publisher{"7-305", "南京", "南京大学出版社"},
    Publisher{"7-306", "广州", "中山大学出版社"},
    Publisher{"7-307", "武汉", "武汉大学出版社"},
    Publisher{"7-308", "杭州", "浙江大学出版社"},
    Publisher{"7-309", "上海", "复旦大学出版社"},
    Publisher{"7-313", "上海", "上海交通大学出版社"},
    Publisher{"7-5000", "北京", "中国大百科全书出版社"},
    Publisher{"7-5001", "北京", "中国对外翻译出版公司"},
    Publisher{"7-5004", "北京", "中国社会科学出版社"},
    Publisher{"7-5006", "北京", "中国青年出版社"},
    Publisher{"7-5009", "北京", "人民体育出版社"},
    Publisher{"7-5012", "北京", "世界知识出版社"},
    Publisher{"7-5019", "北京", "中国轻工业出版社"},
    Publisher{"7-5023", "北京", "科学技术文献出版社"},
    Publisher{"7-5024", "北京", "冶金工业出版社"},
    Publisher{"7-5025", "北京", "化学工业出版社"},
    Publisher{"7-5029", "北京", "气象出版社"},
    Publisher{"7-5063", "北京", "作家出版社"},
    Publisher{"7-5080", "北京", "华夏出版社"},
    Publisher{"7-5083", "北京", "中国电力出版社"},
    Publisher{"7-5084", "北京", "中国水利水电出版社"},
    Publisher{"7-5086", "北京", "中信出版社"},
    Publisher{"7-5320", "上海", "上海教育出版社"},
    Publisher{"7-5321", "上海", "上海文艺出版社"},
    Publisher{"7-5322", "上海", "上海人民美术出版社"},
    Publisher{"7-5323", "上海", "上海科学技术出版社"},
    Publisher{"7-5325", "上海", "上海古籍出版社"},
    Publisher{"7-5326", "上海", "上海辞书出版社"},
    Publisher{"7-5327", "上海", "上海译文出版社"},
    Publisher{"7-5339", "杭州", "浙江文艺出版社"},
    Publisher{"7-5354", "武汉", "长江文艺出版社"},
    Publisher{"7-5357", "长沙", "湖南科学技术出版社"},
    Publisher{"7-5360", "广州", "花城出版社"},
    Publisher{"7-5399", "南京", "江苏文艺出版社"},
    Publisher{"7-5404", "长沙", "湖南文艺出版社"},
    Publisher{"7-5436", "青岛", "青岛出版社"},
    Publisher{"7-5442", "海口", "南海出版公司"},
    Publisher{"7-5447", "南京", "译林出版社"},
    Publisher{"7-5600", "北京", "外语教学与研究出版社"},
    Publisher{"7-5601", "长春", "吉林大学出版社"},
    Publisher{"7-5602", "长春", "东北师范大学出版社"},
    Publisher{"7-5603", "哈尔滨", "哈尔滨工业大学出版社"},
    Publisher{"7-5605", "西安", "西安交通大学出版社"},
    Publisher{"7-5606", "西安", "西安电子科技大学出版社"},
    Publisher{"7-5608", "上海", "同济大学出版社"},
    Publisher{"7-5609", "武汉", "华中科技大学出版社"},
    Publisher{"7-5611", "大连", "大连理工大学出版社"},
    Publisher{"7-5612", "西安", "西北工业大学出版社"},
    Publisher{"7-5614", "成都", "四川大学出版社"},
    Publisher{"7-5615", "厦门", "厦门大学出版社"},
    Publisher{"7-5617", "上海", "华东师范大学出版社"},
    Publisher{"7-5618", "天津", "天津大学出版社"},
    Publisher{"7-5619", "北京", "北京语言大学出版社"},
    Publisher{"7-5620", "北京", "中国政法大学出版社"},
    Publisher{"7-5622", "武汉", "华中师范大学出版社"},
    Publisher{"7-5623", "广州", "华南理工大学出版社"},
    Publisher{"7-5624", "重庆", "重庆大学出版社"},
    Publisher{"7-5635", "北京", "北京邮电大学出版社"},
    Publisher{"7-5640", "北京", "北京理工大学出版社"},
    Publisher{"7-5641", "南京", "东南大学出版社"},
};

constexpr std::array userList{
    User{"admin", "admin", true},
    User{"guest", "guest", false},
};

struct DictEntry {
    std::string_view db, field, cn;
};

// The query builder decides a field's kind by these display names alone: the dates
// and the five numeric names must stay exactly as they are.
constexpr std::array dictionary{
    DictEntry{"cgk", "bookname", "书名"},       DictEntry{"cgk", "author", "著者"},
    DictEntry{"cgk", "publisher", "出版者"},    DictEntry{"cgk", "pubplace", "出版地"},
    DictEntry{"cgk", "pubdate", "出版日期"},    DictEntry{"cgk", "isbn", "ISBN"},
    DictEntry{"cgk", "zdcode", "征订号"},       DictEntry{"cgk", "edition", "版本版次"},
    DictEntry{"cgk", "pages", "页码"},          DictEntry{"cgk", "measure", "开本"},
    DictEntry{"cgk", "classcode", "预分类"},    DictEntry{"cgk", "docclass", "文献类型"},
    DictEntry{"cgk", "lagclass", "语种"},       DictEntry{"cgk", "bookfrom", "采购来源"},
    DictEntry{"cgk", "price", "预定价格"},      DictEntry{"cgk", "cgff", "采购方式"},
    DictEntry{"cgk", "yddate", "预定日期"},     DictEntry{"cgk", "bookcount", "预定册数"},
    DictEntry{"cgk", "cgname", "采购员"},       DictEntry{"cgk", "status", "状态"},
    DictEntry{"cgk", "cgkid", "采购编号"},      DictEntry{"cgkys", "batch", "批号"},
    DictEntry{"cgkys", "ysdate", "验收日期"},   DictEntry{"cgkys", "yscount", "验收册数"},
    DictEntry{"cgkys", "ysprice", "验收价格"},  DictEntry{"cgkys", "ysjine", "金额"},
    DictEntry{"cgkys", "fpcode", "发票号"},     DictEntry{"cgkys", "sjcode", "收据号"},
    DictEntry{"cgkys", "ysname", "验收员"},     DictEntry{"cggys", "publisher", "单位名称"},
    DictEntry{"cggys", "pubplace", "所在城市"}, DictEntry{"cggys", "address", "通讯地址"},
    DictEntry{"cggys", "zipcode", "邮政编码"},  DictEntry{"cggys", "tel", "联系电话"},
    DictEntry{"cggys", "fax", "传真"},          DictEntry{"cggys", "email", "电子邮件"},
    DictEntry{"cggys", "web", "网址"},          DictEntry{"cggys", "pubclass", "类型"},
};

struct ClassEntry {
    std::string_view letter, name;
};

// Main classes of the Chinese Library Classification; the statistics look up the
// first letter of a class number here, and "其它" for orders without one.
constexpr std::array classes{
    ClassEntry{"A", "马克思主义、列宁主义、毛泽东思想、邓小平理论"},
    ClassEntry{"B", "哲学、宗教"},
    ClassEntry{"C", "社会科学总论"},
    ClassEntry{"D", "政治、法律"},
    ClassEntry{"E", "军事"},
    ClassEntry{"F", "经济"},
    ClassEntry{"G", "文化、科学、教育、体育"},
    ClassEntry{"H", "语言、文字"},
    ClassEntry{"I", "文学"},
    ClassEntry{"J", "艺术"},
    ClassEntry{"K", "历史、地理"},
    ClassEntry{"N", "自然科学总论"},
    ClassEntry{"O", "数理科学和化学"},
    ClassEntry{"P", "天文学、地球科学"},
    ClassEntry{"Q", "生物科学"},
    ClassEntry{"R", "医药、卫生"},
    ClassEntry{"S", "农业科学"},
    ClassEntry{"T", "工业技术"},
    ClassEntry{"U", "交通运输"},
    ClassEntry{"V", "航空、航天"},
    ClassEntry{"X", "环境科学、安全科学"},
    ClassEntry{"Z", "综合性图书"},
    ClassEntry{"其它", "其它"},
};

constexpr std::array languages{"中文", "英文", "日文", "俄文", "德文", "法文", "韩文", "其它"};
constexpr std::array purchaseWays{"预订", "现购", "邮购", "赠送", "交换"};
constexpr std::array sizes{"16开",   "32开",   "大32开", "64开", "8开",
                           "大16开", "小16开", "24开",   "12开", "小32开"};
constexpr std::array docTypes{"普通图书", "古籍", "期刊合订本", "学位论文", "会议录",
                              "工具书",   "标准", "地图",       "乐谱",     "电子出版物"};

} // namespace

std::span<const Publisher> publishers() {
    return publisherList;
}
std::span<const User> users() {
    return userList;
}

void writeSeed(RowSink& sink) {
    for (const DictEntry& d : dictionary) {
        const Value row[] = {d.db, d.field, d.cn};
        sink.insert("FDict", "DbName,FieldName,CnName", row);
    }
    {
        const Value open[] = {0, "预定中"}, accepted[] = {1, "已验收"},
                    catalogued[] = {2, "已编目"};
        sink.insert("cgkStatus", "fieldsstatus,fieldsname", open);
        sink.insert("cgkStatus", "fieldsstatus,fieldsname", accepted);
        sink.insert("cgkStatus", "fieldsstatus,fieldsname", catalogued);
    }
    for (const ClassEntry& c : classes) {
        const Value row[] = {c.letter, c.name};
        sink.insert("type", "type,name", row);
    }
    for (const char* l : languages) {
        const Value row[] = {"language", l};
        sink.insert("Global", "type,code", row);
    }
    for (const char* w : purchaseWays) {
        const Value row[] = {"cgkcgff", w};
        sink.insert("Global", "type,code", row);
    }
    for (const char* s : sizes) {
        const Value row[] = {s};
        sink.insert("cck", "measure", row);
    }
    for (const char* d : docTypes) {
        const Value row[] = {d};
        sink.insert("wxlx", "docclass", row);
    }
    int id = 0;
    for (const Publisher& p : publisherList) {
        const Value row[] = {++id, p.prefix, p.place, p.name};
        sink.insert("cbk", "cbkid,C_SBN,C_CBD,C_CBS", row);
    }
    id = 0;
    for (const User& u : userList) {
        const Value row[] = {++id, u.name, u.password, u.right ? 1 : 0};
        sink.insert("LibUse", "userid,username,password,cgk", row);
    }
}

void writeCgkidCounter(RowSink& sink, int nextCgkid) {
    const Value row[] = {"cgkid", std::to_string(nextCgkid)};
    sink.insert("Global", "type,code", row);
}

} // namespace orvane::dbinit
