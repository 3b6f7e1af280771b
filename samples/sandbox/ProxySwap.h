#pragma once

// Another debug renderer, or none, in place of the registered one while this lives.

#include "Cross/Util/DebugRender.h"

class ProxySwap {
public:
    explicit ProxySwap(DebugRenderProxy * proxy) : before(DebugRender::s_pProxy) {
        DebugRender::Register(proxy);
    }

    ProxySwap(ProxySwap const &) = delete;
    ProxySwap & operator=(ProxySwap const &) = delete;

    ~ProxySwap() { DebugRender::Register(before); }

private:
    DebugRenderProxy * const before;
};
