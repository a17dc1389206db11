#include "Platform/Posix/LocalZone.h"

#include <QDateTime>

#include <ctime>

#include <sys/stat.h>

namespace pavonel {

namespace {

constexpr std::chrono::seconds betweenLooks{5};

/// The C library knows forms of `TZ` that Qt does not, such as a path or a rule without dates.
int offsetOfTheCLibrary() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    ::tzset();
    ::localtime_r(&now, &local);
    return static_cast<int>(local.tm_gmtoff);
}

} // namespace

LocalZone::Origin LocalZone::Origin::now() {
    Origin origin{.variable = qgetenv("TZ")};
    struct stat link {};
    if (::lstat("/etc/localtime", &link) == 0) {
        origin.device = link.st_dev;
        origin.file = link.st_ino;
        origin.changed = link.st_ctime;
        origin.size = link.st_size;
    }
    return origin;
}

QTimeZone LocalZone::current() {
    const auto now = std::chrono::steady_clock::now();
    if (zone_.isValid() && now < nextLook_)
        return zone_;
    nextLook_ = now + betweenLooks;
    Origin origin = Origin::now();
    if (zone_.isValid() && origin == origin_)
        return zone_;
    const QTimeZone zone = QTimeZone::systemTimeZone();
    const int offset = offsetOfTheCLibrary();
    if (!zone.isValid() || zone.offsetFromUtc(QDateTime::currentDateTimeUtc()) != offset) {
        origin_.reset(); // an offset holds only until the clocks change, so the next look finds it anew
        zone_ = QTimeZone(offset);
        return zone_;
    }
    origin_ = std::move(origin);
    zone_ = zone;
    return zone_;
}

} // namespace pavonel
