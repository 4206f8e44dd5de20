// orvane-dbinit: creates the acquisitions database as a SQLite file, or prints the
// same schema and rows as a SQL Server script.

#include "dbinit.h"

#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <random>
#include <string>
#include <string_view>
#include <system_error>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace {

// A load test of ten million holdings is far beyond any library's catalogue; a count
// above it is a typing error that would fill the disk.
constexpr std::int64_t maxExtraRows = 10'000'000;

constexpr const char* usage =
    "用法: orvane-dbinit [--demo] [--zsk-rows N] PATH\n"
    "      orvane-dbinit --mssql [--demo] [PATH]\n"
    "\n"
    "  PATH           新建的 SQLite 数据库文件 (不得已存在)\n"
    "  --demo         加入演示数据 (订单、馆藏、套录数据、供应商)\n"
    "  --zsk-rows N   另加 N 条馆藏 (ZSK) 记录, 供性能测试 (N 最多 10000000)\n"
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

// Standard output, checked: a full disk or a closed descriptor must not pass for
// success. The first failure is kept with its reason.
class Output {
public:
    void write(std::string_view text) {
        if (failed_ || text.empty()) return;
        if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) fail();
    }
    // Flushes; 0, or 1 with a message naming what could not be written.
    int finish(const std::string& what) {
        if (!failed_ && std::fflush(stdout) != 0) fail();
        if (!failed_) return 0;
        return failed("无法写出" + what + ": " + std::strerror(errno_));
    }

private:
    void fail() {
        failed_ = true;
        errno_ = errno;
    }
    bool failed_ = false;
    int errno_ = 0;
};

// The temporary file under construction, removed when the tool is interrupted. Written
// before the handler may read it; the handler reads only these plain buffers.
char tempPath[4096];
char tempJournal[4096 + 16];
volatile std::sig_atomic_t haveTemp = 0;

void removeNow(const char* path) {
#ifdef _WIN32
    _unlink(path);
#else
    unlink(path); // async-signal-safe, unlike std::remove
#endif
}

extern "C" void onInterrupt(int sig) {
    if (haveTemp) {
        removeNow(tempPath);
        removeNow(tempJournal);
    }
    std::signal(sig, SIG_DFL);
    std::raise(sig);
}

void setTempFile(const std::string& path) {
    haveTemp = 0;
    if (path.empty() || path.size() >= sizeof tempPath) return;
    std::memcpy(tempPath, path.c_str(), path.size() + 1);
    const std::string journal = path + "-journal";
    std::memcpy(tempJournal, journal.c_str(), journal.size() + 1);
    haveTemp = 1;
}

std::filesystem::path toPath(const std::string& utf8) {
    return std::filesystem::path(std::u8string(utf8.begin(), utf8.end()));
}

std::string u8(const std::filesystem::path& p) {
    const auto s = p.u8string();
    return std::string(s.begin(), s.end());
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
    setTempFile(u8(temp));
    auto drop = [&] {
        fs::remove(temp, ec);
        setTempFile({});
    };
    std::FILE* out = std::fopen(u8(temp).c_str(), "wb");
    if (!out) {
        const int why = errno;
        setTempFile({});
        return failed("无法写入文件: " + path + ": " + std::strerror(why));
    }
    bool ok = std::fwrite(script.data(), 1, script.size(), out) == script.size();
    int why = ok ? 0 : errno;
    if (std::fclose(out) != 0 && ok) {
        ok = false;
        why = errno;
    }
    if (!ok) {
        drop();
        return failed("无法写入文件: " + path + ": " + std::strerror(why));
    }
    if (fs::exists(fs::symlink_status(target, ec))) {
        drop();
        return failed("文件已存在: " + path);
    }
    fs::rename(temp, target, ec);
    if (ec) {
        const std::string reason = ec.message();
        drop();
        return failed("无法写入文件: " + path + ": " + reason);
    }
    setTempFile({});
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    std::signal(SIGINT, onInterrupt);
    std::signal(SIGTERM, onInterrupt);

    bool demo = false, mssql = false, haveRows = false;
    std::int64_t extraRows = 0;
    std::string path;
    Output out;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--help" || arg == "-h") {
            out.write(usage);
            return out.finish("用法说明");
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
            const bool digits = !value.empty() && ptr == end;
            if (digits && (ec == std::errc::result_out_of_range ||
                           (ec == std::errc() && extraRows > maxExtraRows)))
                return refuse("--zsk-rows 最多 " + std::to_string(maxExtraRows) + " 行: " + value,
                              true);
            if (!digits || ec != std::errc() || extraRows < 0)
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
            out.write(script);
            return out.finish("SQL Server 脚本");
        }
        const int rc = writeScript(path, script);
        if (rc != 0) return rc;
        out.write("已写出 SQL Server 脚本: " + path + "\n");
        return out.finish("结果信息");
    }

    if (path.empty()) return refuse("缺少数据库文件路径", true);
    orvane::dbinit::Options options;
    options.demo = demo;
    options.extraHoldings = extraRows;
    options.tempFile = setTempFile;
    orvane::dbinit::DemoFigures figures;
    std::string error;
    if (!orvane::dbinit::createDatabase(path, options, &error, &figures)) return failed(error);

    std::string report = "已创建数据库: " + path + "\n";
    if (demo)
        report += "演示数据: 订单 " + std::to_string(figures.orders) + " 条, 馆藏 " +
                  std::to_string(figures.holdings) + " 条, 套录数据 " +
                  std::to_string(figures.copyRecords) + " 条, 供应商 " +
                  std::to_string(figures.suppliers) + " 家\n";
    if (extraRows > 0) report += "另加馆藏: " + std::to_string(extraRows) + " 条\n";
    report += "用户 (用户名 / 口令):\n";
    for (const auto& u : orvane::dbinit::users()) {
        report += "  ";
        report += u.name;
        report += " / ";
        report += u.password;
        report += u.right ? "  (有采购子系统权限)\n" : "  (无采购子系统权限)\n";
    }
    out.write(report);
    return out.finish("结果信息");
}
