#pragma once

#include "samples/debugdraw/RecordingProxy.h"

#include <functional>

// A recording proxy that acts behind each shape of one kind that it is given.
template <class Shape>
class ActingProxy : public RecordingProxy {
public:
    using RecordingProxy::Draw;
    using RecordingProxy::RecordingProxy;

    void Draw(Shape const & shape, char const * frame) override {
        RecordingProxy::Draw(shape, frame);
        if (act)
            act();
    }

    std::function<void()> act;
};
