#include "samples/renderer/Canvas.h"

#include "Cross/engine/diagnostics/Trace.h"

#include <algorithm>
#include <bit>
#include <cfloat>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <numeric>

namespace {

constexpr float c_fontPixels = 13.0f;                // the font is drawn for this size
constexpr int c_pictureScale = 3, c_windowScale = 2; // dots along each side of a pixel
constexpr float c_linesPerStep = 540.0f;             // of the canvas, for each multiple of that size
constexpr unsigned int c_fineSide = 1024;            // pixels of a texture that tell places on it well apart

void check(bool done) {
    if (!done)
        dbTimeStampedTracefAux("RENDERER -- %s", SDL_GetError());
}

void check(int result) { check(result == 0); }

// SDL falls back on windows that nobody sees; they count only when they are asked for.
bool startVideo() {
    if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0)
        return false;
    if (std::strcmp(SDL_GetCurrentVideoDriver(), "offscreen") != 0 || SDL_getenv("SDL_VIDEODRIVER"))
        return true;
    SDL_QuitSubSystem(SDL_INIT_VIDEO);
    SDL_SetError("There is no display");
    return false;
}

// The same picture, its pixels as large as fits: SDL's own drawing cuts the places of corners in a texture to
// whole pixels.
Texture refined(Texture const & texture) {
    unsigned int const factor = c_fineSide / std::max(texture.width, texture.height);
    Texture fine{texture.width * factor, texture.height * factor, {}};
    fine.pixels.reserve(std::size_t{fine.width} * fine.height);
    for (unsigned int row = 0; row < fine.height; ++row)
        for (unsigned int column = 0; column < fine.width; ++column)
            fine.pixels.push_back(
                texture.pixels[std::size_t{row / factor} * texture.width + column / factor]);
    return fine;
}

bool isPlain(ImDrawList const & list, ImDrawCmd const & command, unsigned int triangle) {
    ImVec2 const white = ImGui::GetFontTexUvWhitePixel();
    for (unsigned int i = 0; i < 3; ++i) {
        ImDrawIdx const index = list.IdxBuffer[static_cast<int>(command.IdxOffset + triangle * 3 + i)];
        ImVec2 const place = list.VtxBuffer[static_cast<int>(command.VtxOffset + index)].uv;
        if (place.x != white.x || place.y != white.y)
            return false;
    }
    return true;
}

} // namespace

std::unique_ptr<Canvas> Canvas::OpenWindow(char const * title, int width, int height, std::string & reason) {
    std::unique_ptr<Canvas> canvas(new Canvas);
    if (startVideo()) {
        canvas->window.reset(SDL_CreateWindow(title, SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, width,
                                              height, SDL_WINDOW_RESIZABLE));
        if (!canvas->window)
            SDL_QuitSubSystem(SDL_INIT_VIDEO);
    }
    if (canvas->window)
        canvas->renderer.reset(SDL_CreateRenderer(canvas->window.get(), -1, SDL_RENDERER_PRESENTVSYNC));
    if (canvas->renderer && canvas->setUp(c_windowScale) && canvas->fitWindow())
        return canvas;
    reason = SDL_GetError();
    return nullptr;
}

std::unique_ptr<Canvas> Canvas::OpenOffscreen(int width, int height, std::string & reason) {
    std::unique_ptr<Canvas> canvas(new Canvas);
    canvas->surface.reset(SDL_CreateRGBSurfaceWithFormat(0, width * c_pictureScale, height * c_pictureScale,
                                                         32, SDL_PIXELFORMAT_ARGB8888));
    if (canvas->surface)
        canvas->renderer.reset(SDL_CreateSoftwareRenderer(canvas->surface.get()));
    canvas->size = {static_cast<float>(width), static_cast<float>(height)};
    if (canvas->renderer && canvas->setUp(c_pictureScale))
        return canvas;
    reason = SDL_GetError();
    return nullptr;
}

bool Canvas::setUp(int wantedScale) {
    SDL_RendererInfo info;
    if (SDL_GetRendererInfo(renderer.get(), &info) != 0)
        return false;
    wholeDots = info.flags & SDL_RENDERER_SOFTWARE;
    scale = window && wholeDots ? 1 : wantedScale; // a window that is drawn without help has no time for more
    context.reset(ImGui::CreateContext());
    ImGui::SetCurrentContext(context.get());
    ImGui::GetIO().IniFilename = nullptr;
    ImGui::GetIO().BackendFlags |= ImGuiBackendFlags_RendererHasVtxOffset;
    return SDL_SetRenderDrawBlendMode(renderer.get(), SDL_BLENDMODE_BLEND) == 0 && makeFont();
}

