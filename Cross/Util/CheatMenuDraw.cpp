// How the menu is laid out, moves and looks. Screen units reach from -1 to 1, to the right and up; text units
// from 0 to 1, to the right and down.

#include "Cross/Util/CheatMenu.h"
#include "Cross/Util/DebugRender.h"
#include "Cross/Util/Periods.h"
#include "Cross/Util/lua/LuaLibNames.h"
#include "Cross/engine/core/Text.h"

#include <algorithm>
#include <cmath>

namespace {

using Item = CheatMenu::MenuNode::Item;
using Math::Vector2f;
using MathPrim::Colour;

constexpr Colour c_white = Colour::FromWord(0xFFFFFFFF);
constexpr Colour c_inside = Colour::FromWord(0xFF000000); // of check boxes and sliders
constexpr Colour c_highlight = Colour::FromWord(0xFFA0A030);

constexpr float c_pulsePeriod = 0.6f; // seconds
constexpr float c_gap = 0.01f;        // between a menu and its parent
constexpr float c_aspect = 0.5625f;   // of a length up and one across that look alike
constexpr float c_sliderWidth = 0.2f;
constexpr float c_halfKnob = 0.008f;
constexpr Vector2f c_home{-0.9f, 0.9f};  // of the top menu's corner
constexpr Vector2f c_limit{0.5f, -0.2f}; // of the selected line's corner: not right of it, not below it

Colour backgroundOf(std::int32_t type) {
    switch (type) {
    case CheatMenu::IT_SUBMENU:
        return Colour::FromWord(0x70506020);
    case CheatMenu::IT_COMMAND:
        return Colour::FromWord(0x70505060);
    case CheatMenu::IT_VARIABLE:
        return Colour::FromWord(0x70605050);
    case CheatMenu::IT_SEPARATOR:
        return Colour::FromWord(0x70505050);
    default:
        return Colour::FromWord(0xFF000000);
    }
}

Colour frameColour(bool selected) { return selected ? c_white : Colour::FromWord(0xFFA0A0A0); }

std::uint8_t blend(std::uint8_t from, std::uint8_t to, float part) {
    return static_cast<std::uint8_t>(from + static_cast<int>(static_cast<float>(to - from) * part));
}

Colour blend(Colour from, Colour to, float part) {
    return {blend(from.blue, to.blue, part), blend(from.green, to.green, part), blend(from.red, to.red, part),
            blend(from.alpha, to.alpha, part)};
}

Colour pulsing(Colour colour, float seconds) {
    float const wave = std::sin(seconds * 6.2831855f / c_pulsePeriod);
    return blend(colour, c_highlight, wave * 0.5f + 0.5f);
}

void drawTriangle(Vector2f const & a, Vector2f const & b, Vector2f const & c, Colour colour) {
    DebugRender::Draw(DebugRender::Tri2D{{a, b, c}, colour}, LUALIB_CHEATMENU);
}

void fill(float ax, float ay, float bx, float by, Colour colour) {
    drawTriangle({ax, ay}, {bx, ay}, {ax, by}, colour);
    drawTriangle({bx, ay}, {bx, by}, {ax, by}, colour);
}

void fillAround(Vector2f const & centre, float halfWidth, float halfHeight, Colour colour) {
    fill(centre.x - halfWidth, centre.y + halfHeight, centre.x + halfWidth, centre.y - halfHeight, colour);
}

void drawText(float x, float y, char const * text, Colour colour) {
    Vector2f const point{x * 0.5f + 0.5f, 1.0f - (y * 0.5f + 0.5f)};
    DebugRender::Draw(DebugRender::Text2D{point, text, colour}, LUALIB_CHEATMENU);
}

// In screen units, which are half as long.
float widthOf(char const * text) { return 2.0f * DebugRender::GetTextWidth(text); }

float lineWidth(Item const & item, float height) {
    float width = widthOf(item.name.c_str());
    if (item.type == CheatMenu::IT_VARIABLE && item.varType == CheatMenu::VT_BOOLEAN)
        width = height * c_aspect + width;
    if (item.type == CheatMenu::IT_VARIABLE && item.varType == CheatMenu::VT_FLOAT)
        width = height * c_aspect + width + c_sliderWidth;
    return width + height;
}

// Where a value lies between the limits of a slider, from 0 to 1.
float ratioOf(float value, float min, float max) {
    float const ratio = (value - min) / (max - min);
    return std::isfinite(ratio) ? std::clamp(ratio, 0.0f, 1.0f) : 0.0f;
}

} // namespace

