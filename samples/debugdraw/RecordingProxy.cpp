#include "samples/debugdraw/RecordingProxy.h"

#include "Cross/engine/core/Text.h"
#include "Cross/engine/core/Utf.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <string_view>

namespace {

// append: one value as JSON.

void append(std::string & line, bool value) { line += value ? "true" : "false"; }

void append(std::string & line, unsigned int value) { line += std::to_string(value); }

void append(std::string & line, float value) {
    if (!std::isfinite(value)) {
        line += std::isnan(value) ? "\"nan\"" : value > 0.0f ? "\"inf\"" : "\"-inf\"";
        return;
    }
    char digits[32];
    line.append(digits, std::to_chars(digits, digits + sizeof(digits), value).ptr);
}

void append(std::string & line, MathPrim::Colour colour) {
    std::string word;
    text::Printf(word, "\"0x%08X\"", colour.ToWord());
    line += word;
}

void appendByte(std::string & line, unsigned char byte, bool escapeHigh) {
    if (byte == '"' || byte == '\\')
        line += '\\';
    if (byte >= 0x20 && (byte < 0x80 || !escapeHigh)) {
        line += static_cast<char>(byte);
        return;
    }
    std::string escape;
    text::Printf(escape, "\\u%04X", static_cast<unsigned int>(byte));
    line += escape;
}

void append(std::string & line, char const * value) {
    if (!value) {
        line += "null";
        return;
    }
    std::string_view const bytes = value;
    std::u16string units;
    bool const malformed = !utf::ToUtf16Strict(bytes, units);
    line += '"';
    for (char const byte : bytes)
        appendByte(line, static_cast<unsigned char>(byte), malformed);
    line += '"';
}

template <class Values>
void appendList(std::string & line, Values const & values);

void append(std::string & line, Math::Vector2f const & value) {
    float const components[] = {value.x, value.y};
    appendList(line, components);
}

void append(std::string & line, Math::Vector3f const & value) {
    float const components[] = {value.x, value.y, value.z};
    appendList(line, components);
}

template <class T, std::size_t count>
void append(std::string & line, T const (&values)[count]) {
    appendList(line, values);
}

void append(std::string & line, std::vector<char const *> const & values) { appendList(line, values); }

template <class Values>
void appendList(std::string & line, Values const & values) {
    char const * separator = "";
    line += '[';
    for (auto const & value : values) {
        line += separator;
        append(line, value);
        separator = ",";
    }
    line += ']';
}

void appendMembers(std::string &) {}

template <class Value, class... Rest>
void appendMembers(std::string & line, char const * name, Value const & value, Rest const &... rest) {
    line.append(",\"").append(name).append("\":");
    append(line, value);
    appendMembers(line, rest...);
}

} // namespace

template <class... Members>
void RecordingProxy::record(char const * call, Members const &... namesAndValues) {
    std::string line = "{\"call\":";
    append(line, call);
    appendMembers(line, namesAndValues...);
    out << line << "}\n";
}

template <class... Members>
void RecordingProxy::draw(char const * shape, char const * frame, Members const &... namesAndValues) {
    frames.Of(frame);
    record("Draw", "shape", shape, "frame", frame, namesAndValues...);
}

void RecordingProxy::set(char const * call, char const * frame, bool FrameSettings::*setting, bool enable) {
    frames.Of(frame).*setting = enable;
    record(call, "frame", frame, "enable", enable);
}

bool RecordingProxy::get(char const * call, char const * frame, bool FrameSettings::*setting) {
    bool const result = frames.Of(frame).*setting;
    record(call, "frame", frame, "result", result);
    return result;
}

unsigned int RecordingProxy::numberOf(MathPrim::Mesh const * mesh) {
    auto place = std::find(meshes.begin(), meshes.end(), mesh);
    if (place == meshes.end())
        place = meshes.insert(place, mesh);
    return static_cast<unsigned int>(place - meshes.begin()) + 1;
}

void RecordingProxy::Display() { record("Display"); }

void RecordingProxy::OnFrame() { record("OnFrame"); }

void RecordingProxy::OnSimulate() { record("OnSimulate"); }

void RecordingProxy::List(std::vector<char const *> & names) {
    frames.List(names);
    record("List", "result", names);
}

void RecordingProxy::SetDisplay(char const * frame, bool enable) {
    set("SetDisplay", frame, &FrameSettings::display, enable);
}

bool RecordingProxy::GetDisplay(char const * frame) {
    return get("GetDisplay", frame, &FrameSettings::display);
}

