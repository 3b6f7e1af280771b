#include "samples/sandbox/GameKeys.h"

#include "Cross/Util/CheatMenu.h"
#include "Cross/Util/RenderStats.h"
#include "Cross/Util/StatGraph.h"
#include "Cross/engine/core/Text.h"

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

} // namespace

bool PressKey(GameLoop & loop, char const * key) {
    for (Key const & known : c_keys)
        if (text::CompareNoCase(known.name, key) == 0) {
            known.press(loop);
            return true;
        }
    return false;
}
