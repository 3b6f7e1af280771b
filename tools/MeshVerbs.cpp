#include "tools/AddVerb.h"
#include "tools/InputFile.h"
#include "tools/MeshCheck.h"
#include "tools/NumberText.h"
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

ExitCode verify(std::string const & file, Output const & output) {
    MeshReport report;
    Lines reasons;
    if (!openFile(file, report, reasons))
        return Fail(output, reasons);
    if (report.findings.empty()) {
        output.out << "good: " << file << ": " << report.Summary() << '\n';
        return exitGood;
    }
    PrintLines(output.out, "damaged: ", report.Lines(file));
    return exitFinding;
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
    return verify(arguments.target, output);
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

ExitCode info(std::string const & file, Output const & output) {
    MeshReport report;
    Lines reasons;
    if (!openFile(file, report, reasons))
        return Fail(output, reasons);
    if (!report.findings.empty())
        return Fail(output, report.Lines(file));
    output.out << "good: " << file << ": " << report.Summary() << '\n';
    for (BoundVolume const & volume : report.volumes)
        printVolume(volume, output.out);
    for (MeshReport::Mesh const & mesh : report.meshes)
        printMesh(mesh, output.out);
    return exitGood;
}

void addImport(CLI::App & mesh, Job & job) {
    CLI::App & verb =
        *mesh.add_subcommand("import", "Turn an OBJ file into meshes of triangles and their bound volume");
    auto const arguments = AddVerb(verb, job, importObj);
    AddFile(verb, "IN", arguments->source, "The OBJ file; a mesh per object or group");
    AddFile(verb, "OUT", arguments->target, "The chunk file to write; the old one stays when that fails");
    verb.footer("Example: crosstool mesh import tank.obj tank.msh");
}

void addOne(CLI::App & mesh, Job & job, char const * name, char const * description,
            ExitCode (*work)(std::string const &, Output const &)) {
    CLI::App & verb = *mesh.add_subcommand(name, description);
    auto const file = AddVerb(verb, job, work);
    AddFile(verb, "FILE", *file, "A chunk file with meshes, bound volumes or both");
    verb.footer(std::string("Example: crosstool mesh ") + name + " tank.msh");
}

} // namespace

void AddMeshVerbs(CLI::App & app, Job & job) {
    CLI::App & mesh = *app.add_subcommand("mesh", "Meshes and bound volumes");
    mesh.require_subcommand(1);
    mesh.footer("Example: crosstool mesh info tank.msh");
    addImport(mesh, job);
    addOne(mesh, job, "info", "Print the meshes and bound volumes of a file", info);
    addOne(mesh, job, "verify", "Check meshes and bound volumes to the last byte; 1 for damage", verify);
}
