#include "tools/tablesource/TableSource.h"

#include "tools/tablesource/SourceTree.h"
#include "tools/tablesource/SourceTypes.h"

#include "Cross/Util/BinaryConfigCreator.h"
#include "Cross/Util/NameHash.h"
#include "Cross/engine/core/Text.h"
#include "Cross/engine/core/Utf.h"
#include "Cross/engine/filesystem/ByteStream.h"
#include "Cross/engine/scriptconfig/LuaConfig.h"

#include <lua.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

namespace TableSource {

namespace {

constexpr std::size_t c_maxName = 255;

// A source that computes its values still ends long before; one that runs on is stopped with an error.
constexpr int c_maxInstructions = 100'000'000;

void stopRunaway(lua_State * state, lua_Debug *) {
    // From now on every instruction fails: the script cannot catch the error and go on.
    lua_sethook(state, stopRunaway, LUA_MASKCOUNT, 1);
    luaL_where(state, 0);
    lua_pushfstring(state, "runs for more than %d instructions", c_maxInstructions);
    lua_concat(state, 2);
    lua_error(state);
}

bool readText(ByteStream & stream, std::string & text) {
    unsigned int const size = stream.GetLen() - std::min(stream.GetPos(), stream.GetLen());
    text.resize(size);
    return stream.Read(text.data(), size) == size;
}

// Without a byte order mark and the first line of an executable script, as everywhere where source is loaded.
std::string_view skipPreamble(std::string_view text) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(byteOrderMark))
        text.remove_prefix(byteOrderMark.size());
    if (text.starts_with('#'))
        text.remove_prefix(std::min(text.find('\n'), text.size())); // the line end counts for messages
    return text;
}

// The message of a failed call, which stands on top of the stack.
std::string errorMessage(lua_State * state) {
    return lua_type(state, -1) == LUA_TSTRING ? lua_tostring(state, -1) : "a script error without a message";
}

// Gives "" or Lua's message, which begins with ":line: " when it has a place. Lua's own loader is used, since
// LuaConfigSave::LoadLua tells the message to the trace only.
std::string runScript(lua_State * state, std::string_view text) {
    if (text.starts_with(LUA_SIGNATURE[0]))
        return "is bytecode, not Lua source";
    int const height = lua_gettop(state);
    int status = luaL_loadbuffer(state, text.data(), text.size(), "=");
    if (status == 0) {
        lua_sethook(state, stopRunaway, LUA_MASKCOUNT, c_maxInstructions);
        status = lua_pcall(state, 0, 0, 0);
        lua_sethook(state, nullptr, 0, 0);
    }
    std::string const error = status == 0 ? "" : errorMessage(state);
    lua_settop(state, height);
    return error;
}

// Looks for what the format cannot hold, before anything goes to the builder.
class Checker {
public:
    explicit Checker(Report & report) : report(report) {}

    void CheckTable(Node const & table, std::string const & path) {
        std::map<std::uint32_t, Node const *> fieldsByKey;
        for (Node const & field : table.children) {
            std::string const fieldPath = JoinPath(path, field.name);
            checkName(field.name, fieldPath);
            auto const [other, isNew] =
                fieldsByKey.emplace(NameHash(field.name.data(), field.name.size()), &field);
            if (!isNew)
                refuseTwin(*other->second, field, fieldPath);
            checkValue(field, fieldPath);
            report.names.insert(field.name);
            ++report.fieldCount;
        }
    }

private:
    void checkName(std::string const & name, std::string const & path) {
        if (name.size() > c_maxName)
            fail(path, "has a name of " + std::to_string(name.size()) + " bytes; 255 is the most");
        if (name.find('\0') != std::string::npos)
            fail(path, "has a name with a zero byte in it");
    }

    void refuseTwin(Node const & first, Node const & second, std::string const & path) {
        if (first.name == second.name)
            fail(path, "stands twice, under a number and under a text");
        else
            fail(path,
                 "has the same hash as \"" + first.name + "\", which one table cannot hold; rename one");
    }

    void checkValue(Node const & field, std::string const & path) {
        switch (field.kind) {
        case Node::boolean:
            break;
        case Node::number:
            if (field.isInteger)
                checkInteger(field.numberValue, path);
            else
                checkFloat(field.numberValue, path);
            break;
        case Node::text:
            checkText(field, path);
            break;
        case Node::table:
            CheckTable(field, path);
            break;
        }
    }

