// fetch: one HTTP request, for the program that starts it.
//
// Standard input holds the request, each part ended by a zero byte: METHOD, URL, how many seconds it may
// take, for how many of them next to nothing may come (0: for all), how many bytes the body of the response
// may have, headers as NAME: VALUE, and an empty part. What follows is the request's own body. Standard
// output gets the body of the response, except that of a redirect. When all of it is there, standard error
// gets the status and the process ends with 0. Otherwise it ends with 1, or is killed by its alarm.
//
// A process of its own, because what it reads comes from strangers: whatever that costs ends with it. Where
// the kernel knows Landlock it writes no file and reads only what the system has for all; where it knows
// seccomp it starts no program and speaks to nothing but the network.
// Redirects are followed, never from HTTPS to HTTP, and credentials never go along to another server.

#include "landlock.h"
#include "seccomp-filter.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <arpa/inet.h>
#include <curl/curl.h>
#include <dlfcn.h>
#include <netdb.h>
#include <strings.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

constexpr std::size_t mostHeaderBytes = 262'144; // of all responses, interim ones and trailers too
constexpr long leastBytesASecond = 1024;         // less is next to nothing
constexpr unsigned graceSeconds = 5;             // for what heeds no limit, as a resolver that hangs
constexpr int mostRedirects = 16;
constexpr rlim_t usualProcessorSeconds = 5;
constexpr rlim_t mostOpenFiles = 64;
constexpr int fchmodat2 = 452;                       // which headers of older systems do not know
constexpr rlim_t bytesAProcessorSecond = 10'000'000; // which every machine does with ease

struct Request {
    std::string method, url;
    std::chrono::seconds longest, longestStall;
    std::size_t largest;
    std::vector<std::string> headers;
    std::string body;
};

/// What may still come.
struct Allowance {
    CURL *curl;
    std::size_t body;
    std::size_t headers = mostHeaderBytes;
};

void limit(__rlimit_resource_t resource, rlim_t most) {
    const rlimit value{most, most};
    setrlimit(resource, &value);
}

/// For what the library itself does not limit.
void limitProcess(const Request &request) {
    alarm(static_cast<unsigned>(request.longest.count()) + graceSeconds);
    limit(RLIMIT_CPU, usualProcessorSeconds + request.largest / bytesAProcessorSecond);
    limit(RLIMIT_NOFILE, mostOpenFiles);
    limit(RLIMIT_FSIZE, 0); // all that is written goes into pipes
    limit(RLIMIT_CORE, 0);  // it would hold the credentials
}

std::string standardInput() {
    std::string input;
    char piece[4096];
    for (std::size_t got = 0; (got = std::fread(piece, 1, sizeof piece, stdin)) > 0;)
        input.append(piece, got);
    return input;
}

Request readRequest() {
    const std::string input = standardInput();
    std::size_t at = 0;
    const auto next = [&] {
        const std::size_t end = std::min(input.find('\0', at), input.size());
        std::string part = input.substr(at, end - at);
        at = std::min(end + 1, input.size());
        return part;
    };
    Request request;
    request.method = next();
    request.url = next();
    request.longest = std::chrono::seconds(std::atol(next().c_str()));
    request.longestStall = std::chrono::seconds(std::atol(next().c_str()));
    request.largest = std::strtoull(next().c_str(), nullptr, 10);
    for (std::string header = next(); !header.empty(); header = next())
        request.headers.push_back(header);
    request.body = input.substr(at);
    return request;
}

long statusOf(CURL *curl) {
    long status = 0;
    curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &status);
    return status;
}

std::size_t takeBody(char *piece, std::size_t, std::size_t size, void *to) {
    auto &left = *static_cast<Allowance *>(to);
    if (size > left.body)
        return CURL_WRITEFUNC_ERROR;
    left.body -= size;
    const bool isRedirect = statusOf(left.curl) / 100 == 3;
    return isRedirect ? size : std::fwrite(piece, 1, size, stdout);
}

std::size_t takeHeader(char *, std::size_t, std::size_t size, void *to) {
    auto &left = *static_cast<Allowance *>(to);
    if (size > left.headers)
        return CURL_WRITEFUNC_ERROR;
    left.headers -= size;
    return size;
}

