#include "tools/AddVerb.h"
#include "tools/InputFile.h"
#include "tools/NumberText.h"
#include "tools/OutputFile.h"
#include "tools/TableDiff.h"
#include "tools/TableFile.h"
#include "tools/TableView.h"
#include "tools/tablesource/TableSource.h"

#include "Cross/Util/BinaryConfigIO.h"
#include "Cross/engine/filesystem/FilePathHDRaw.h"

#include <ostream>

namespace {

// Built tables are in the native byte order.
constexpr PlatformType c_platform = 1;

// For the verbs that need good tables.
bool openGood(std::string const & path, BinaryConfig & config, Lines & findings) {
    return OpenTableFile(path, config, findings) == TableState::good;
}

struct BuildArguments {
    std::string source, target, names;
};

// Names with a line break in them cannot stand in a list of lines.
bool saveNames(std::string const & path, std::set<std::string> const & names) {
    ByteStreamProxy const stream(FilePathHDRaw::UnaliasedFileOpen(path.c_str(), c_streamWrite, false));
    if (!stream)
        return false;
    bool isWritten = true;
    for (std::string const & name : names)
        if (name.find_first_of("\r\n") == std::string::npos)
            isWritten = isWritten && BSWriteText(*stream, name.c_str(), true);
    if (isWritten && stream->Flush())
        return true;
    stream->Discard();
    return false;
}

ExitCode saveTable(BuildArguments const & arguments, BinaryConfigCreator const & creator,
                   TableSource::Report const & report, Output const & output) {
    BinaryConfig table;
    BinaryConfigIO::CreateBinaryConfig(creator, table, c_platform);
    if (!BinaryConfigIO::Save(WithoutAlias(arguments.target).c_str(), table, c_platform))
        return Fail(output, {arguments.target + ": cannot be written"});
    if (!arguments.names.empty() && !saveNames(arguments.names, report.names))
        return Fail(output, {arguments.names + ": cannot be written"});
    output.out << "good: " << arguments.target << ": " << Summary(table) << '\n';
    for (std::string const & warning : report.warnings)
        output.err << "warning: " << warning << '\n';
    return exitGood;
}

ExitCode build(BuildArguments const & arguments, Output const & output) {
    for (std::string const & written : {arguments.target, arguments.names})
        if (IsSameFile(arguments.source, written))
            return Fail(output, {written + ": would overwrite the source"});
    Lines reasons;
    ByteStreamProxy const stream = OpenForReading(arguments.source, reasons);
    if (!stream)
        return Fail(output, reasons);
    BinaryConfigCreator creator;
    TableSource::Report report;
    if (!TableSource::Build(*stream, creator, report))
        return Fail(output, report.errors);
    return saveTable(arguments, creator, report, output);
}

struct DumpArguments {
    std::string file, names;
    bool asJson = false;
};

ExitCode dump(DumpArguments const & arguments, Output const & output) {
    BinaryConfig table;
    NameList names;
    Lines reasons;
    if ((!arguments.names.empty() && !names.Load(arguments.names, reasons)) ||
        !openGood(arguments.file, table, reasons))
        return Fail(output, reasons);
    if (arguments.asJson) {
        PrintJson(table, names, arguments.file, output.out);
        return exitGood;
    }
    output.out << "good: " << arguments.file << ": " << Summary(table) << '\n';
    PrintTree(table, names, output.out);
    return exitGood;
}

ExitCode verify(std::string const & file, Output const & output) {
    BinaryConfig table;
    Lines findings;
    switch (OpenTableFile(file, table, findings)) {
    case TableState::good:
        output.out << "good: " << file << ": " << Summary(table) << '\n';
        return exitGood;
    case TableState::damaged:
        PrintLines(output.out, "damaged: ", findings);
        return exitFinding;
    case TableState::failed:
        break;
    }
    return Fail(output, findings);
}

ExitCode crc(std::string const & file, Output const & output) {
    BinaryConfig table;
    Lines reasons;
    if (!openGood(file, table, reasons))
        return Fail(output, reasons);
    output.out << KeyText(table.GetCRC()) << ' ' << file << '\n';
    return exitGood;
}

struct DiffArguments {
    std::string first, second, names;
};

ExitCode diff(DiffArguments const & arguments, Output const & output) {
    BinaryConfig first;
    BinaryConfig second;
    NameList names;
    Lines reasons;
    if ((!arguments.names.empty() && !names.Load(arguments.names, reasons)) ||
        !openGood(arguments.first, first, reasons) || !openGood(arguments.second, second, reasons))
        return Fail(output, reasons);
    Lines const differences = DiffTables(first, second, names);
    std::string const pair = arguments.first + " and " + arguments.second + ": ";
    if (differences.empty()) {
        output.out << "equal: " << pair << Summary(first) << '\n';
        return exitGood;
    }
    output.out << "different: " << pair << CountText(differences.size(), "difference\n", "differences\n");
    PrintLines(output.out, "", differences);
    return exitFinding;
}

void addNames(CLI::App & verb, std::string & names) {
    verb.add_option("--names", names,
                    "A text file with one field name a line, to show names in place of keys")
        ->option_text("FILE");
}

void addBuild(CLI::App & table, Job & job) {
    CLI::App & verb = AddVerb(table, "build", "Build a table file from a Lua source",
                              "tank.lua tank.tbl --names tank.names");
    auto const arguments = SetWork(verb, job, build);
    AddFile(verb, "IN", arguments->source, "The source; docs/table-source.md tells its notation");
    AddFile(verb, "OUT", arguments->target, "The table file to write");
    verb.add_option("--names", arguments->names, "Also write the names of all fields, for dump and diff")
        ->option_text("FILE");
}

void addDump(CLI::App & table, Job & job) {
    CLI::App & verb =
        AddVerb(table, "dump", "Print the contents of a table file", "tank.tbl --names tank.names --json");
    auto const arguments = SetWork(verb, job, dump);
    AddFile(verb, "FILE", arguments->file, "The table file");
    addNames(verb, arguments->names);
    AddJson(verb, arguments->asJson);
}

void addVerify(CLI::App & table, Job & job) {
    CLI::App & verb =
        AddVerb(table, "verify", "Check a table file to the last byte; 1 for damage", "tank.tbl");
    auto const file = SetWork(verb, job, verify);
    AddFile(verb, "FILE", *file, "The table file");
}

void addCrc(CLI::App & table, Job & job) {
    CLI::App & verb =
        AddVerb(table, "crc", "Print the CRC that identifies the contents of a table file", "tank.tbl");
    auto const file = SetWork(verb, job, crc);
    AddFile(verb, "FILE", *file, "The table file");
}

void addDiff(CLI::App & table, Job & job) {
    CLI::App & verb = AddVerb(table, "diff", "Compare two table files field by field; 1 for a difference",
                              "old/tank.tbl new/tank.tbl --names tank.names");
    auto const arguments = SetWork(verb, job, diff);
    AddFile(verb, "A", arguments->first, "The table file whose values come first");
    AddFile(verb, "B", arguments->second, "The table file to compare it with");
    addNames(verb, arguments->names);
}

} // namespace

void AddTableVerbs(CLI::App & app, Job & job) {
    CLI::App & table = AddGroup(app, "table", "Attribute tables");
    addBuild(table, job);
    addDump(table, job);
    addVerify(table, job);
    addCrc(table, job);
    addDiff(table, job);
}
