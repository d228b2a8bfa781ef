// Preloaded by scripts/with_driver.sh: Mesa's virgl client connects to /tmp/.virgl_test and has no setting for it; this
// connects it to the socket that $KV_VIRGL_SOCKET names, so that every test run has a server of its own.
#include <dlfcn.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <cstdlib>
#include <cstring>
#include <string_view>

extern "C" int connect(int descriptor, const sockaddr* address, socklen_t size) {
    static const auto real = reinterpret_cast<decltype(&connect)>(dlsym(RTLD_NEXT, "connect"));
    const char* const wanted = std::getenv("KV_VIRGL_SOCKET");
    if (wanted != nullptr && address != nullptr && address->sa_family == AF_UNIX && size <= sizeof(sockaddr_un)) {
        sockaddr_un local{};
        std::memcpy(&local, address, size);
        if (std::string_view(local.sun_path, strnlen(local.sun_path, sizeof(local.sun_path))) == "/tmp/.virgl_test" &&
            std::strlen(wanted) < sizeof(local.sun_path)) {
            std::memset(local.sun_path, 0, sizeof(local.sun_path));
            std::memcpy(local.sun_path, wanted, std::strlen(wanted));
            return real(descriptor, reinterpret_cast<const sockaddr*>(&local), sizeof(local));
        }
    }
    return real(descriptor, address, size);
}
