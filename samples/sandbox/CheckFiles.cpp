#include "samples/sandbox/Checks.h"

#include "Cross/engine/filesystem/ByteStream.h"
#include "Cross/engine/filesystem/FilePath.h"
#include "samples/sandbox/Files.h"

namespace {

// A save that is given up half-way leaves the old file.
bool discardKeepsOld(char const * path) {
    ByteStreamProxy const stream = FilePath::OpenStream(path, c_streamWrite);
    if (!stream || !BSWriteText(*stream, "half of the new content", false))
        return false;
    stream->Discard();
    return true;
}

class ChangeCounter : public FilePath::IFileChangeNotify {
public:
    void OnFileChanged(char const * path) override {
        ++count;
        last = path;
    }

    unsigned int count = 0;
    std::string last;
};

} // namespace

void CheckFiles(Report & report) {
    report.Begin(Subsystem::Engine);
    char const * const path = "SCRATCH:notes/today.txt";

    report.Expect(WriteWholeFile(path, "first"), "a new file is written, with its folder");
    report.Expect(ReadWholeFile("scratch:NOTES\\Today.TXT") == "first",
                  "a name is found whatever its case and slashes");
    report.Evidence("names are found whatever their case");

    report.Expect(discardKeepsOld(path) && ReadWholeFile(path) == "first",
                  "a discarded save keeps the old content");
    report.Evidence("a discarded save kept the old file");

    char const * const outside[] = {"SCRATCH:../escape.txt", "SCRATCH:notes/../../escape.txt",
                                    "SCRATCH:/etc/passwd", "nobody:file.txt"};
    for (char const * climbing : outside)
        report.Expect(!FilePath::OpenStream(climbing, c_streamRead) &&
                          !FilePath::OpenStream(climbing, c_streamWrite),
                      std::string("'") + climbing + "' does not open");
    report.Evidence("4 ways out of an alias stayed shut");

    ChangeCounter changes;
    FilePath::AttachFileChangeNotification("SCRATCH:notes", &changes);
    WriteWholeFile(path, "second");
    FilePath::PumpFileChanges();
    FilePath::DetachFileChangeNotification(&changes, nullptr);
    report.Expect(changes.count == 1,
                  "one save gives one change notice, not " + std::to_string(changes.count));
    report.Evidence("a save was noticed as " + changes.last);
}
