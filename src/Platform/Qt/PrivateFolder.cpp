#include "Platform/Qt/PrivateFolder.h"

#include <QFile>

#include <filesystem>

namespace pavonel {

void makePrivateFolder(const QString &path) {
    namespace fs = std::filesystem;
    const fs::path folder = QFile::encodeName(path).toStdString();
    constexpr auto others = fs::perms::group_all | fs::perms::others_all;
    std::error_code ignored;
    fs::create_directories(folder, ignored);
    const fs::file_status status = fs::status(folder, ignored);
    if (fs::is_directory(status) && (status.permissions() & others) != fs::perms::none)
        fs::permissions(folder, others, fs::perm_options::remove, ignored);
}

} // namespace pavonel