/// The desktop's settings of where requests are to go, which lie anywhere; so these are looked for, and first
/// asked, before that can no longer be read.
class Proxies {
public:
    Proxies() {
        void *library = dlopen("libproxy.so.1", RTLD_NOW);
        if (!library)
            return;
        const auto make = reinterpret_cast<void *(*)()>(dlsym(library, "px_proxy_factory_new"));
        ask_ = reinterpret_cast<char **(*)(void *, const char *)>(
            dlsym(library, "px_proxy_factory_get_proxies"));
        factory_ = make && ask_ ? make() : nullptr;
    }

    /// Nothing where they are not known, and then the environment counts.
    const char *forUrl(const std::string &url) const {
        char **proxies = factory_ ? ask_(factory_, url.c_str()) : nullptr;
        if (!proxies || !proxies[0])
            return nullptr;
        return std::strcmp(proxies[0], "direct://") == 0 ? "" : proxies[0];
    }

private:
    char **(*ask_)(void *, const char *) = nullptr;
    void *factory_ = nullptr;
};

void setLimits(CURL *curl, const Request &request, Allowance &left) {
    curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http,https"); // or it would read files of this machine too
    curl_easy_setopt(curl, CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_LIMIT, leastBytesASecond);
    curl_easy_setopt(curl, CURLOPT_LOW_SPEED_TIME, static_cast<long>(request.longestStall.count()));
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, takeBody);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &left);
    curl_easy_setopt(curl, CURLOPT_HEADERFUNCTION, takeHeader);
    curl_easy_setopt(curl, CURLOPT_HEADERDATA, &left);
}

/// The file of the certificates that the system trusts, or of those that who started us wants to be trusted:
/// the library knows only where its own system has them, and may have come from another. Null where it is to
/// find them by itself.
const char *trusted() {
    for (const char *file :
         {static_cast<const char *>(std::getenv("SSL_CERT_FILE")), "/etc/ssl/certs/ca-certificates.crt",
          "/etc/pki/tls/certs/ca-bundle.crt", "/etc/ssl/ca-bundle.pem", "/etc/ssl/cert.pem"}) {
        if (file && access(file, R_OK) == 0)
            return file;
    }
    return nullptr;
}

/// From here on, whoever takes over what reads a server's answers can do little. Names are looked up by what
/// the system has in these folders.
void giveRightsUp() {
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    const landlock::Rules rules(landlock::tcpBind);
    for (const char *system : {"/usr", "/lib", "/lib64", "/etc", "/run/systemd/resolve", "/run/resolvconf",
                               "/run/NetworkManager", "/var/lib/ca-certificates", "/nix/store", "/gnu/store"})
        rules.allow(system, landlock::read);
    for (const char *file : {trusted(), "/dev/null", "/dev/urandom"}) {
        if (file)
            rules.allow(file, landlock::readFile);
    }
    rules.enforce();
    // Names are asked for over the network; a resolver behind a socket in the file system is passed over.
    SeccompFilter filter({AF_INET, AF_INET6, AF_NETLINK});
    filter.refuse({SCMP_SYS(execve), SCMP_SYS(execveat), SCMP_SYS(chmod), SCMP_SYS(fchmod),
                   SCMP_SYS(fchmodat), fchmodat2, SCMP_SYS(setxattr), SCMP_SYS(lsetxattr),
                   SCMP_SYS(fsetxattr)});
    filter.enforce();
}

void setMethod(CURL *curl, const Request &request) {
    if (!request.body.empty() || request.method == "POST") {
        curl_easy_setopt(curl, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(request.body.size()));
        curl_easy_setopt(curl, CURLOPT_POSTFIELDS, request.body.data());
    } else {
        curl_easy_setopt(curl, CURLOPT_HTTPGET, 1L);
    }
    curl_easy_setopt(curl, CURLOPT_CUSTOMREQUEST, request.method.c_str());
}

bool isNamed(const std::string &header, const char *name) {
    const std::size_t length = std::strlen(name);
    return strncasecmp(header.c_str(), name, length) == 0 && header[length] == ':';
}

curl_slist *headersOf(const Request &request) {
    curl_slist *list = curl_slist_append(nullptr, "Expect:"); // what the library would add is left out
    const auto isType = [](const std::string &header) { return isNamed(header, "Content-Type"); };
    if (std::none_of(request.headers.begin(), request.headers.end(), isType))
        list = curl_slist_append(list, "Content-Type:");
    for (const std::string &header : request.headers)
        list = curl_slist_append(list, header.c_str());
    return list;
}

