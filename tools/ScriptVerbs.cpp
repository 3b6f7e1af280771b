#include "tools/AddVerb.h"
#include "tools/Json.h"

#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "Cross/engine/scriptconfig/LuaLibMan.h"
#include "Cross/engine/scriptconfig/LuaLibrary.h"

#include <ostream>

namespace {

struct ListArguments {
    bool asJson = false;
};

struct Function {
    std::string name, signature;
};

struct Library {
    std::string name;
    std::vector<Function> functions;
};

// What is really bound to a script state, so that the list cannot differ from the program.
std::vector<Library> boundLibraries() {
    LuaConfig config("list", true);
    std::vector<Library> libraries;
    LuaLibMan::VisitLibraries([&](char const * name, LuaLibrary & library) {
        libraries.push_back({name, {}});
        library.VisitLuaBindingObjs(config, [&](LuaBinding::ObjInternalBase const & object) {
            libraries.back().functions.push_back({object.FunctionName(), object.Signature()});
        });
    });
    return libraries;
}

void printText(std::vector<Library> const & libraries, std::ostream & out) {
    std::size_t count = 0;
    for (Library const & library : libraries)
        count += library.functions.size();
    out << "good: " << CountText(count, "script function", "script functions") << " in "
        << CountText(libraries.size(), "library", "libraries") << '\n';
    for (Library const & library : libraries) {
        out << library.name << '\n';
        for (Function const & function : library.functions)
            out << "  " << function.name << ": " << function.signature << '\n';
    }
}

void printJson(std::vector<Library> const & libraries, std::ostream & out) {
    std::vector<JsonObject> list;
    for (Library const & library : libraries) {
        std::vector<JsonObject> functions;
        for (Function const & function : library.functions)
            functions.push_back(JsonObject().Add("name", function.name).Add("signature", function.signature));
        list.push_back(JsonObject().Add("name", library.name).Add("functions", functions));
    }
    out << JsonObject().Add("verdict", "good").Add("libraries", list).Text() << '\n';
}

ExitCode listFunctions(ListArguments const & arguments, Output const & output) {
    (arguments.asJson ? printJson : printText)(boundLibraries(), output.out);
    return exitGood;
}

} // namespace

void AddScriptVerbs(CLI::App & app, Job & job) {
    CLI::App & script = AddGroup(app, "script", "What scripts can call");
    CLI::App & verb =
        AddVerb(script, "list", "List every script function with its library, arguments and result", "");
    AddJson(verb, SetWork(verb, job, listFunctions)->asJson);
}
