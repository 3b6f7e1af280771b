#include "Cross/Util/UtilSocket.h"

#include "Cross/engine/platform/Socket.h"

namespace {

constexpr std::uint16_t c_version = 0x0202; // 2.2

} // namespace

int UtilSocketStartUp() { return Plat::Socket::StartUp(c_version); }

int UtilSocketShutDown() { return Plat::Socket::CleanUp(); }
