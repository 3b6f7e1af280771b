#include "tools/AddVerb.h"
#include "tools/InputFile.h"
#include "tools/Json.h"
#include "tools/MeshCheck.h"
#include "tools/ObjSource.h"
#include "tools/OutputFile.h"
#include "tools/Quote.h"

#include "Cross/Util/BoundVolumeIO.h"
#include "Cross/engine/filesystem/EndianConvertor.h"
#include "Cross/engine/filesystem/RamStream.h"

#include <ostream>

using Math::Vector3f;

namespace {

struct ImportArguments {
    std::string source, target;
};

BoundVolume boundsOf(std::vector<BasicMeshIO::MeshInfo> const & meshes) {
    BoundVolume bounds;
    for (BasicMeshIO::MeshInfo const & info : meshes) {
        BoundVolume part;
        part.Build(info.mesh.vertices.data(), static_cast<unsigned int>(info.mesh.vertices.size()));
        bounds += part;
    }
    return bounds;
}

std::string fileOf(std::vector<BasicMeshIO::MeshInfo> const & meshes) {
    RamStream stream;
    stream.Open(0x1000, c_streamWrite);
    Chunky file(&stream, c_nativePlatform);
    BoundVolumeIO::Save(file, boundsOf(meshes));
    BasicMeshIO::SaveList(file, meshes);
    return {static_cast<char const *>(stream.GetBuffer()), stream.GetLen()};
}

bool openFile(std::string const & file, MeshReport & report, Lines & reasons) {
    ByteStreamProxy const stream = OpenForReading(file, reasons);
    if (stream)
        report = CheckMeshes(*stream);
    return static_cast<bool>(stream);
}

std::string vectorText(Vector3f const & vector) {
    return FloatText(vector.x) + ' ' + FloatText(vector.y) + ' ' + FloatText(vector.z);
}

void printVolume(BoundVolume const & volume, std::ostream & out) {
    MathPrim::OBBf const & box = volume.GetOBB();
    if (!volume.IsValid()) {
        out << "bound volume: not valid\n";
        return;
    }
    out << "bound volume: centre " << vectorText(box.center) << ", extents " << vectorText(box.extents)
        << '\n';
    for (Vector3f const & axis : box.rotation.rows)
        out << "    axis " << vectorText(axis) << '\n';
}

// Corners that coincide make a triangle that shows nothing.
std::size_t countFlat(MathPrim::Mesh const & mesh) {
    std::size_t count = 0;
    for (std::size_t i = 0; i + 2 < mesh.indices.size(); i += 3) {
        Vector3f const & a = mesh.vertices[mesh.indices[i]];
        Vector3f const & b = mesh.vertices[mesh.indices[i + 1]];
        Vector3f const & c = mesh.vertices[mesh.indices[i + 2]];
        count += a == b || b == c || c == a;
    }
    return count;
}

void printMesh(MeshReport::Mesh const & mesh, std::ostream & out) {
    BoundVolume bounds;
    bounds.Build(mesh.mesh.vertices.data(), static_cast<unsigned int>(mesh.mesh.vertices.size()));
    MathPrim::OBBf const & box = bounds.GetOBB();
    out << "mesh " << Quote(mesh.name) << ": " << CountText(mesh.mesh.vertices.size(), "vertex", "vertices")
        << ", " << CountText(mesh.mesh.indices.size() / 3, "triangle", "triangles");
    if (bounds.IsValid())
        out << ", from " << vectorText(box.center - box.extents) << " to "
            << vectorText(box.center + box.extents);
    if (std::size_t const flat = countFlat(mesh.mesh))
        out << ", " << flat << " with coinciding corners";
    out << '\n';
}

std::vector<float> numbersOf(Vector3f const & vector) { return {vector.x, vector.y, vector.z}; }

JsonObject volumeJson(BoundVolume const & volume) {
    MathPrim::OBBf const & box = volume.GetOBB();
    std::vector<std::vector<float>> axes;
    for (Vector3f const & axis : box.rotation.rows)
        axes.push_back(numbersOf(axis));
    return JsonObject()
        .Add("valid", volume.IsValid())
        .Add("centre", numbersOf(box.center))
        .Add("extents", numbersOf(box.extents))
        .Add("axes", axes);
}

JsonObject meshJson(MeshReport::Mesh const & mesh) {
    return JsonObject()
        .Add("name", mesh.name)
        .Add("vertices", mesh.mesh.vertices.size())
        .Add("triangles", mesh.mesh.indices.size() / 3)
        .Add("coinciding", countFlat(mesh.mesh));
}

void printJson(MeshReport const & report, std::string const & file, std::ostream & out) {
    std::vector<JsonObject> findings, volumes, meshes;
    for (MeshReport::Finding const & finding : report.findings)
        findings.push_back(JsonObject().Add("offset", finding.offset).Add("reason", finding.reason));
    for (BoundVolume const & volume : report.volumes)
        volumes.push_back(volumeJson(volume));
    for (MeshReport::Mesh const & mesh : report.meshes)
        meshes.push_back(meshJson(mesh));
    out << JsonObject()
               .Add("verdict", findings.empty() ? "good" : "damaged")
               .Add("file", file)
               .Add("findings", findings)
               .Add("volumes", volumes)
               .Add("meshes", meshes)
               .Add("otherChunks", report.otherChunks)
               .Text()
        << '\n';
}

ExitCode verify(FileArguments const & arguments, Output const & output) {
    MeshReport report;
    Lines reasons;
    if (!openFile(arguments.file, report, reasons))
        return Fail(output, reasons);
    if (arguments.asJson)
        printJson(report, arguments.file, output.out);
    else if (report.findings.empty())
        output.out << "good: " << arguments.file << ": " << report.Summary() << '\n';
    else
        PrintLines(output.out, "damaged: ", report.Lines(arguments.file));
    return report.findings.empty() ? exitGood : exitFinding;
}

ExitCode info(FileArguments const & arguments, Output const & output) {
    MeshReport report;
    Lines reasons;
    if (!openFile(arguments.file, report, reasons))
        return Fail(output, reasons);
    if (!report.findings.empty())
        return Fail(output, report.Lines(arguments.file));
    if (arguments.asJson) {
        printJson(report, arguments.file, output.out);
        return exitGood;
    }
    output.out << "good: " << arguments.file << ": " << report.Summary() << '\n';
    for (BoundVolume const & volume : report.volumes)
        printVolume(volume, output.out);
    for (MeshReport::Mesh const & mesh : report.meshes)
        printMesh(mesh, output.out);
    return exitGood;
}

ExitCode importObj(ImportArguments const & arguments, Output const & output) {
    if (IsSameFile(arguments.source, arguments.target))
        return Fail(output, {arguments.target + ": would overwrite the source"});
    Lines reasons;
    std::string text;
    if (!ReadWholeFile(arguments.source, text, reasons))
        return Fail(output, reasons);
    auto const meshes = ReadObj(arguments.source, text, reasons);
    if (!reasons.empty())
        return Fail(output, reasons);
    if (!WriteWholeFile(arguments.target, fileOf(meshes)))
        return Fail(output, {arguments.target + ": cannot be written"});
    return verify({arguments.target, false}, output);
}

void addImport(CLI::App & mesh, Job & job) {
    CLI::App & verb =
        AddVerb(mesh, "import", "Turn an OBJ file into meshes of triangles and their bound volume",
                "tank.obj tank.msh");
    auto const arguments = SetWork(verb, job, importObj);
    AddFile(verb, "IN", arguments->source, "The OBJ file; a mesh per object or group");
    AddFile(verb, "OUT", arguments->target, "The chunk file to write; the old one stays when that fails");
}

void addOne(CLI::App & mesh, Job & job, char const * name, char const * description,
            ExitCode (*work)(FileArguments const &, Output const &)) {
    CLI::App & verb = AddVerb(mesh, name, description, "tank.msh");
    auto const arguments = SetWork(verb, job, work);
    AddFile(verb, "FILE", arguments->file, "A chunk file with meshes, bound volumes or both");
    AddJson(verb, arguments->asJson);
}

} // namespace

void AddMeshVerbs(CLI::App & app, Job & job) {
    CLI::App & mesh = AddGroup(app, "mesh", "Meshes and bound volumes");
    addImport(mesh, job);
    addOne(mesh, job, "info", "Print the meshes and bound volumes of a file", info);
    addOne(mesh, job, "verify", "Check meshes and bound volumes to the last byte; 1 for damage", verify);
}