void RecordingProxy::SetAutoClear(char const * frame, bool enable) {
    set("SetAutoClear", frame, &FrameSettings::autoClear, enable);
}

bool RecordingProxy::GetAutoClear(char const * frame) {
    return get("GetAutoClear", frame, &FrameSettings::autoClear);
}

void RecordingProxy::SetAlwaysInFront(char const * frame, bool enable) {
    set("SetAlwaysInFront", frame, &FrameSettings::alwaysInFront, enable);
}

bool RecordingProxy::GetAlwaysInFront(char const * frame) {
    return get("GetAlwaysInFront", frame, &FrameSettings::alwaysInFront);
}

void RecordingProxy::Clear(char const * frame) {
    frames.Of(frame);
    record("Clear", "frame", frame);
}

float RecordingProxy::GetTextHeight() {
    constexpr float c_height = 3.0f / 128.0f;
    record("GetTextHeight", "result", c_height);
    return c_height;
}

float RecordingProxy::GetTextWidth(char const * text) {
    float const width = text ? static_cast<float>(std::strlen(text)) / 128.0f : 0.0f;
    record("GetTextWidth", "text", text, "result", width);
    return width;
}

void RecordingProxy::Draw(DebugRender::Plane3D const & shape, char const * frame) {
    draw("Plane3D", frame, "point", shape.point, "normal", shape.normal, "size", shape.size, "colour",
         shape.colour);
}

void RecordingProxy::Draw(DebugRender::Mesh const & shape, char const * frame) {
    draw("Mesh", frame, "mesh", numberOf(shape.mesh), "transform", shape.transform.rows, "colour",
         shape.colour);
}

void RecordingProxy::Draw(DebugRender::Text3D const & shape, char const * frame) {
    draw("Text3D", frame, "position", shape.position, "text", shape.text, "colour", shape.colour);
}

void RecordingProxy::Draw(DebugRender::Text2D const & shape, char const * frame) {
    draw("Text2D", frame, "position", shape.position, "text", shape.text, "colour", shape.colour);
}

void RecordingProxy::Draw(DebugRender::Sphere const & shape, char const * frame) {
    draw("Sphere", frame, "centre", shape.centre, "radius", shape.radius, "colour", shape.colour);
}

void RecordingProxy::Draw(DebugRender::Circle3D const & shape, char const * frame) {
    draw("Circle3D", frame, "centre", shape.centre, "normal", shape.normal, "radius", shape.radius, "colour",
         shape.colour);
}

void RecordingProxy::Draw(DebugRender::Circle const & shape, char const * frame) {
    draw("Circle", frame, "centre", shape.centre, "radius", shape.radius, "colour", shape.colour);
}

void RecordingProxy::Draw(DebugRender::Cube const & shape, char const * frame) {
    draw("Cube", frame, "corners", shape.corners, "colour", shape.colour, "flag",
         static_cast<unsigned int>(shape.flag));
}

void RecordingProxy::Draw(DebugRender::Tri const & shape, char const * frame) {
    draw("Tri", frame, "corners", shape.corners, "colour", shape.colour);
}

void RecordingProxy::Draw(DebugRender::Line const & shape, char const * frame) {
    draw("Line", frame, "start", shape.start, "end", shape.end, "colour", shape.colour);
}

void RecordingProxy::Draw(DebugRender::Point const & shape, char const * frame) {
    draw("Point", frame, "position", shape.position, "size", shape.size, "colour", shape.colour);
}

void RecordingProxy::Draw(DebugRender::OvalOutline const & shape, char const * frame) {
    draw("OvalOutline", frame, "centre", shape.centre, "axis1", shape.axis1, "axis2", shape.axis2, "colour",
         shape.colour);
}

void RecordingProxy::Draw(DebugRender::RectOutline const & shape, char const * frame) {
    draw("RectOutline", frame, "centre", shape.centre, "axis1", shape.axis1, "axis2", shape.axis2, "colour",
         shape.colour);
}

void RecordingProxy::Draw(DebugRender::Tri2D const & shape, char const * frame) {
    draw("Tri2D", frame, "corners", shape.corners, "colour", shape.colour);
}

void RecordingProxy::Draw(DebugRender::Line2D const & shape, char const * frame) {
    draw("Line2D", frame, "start", shape.start, "end", shape.end, "colour", shape.colour);
}

void RecordingProxy::Draw(DebugRender::Point2D const & shape, char const * frame) {
    draw("Point2D", frame, "position", shape.position, "size", shape.size, "colour", shape.colour);
}