    void checkInteger(double value, std::string const & path) {
        if (std::trunc(value) != value || std::isinf(value))
            fail(path, "is " + numberText(value) + ", not a whole number");
        else if (!fitsInteger(value))
            fail(path, "is " + numberText(value) + ", which does not fit 32 bits");
    }

    void checkFloat(double value, std::string const & path) {
        if (std::isfinite(value) && std::abs(value) > std::numeric_limits<float>::max())
            return fail(path, "is " + numberText(value) + ", which does not fit a float");
        // Digits behind the point are expected to go; those of an identifier are not.
        bool const isWhole = std::trunc(value) == value;
        if (isWhole && fitsInteger(value) && static_cast<double>(static_cast<float>(value)) != value)
            warn(path, "is " + numberText(value) + " and becomes " + numberText(static_cast<float>(value)) +
                           " as a float; types.integer keeps it");
    }

    void checkText(Node const & field, std::string const & path) {
        if (field.textValue.find('\0') != std::string::npos)
            fail(path, "is a text with a zero byte in it");
        std::u16string units;
        if (field.isWide && !utf::ToUtf16Strict(field.textValue, units))
            fail(path, "is a wide text that is not valid UTF-8");
    }

    static bool fitsInteger(double value) {
        return value >= std::numeric_limits<std::int32_t>::min() &&
               value <= std::numeric_limits<std::int32_t>::max();
    }

    static std::string numberText(double value) {
        std::string digits;
        text::Printf(digits, "%.14g", value);
        return digits;
    }

    void fail(std::string const & path, std::string const & reason) {
        report.errors.push_back(path + ": " + reason);
    }

    void warn(std::string const & path, std::string const & reason) {
        report.warnings.push_back(path + ": " + reason);
    }

    Report & report;
};

void fillTable(Node const & table, BinaryConfigCreator & creator);

void fillText(Node const & field, BinaryConfigCreator & creator) {
    if (field.isWide)
        creator.SetWString(field.name.c_str(), utf::ToUtf16(field.textValue).c_str());
    else
        creator.SetString(field.name.c_str(), field.textValue.c_str());
}

void fillField(Node const & field, BinaryConfigCreator & creator) {
    switch (field.kind) {
    case Node::boolean:
        creator.SetBool(field.name.c_str(), field.flagValue);
        break;
    case Node::number:
        if (field.isInteger)
            creator.SetNumber(field.name.c_str(), static_cast<int>(field.numberValue));
        else
            creator.SetNumber(field.name.c_str(), static_cast<float>(field.numberValue));
        break;
    case Node::text:
        fillText(field, creator);
        break;
    case Node::table:
        creator.TablePush(field.name.c_str(), field.isOrdered);
        fillTable(field, creator);
        creator.TablePop();
        break;
    }
}

void fillTable(Node const & table, BinaryConfigCreator & creator) {
    for (Node const & field : table.children)
        fillField(field, creator);
}

// False, with the whole message in `errors`, when the source cannot be read or run.
bool runSource(ByteStream & stream, LuaConfig & config, Messages & errors) {
    std::string const file = stream.GetStreamName();
    std::string text;
    if (!readText(stream, text)) {
        errors.push_back(file + ": cannot be read");
        return false;
    }
    std::string const error = runScript(config.GetState(), skipPreamble(text));
    if (!error.empty())
        errors.push_back(file + (error.starts_with(':') ? "" : ": ") + error);
    return error.empty();
}

// The values that the source left behind, as they will be stored.
void readTree(LuaConfig & config, Node & root, Report & report) {
    if (!ReadGlobals(config.GetState(), root, report.errors))
        return;
    ApplyTypes(root, report.errors);
    Checker(report).CheckTable(root, "");
}

void prefixAll(Messages & messages, std::string const & file) {
    for (std::string & message : messages)
        message.insert(0, file + ": ");
}

} // namespace

bool Build(ByteStream & stream, BinaryConfigCreator & creator, Report & report) {
    report = Report();
    LuaConfig config(stream.GetStreamName(), false);
    if (!runSource(stream, config, report.errors))
        return false;
    Node root;
    readTree(config, root, report);
    prefixAll(report.errors, stream.GetStreamName());
    prefixAll(report.warnings, stream.GetStreamName());
    if (!report.errors.empty())
        return false;
    fillTable(root, creator);
    return true;
}

std::string EscapeName(std::string_view name) {
    std::string escaped;
    for (char const character : name) {
        if (std::string_view(".*%").find(character) != std::string_view::npos)
            escaped += '%';
        escaped += character;
    }
    return escaped;
}

} // namespace TableSource