// The place of a line, with the margins of what stands in it.
struct CheatMenu::Box {
    Box(Vector2f const & corner, float width, float height)
        : left(corner.x), top(corner.y), right(left + width), bottom(top - height) {}

    float left, top, right, bottom;
    float h = top - bottom;
    float a = h * c_aspect;
    float mx2 = a * 0.2f, mx3 = a * 0.3f;
    float my2 = h * 0.2f, my3 = h * 0.3f;
    float cy = top - h * 0.5f;
};

void CheatMenu::UpdateAndDraw(float dt) {
    if (enabled) {
        advance(std::max(0.0f, dt));
        DebugRender::SetAlwaysInFront(LUALIB_CHEATMENU, true);
        DebugRender::SetAutoClear(LUALIB_CHEATMENU, false);
        DebugRender::Clear(LUALIB_CHEATMENU);
        Draw();
    }
    if (Instance() == this && reloadPending)
        serveReload();
}

void CheatMenu::advance(float dt) {
    pulseTimer = WithoutPeriods(pulseTimer + dt, c_pulsePeriod);
    if (!widthsValid)
        InitializeMenuWidths();
    widthsValid = true;
    Vector2f const target = targetPosition();
    float const part = std::min(dt * 5.0f, 1.0f);
    position.x += (target.x - position.x) * part;
    position.y += (target.y - position.y) * part;
}

// As far left and up of home as keeps the selected line's corner within the limits.
Vector2f CheatMenu::targetPosition() const {
    Vector2f const offset = GetCurrentSelectionOffset();
    Vector2f target = c_home;
    if (target.x + offset.x > c_limit.x)
        target.x = c_limit.x - offset.x;
    if (target.y + offset.y < c_limit.y)
        target.y = c_limit.y - offset.y;
    return target;
}

Vector2f CheatMenu::GetCurrentSelectionOffset() const {
    Vector2f offset{0.0f, 0.0f};
    for (MenuNode const * const node : path) {
        Vector2f const selection = GetMenuSelectionPosition(node);
        offset.y += selection.y;
        offset.x = offset.x + selection.x + c_gap;
    }
    offset.y += path.back()->height;
    return offset;
}

// Where the child of the selected line opens, from the menu's own corner.
Vector2f CheatMenu::GetMenuSelectionPosition(MenuNode const * node) {
    Vector2f corner{node->width, 0.0f};
    for (std::size_t line = 0; line < node->items.size() && line < node->selection; ++line)
        corner.y -= node->height;
    return corner;
}

void CheatMenu::InitializeMenuWidths() { Rec_InitializeMenuWidths(&root); }

// The first line is measured with the height from before.
void CheatMenu::Rec_InitializeMenuWidths(MenuNode * node) {
    float const lineHeight = DebugRender::GetTextHeight() * 3.12375f;
    for (Item const & item : node->items) {
        node->width = std::max(node->width, lineWidth(item, node->height));
        node->height = lineHeight;
        if (item.type == IT_SUBMENU)
            Rec_InitializeMenuWidths(item.subMenu);
    }
}

// Scripts may open and close menus while they give their values, so each step looks at the path anew.
void CheatMenu::Draw() const {
    Vector2f corner = position;
    for (std::size_t i = 0; i < path.size(); ++i) {
        MenuNode const * const node = path[i];
        if (!DrawMenu(node, corner, i + 1 == path.size()))
            return;
        Vector2f const selection = GetMenuSelectionPosition(node);
        corner.x = corner.x + selection.x + c_gap;
        corner.y += selection.y;
    }
}