std::string partOf(const std::string &url, CURLUPart part) {
    CURLU *address = curl_url();
    char *text = nullptr;
    const bool isKnown = curl_url_set(address, CURLUPART_URL, url.c_str(), 0) == CURLUE_OK &&
                         curl_url_get(address, part, &text, CURLU_DEFAULT_PORT) == CURLUE_OK;
    std::string result = isKnown ? text : "";
    curl_free(text);
    curl_url_cleanup(address);
    return result;
}

bool isSameServer(const std::string &a, const std::string &b) {
    const auto isSame = [&](CURLUPart part) { return partOf(a, part) == partOf(b, part); };
    return isSame(CURLUPART_SCHEME) && isSame(CURLUPART_HOST) && isSame(CURLUPART_PORT);
}

/// Where a machine nearby is, as libcurl's CURLOPT_RESOLVE wants it: such names (RFC 6762) are often known
/// only to a resolver behind a socket in the file system, which cannot be asked once rights are given up.
/// Null for all other names, and where nobody knows it.
curl_slist *findNearby(const std::string &url) {
    const std::string host = partOf(url, CURLUPART_HOST);
    addrinfo *found = nullptr;
    addrinfo wanted{};
    wanted.ai_family = AF_INET;
    wanted.ai_socktype = SOCK_STREAM;
    if (!host.ends_with(".local") || getaddrinfo(host.c_str(), nullptr, &wanted, &found) != 0)
        return nullptr;
    char address[INET_ADDRSTRLEN] = "";
    getnameinfo(found->ai_addr, found->ai_addrlen, address, sizeof address, nullptr, 0, NI_NUMERICHOST);
    freeaddrinfo(found);
    return curl_slist_append(nullptr, (host + ':' + partOf(url, CURLUPART_PORT) + ':' + address).c_str());
}

/// Turns the request to where the response leads (RFC 9110, 15.4); false when it must not go there.
bool follow(Request &request, const std::string &target, long status) {
    if (partOf(request.url, CURLUPART_SCHEME) == "https" && partOf(target, CURLUPART_SCHEME) != "https")
        return false;
    if (status == 303 || ((status == 301 || status == 302) && request.method == "POST")) {
        request.method = "GET";
        request.body.clear();
    }
    if (!isSameServer(request.url, target))
        std::erase_if(request.headers, [](const auto &header) { return isNamed(header, "Authorization"); });
    request.url = target;
    return true;
}

bool send(CURL *curl, const Request &request, const char *proxy,
          std::chrono::steady_clock::time_point deadline) {
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
    curl_slist *headers = headersOf(request);
    curl_easy_setopt(curl, CURLOPT_URL, request.url.c_str());
    curl_easy_setopt(curl, CURLOPT_PROXY, proxy);
    curl_easy_setopt(curl, CURLOPT_HTTPHEADER, headers);
    curl_easy_setopt(curl, CURLOPT_TIMEOUT_MS, std::max<long>(left.count(), 1));
    setMethod(curl, request);
    const bool isWhole = curl_easy_perform(curl) == CURLE_OK;
    curl_slist_free_all(headers);
    return isWhole;
}

/// The status of the response at the end of all redirects; 0 when there is none.
long fetch(CURL *curl, Request request) {
    const auto deadline = std::chrono::steady_clock::now() + request.longest;
    Allowance left{curl, request.largest};
    setLimits(curl, request, left);
    if (const char *const file = trusted())
        curl_easy_setopt(curl, CURLOPT_CAINFO, file);
    const Proxies proxies;
    const char *proxy = proxies.forUrl(request.url);
    curl_easy_setopt(curl, CURLOPT_RESOLVE, findNearby(request.url));
    giveRightsUp();
    for (int redirects = 0; redirects <= mostRedirects; ++redirects) {
        if (!send(curl, request, proxy, deadline))
            return 0;
        const char *target = nullptr;
        curl_easy_getinfo(curl, CURLINFO_REDIRECT_URL, &target);
        if (!target)
            return statusOf(curl);
        if (!follow(request, target, statusOf(curl)))
            return 0;
        proxy = proxies.forUrl(request.url);
    }
    return 0;
}

} // namespace

int main() {
    const Request request = readRequest();
    limitProcess(request);
    CURL *curl = curl_easy_init();
    const long status = curl ? fetch(curl, request) : 0;
    const bool isWhole = status > 0 && std::fflush(stdout) == 0;
    if (isWhole)
        std::fprintf(stderr, "%ld\n", status);
    std::_Exit(isWhole ? EXIT_SUCCESS : EXIT_FAILURE); // a resolver may still be at work
}
