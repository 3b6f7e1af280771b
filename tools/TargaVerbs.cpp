#include "tools/AddVerb.h"
#include "tools/InputFile.h"
#include "tools/Json.h"
#include "tools/OutputFile.h"
#include "tools/PngFile.h"
#include "tools/TargaCheck.h"

#include "Cross/Util/TGAIO.h"

#include <iomanip>
#include <limits>
#include <ostream>

namespace {

struct ConvertArguments {
    std::string source, target;
};

// Reads and checks a file; empty fields and a reason in `reasons` when it cannot be opened.
bool check(std::string const & file, TargaReport & report, Lines & reasons) {
    ByteStreamProxy const stream = OpenForReading(file, reasons);
    if (stream)
        report = CheckTarga(*stream);
    return static_cast<bool>(stream);
}

void printFields(TargaReport const & report, std::ostream & out) {
    out << "byte   field                    value  meaning\n";
    for (TargaReport::Field const & field : report.fields) {
        std::string const last = field.size > 1 ? "-" + std::to_string(field.offset + field.size - 1) : "";
        out << std::left << std::setw(7) << std::to_string(field.offset) + last << std::setw(23) << field.name
            << std::right << std::setw(7) << field.value << "  " << field.meaning << '\n';
    }
}

void printJson(TargaReport const & report, std::string const & file, std::ostream & out) {
    std::vector<JsonObject> fields, findings;
    for (TargaReport::Field const & field : report.fields)
        fields.push_back(JsonObject()
                             .Add("offset", field.offset)
                             .Add("size", field.size)
                             .Add("name", field.name)
                             .Add("value", field.value)
                             .Add("meaning", field.meaning));
    for (TargaReport::Finding const & finding : report.findings)
        findings.push_back(JsonObject()
                               .Add("offset", finding.offset)
                               .Add("fatal", finding.isFatal)
                               .Add("reason", finding.reason));
    out << JsonObject()
               .Add("verdict", !report.Loads()    ? "does not load"
                               : findings.empty() ? "good"
                                                  : "loads, but")
               .Add("file", file)
               .Add("findings", findings)
               .Add("fields", fields)
               .Text()
        << '\n';
}

void printInfo(TargaReport const & report, std::string const & file, std::ostream & out) {
    if (report.Loads())
        out << "good: " << file << ": " << report.Summary() << '\n';
    else
        PrintLines(out, "does not load: ", report.Lines(file, true));
    if (!report.fields.empty())
        printFields(report, out);
}

ExitCode info(FileArguments const & arguments, Output const & output) {
    TargaReport report;
    Lines reasons;
    if (!check(arguments.file, report, reasons))
        return Fail(output, reasons);
    (arguments.asJson ? printJson : printInfo)(report, arguments.file, output.out);
    return report.Loads() ? exitGood : exitFinding;
}

void printFindings(TargaReport const & report, std::string const & file, std::ostream & out) {
    if (report.findings.empty())
        out << "good: " << file << ": " << report.Summary() << '\n';
    else
        PrintLines(out, report.Loads() ? "loads, but: " : "does not load: ", report.Lines(file, false));
}

ExitCode verify(FileArguments const & arguments, Output const & output) {
    TargaReport report;
    Lines reasons;
    if (!check(arguments.file, report, reasons))
        return Fail(output, reasons);
    (arguments.asJson ? printJson : printFindings)(report, arguments.file, output.out);
    return report.findings.empty() ? exitGood : exitFinding;
}

// The pixels as a file of `bitsPerPixel` stores them.
std::vector<unsigned char> storedPixels(MathPrim::Colour const * pixels, std::size_t count,
                                        unsigned int bitsPerPixel) {
    std::vector<unsigned char> bytes;
    bytes.reserve(count * (bitsPerPixel / 8));
    for (MathPrim::Colour const * pixel = pixels; pixel < pixels + count; ++pixel) {
        bytes.insert(bytes.end(), {pixel->blue, pixel->green, pixel->red});
        if (bitsPerPixel == 32)
            bytes.push_back(pixel->alpha);
    }
    return bytes;
}

// Checked first, so that no file claims more memory than its pixels need.
bool loadTarga(std::string const & file, TargaPicture & picture, Lines & reasons) {
    TargaReport report;
    if (!check(file, report, reasons))
        return false;
    reasons = report.Lines(file, true);
    if (!reasons.empty())
        return false;
    Array2D<MathPrim::Colour, Array2DNewAllocator<MathPrim::Colour>> image;
    if (!TGAIO::Load(WithoutAlias(file).c_str(), image)) {
        reasons.push_back(file + ": cannot be loaded");
        return false;
    }
    picture = {image.width, image.height, report.bitsPerPixel,
               storedPixels(image.data, std::size_t{image.width} * image.height, report.bitsPerPixel)};
    return true;
}

ExitCode good(std::string const & file, TargaPicture const & picture, Output const & output) {
    output.out << "good: " << file << ": " << picture.width << " x " << picture.height << " pixels of "
               << picture.bitsPerPixel << " bits\n";
    return exitGood;
}

ExitCode saveTarga(std::string const & file, TargaPicture const & picture, Output const & output) {
    if (!TGAIO::Save(WithoutAlias(file).c_str(), picture.width, picture.height, picture.bitsPerPixel,
                     static_cast<unsigned int>(picture.bytes.size()), picture.bytes.data()))
        return Fail(output, {file + ": cannot be written"});
    return good(file, picture, output);
}

ExitCode toPng(ConvertArguments const & arguments, Output const & output) {
    if (IsSameFile(arguments.source, arguments.target))
        return Fail(output, {arguments.target + ": would overwrite the source"});
    TargaPicture picture;
    Lines reasons;
    if (!loadTarga(arguments.source, picture, reasons))
        return Fail(output, reasons);
    if (!WriteWholeFile(arguments.target, EncodePng(picture)))
        return Fail(output, {arguments.target + ": cannot be written"});
    return good(arguments.target, picture, output);
}

ExitCode fromPng(ConvertArguments const & arguments, Output const & output) {
    if (IsSameFile(arguments.source, arguments.target))
        return Fail(output, {arguments.target + ": would overwrite the source"});
    Lines reasons;
    std::string file;
    if (!ReadWholeFile(arguments.source, file, reasons))
        return Fail(output, reasons);
    try {
        return saveTarga(arguments.target, DecodePng(file), output);
    } catch (std::runtime_error const & error) {
        return Fail(output, {arguments.source + ": " + error.what()});
    }
}

ExitCode resave(ConvertArguments const & arguments, Output const & output) {
    TargaPicture picture;
    Lines reasons;
    if (!loadTarga(arguments.source, picture, reasons))
        return Fail(output, reasons);
    return saveTarga(arguments.target, picture, output);
}

void addOne(CLI::App & targa, Job & job, char const * name, char const * description,
            ExitCode (*work)(FileArguments const &, Output const &)) {
    CLI::App & verb = AddVerb(targa, name, description, "grass.tga");
    auto const arguments = SetWork(verb, job, work);
    AddFile(verb, "FILE", arguments->file, "The Targa image");
    AddJson(verb, arguments->asJson);
}

void addConversion(CLI::App & targa, Job & job, char const * name, char const * description,
                   ExitCode (*work)(ConvertArguments const &, Output const &), char const * example) {
    CLI::App & verb = AddVerb(targa, name, description, example);
    auto const arguments = SetWork(verb, job, work);
    AddFile(verb, "IN", arguments->source, "The image to read");
    AddFile(verb, "OUT", arguments->target, "The image to write; the old one stays when that fails");
}

} // namespace

void AddTargaVerbs(CLI::App & app, Job & job) {
    CLI::App & targa = AddGroup(app, "tga", "Targa images");
    addOne(targa, job, "info",
           "Print every field of the header and what loading does with it; 1 when it does not load", info);
    addOne(targa, job, "verify", "Check an image to its last byte; 1 when something is wrong", verify);
    addConversion(targa, job, "topng", "Turn a Targa image into a PNG image", toPng, "grass.tga grass.png");
    addConversion(targa, job, "frompng", "Turn a PNG image into a Targa image, 32 bits with alpha, else 24",
                  fromPng, "grass.png grass.tga");
    addConversion(targa, job, "resave", "Write a Targa image plain and bottom row first, as it loads fastest",
                  resave, "grass.tga grass.tga");
}
