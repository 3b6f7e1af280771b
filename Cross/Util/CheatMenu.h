#pragma once

// CheatMenu: an in-game menu for developers. A script file describes a tree of menus, whose lines run script
// commands or show and change script variables, all on the global script state. The application maps its keys
// to NextItem and its sisters and calls UpdateAndDraw once per frame; the menu shows in the debug frame
// "cheatmenu". docs/menu.md tells how a menu file is written.
//
// Threads: one, that of the global script state. Lifetime: from Initialize to Shutdown. Scripts that the menu
// runs may load it, close it or shut it down; a proxy must leave it alone while it draws.

#include "Cross/engine/core/Export.h"
#include "Cross/engine/core/Math.h"

#include <cstdint>
#include <string>
#include <vector>

class LuaConfig;

namespace menulines {

struct Way;

} // namespace menulines

class CROSS_UTIL_API CheatMenu {
public:
    // The numbers that menu files use, see RegisterLua.
    enum ItemType : std::int32_t { IT_SUBMENU = 0, IT_COMMAND = 1, IT_VARIABLE = 2, IT_SEPARATOR = 3 };

    enum VariableType : std::int32_t { VT_BOOLEAN = 0, VT_FLOAT = 1 };

    // One menu.
    struct CROSS_UTIL_API MenuNode {
        // One line. Copies share its menu.
        struct CROSS_UTIL_API Item {
            std::string name = "Empty!";
            std::int32_t type = IT_COMMAND; // an ItemType; a line of any other number shows its name only
            MenuNode * subMenu = nullptr;   // owned; of IT_SUBMENU alone, and always there then
            std::string command = "NotInitialized"; // script text, for IT_COMMAND
            // The rest is for IT_VARIABLE.
            std::int32_t varType = VT_BOOLEAN; // a VariableType; another number shows no value
            std::string getFunction;           // a script expression
            std::string setFunction;           // a printf format that makes a script statement of the value
            float min = 0.0f;                  // limits and step of VT_FLOAT
            float max = 100.0f;
            float stepSize = 1.0f;
        };

        std::vector<Item> items;
        std::uint32_t selection = 0; // means nothing while there are no lines
        float width = 0.2f;          // of every line, in screen units
        float height = 0.07f;
    };

    // The line that a menu without lines shows.
    static MenuNode::Item const s_emptyItem;

    // Makes the menu: no lines, not shown. False, and nothing else, when there is one.
    static bool Initialize();

    // False when there is none.
    static bool Shutdown();

    // Null outside Initialize and Shutdown.
    static CheatMenu * Instance();

    // Gives the current table of a script state, normally its globals, the names that menu files use for
    // numbers: SubMenu, Command, Variable, Separator; Boolean, Float.
    static void RegisterLua(LuaConfig & config);

    // Member by member, so a copy shares all menus with the original.
    CheatMenu(CheatMenu const &) = default;
    CheatMenu & operator=(CheatMenu const &) = default;

    // Throws the lines away and, with `load`, runs a menu file (an aliased or a real path) and takes its
    // lines; without, the name waits for Reload. Null counts as "". A file that cannot be read or run leaves
    // the menu without lines; the trace says why. Lines that are none are left out in silence: `crosstool
    // menu lint` lists them.
    void LoadCheatMenu(char const * file, bool load);

    // Has the next UpdateAndDraw load the file again, at its end, whether the menu is shown or not. The
    // selection of the top menu stays.
    void Reload();

    bool IsEnabled() const { return enabled; }

    // Shows or closes the menu. It opens where it was left, at the next UpdateAndDraw; closing empties its
    // debug frame at once.
    void Enable(bool enable);
    void Toggle();

    // The keys. They do nothing while the menu is closed. Next and previous line go round, and separators
    // can be selected.
    void NextItem();
    void PreviousItem();

    // Back to the parent; the top menu closes.
    void PreviousMenu();

    // Left: a variable steps down, on any other line back to the parent. Right: a variable steps up, a
    // submenu opens. Action: a submenu opens, a command runs, a switch toggles. A switch toggles on all
    // three.
    void DoItemLeft();
    void DoItemRight();
    void DoItemAction();

    // One frame. `dt`: seconds since the last call; what is below 0, or NaN, counts as 0.
    void UpdateAndDraw(float dt);

private:
    using Item = MenuNode::Item;
    struct Box;

    CheatMenu();
    ~CheatMenu();

    void loadFile();
    void serveReload();
    void takeOver(MenuNode & loaded);
    void ClearNodes();
    static void Rec_ClearNode(MenuNode * node);
    static void Rec_LoadMenu(LuaConfig & config, menulines::Way const * above, MenuNode * node);

    // These run script text, behind which the menu may be another, or none. None of them needs one.
    static bool GetBooleanValue(Item const & item);
    static void SetBooleanValue(Item const & item, bool value);
    static float GetFloatValue(Item const & item);
    static void SetFloatValue(Item const & item, float value);
    static void changeValue(Item const & line, float direction);

    Item const * selectedItem() const;

    void InitializeMenuWidths();
    static void Rec_InitializeMenuWidths(MenuNode * node);
    static Math::Vector2f GetMenuSelectionPosition(MenuNode const * node);
    Math::Vector2f GetCurrentSelectionOffset() const;
    Math::Vector2f targetPosition() const;
    void advance(float dt);

    // False from DrawMenu on: a script has taken the lines away or closed the menu, and the frame ends.
    void Draw() const;
    bool DrawMenu(MenuNode const * node, Math::Vector2f const & corner, bool active) const;
    bool DrawItem(Math::Vector2f const & corner, Item const & item, float width, float height, bool selected,
                  bool active) const;
    static void drawArrow(Box const & box, bool selected);
    static void drawBar(Box const & box);
    bool drawVariable(Box const & box, Item const & item, bool selected) const;
    bool drawCheckBox(Box const & box, Item const & item, bool selected) const;
    bool drawSlider(Box const & box, Item const & item, bool selected) const;

    static std::uint32_t s_generation; // another number whenever lines go, of any menu

    MenuNode root;
    std::vector<MenuNode *> path; // the open menus, the root first
    bool reloadPending = false;
    bool enabled = false;
    std::string fileName;
    float pulseTimer = 0.0f; // seconds, at most a period
    bool widthsValid = false;
    Math::Vector2f position{-0.9f, 0.9f}; // of the top menu's corner, in screen units
};
