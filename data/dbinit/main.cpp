// orvane-dbinit: creates the acquisitions database as a SQLite file, or prints the
// same schema and rows as a SQL Server script.

#include "dbinit.h"

#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <string>
#include <system_error>

namespace {

constexpr const char* usage =
    "用法: orvane-dbinit [--demo] [--zsk-rows N] PATH\n"
    "      orvane-dbinit --mssql [--demo] [PATH]\n"
    "\n"
    "  PATH           新建的 SQLite 数据库文件 (不得已存在)\n"
    "  --demo         加入演示数据 (订单、馆藏、套录数据、供应商)\n"
    "  --zsk-rows N   另加 N 条馆藏 (ZSK) 记录, 供性能测试\n"
    "  --mssql        输出 SQL Server 建表及初始数据脚本; 给出 PATH 时写入该文件\n"
    "  --help         显示本说明\n";

int refuse(const std::string& message, bool showUsage = false) {
    std::cerr << "orvane-dbinit: " << message << "\n";
    if (showUsage) std::cerr << "请用 --help 查看用法。\n";
    return 2;
}

int failed(const std::string& message) {
    std::cerr << "orvane-dbinit: " << message << "\n";
    return 1;
}

std::filesystem::path toPath(const std::string& utf8) {
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

// Same rules as the database: never overwrite, write a temp file, rename at the end.
int writeScript(const std::string& path, const std::string& script) {
    namespace fs = std::filesystem;
    const fs::path target = toPath(path);
    std::error_code ec;
    if (fs::exists(fs::symlink_status(target, ec))) return failed("文件已存在: " + path);
    fs::path dir = target.parent_path();
    if (dir.empty()) dir = ".";
    if (!fs::is_directory(dir, ec)) return failed("目录不存在: " + path);
    std::random_device rd;
    fs::path temp = target;
    std::string suffix = ".";
    suffix += std::to_string(rd() % 1000000);
    suffix += ".tmp";
    temp += suffix;
    {
        std::ofstream out(temp, std::ios::binary);
        if (!out) return failed("无法写入文件: " + path);
        out << script;
        out.close();
        if (!out) {
            fs::remove(temp, ec);
            return failed("无法写入文件: " + path);
        }
    }
    if (fs::exists(fs::symlink_status(target, ec))) {
        fs::remove(temp, ec);
        return failed("文件已存在: " + path);
    }
    fs::rename(temp, target, ec);
    if (ec) {
        fs::remove(temp, ec);
        return failed("无法写入文件: " + path);
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    bool demo = false, mssql = false, haveRows = false;
    std::int64_t extraRows = 0;
    std::string path;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--help" || arg == "-h") {
            std::cout << usage;
            return 0;
        } else if (arg == "--demo") {
            demo = true;
        } else if (arg == "--mssql") {
            mssql = true;
        } else if (arg == "--zsk-rows" || arg.starts_with("--zsk-rows=")) {
            std::string value;
            if (arg == "--zsk-rows") {
                if (i + 1 >= argc) return refuse("--zsk-rows 缺少行数", true);
                value = argv[++i];
            } else {
                value = arg.substr(std::string("--zsk-rows=").size());
            }
            const char* end = value.data() + value.size();
            auto [ptr, ec] = std::from_chars(value.data(), end, extraRows);
            if (value.empty() || ec != std::errc() || ptr != end || extraRows < 0)
                return refuse("--zsk-rows 需要一个非负整数: " + value, true);
            haveRows = true;
        } else if (arg.starts_with("-") && arg != "-") {
            return refuse("未知选项: " + arg, true);
        } else if (path.empty()) {
            path = arg;
        } else {
            return refuse("多余的参数: " + arg, true);
        }
    }

    if (mssql) {
        if (haveRows) return refuse("--zsk-rows 只用于 SQLite 数据库", true);
        const std::string script = orvane::dbinit::mssqlScript(demo);
        if (path.empty()) {
            std::cout << script;
            std::cout.flush();
            return std::cout ? 0 : 1;
        }
        const int rc = writeScript(path, script);
        if (rc == 0) std::cout << "已写出 SQL Server 脚本: " << path << "\n";
        return rc;
    }

    if (path.empty()) return refuse("缺少数据库文件路径", true);
    orvane::dbinit::Options options;
    options.demo = demo;
    options.extraHoldings = extraRows;
    orvane::dbinit::DemoFigures figures;
    std::string error;
    if (!orvane::dbinit::createDatabase(path, options, &error, &figures)) return failed(error);

    std::cout << "已创建数据库: " << path << "\n";
    if (demo)
        std::cout << "演示数据: 订单 " << figures.orders << " 条, 馆藏 " << figures.holdings
                  << " 条, 套录数据 " << figures.copyRecords << " 条, 供应商 " << figures.suppliers
                  << " 家\n";
    if (extraRows > 0) std::cout << "另加馆藏: " << extraRows << " 条\n";
    std::cout << "用户 (用户名 / 口令):\n";
    for (const auto& u : orvane::dbinit::users())
        std::cout << "  " << u.name << " / " << u.password
                  << (u.right ? "  (有采购子系统权限)\n" : "  (无采购子系统权限)\n");
    return 0;
}