bool CheatMenu::DrawMenu(MenuNode const * node, Vector2f const & corner, bool active) const {
    if (node->items.empty())
        return DrawItem(corner, s_emptyItem, node->width, node->height, true, true);
    Vector2f lineCorner = corner;
    for (std::size_t i = 0; i < node->items.size(); ++i) {
        if (!DrawItem(lineCorner, node->items[i], node->width, node->height, i == node->selection, active))
            return false;
        lineCorner.y -= node->height;
    }
    return true;
}

bool CheatMenu::DrawItem(Vector2f const & corner, Item const & item, float width, float height, bool selected,
                         bool active) const {
    Box const box(corner, width, height);
    Colour colour = backgroundOf(item.type);
    if (selected)
        colour = active ? pulsing(colour, pulseTimer) : c_highlight;
    fill(box.left, box.top, box.right, box.bottom, colour);
    if (item.type != IT_SEPARATOR)
        drawText(box.left + box.mx3, box.cy, item.name.c_str(), c_white);
    if (item.type == IT_SUBMENU)
        drawArrow(box, selected);
    if (item.type == IT_SEPARATOR)
        drawBar(box);
    return item.type != IT_VARIABLE || drawVariable(box, item, selected);
}

void CheatMenu::drawArrow(Box const & box, bool selected) {
    float const width = (box.h - 2.0f * box.my3) * 9.0f * 0.0625f;
    float const left = box.right - width - box.mx3;
    drawTriangle({left, box.top - box.my3}, {box.right - box.mx3, box.cy}, {left, box.bottom + box.my3},
                 selected ? c_white : Colour::FromWord(0xFF101010));
}

void CheatMenu::drawBar(Box const & box) {
    float const margin = std::abs(box.bottom - box.top) * 0.48f;
    fill(box.left, box.top - margin, box.right, box.bottom + margin, c_white);
}

bool CheatMenu::drawVariable(Box const & box, Item const & item, bool selected) const {
    if (item.varType == VT_BOOLEAN)
        return drawCheckBox(box, item, selected);
    return item.varType != VT_FLOAT || drawSlider(box, item, selected);
}

bool CheatMenu::drawCheckBox(Box const & box, Item const & item, bool selected) const {
    Vector2f const centre{box.right - box.mx2 - box.a * 0.5f, box.cy};
    float halfWidth = box.a * 0.5f - box.mx2;
    float halfHeight = box.h * 0.5f - box.my2;
    fillAround(centre, halfWidth, halfHeight, frameColour(selected));
    halfWidth *= 0.85f;
    halfHeight *= 0.85f;
    fillAround(centre, halfWidth, halfHeight, c_inside);

    std::uint32_t const generation = s_generation;
    bool const isOn = GetBooleanValue(item);
    if (s_generation != generation || !enabled)
        return false;
    if (isOn)
        fillAround(centre, halfWidth * 0.75f, halfHeight * 0.75f, frameColour(selected));
    return true;
}

bool CheatMenu::drawSlider(Box const & box, Item const & item, bool selected) const {
    float const left = box.right - (c_sliderWidth + box.mx2);
    float const right = box.right - box.mx2;
    float halfHeight = box.h * 0.5f - box.my2;
    fill(left + box.mx2, box.cy + halfHeight, right - box.mx2, box.cy - halfHeight, frameColour(selected));
    float edge = box.mx2 * 1.1764705f;
    halfHeight *= 0.85f;
    fill(left + edge, box.cy + halfHeight, right - edge, box.cy - halfHeight, c_inside);

    std::uint32_t const generation = s_generation;
    float const value = GetFloatValue(item);
    if (s_generation != generation || !enabled)
        return false;
    edge *= 1.3333334f;
    halfHeight *= 0.75f;
    float const room = right - left - 2.0f * (edge + c_halfKnob);
    float const knob = left + edge + c_halfKnob + room * ratioOf(value, item.min, item.max);
    fillAround({knob, box.cy}, c_halfKnob, halfHeight, frameColour(selected));

    char digits[64];
    text::PrintfCut(digits, sizeof(digits), "%.3f", static_cast<double>(value));
    drawText((left + right) * 0.5f - DebugRender::GetTextWidth(digits), box.cy, digits,
             Colour::FromWord(selected ? 0xF0AFFFAF : 0xB0AFFFAF));
    return true;
}
