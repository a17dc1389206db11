// cp -R STAGED BUNDLE: puts a copy of a staged bundle in the place of another, or where there is none, at
// once: whoever looks, also after a power cut, finds the old one or the new one, whole.
//
// Where a file system cannot exchange two folders, there is a moment with neither of them in place; then both
// lie beside it, in the folder .NAME.new, in which the copy is made.

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

/// What is written so far outlasts a power cut.
void synchronise(const fs::path &folder) {
    const int opened = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (opened >= 0 && syncfs(opened) == 0) {
        close(opened);
        return;
    }
    throw std::system_error(errno, std::generic_category(), folder);
}

bool isUnknownToTheFileSystem(int error) {
    return error == EINVAL || error == ENOSYS || error == ENOTSUP;
}

void exchange(const fs::path &copy, const fs::path &bundle) {
    if (!fs::exists(fs::symlink_status(bundle)))
        return fs::rename(copy, bundle);
    if (renameat2(AT_FDCWD, copy.c_str(), AT_FDCWD, bundle.c_str(), RENAME_EXCHANGE) == 0)
        return;
    if (!isUnknownToTheFileSystem(errno))
        throw std::system_error(errno, std::generic_category(), bundle);
    const fs::path old = copy.parent_path() / "old";
    fs::rename(bundle, old);
    std::error_code error;
    fs::rename(copy, bundle, error);
    if (!error)
        return;
    fs::rename(old, bundle);
    throw std::system_error(error, bundle);
}

void replace(const fs::path &staged, const fs::path &bundle) {
    const fs::path place = bundle.parent_path();
    const fs::path staging = place / ("." + bundle.filename().string() + ".new");
    fs::remove_all(staging); // of an attempt that was cut off
    fs::create_directory(staging);
    fs::permissions(staging, fs::perms::owner_all);
    try {
        const fs::path copy = staging / "new";
        fs::copy(staged, copy, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
        synchronise(place);
        exchange(copy, bundle);
        synchronise(place);
    } catch (...) {
        std::error_code ignored;
        fs::remove_all(staging / "new", ignored);
        fs::remove(staging, ignored); // unless the old one is still there
        throw;
    }
    fs::remove_all(staging);
}

} // namespace

int main(int argc, char **argv) {
    if (argc != 4 || std::strcmp(argv[1], "-R") != 0 || argv[2][0] != '/' || argv[3][0] != '/') {
        std::fputs("usage: cp -R STAGED BUNDLE\n", stderr);
        return 64;
    }
    umask(0); // the copy has the permissions of what was checked
    try {
        replace(argv[2], argv[3]);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "cp: %s\n", error.what());
        return 1;
    }
    return 0;
}