bool Canvas::makeFont() {
    ImFontAtlas & fonts = *ImGui::GetIO().Fonts;
    fonts.Flags |= ImFontAtlasFlags_NoBakedLines | ImFontAtlasFlags_NoMouseCursors;
    unsigned char * pixels = nullptr;
    int width = 0, height = 0, pixelBytes = 0;
    fonts.GetTexDataAsRGBA32(&pixels, &width, &height, &pixelBytes);
    fontTexture.reset(
        SDL_CreateTexture(renderer.get(), SDL_PIXELFORMAT_RGBA32, SDL_TEXTUREACCESS_STATIC, width, height));
    fonts.SetTexID(fontTexture.get());
    return fontTexture && SDL_UpdateTexture(fontTexture.get(), nullptr, pixels, width * pixelBytes) == 0 &&
           SDL_SetTextureBlendMode(fontTexture.get(), SDL_BLENDMODE_BLEND) == 0;
}

// What a window shows is lost once it is shown, so that its frames are drawn into a texture.
bool Canvas::fitWindow() {
    int width = 0, height = 0;
    SDL_GetWindowSize(window.get(), &width, &height);
    ImVec2 const fitting{static_cast<float>(width), static_cast<float>(height)};
    if (target && fitting.x == size.x && fitting.y == size.y)
        return true;
    size = fitting;
    target.reset(SDL_CreateTexture(renderer.get(), SDL_PIXELFORMAT_ARGB8888, SDL_TEXTUREACCESS_TARGET,
                                   width * scale, height * scale));
    return target && SDL_SetTextureScaleMode(target.get(), SDL_ScaleModeLinear) == 0 &&
           SDL_SetTextureBlendMode(target.get(), SDL_BLENDMODE_NONE) == 0 &&
           SDL_SetRenderTarget(renderer.get(), target.get()) == 0;
}

float Canvas::TextHeight() const {
    return c_fontPixels * std::max(1.0f, std::floor(size.y / c_linesPerStep));
}

ImVec2 Canvas::SizeOf(std::string_view text) const {
    ImGui::SetCurrentContext(context.get());
    return ImGui::GetIO().Fonts->Fonts[0]->CalcTextSizeA(TextHeight(), FLT_MAX, 0.0f, text.data(),
                                                         text.data() + text.size());
}

ImTextureID Canvas::TextureFor(std::shared_ptr<Texture const> const & texture) {
    auto const found = textures.find(texture);
    return (found != textures.end() ? found : textures.emplace(texture, made(*texture)).first)->second.get();
}

Canvas::Owned<SDL_Texture> Canvas::made(Texture const & texture) const {
    if (wholeDots && std::max(texture.width, texture.height) <= c_fineSide / 2)
        return made(refined(texture));
    auto const width = static_cast<int>(texture.width), height = static_cast<int>(texture.height);
    Owned<SDL_Texture> result(
        SDL_CreateTexture(renderer.get(), SDL_PIXELFORMAT_BGRA32, SDL_TEXTUREACCESS_STATIC, width, height));
    if (result &&
        SDL_UpdateTexture(result.get(), nullptr, texture.pixels.data(),
                          width * static_cast<int>(sizeof(MathPrim::Colour))) == 0 &&
        SDL_SetTextureBlendMode(result.get(), SDL_BLENDMODE_BLEND) == 0 &&
        SDL_SetTextureScaleMode(result.get(), SDL_ScaleModeLinear) == 0)
        return result;
    check(false);
    return nullptr;
}

void Canvas::Clear(MathPrim::Colour colour) {
    std::erase_if(textures, [](auto const & entry) { return entry.first.expired(); });
    check(!window || fitWindow());
    check(SDL_SetRenderDrawColor(renderer.get(), colour.red, colour.green, colour.blue, 255));
    check(SDL_RenderClear(renderer.get()));
}

ImDrawList & Canvas::Open() {
    ImGui::SetCurrentContext(context.get());
    ImGui::GetIO().DisplaySize = size;
    ImGui::NewFrame();
    return *ImGui::GetBackgroundDrawList();
}

