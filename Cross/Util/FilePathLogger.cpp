#include "Cross/Util/FilePathLogger.h"

#include "Cross/Util/LogFile.h"
#include "Cross/engine/core/Text.h"
#include "Cross/engine/core/Utf.h"
#include "Cross/engine/platform/RecursiveMutex.h"
#include "Cross/engine/platform/Time.h"

#include <string>
#include <vector>

namespace {

char const * textOf(char const * text) { return text ? text : ""; }

struct Log {
    std::string secondFilter; // empty: any
    std::string firstFilter;
    bool showFirst;
    std::shared_ptr<LogFile> log;

    bool Takes(char const * first, char const * second) const {
        return passes(secondFilter, second) && passes(firstFilter, first);
    }

private:
    static bool passes(std::string const & filter, char const * text) {
        return filter.empty() || text::EqualNoCase(filter.c_str(), text);
    }
};

class Guard {
public:
    explicit Guard(Plat::RecursiveMutex & mutex) : mutex(mutex) { mutex.Enter(); }

    Guard(Guard const &) = delete;
    Guard & operator=(Guard const &) = delete;

    ~Guard() { mutex.Leave(); }

private:
    Plat::RecursiveMutex & mutex;
};

// Of the present moment, to hundredths of a second.
std::string timeStamp() {
    Plat::Time::SystemTime now;
    unsigned int milliseconds;
    Plat::Time::TimeNow(now, milliseconds);
    std::string stamp;
    text::Printf(stamp, "%02d:%02d:%02d.%02u", now.hour, now.minute, now.second, milliseconds / 10);
    return stamp;
}

} // namespace

struct FilePathLogger::Body {
    std::vector<Log> logs;
    Plat::RecursiveMutex mutex; // guards the logs and all writing
};

FilePathLogger::FilePathLogger() : body(std::make_unique<Body>()) {}

FilePathLogger::~FilePathLogger() = default;

void FilePathLogger::LogFiles(char const * first, char const * second, char const * fileName,
                              bool showFirst) {
    Guard const guard(body->mutex);
    auto const log = std::make_shared<LogFile>();
    log->CreateWithName(fileName, true, false);
    body->logs.push_back({textOf(second), textOf(first), showFirst, log});
}

void FilePathLogger::AddComment(char const * text) {
    Guard const guard(body->mutex);
    for (Log const & each : body->logs)
        each.log->printf("// %s", textOf(text));
}

void FilePathLogger::OnFileOpen(char16_t const * path, char const * first, char const * second) {
    Guard const guard(body->mutex);
    std::string const stamp = timeStamp();
    std::string const narrowPath = path ? utf::ToUtf8(path) : "";
    for (Log const & each : body->logs) {
        if (!each.Takes(textOf(first), textOf(second)))
            continue;
        if (each.showFirst)
            each.log->printf("%s   %s:%s", stamp.c_str(), textOf(first), narrowPath.c_str());
        else
            each.log->printf("%s   %s", stamp.c_str(), narrowPath.c_str());
    }
}
