#include "tools/Verbs.h"

#include "Cross/engine/scriptconfig/LuaConfig.h"
#include "Cross/engine/scriptconfig/LuaLibMan.h"
#include "Cross/engine/scriptconfig/LuaLibrary.h"

#include <CLI/CLI.hpp>

#include <ostream>
#include <string>

namespace {

// Lists what is really bound to a script state, so that the list cannot differ from the program.
ExitCode listFunctions(Output const & output) {
    LuaConfig config("list", true);
    std::string list;
    unsigned int functions = 0;
    unsigned int libraries = 0;
    LuaLibMan::VisitLibraries([&](char const * name, LuaLibrary & library) {
        ++libraries;
        list += std::string(name) + '\n';
        library.VisitLuaBindingObjs(config, [&](LuaBinding::ObjInternalBase const & object) {
            ++functions;
            list += std::string("  ") + object.FunctionName() + ": " + object.Signature() + '\n';
        });
    });
    output.out << "good: " << functions << " script functions in " << libraries << " libraries\n" << list;
    return exitGood;
}

} // namespace

void AddScriptVerbs(CLI::App & app, Job & job) {
    CLI::App * const script = app.add_subcommand("script", "What scripts can call");
    script->require_subcommand(1);
    CLI::App * const list = script->add_subcommand(
        "list", "Every script function with its library, the types of its arguments and its result");
    list->footer("Example: crosstool script list");
    list->callback([&job] { job = listFunctions; });
}
