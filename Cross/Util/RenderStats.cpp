#include "Cross/Util/RenderStats.h"

#include "Cross/Util/DebugRender.h"
#include "Cross/Util/LogFile.h"
#include "Cross/Util/Periods.h"
#include "Cross/engine/core/Text.h"

#include <algorithm>
#include <cstring>

namespace {

using Entry = RenderStats::StatEntry;

constexpr char const * c_name = "RenderStats"; // of the debug frame and the log
constexpr std::size_t c_capacity = 64;
constexpr std::size_t c_shownRows = 25;

// The table, in text units.
constexpr float c_top = 0.1f;
constexpr float c_headY = 0.13f;
constexpr float c_rowHeight = 0.03f;
constexpr float c_nameX = 0.05f, c_instancesX = 0.65f, c_callsX = 0.75f, c_shadersX = 0.85f, c_trisX = 0.95f;

void drawText(float x, float y, char const * text) {
    DebugRender::Draw(DebugRender::Text2D{{x, y}, text, MathPrim::Colour::FromWord(0xFFFFFFFF)}, c_name);
}

void drawNumber(float x, float y, std::uint32_t number) {
    char digits[16];
    text::PrintfCut(digits, sizeof(digits), "%u", number);
    drawText(x, y, digits);
}

void drawHead() {
    drawText(c_nameX, c_top, "Render Stats");
    drawText(c_nameX, c_headY, "Name");
    drawText(c_instancesX, c_headY, "Instances");
    drawText(c_callsX, c_headY, "Calls");
    drawText(c_shadersX, c_headY, "Shaders");
    drawText(c_trisX, c_headY, "Tris");
}

void drawRow(float y, Entry const & entry) {
    drawText(c_nameX, y, entry.name);
    drawNumber(c_instancesX, y, entry.instances);
    drawNumber(c_callsX, y, entry.renderCalls);
    drawNumber(c_shadersX, y, entry.shaderChanges);
    drawNumber(c_trisX, y, entry.tris);
}

// The figure that a list is sorted by; null for none.
std::uint32_t Entry::*sortKey(RenderStats::SortMode mode) {
    switch (mode) {
    case RenderStats::SortInstances:
        return &Entry::instances;
    case RenderStats::SortRenderCalls:
        return &Entry::renderCalls;
    case RenderStats::SortShaderChanges:
        return &Entry::shaderChanges;
    case RenderStats::SortTris:
        return &Entry::tris;
    default:
        return nullptr;
    }
}

} // namespace

RenderStats * RenderStats::Instance() {
    static RenderStats s_instance;
    return &s_instance;
}

RenderStats::RenderStats() { entries.reserve(c_capacity); }

void RenderStats::Enable(bool enable) {
    enabled = enable;
    if (enable)
        return;
    ClearStats();
    DebugRender::Clear(c_name);
}

RenderStats::StatEntry * RenderStats::AddModelStat(char const * name) {
    if (!enabled || !name)
        return nullptr;
    char const * const slash = std::strrchr(name, '/');
    char const * const model = slash ? slash + 1 : name;
    std::size_t const length = std::min<std::size_t>(std::strlen(model), c_maxName - 1);
    // The zero is looked at first: it sorts most names out without a call.
    auto const found = std::find_if(entries.begin(), entries.end(), [=](StatEntry const & entry) {
        return entry.name[length] == '\0' && std::memcmp(entry.name, model, length) == 0;
    });
    if (found != entries.end()) {
        ++found->instances;
        return nullptr;
    }
    StatEntry & entry = entries.emplace_back();
    std::memcpy(entry.name, model, length);
    entry.instances = 1;
    return &entry;
}

void RenderStats::SetUpdateTime(float seconds) {
    if (!(seconds > 0.0f))
        return;
    updateTime = seconds;
    timer = seconds;
}

void RenderStats::UpdateAndDraw(float dt) {
    if (!enabled)
        return;
    timer += dt;
    DebugRender::Clear(c_name);
    DebugRender::SetAlwaysInFront(c_name, true);
    DebugRender::SetAutoClear(c_name, false);
    Sort();
    Draw();
    if (dumpPending)
        DumpToLogFile();
    dumpPending = false;
    if (timer > updateTime)
        ClearStats();
    timer = WithoutPeriods(timer, updateTime);
}

void RenderStats::ClearStats() { entries.clear(); }

void RenderStats::Sort() {
    auto const key = sortKey(sortMode);
    if (!key)
        return;
    std::stable_sort(entries.begin(), entries.end(), [key](StatEntry const & left, StatEntry const & right) {
        return left.*key > right.*key;
    });
}

// A proxy may announce models or switch the statistics off while it draws, so each row is a copy.
void RenderStats::Draw() {
    drawHead();
    float y = c_top + 0.075f;
    for (std::size_t row = 0; row < entries.size() && row < c_shownRows; ++row) {
        StatEntry const entry = entries[row];
        drawRow(y, entry);
        y += c_rowHeight;
    }
}

void RenderStats::DumpToLogFile() const {
    LogFile log;
    log.Create(c_name, ".csv", true, false);
    log.puts("Name, Instances, Render Calls, Render Call Total, Shaders, Tris");
    for (StatEntry const & entry : entries)
        log.printf("%s, %u, %u, %u, %u, %u", entry.name, entry.instances, entry.renderCalls,
                   entry.instances * entry.renderCalls, entry.shaderChanges, entry.tris);
}
