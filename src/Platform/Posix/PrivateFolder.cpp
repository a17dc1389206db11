#include "Platform/Posix/PrivateFolder.h"

#include <QFile>

#include <cerrno>
#include <filesystem>

#include <sys/stat.h>

namespace pavonel {

namespace {

/// Private from the first moment, whatever the process's mask.
void makeWhatIsMissing(const std::filesystem::path &folder) {
    if (::mkdir(folder.c_str(), S_IRWXU) == 0 || errno != ENOENT || !folder.has_parent_path() ||
        folder == folder.root_path())
        return;
    makeWhatIsMissing(folder.parent_path());
    ::mkdir(folder.c_str(), S_IRWXU);
}

} // namespace

void makePrivateFolder(const QString &path) {
    namespace fs = std::filesystem;
    const fs::path folder = QFile::encodeName(path).toStdString();
    constexpr auto others = fs::perms::group_all | fs::perms::others_all;
    std::error_code ignored;
    makeWhatIsMissing(folder);
    const fs::file_status status = fs::status(folder, ignored);
    if (fs::is_directory(status) && (status.permissions() & others) != fs::perms::none)
        fs::permissions(folder, others, fs::perm_options::remove, ignored);
}

} // namespace pavonel
