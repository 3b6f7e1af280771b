#include "samples/sandbox/GameKeys.h"

#include "Cross/Util/CheatMenu.h"
#include "Cross/Util/RenderStats.h"
#include "Cross/Util/StatGraph.h"
#include "Cross/engine/core/Text.h"

#include <algorithm>
#include <iterator>

namespace {

void menu(void (CheatMenu::*operation)()) {
    if (CheatMenu * const instance = CheatMenu::Instance())
        (instance->*operation)();
}

struct Key {
    char const * name;
    void (*press)(GameLoop & loop);
};

constexpr Key c_keys[] = {
    {"F1", [](GameLoop &) { menu(&CheatMenu::Toggle); }},
    {"Up", [](GameLoop &) { menu(&CheatMenu::PreviousItem); }},
    {"Down", [](GameLoop &) { menu(&CheatMenu::NextItem); }},
    {"Left", [](GameLoop &) { menu(&CheatMenu::DoItemLeft); }},
    {"Right", [](GameLoop &) { menu(&CheatMenu::DoItemRight); }},
    {"Return", [](GameLoop &) { menu(&CheatMenu::DoItemAction); }},
    {"Enter", [](GameLoop &) { menu(&CheatMenu::DoItemAction); }},
    {"Backspace", [](GameLoop &) { menu(&CheatMenu::PreviousMenu); }},
    {"F2", [](GameLoop &) { StatGraph::SetVisible(!StatGraph::GetVisible()); }},
    {"F3", [](GameLoop &) { RenderStats::Instance()->Enable(!RenderStats::Instance()->IsEnabled()); }},
    {"F4", [](GameLoop & loop) { loop.View().ShowBounds(!loop.View().ShowsBounds()); }},
    {"Tab", [](GameLoop & loop) { loop.View().SelectNext(); }},
};

Key const * findKey(char const * name) {
    auto const found = std::find_if(std::begin(c_keys), std::end(c_keys), [name](Key const & key) {
        return text::CompareNoCase(key.name, name) == 0;
    });
    return found != std::end(c_keys) ? found : nullptr;
}

} // namespace

bool PressKey(GameLoop & loop, char const * key) {
    Key const * const known = findKey(key);
    if (known)
        known->press(loop);
    return known != nullptr;
}

bool IsKey(std::string const & key) { return findKey(key.c_str()) != nullptr; }

std::string KeyNames() {
    std::string names;
    for (Key const & key : c_keys)
        names += (names.empty() ? "" : ", ") + std::string(key.name);
    return names;
}
