#include "samples/debugdraw/GraphSink.h"

#include "Cross/Util/DebugRender.h"
#include "Cross/engine/core/Text.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <string>
#include <vector>

namespace {

using Channel = StatGraph::Channel;
using Math::Vector2f;
using MathPrim::Colour;

char const * const c_frame = "StatGraph";

// All lengths are in screen units; text units are half as long.
constexpr float c_edge = 0.97f; // of the panels, from the middle of the screen
constexpr float c_gap = 0.02f;
constexpr float c_width = 0.46f;
constexpr float c_plotHeight = 0.16f;
constexpr float c_inset = 0.012f;
constexpr float c_lineSpacing = 1.5f;

constexpr Colour c_panel = Colour::FromWord(0xE0283038);
constexpr Colour c_plot = Colour::FromWord(0xFF46525E);
constexpr Colour c_averageLine = Colour::FromWord(0x50FFFFFF);
constexpr Colour c_bright = Colour::FromWord(0xFFFFFFFF);
constexpr Colour c_dim = Colour::FromWord(0xFFC4CCD4);

struct Box {
    float left, top, right, bottom;
};

void drawBox(Box const & box, Colour colour) {
    Vector2f const corners[] = {
        {box.left, box.top}, {box.right, box.top}, {box.left, box.bottom}, {box.right, box.bottom}};
    DebugRender::Draw(DebugRender::Tri2D{{corners[0], corners[1], corners[2]}, colour}, c_frame);
    DebugRender::Draw(DebugRender::Tri2D{{corners[1], corners[3], corners[2]}, colour}, c_frame);
}

void drawText(float x, float y, std::string const & text, Colour colour) {
    DebugRender::Draw(DebugRender::Text2D{{0.5f + x / 2, 0.5f - y / 2}, text.c_str(), colour}, c_frame);
}

float widthOf(std::string const & text) { return 2 * DebugRender::GetTextWidth(text.c_str()); }

void drawTextUpTo(float right, float y, std::string const & text, Colour colour) {
    drawText(right - widthOf(text), y, text, colour);
}

std::string shortened(std::string const & text, float room) {
    if (widthOf(text) <= room)
        return text;
    std::size_t length = text.size();
    while (length > 0 && widthOf(text.substr(0, length) + "...") > room)
        --length;
    return text.substr(0, length) + "...";
}

std::string numberOf(float value) {
    std::string text;
    text::Printf(text, "%.4g", static_cast<double>(value));
    return text;
}

// Both ends are in parts of the plot's height; what is outside of 0 to 1 is cut off.
void drawSegment(Box const & plot, Vector2f start, Vector2f end, Colour colour) {
    if (!std::isfinite(start.y) || !std::isfinite(end.y) || std::max(start.y, end.y) < 0.0f ||
        std::min(start.y, end.y) > 1.0f)
        return;
    auto const placed = [&](Vector2f const & from) {
        float const y = std::clamp(from.y, 0.0f, 1.0f);
        float const x =
            y == from.y ? from.x : start.x + (end.x - start.x) * ((y - start.y) / (end.y - start.y));
        return Vector2f{x, plot.bottom + (plot.top - plot.bottom) * y};
    };
    DebugRender::Draw(DebugRender::Line2D{placed(start), placed(end), colour}, c_frame);
}

void drawCurve(Box const & plot, Channel const & channel) {
    float const scale = channel.max > 0.0f ? channel.max : 1.0f;
    std::size_t const size = channel.samples.size();
    auto const sample = [&](std::size_t age) {
        float const part = static_cast<float>(age) / static_cast<float>(size - 1);
        return Vector2f{plot.left + (plot.right - plot.left) * part,
                        channel.samples[(channel.index + age) % size] / scale};
    };
    float const average = channel.average / scale;
    drawSegment(plot, {plot.left, average}, {plot.right, average}, c_averageLine);
    for (std::size_t i = 0; i + 1 < size; ++i)
        drawSegment(plot, sample(i), sample(i + 1), channel.colour);
}

// A line of text above the plot, and one below it.
void drawPanel(Box const & panel, float line, Channel const & channel) {
    drawBox(panel, c_panel);
    Box const plot{panel.left + c_inset, panel.top - line, panel.right - c_inset, panel.bottom + line};
    drawBox(plot, c_plot);
    drawCurve(plot, channel);
    float const head = panel.top - line / 2, foot = panel.bottom + line / 2;
    std::string const latest = numberOf(channel.LatestSample());
    float const room = plot.right - plot.left - widthOf(latest) - 2 * c_inset;
    drawText(plot.left, head, shortened(channel.name, room), c_bright);
    drawTextUpTo(plot.right, head, latest, c_bright);
    drawText(plot.left, foot, "average " + numberOf(channel.average), c_dim);
    drawTextUpTo(plot.right, foot, "of " + numberOf(channel.max), c_dim);
}

// How many things of a length fit across the screen, with gaps between them.
std::size_t countAcross(float length) {
    return static_cast<std::size_t>(std::max(1.0f, std::floor((2 * c_edge + c_gap) / (length + c_gap))));
}

void drawPanels(std::vector<Channel const *> const & channels) {
    float const line = c_lineSpacing * 2 * DebugRender::GetTextHeight();
    float const height = c_plotHeight + 2 * line;
    std::size_t const rows = countAcross(height), places = rows * countAcross(c_width);
    std::size_t const shown = channels.size() > places ? places - 1 : channels.size();
    auto const panelAt = [&](std::size_t place) {
        float const right = c_edge - static_cast<float>(place / rows) * (c_width + c_gap);
        float const top = c_edge - static_cast<float>(place % rows) * (height + c_gap);
        return Box{right - c_width, top, right, top - height};
    };
    for (std::size_t i = 0; i < shown; ++i)
        drawPanel(panelAt(i), line, *channels[i]);
    if (shown < channels.size()) {
        Box const last = panelAt(shown);
        drawText(last.left + c_inset, last.top - line / 2,
                 "and " + std::to_string(channels.size() - shown) + " more", c_bright);
    }
}

} // namespace

void GraphSink::OnUpdate(Channel const * const * first, Channel const * const * last, bool visible) {
    DebugRender::SetAlwaysInFront(c_frame, true);
    DebugRender::SetAutoClear(c_frame, false);
    DebugRender::Clear(c_frame);
    if (!visible)
        return;
    std::vector<Channel const *> enabled;
    std::copy_if(first, last, std::back_inserter(enabled),
                 [](Channel const * channel) { return channel->enabled; });
    drawPanels(enabled);
}
