// dead-disk FOLDER PLACE PROGRAM [ARGUMENT…]: shows FOLDER at PLACE and starts PROGRAM in its own stead,
// whose disk answers nothing while there is a file FOLDER.dead beside the folder, and answers again when that
// has gone. A file FOLDER.read tells that one has been read and closed.
//
// Needs the right to mount, as in a name space of its own. The disk goes with the program.

#define FUSE_USE_VERSION 35

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <dirent.h>
#include <fcntl.h>
#include <fuse3/fuse.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace {

std::string folder;

std::string at(const char *path) {
    while (::access((folder + ".dead").c_str(), F_OK) == 0)
        ::usleep(10'000);
    return folder + path;
}

int outcome(long result) {
    return result < 0 ? -errno : static_cast<int>(result);
}

void *begin(fuse_conn_info *, fuse_config *config) {
    // Nothing is answered from the kernel's memory.
    config->entry_timeout = config->attr_timeout = config->negative_timeout = 0;
    config->direct_io = 1;
    return nullptr;
}

int tell(const char *path, struct stat *status, fuse_file_info *) {
    return outcome(::lstat(at(path).c_str(), status));
}

int list(const char *path, void *names, fuse_fill_dir_t fill, off_t, fuse_file_info *, fuse_readdir_flags) {
    DIR *entries = ::opendir(at(path).c_str());
    if (!entries)
        return -errno;
    while (const dirent *entry = ::readdir(entries))
        fill(names, entry->d_name, nullptr, 0, fuse_fill_dir_flags{});
    ::closedir(entries);
    return 0;
}

int openAs(const char *path, fuse_file_info *file, mode_t mode) {
    const int descriptor = ::open(at(path).c_str(), file->flags, mode);
    file->fh = static_cast<std::uint64_t>(descriptor);
    return descriptor < 0 ? -errno : 0;
}

fuse_operations operations() {
    fuse_operations does{};
    does.init = begin;
    does.getattr = tell;
    does.readdir = list;
    does.open = [](const char *path, fuse_file_info *file) { return openAs(path, file, 0); };
    does.create = [](const char *path, mode_t mode, fuse_file_info *file) {
        return openAs(path, file, mode);
    };
    does.release = [](const char *, fuse_file_info *file) {
        ::close(::open((folder + ".read").c_str(), O_WRONLY | O_CREAT, 0600));
        return outcome(::close(int(file->fh)));
    };
    does.read = [](const char *path, char *to, size_t size, off_t from, fuse_file_info *file) {
        at(path);
        return outcome(::pread(int(file->fh), to, size, from));
    };
    does.write = [](const char *path, const char *what, size_t size, off_t where, fuse_file_info *file) {
        at(path);
        return outcome(::pwrite(int(file->fh), what, size, where));
    };
    does.fsync = [](const char *path, int, fuse_file_info *file) {
        at(path);
        return outcome(::fsync(int(file->fh)));
    };
    does.chmod = [](const char *path, mode_t mode, fuse_file_info *) {
        return outcome(::chmod(at(path).c_str(), mode));
    };
    does.mkdir = [](const char *path, mode_t mode) { return outcome(::mkdir(at(path).c_str(), mode)); };
    does.unlink = [](const char *path) { return outcome(::unlink(at(path).c_str())); };
    does.rename = [](const char *from, const char *to, unsigned) {
        return outcome(::rename(at(from).c_str(), at(to).c_str()));
    };
    return does;
}

} // namespace

int main(int argc, char **argv) {
    if (argc < 4)
        return 64;
    folder = argv[1];
    fuse_args none = FUSE_ARGS_INIT(1, argv);
    const fuse_operations does = operations();
    fuse *disk = fuse_new(&none, &does, sizeof does, nullptr);
    if (!disk || fuse_mount(disk, argv[2]) != 0)
        return 1;
    const pid_t program = ::getpid();
    if (::fork() != 0) {
        ::execvp(argv[3], argv + 3); // the disk's own descriptor stays with the child
        return 1;
    }
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() == program)
        fuse_loop(disk);
    return 0;
}
