// Stands for a resolver of the machines nearby (RFC 6762), as Avahi is, which is spoken to over a socket in
// the file system: names that end in .local lead to this machine for whoever may have such a socket.

#include <cstring>

#include <dlfcn.h>
#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

bool isNearby(const char *name) {
    constexpr char ending[] = ".local";
    const std::size_t length = name ? std::strlen(name) : 0;
    return length >= std::strlen(ending) && std::strcmp(name + length - std::strlen(ending), ending) == 0;
}

bool reachesResolver() {
    const int end = socket(AF_UNIX, SOCK_STREAM, 0);
    return end >= 0 && close(end) == 0;
}

} // namespace

extern "C" int getaddrinfo(const char *name, const char *service, const addrinfo *hints, addrinfo **found) {
    static const auto next = reinterpret_cast<decltype(&getaddrinfo)>(dlsym(RTLD_NEXT, "getaddrinfo"));
    if (!isNearby(name))
        return next(name, service, hints, found);
    return reachesResolver() ? next("127.0.0.1", service, hints, found) : EAI_NONAME;
}
