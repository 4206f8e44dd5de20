#include "cardcli.h"

#include "carddriver.h"
#include "cardgbk.h"
#include "platform/errors.h"
#include "platform/gbk.h"

#include <QFile>
#include <QFileDevice>
#include <QIODevice>

#include <algorithm>
#include <cstring>
#include <functional>
#include <thread>
#include <vector>

namespace card {

namespace {

constexpr qsizetype kReadChunk = 1 << 20;
constexpr qsizetype kWriteChunk = 1 << 20;

bool onlyLineBreaks(const char* data, qsizetype size) {
    for (qsizetype i = 0; i < size; ++i) {
        const char c = data[i];
        if (c != '\r' && c != '\n' && c != ' ' && c != '\t') return false;
    }
    return true;
}

// Buffers output for the device. A failed write (a full disk, a closed descriptor) is
// kept: nothing more is written, and the caller asks ok() and says so.
class Writer {
public:
    Writer(QIODevice& dev, bool gbkOutput) : m_dev(dev), m_gbk(gbkOutput) {}
    ~Writer() { flush(); }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;

    void write(const QString& text) {
        m_buf += m_gbk ? cardgbk::encode(text) : text.toUtf8();
        if (m_buf.size() >= kWriteChunk) flush();
    }
    void writeRaw(const char* s) { m_buf += s; }
    void writeBytes(const QByteArray& bytes) {
        m_buf += bytes;
        if (m_buf.size() >= kWriteChunk) flush();
    }
    void flush() {
        if (!m_buf.isEmpty() && !m_failed && m_dev.write(m_buf) != m_buf.size()) m_failed = true;
        m_buf.resize(0); // keeps its room
    }
    // Flushes through to the system: a file device keeps a buffer of its own (and the
    // C library one more), whose failure shows only here.
    bool sync() {
        flush();
        if (auto* file = qobject_cast<QFileDevice*>(&m_dev); file && !m_failed && !file->flush())
            m_failed = true;
        return !m_failed;
    }
    bool ok() const { return !m_failed; }
    QString errorString() const { return m_dev.errorString(); }

private:
    QIODevice& m_dev;
    bool m_gbk;
    QByteArray m_buf;
    bool m_failed = false;
};

// A layout's text for the output: its CR LF become plain line ends, its last line is ended.
QByteArray encodeLines(const QString& text, bool gbkOutput) {
    QByteArray b = gbkOutput ? cardgbk::encode(text) : text.toUtf8();
    char* d = b.data();
    const qsizetype n = b.size();
    qsizetype w = 0, i = 0;
    while (i < n) {
        const void* cr = std::memchr(d + i, '\r', size_t(n - i));
        const qsizetype j = cr ? static_cast<const char*>(cr) - d : n;
        if (w != i) std::memmove(d + w, d + i, size_t(j - i));
        w += j - i;
        i = j;
        if (i < n) {
            if (i + 1 < n && d[i + 1] == '\n') {
                ++i; // the CR of a CR LF
            } else {
                d[w++] = d[i++]; // a lone CR stays
            }
        }
    }
    b.truncate(w);
    if (w == 0 || b.back() != '\n') b += '\n';
    return b;
}

// One record made ready for the output: its bytes, or the lines for standard error.
struct Rendered {
    bool ok = false;
    QByteArray out;
    QString err;
};

// `where` names the record in messages; it is made only when there is one to write.
template <class Where>
Rendered render(const QByteArray& raw, const CliOptions& options, Where&& where) {
    Rendered d;
    const RecordOutput r = formatRecord(raw, options.layout);
    for (const QString& m : r.messages) d.err += where() + m + u'\n';
    d.ok = r.ok;
    if (r.ok)
        d.out = encodeLines(r.text, options.gbkOutput);
    else
        d.err += where() + r.error + u'\n';
    return d;
}

// Records are formatted a batch at a time on every core, and written in their order.
constexpr size_t kBatch = 2048;

int workerCount() {
    const unsigned n = std::thread::hardware_concurrency();
    return int(std::clamp(n, 1u, 8u));
}

// Reads a device to its end, handing over each record as soon as it is complete.
// `stop`, when given, is asked before each chunk: reading goes no further once it says so.
bool splitDevice(QIODevice& dev, const RecordSplitter::RecordFn& onRecord,
                 const std::function<bool()>& stop = {}) {
    RecordSplitter splitter(onRecord);
    QByteArray chunk(kReadChunk, Qt::Uninitialized);
    for (;;) {
        if (stop && stop()) return true;
        const qint64 n = dev.read(chunk.data(), chunk.size());
        if (n < 0) return false;
        if (n == 0) break; // a blocking read gives nothing only at the end
        splitter.feed(chunk.constData(), n);
    }
    splitter.finish();
    return true;
}

QString stdinName() {
    return QStringLiteral("(标准输入)");
}

} // namespace

QString usageText() {
    return QStringLiteral(
        "用法: orvane-card [选项] [文件...]\n"
        "读取 ISO 2709 格式的 MARC 记录（GBK 编码，每条记录以字符 29 结束），\n"
        "按记录顺序输出，记录之间以换页符分隔。没有文件或文件为 \"-\" 时读标准输入。\n"
        "\n"
        "  --card     卡片式（默认）\n"
        "  --fields   字段式\n"
        "  --raw      标准式：记录原文\n"
        "  --view     在阅读窗口中打开第一条记录\n"
        "  --gbk      以 GBK 编码输出（默认 UTF-8）\n"
        "  -h, --help 显示本说明\n"
        "\n"
        "退出状态: 0 全部记录已输出；1 有记录无法读出；2 参数错误、文件无法读取\n"
        "或输出无法写出。\n");
}

std::optional<CliOptions> parseArguments(const QStringList& args, QString* error) {
    CliOptions o;
    bool layoutGiven = false;
    bool filesOnly = false;
    for (const QString& a : args) {
        if (filesOnly || a == QLatin1String("-") || !a.startsWith(u'-')) {
            o.files << a;
            continue;
        }
        auto setLayout = [&](Layout l) {
            if (layoutGiven && o.layout != l) {
                if (error) *error = QStringLiteral("--card、--fields 和 --raw 只能选一个");
                return false;
            }
            o.layout = l;
            layoutGiven = true;
            return true;
        };
        if (a == QLatin1String("--card")) {
            if (!setLayout(Layout::Card)) return std::nullopt;
        } else if (a == QLatin1String("--fields")) {
            if (!setLayout(Layout::Fields)) return std::nullopt;
        } else if (a == QLatin1String("--raw")) {
            if (!setLayout(Layout::Raw)) return std::nullopt;
        } else if (a == QLatin1String("--view")) {
            o.view = true;
        } else if (a == QLatin1String("--gbk")) {
            o.gbkOutput = true;
        } else if (a == QLatin1String("-h") || a == QLatin1String("--help")) {
            o.help = true;
        } else if (a == QLatin1String("--")) {
            filesOnly = true;
        } else {
            if (error) *error = QStringLiteral("未知选项: %1").arg(a);
            return std::nullopt;
        }
    }
    if (o.view && layoutGiven) {
        if (error) *error = QStringLiteral("--view 不能与 --card、--fields、--raw 同用");
        return std::nullopt;
    }
    return o;
}

void RecordSplitter::emitRecord(const char* data, qsizetype size) {
    while (size > 0 && (*data == '\r' || *data == '\n')) {
        ++data;
        --size;
    }
    if (size > 0) m_onRecord(QByteArray::fromRawData(data, size));
}

void RecordSplitter::feed(const char* data, qsizetype size) {
    qsizetype start = 0;
    while (start < size) {
        const void* hit = std::memchr(data + start, 29, size_t(size - start));
        if (!hit) {
            m_pending.append(data + start, size - start);
            return;
        }
        const qsizetype end = static_cast<const char*>(hit) - data + 1;
        if (m_pending.isEmpty()) {
            emitRecord(data + start, end - start);
        } else {
            m_pending.append(data + start, end - start);
            emitRecord(m_pending.constData(), m_pending.size());
            m_pending.clear();
        }
        start = end;
    }
}

void RecordSplitter::finish() {
    if (!onlyLineBreaks(m_pending.constData(), m_pending.size()))
        emitRecord(m_pending.constData(), m_pending.size());
    m_pending.clear();
}

MarcText recordText(const QByteArray& raw) {
    bool exact = false;
    std::vector<int32_t> charAt;
    QString text = cardgbk::decode(raw.constData(), raw.size(), &exact, &charAt);
    // Usually the bytes are the text's own GBK form, and the fields are cut out of this
    // decoding. Where they are not (a bad byte pair reads back as "?"), the cuts are made
    // on what the text encodes to.
    if (exact) return MarcText(std::move(text), raw, std::move(charAt));
    QByteArray bytes = cardgbk::encode(text);
    return MarcText(std::move(text), std::move(bytes));
}

RecordOutput formatRecord(const QByteArray& raw, Layout layout) {
    RecordOutput r;
    const MarcText marc = recordText(raw);
    auto message = [&r](const QString& m) { r.messages << m; };
    try {
        std::optional<QString> text;
        switch (layout) {
        case Layout::Raw:
            text = marc.text();
            break;
        case Layout::Fields:
            text = showZiduan(marc, message);
            break;
        case Layout::Card:
            text = showKapian(marc, message);
            break;
        }
        if (text) {
            r.ok = true;
            r.text = *std::move(text);
        } else {
            // The directory check refused the record; its message is the reason.
            r.error = r.messages.isEmpty() ? directoryErrorText() : r.messages.takeLast();
        }
    } catch (const vb::VbError& e) {
        r.error = QStringLiteral("实时错误 '%1': %2").arg(e.number()).arg(e.description());
    }
    return r;
}

int runCardTool(const CliOptions& options, QIODevice& standardInput, QIODevice& out,
                QIODevice& err) {
    Writer w(out, options.gbkOutput);
    Writer e(err, options.gbkOutput);
    int status = 0;
    bool first = true;
    // Output that cannot be written ends the run: the records after it would be lost too.
    auto outputLost = [&] {
        e.write(QStringLiteral("orvane-card: 无法写出结果: %1\n").arg(w.errorString()));
        e.flush();
        return 2;
    };
    const QStringList files =
        options.files.isEmpty() ? QStringList{QStringLiteral("-")} : options.files;
    for (const QString& file : files) {
        if (!w.ok()) break;
        QFile f(file);
        QIODevice* dev = &standardInput;
        QString name = stdinName();
        if (file != QLatin1String("-")) {
            name = file;
            if (!f.open(QIODevice::ReadOnly)) {
                e.write(
                    QStringLiteral("orvane-card: 无法打开 %1: %2\n").arg(file, f.errorString()));
                status = 2;
                continue;
            }
            dev = &f;
        }
        int number = 0;
        // The records of a batch are copied into one buffer, one after another.
        QByteArray batchBytes;
        std::vector<std::pair<qsizetype, qsizetype>> batch; // offset and size in batchBytes
        std::vector<Rendered> done;
        auto flushBatch = [&] {
            const int firstNumber = number - int(batch.size()) + 1;
            done.assign(batch.size(), Rendered());
            auto work = [&](size_t from, size_t to) {
                for (size_t i = from; i < to; ++i) {
                    const QByteArray raw = QByteArray::fromRawData(
                        batchBytes.constData() + batch[i].first, batch[i].second);
                    done[i] = render(raw, options, [&] {
                        return QStringLiteral("orvane-card: %1: 第%2条记录: ")
                            .arg(name)
                            .arg(firstNumber + int(i));
                    });
                }
            };
            const size_t workers = std::min<size_t>(size_t(workerCount()), batch.size());
            std::vector<std::thread> threads;
            const size_t per = (batch.size() + workers - 1) / std::max<size_t>(workers, 1);
            for (size_t t = 1; t < workers; ++t)
                threads.emplace_back(work, t * per, std::min(batch.size(), (t + 1) * per));
            work(0, std::min(batch.size(), per));
            for (std::thread& t : threads) t.join();
            for (const Rendered& d : done) {
                if (!d.err.isEmpty()) e.write(d.err);
                if (!d.ok) {
                    if (status == 0) status = 1;
                    continue;
                }
                if (!first) w.writeRaw("\f\n");
                first = false;
                w.writeBytes(d.out);
            }
            w.flush();
            e.flush();
            batch.clear();
            batchBytes.resize(0); // keeps its room for the next batch
        };
        const bool read = splitDevice(
            *dev,
            [&](const QByteArray& raw) {
                if (!w.ok()) return;
                ++number;
                batch.emplace_back(batchBytes.size(), raw.size());
                batchBytes.append(raw);
                if (batch.size() == kBatch) flushBatch();
            },
            [&] { return !w.ok(); });
        if (!batch.empty()) flushBatch();
        if (!read) {
            e.write(
                QStringLiteral("orvane-card: 读取 %1 出错: %2\n").arg(name, dev->errorString()));
            status = 2;
        }
    }
    if (!w.sync()) return outputLost();
    return status;
}

std::optional<QByteArray> firstRecord(const CliOptions& options, QIODevice& standardInput,
                                      QString* error) {
    const QString file = options.files.isEmpty() ? QStringLiteral("-") : options.files.first();
    QFile f(file);
    QIODevice* dev = &standardInput;
    if (file != QLatin1String("-")) {
        if (!f.open(QIODevice::ReadOnly)) {
            if (error) *error = QStringLiteral("无法打开 %1: %2").arg(file, f.errorString());
            return std::nullopt;
        }
        dev = &f;
    }
    // Reads to the end; one record is all the viewer needs, but a stream cannot be cut
    // short politely, and a record file is not large.
    std::optional<QByteArray> first;
    const bool read = splitDevice(*dev, [&](const QByteArray& raw) {
        if (!first) first = QByteArray(raw.constData(), raw.size());
    });
    if (!read) {
        if (error) *error = QStringLiteral("读取 %1 出错: %2").arg(file, dev->errorString());
        return std::nullopt;
    }
    if (!first && error)
        *error =
            QStringLiteral("%1 中没有记录").arg(file == QLatin1String("-") ? stdinName() : file);
    return first;
}

} // namespace card