void Canvas::Flush() {
    ImGui::SetCurrentContext(context.get());
    ImGui::Render();
    ImDrawData const & data = *ImGui::GetDrawData();
    for (int i = 0; i < data.CmdListsCount; ++i)
        draw(*data.CmdLists[i]);
    check(SDL_RenderFlush(renderer.get()));
}

void Canvas::draw(ImDrawList const & list) {
    place(list.VtxBuffer);
    for (ImDrawCmd const & command : list.CmdBuffer)
        draw(list, command);
}

// SDL's own drawing cuts fractions, of lengths too, which leaves gaps between areas that should meet.
void Canvas::place(ImVector<ImDrawVert> const & vertices) {
    auto const dots = [this](float pixels) {
        float const exact = pixels * static_cast<float>(scale);
        return wholeDots ? std::round(exact) : exact;
    };
    places.clear();
    for (ImDrawVert const & vertex : vertices)
        places.emplace_back(dots(vertex.pos.x), dots(vertex.pos.y));
}

// Plain areas use the texture of the font too, for a white pixel; the rest of it are letters.
void Canvas::draw(ImDrawList const & list, ImDrawCmd const & command) {
    auto * const texture = static_cast<SDL_Texture *>(command.GetTexID());
    auto const isLetter = [&](unsigned int triangle) {
        return texture == fontTexture.get() && !isPlain(list, command, triangle);
    };
    unsigned int const triangles = command.ElemCount / 3;
    for (unsigned int first = 0, end = 0; first < triangles; first = end) {
        bool const letters = isLetter(first);
        for (end = first + 1; end < triangles && isLetter(end) == letters;)
            ++end;
        takeCorners(list, command, first * 3, end * 3);
        if (letters)
            drawLetters();
        else
            drawAreas(texture == fontTexture.get() ? nullptr : texture);
    }
}

void Canvas::takeCorners(ImDrawList const & list, ImDrawCmd const & command, unsigned int first,
                         unsigned int end) {
    corners.clear();
    for (unsigned int i = first; i < end; ++i) {
        ImDrawIdx const index = list.IdxBuffer[static_cast<int>(command.IdxOffset + i)];
        ImDrawVert const & vertex = list.VtxBuffer[static_cast<int>(command.VtxOffset + index)];
        ImVec2 const & place = places[command.VtxOffset + index];
        corners.push_back(
            {{place.x, place.y}, std::bit_cast<SDL_Color>(vertex.col), {vertex.uv.x, vertex.uv.y}});
    }
}

// No corner is shared, and yet there are indices: SDL's own drawing takes triangles with common corners, and
// those without indices, for rectangles too easily, which leaves holes and loses textures. Plain areas go
// without a texture, which is faster and exact.
void Canvas::drawAreas(SDL_Texture * texture) {
    indices.resize(corners.size());
    std::iota(indices.begin(), indices.end(), 0);
    drawTriangles(texture);
}

// Letters are rectangles of two triangles each, and drawn as such they are sharp: the second one shares the
// first and the last corner of the first one.
void Canvas::drawLetters() {
    indices.clear();
    for (int first = 0; first < static_cast<int>(corners.size()); first += 6)
        for (int const corner : {0, 1, 2, 0, 2, 5})
            indices.push_back(first + corner);
    drawTriangles(fontTexture.get());
}

void Canvas::drawTriangles(SDL_Texture * texture) const {
    check(SDL_RenderGeometry(renderer.get(), texture, corners.data(), static_cast<int>(corners.size()),
                             indices.data(), static_cast<int>(indices.size())));
}

void Canvas::Present() {
    if (!window)
        return;
    check(SDL_SetRenderTarget(renderer.get(), nullptr));
    check(SDL_RenderCopy(renderer.get(), target.get(), nullptr, nullptr));
    SDL_RenderPresent(renderer.get());
    check(SDL_SetRenderTarget(renderer.get(), target.get()));
}

bool Canvas::TakePicture(Picture & picture, std::string & reason) const {
    Picture dots;
    dots.width = static_cast<int>(size.x) * scale;
    dots.height = static_cast<int>(size.y) * scale;
    int const pitch = dots.width * 3;
    dots.bytes.resize(static_cast<std::size_t>(pitch) * static_cast<std::size_t>(dots.height));
    if (SDL_RenderReadPixels(renderer.get(), nullptr, SDL_PIXELFORMAT_RGB24, dots.bytes.data(), pitch) != 0) {
        reason = SDL_GetError();
        return false;
    }
    picture = dots.ReducedBy(scale);
    return true;
}
