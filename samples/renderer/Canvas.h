#pragma once

// Canvas: what is drawn on, a window or a picture in memory, with the font. Both go through the same calls of
// SDL; Dear ImGui makes the geometry of lines, areas and letters. A picture is drawn larger than it comes
// out, which smooths its edges. What SDL refuses while drawing is traced.
//
// Threads: one, that of main for a window. One window at a time, since the events of all have one queue.

#include "Cross/engine/core/MathPrim.h"
#include "samples/renderer/Picture.h"
#include "samples/renderer/Texture.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <SDL.h>
#include <imgui.h>

class Canvas {
public:
    // Null, with the reason, where there is no display or the system refuses. Sizes are in pixels, above 0.
    static std::unique_ptr<Canvas> OpenWindow(char const * title, int width, int height,
                                              std::string & reason);
    static std::unique_ptr<Canvas> OpenOffscreen(int width, int height, std::string & reason);

    bool IsWindow() const { return window != nullptr; }

    // The size of the canvas, the height of a line of text and the size of a text, in pixels. The font grows
    // in whole steps with the canvas, so that letters stay sharp.
    ImVec2 Size() const { return size; }

    float Aspect() const { return size.x / size.y; }

    float TextHeight() const;
    ImVec2 SizeOf(std::string_view text) const;

    // What to draw a texture with, made at first use. It lasts until the Clear after the texture is gone.
    // Null where the system refuses. REQUIRES: `texture` is not null.
    ImTextureID TextureFor(std::shared_ptr<Texture const> const & texture);

    // Fills the canvas, after it took on the size of the window.
    void Clear(MathPrim::Colour colour);

    // Gives the list to draw into; Flush puts what it holds on the canvas. They come in pairs.
    ImDrawList & Open();
    void Flush();

    // Shows the canvas in the window.
    void Present();

    // False, with the reason, when it can't be read.
    bool TakePicture(Picture & picture, std::string & reason) const;

private:
    struct Closer {
        // Each window was opened with a start of the video system, which SDL counts.
        void operator()(SDL_Window * object) const {
            SDL_DestroyWindow(object);
            SDL_QuitSubSystem(SDL_INIT_VIDEO);
        }

        void operator()(SDL_Surface * object) const { SDL_FreeSurface(object); }

        void operator()(SDL_Renderer * object) const { SDL_DestroyRenderer(object); }

        void operator()(SDL_Texture * object) const { SDL_DestroyTexture(object); }

        void operator()(ImGuiContext * object) const { ImGui::DestroyContext(object); }
    };

    template <class Object>
    using Owned = std::unique_ptr<Object, Closer>;

    Canvas() = default;

    bool setUp(int wantedScale);
    bool makeFont();
    bool fitWindow();
    Owned<SDL_Texture> made(Texture const & texture) const;
    void draw(ImDrawList const & list);
    void draw(ImDrawList const & list, ImDrawCmd const & command);
    void takeCorners(ImDrawList const & list, ImDrawCmd const & command, unsigned int first,
                     unsigned int end);
    void drawAreas(SDL_Texture * texture);
    void drawLetters();
    void drawTriangles(SDL_Texture * texture) const;
    void place(ImVector<ImDrawVert> const & vertices);

    // In the order of their making. A picture has a surface, a window has itself and a target.
    Owned<SDL_Window> window;
    Owned<SDL_Surface> surface;
    Owned<SDL_Renderer> renderer;
    Owned<SDL_Texture> target;
    Owned<SDL_Texture> fontTexture;
    std::map<std::weak_ptr<Texture const>, Owned<SDL_Texture>, std::owner_less<>> textures;
    Owned<ImGuiContext> context;
    ImVec2 size;
    int scale = 1;          // dots along each side of a pixel
    bool wholeDots = false; // SDL itself draws

    std::vector<ImVec2> places;      // of the vertices of a list, in dots
    std::vector<SDL_Vertex> corners; // of the triangles that are being drawn
    std::vector<int> indices;        // of corners
};
