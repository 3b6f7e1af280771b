#pragma once

// The frames of a debug renderer, which come into being when they are first named. Their names never move.
// Null counts as the name "".

#include <algorithm>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

// A frame that nobody named before is shown, has auto clear and is not in front.
struct FrameSettings {
    std::string name;
    bool display = true;
    bool autoClear = true;
    bool alwaysInFront = false;
};

// `Frame` is FrameSettings or something derived from it.
template <class Frame>
class FrameTable {
public:
    Frame & Of(char const * name) {
        std::string_view const wanted = name ? name : "";
        auto const found = std::find_if(frames.begin(), frames.end(),
                                        [wanted](Frame const & frame) { return frame.name == wanted; });
        if (found != frames.end())
            return *found;
        frames.emplace_back().name = wanted;
        return frames.back();
    }

    // In the order in which they were first named.
    void List(std::vector<char const *> & names) const {
        names.clear();
        for (Frame const & frame : frames)
            names.push_back(frame.name.c_str());
    }

    auto begin() { return frames.begin(); }

    auto end() { return frames.end(); }

private:
    std::deque<Frame> frames;
};
