#include "tools/tablesource/SourceTypes.h"

#include "tools/tablesource/TableSource.h"

#include <algorithm>
#include <utility>

namespace TableSource {

namespace {

// One component of a path: a name, or nothing for '*'.
using Component = std::optional<std::string>;

// A list of `types`: the kind of the fields that it may name, and what it says of them.
struct List {
    char const * name;
    Node::Kind kind;
    bool Node::*mark;
};

constexpr List c_lists[] = {{"integer", Node::number, &Node::isInteger},
                            {"wide", Node::text, &Node::isWide},
                            {"ordered", Node::table, &Node::isOrdered}};

// One entry of a list.
struct Rule {
    List const & list;
    std::string text;                                 // the path as it was written
    std::vector<std::string> const * order = nullptr; // the names of an ordered table, where they are given
    std::vector<Component> path = {};

    std::string Name() const { return std::string("types.") + list.name + " \"" + text + "\""; }
};

// Splits a path into its components.
class PathParser {
public:
    explicit PathParser(std::string const & text) : text(text) {}

    // False leaves the reason in `Reason()`.
    bool Parse(std::vector<Component> & path) {
        do {
            Component component;
            if (!parseComponent(component))
                return false;
            path.push_back(std::move(component));
        } while (position++ < text.size()); // over the point
        return true;
    }

    char const * Reason() const { return reason; }

private:
    bool parseComponent(Component & component) {
        std::string name;
        bool hasStar = false;
        for (; position < text.size() && text[position] != '.'; ++position) {
            if (text[position] == '*')
                hasStar = true;
            else if (text[position] == '%' && !skipEscape())
                return false;
            name += text[position];
        }
        if (name.empty())
            return fail("has an empty component");
        if (hasStar && name.size() > 1)
            return fail("has a * that is not a whole component; for the character itself write %*");
        if (!hasStar)
            component = std::move(name);
        return true;
    }

    // Goes to the character behind the '%'.
    bool skipEscape() {
        ++position;
        if (position < text.size() && std::string_view(".*%").find(text[position]) != std::string_view::npos)
            return true;
        return fail("has a % that stands before none of . * and %; for the character itself write %%");
    }

    bool fail(char const * why) {
        reason = why;
        return false;
    }

    std::string const & text;
    std::size_t position = 0;
    char const * reason = nullptr;
};

// Applies one rule to all fields that its path reaches.
class Marker {
public:
    Marker(Rule const & rule, Messages & errors) : rule(rule), errors(errors) {}

    void Mark(Node & root) {
        if (!markBelow(root, "", 0))
            errors.push_back(rule.Name() + ": matches nothing");
    }

private:
    // True when the rest of the path, from `depth` on, reaches something. A '*' over an empty table does: a
    // list may be empty without its types having to go.
    bool markBelow(Node & node, std::string const & path, std::size_t depth) {
        if (depth == rule.path.size()) {
            markField(node, path);
            return true;
        }
        if (node.kind != Node::table)
            return false;
        Component const & component = rule.path[depth];
        bool isReached = !component && node.children.empty();
        for (Node & child : node.children)
            if (!component || *component == child.name)
                isReached |= markBelow(child, JoinPath(path, child.name), depth + 1);
        return isReached;
    }

    void markField(Node & node, std::string const & path) {
        if (node.kind != rule.list.kind)
            return fail(path,
                        std::string("is a ") + KindName(node.kind) + ", not a " + KindName(rule.list.kind));
        bool const wasMarked = std::exchange(node.*rule.list.mark, true);
        if (node.kind != Node::table)
            return;
        if (wasMarked)
            fail(path, "is listed a second time");
        else if (rule.order)
            arrange(node.children, path);
    }

    void arrange(std::vector<Node> & children, std::string const & path) {
        std::vector<Node> arranged;
        for (std::string const & name : *rule.order) {
            auto const child = std::find_if(children.begin(), children.end(),
                                            [&name](Node const & node) { return node.name == name; });
            if (child == children.end()) {
                fail(path, "has no field \"" + name + "\", or the list names it twice");
                continue;
            }
            arranged.push_back(std::move(*child));
            children.erase(child);
        }
        for (Node const & child : children)
            fail(path, "has a field \"" + child.name + "\" that the list leaves out");
        std::move(children.begin(), children.end(), std::back_inserter(arranged));
        children = std::move(arranged);
    }

    void fail(std::string const & path, std::string const & reason) {
        errors.push_back(path + ": " + reason + " (" + rule.Name() + ")");
    }

    Rule const & rule;
    Messages & errors;
};

void applyRule(Node & root, Rule & rule, Messages & errors) {
    PathParser parser(rule.text);
    if (parser.Parse(rule.path))
        Marker(rule, errors).Mark(root);
    else
        errors.push_back(rule.Name() + ": " + parser.Reason());
}

// An entry { path } of any list.
void applyPathEntry(Node & root, List const & list, Node const & entry, Messages & errors) {
    Rule rule{list, entry.textValue};
    applyRule(root, rule, errors);
}

// A list of names, given as texts or as whole numbers. False when it holds anything else.
bool readOrder(Node const & list, std::vector<std::string> & order) {
    for (Node const & name : list.children) {
        if (name.index && name.kind == Node::text)
            order.push_back(name.textValue);
        else if (name.index && name.kind == Node::number && ToIndex(name.numberValue))
            order.push_back(std::to_string(*ToIndex(name.numberValue)));
        else
            return false;
    }
    return true;
}

// An entry { path = names in order }.
void applyOrderEntry(Node & root, List const & list, Node const & entry, Messages & errors) {
    std::vector<std::string> order;
    Rule rule{list, entry.name, &order};
    if (readOrder(entry, order))
        applyRule(root, rule, errors);
    else
        errors.push_back(rule.Name() + ": is no list of names");
}

void applyList(Node & root, List const & list, Node const & entries, Messages & errors) {
    if (entries.kind != Node::table) {
        errors.push_back(std::string("types.") + list.name + ": is a " + KindName(entries.kind) +
                         ", not a list of paths");
        return;
    }
    for (Node const & entry : entries.children) {
        if (entry.index && entry.kind == Node::text)
            applyPathEntry(root, list, entry, errors);
        else if (!entry.index && entry.kind == Node::table && list.kind == Node::table)
            applyOrderEntry(root, list, entry, errors);
        else
            errors.push_back(std::string("types.") + list.name + ": the entry " + EscapeName(entry.name) +
                             " is no path");
    }
}

} // namespace

void ApplyTypes(Node & root, Messages & errors) {
    auto const position = std::find_if(root.children.begin(), root.children.end(),
                                       [](Node const & node) { return node.name == "types"; });
    if (position == root.children.end())
        return;
    Node const types = std::move(*position);
    root.children.erase(position);
    if (types.kind != Node::table) {
        errors.push_back(std::string("types: is a ") + KindName(types.kind) +
                         "; the name is kept for the table of types");
        return;
    }
    for (Node const & entries : types.children) {
        auto const list = std::find_if(std::begin(c_lists), std::end(c_lists),
                                       [&entries](List const & known) { return entries.name == known.name; });
        if (list != std::end(c_lists))
            applyList(root, *list, entries, errors);
        else
            errors.push_back("types." + EscapeName(entries.name) +
                             ": is unknown; there are integer, wide and ordered");
    }
}

} // namespace TableSource
