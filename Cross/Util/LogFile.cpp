#include "Cross/Util/LogFile.h"

#include "Cross/engine/core/Text.h"
#include "Cross/engine/diagnostics/CrashFiles.h"
#include "Cross/engine/filesystem/FilePath.h"
#include "Cross/engine/filesystem/PathText.h"
#include "Cross/engine/platform/File.h"
#include "Cross/engine/platform/Time.h"

namespace {

constexpr char const * c_alias = "log";
constexpr int c_maxNames = 10;

bool isEmpty(char const * text) { return !text || text[0] == '\0'; }

// The base name itself for 0, otherwise the base name with the number in front of its extension.
std::string numberedName(char const * baseName, int number) {
    if (number == 0)
        return baseName;
    char alias[c_maxPath], directory[c_maxPath], name[c_maxPath], extension[c_maxPath];
    fs::SplitPath(baseName, alias, directory, name, extension);
    std::string numbered;
    text::Printf(numbered, "%s%s%s.%d%s", alias, directory, name, number, extension);
    return numbered;
}

// Fills in what a log's name leaves out. False when the path does not fit: a cut one would be another file.
bool completePath(char (&path)[c_maxPath], char const * filename) {
    if (!text::CopyCut(path, sizeof(path), filename))
        return false;
    char part[c_maxPath];
    if (!fs::RetrieveAlias(path, part) && !fs::SetAlias(path, c_alias))
        return false;
    return fs::RetrieveExtension(path, part) || fs::SetExtension(path, "txt");
}

// Handle of the file in the crash report; -1 when its path has no real form.
int addCrashFile(char const (&path)[c_maxPath]) {
    char realPath[c_maxPath];
    text::CopyCut(realPath, sizeof(realPath), path);
    return FilePath::ConvertFromAlias(realPath, c_streamWrite, nullptr) ? dbCrashAddCrashFile(realPath, false)
                                                                        : -1;
}

} // namespace

LogFile::LogFile() = default;

LogFile::LogFile(LogFile const & source) = default;

LogFile & LogFile::operator=(LogFile const & source) {
    if (this == &source)
        return *this;
    Close();
    stream = source.stream;
    scratch = source.scratch;
    crashFile = source.crashFile;
    keepCrashFile = source.keepCrashFile;
    appendLineEnd = source.appendLineEnd;
    return *this;
}

LogFile::~LogFile() { Close(); }

bool LogFile::Create(char const * name, char const * extension, bool lineEnd, bool keep) {
    if (isEmpty(name) || !extension)
        return false;
    Close();
    char baseName[c_maxPath];
    MakeFilename(baseName, name, extension);
    if (isEmpty(baseName))
        return false;
    for (int i = 0; i < c_maxNames; ++i) {
        std::string const filename = numberedName(baseName, i);
        if (FilePath::GetFileType(filename.c_str()) == FilePath::FT_NONE &&
            CreateWithName(filename.c_str(), lineEnd, keep))
            return true;
    }
    return false;
}

bool LogFile::CreateWithName(char const * filename, bool lineEnd, bool keep) {
    if (isEmpty(filename))
        return false;
    Close();
    char path[c_maxPath];
    if (!completePath(path, filename))
        return false;
    ByteStreamProxy const opened = FilePath::OpenStream(path, c_streamWrite);
    if (!opened)
        return false;
    crashFile = addCrashFile(path);
    stream = opened;
    appendLineEnd = lineEnd;
    keepCrashFile = keep;
    return true;
}

void LogFile::Close() {
    if (stream) {
        if (!keepCrashFile && crashFile != -1)
            dbCrashRemoveCrashFile(crashFile);
        stream = ByteStreamProxy();
    }
    crashFile = -1;
    appendLineEnd = true;
    keepCrashFile = false;
}

bool LogFile::IsOpened() const { return static_cast<bool>(stream); }

void LogFile::printf(char const * format, ...) {
    if (!stream)
        return;
    std::va_list arguments;
    va_start(arguments, format);
    // The buffer keeps the size of the longest line so far, so most lines fit at once.
    std::size_t const length = text::VPrintfCut(scratch.data(), scratch.size() + 1, format, arguments);
    if (length > scratch.size()) {
        scratch.resize(length);
        text::VPrintfCut(scratch.data(), length + 1, format, arguments);
    }
    va_end(arguments);
    WriteString(scratch.c_str());
}

void LogFile::puts(char const * text) { WriteString(text); }

void LogFile::WriteString(char const * text) {
    if (!stream)
        return;
    BSWriteText(*stream, text, appendLineEnd);
    stream->Flush();
}

void LogFile::MakeFilename(char * filename, char const * name, char const * extension) {
    Plat::Time::SystemTime start;
    Plat::Time::TimeStart(start);
    std::string stamped;
    text::Printf(stamped, "%s.%04d-%02d-%02d.%02d-%02d-%02d", name ? name : "", start.year, start.month,
                 start.day, start.hour, start.minute, start.second);
    text::ToLower(stamped.data());
    char path[c_maxPath];
    fs::MakePath(path, c_alias, "", Plat::File::ConvertToFilename(stamped.c_str()).c_str(), extension);
    text::CopyCut(filename, c_maxPath, path);
}

void LogFile::MakeFilename(char * filename) { MakeFilename(filename, filename, ".txt"); }
