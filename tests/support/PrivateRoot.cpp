#include "tests/support/PrivateRoot.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include <dirent.h>
#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Covered by the new root while it is put together; nothing of it is needed.
const char MOUNT_POINT[] = "/mnt";

bool failed(const char* pc_what)
{
    std::fprintf(stderr, "no private root: %s: %s\n", pc_what, std::strerror(errno));
    return false;
}

bool writeLine(const char* pc_path, const std::string& line)
{
    const int si_file = open(pc_path, O_WRONLY);
    if (si_file < 0)
        return false;
    const bool b_written = write(si_file, line.data(), line.size()) == static_cast<ssize_t>(line.size());
    close(si_file);
    return b_written;
}

/// A mount namespace of its own: as root directly, else inside a user namespace.
bool unshareMounts()
{
    const std::string uid = std::to_string(getuid());
    const std::string gid = std::to_string(getgid());
    if (getuid() == 0 && unshare(CLONE_NEWNS) == 0)
        return true;
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
        return failed("unshare");
    if (!writeLine("/proc/self/setgroups", "deny") || !writeLine("/proc/self/uid_map", "0 " + uid + " 1") ||
        !writeLine("/proc/self/gid_map", "0 " + gid + " 1"))
        return failed("user map");
    return true;
}

/// Makes one entry of the old root directory appear in the new one.
bool bindEntry(const std::string& name)
{
    const std::string from = "/" + name;
    const std::string to = MOUNT_POINT + from;
    struct stat info;
    if (lstat(from.c_str(), &info) != 0)
        return false;
    if (S_ISLNK(info.st_mode)) {
        char target[4096];
        const ssize_t size = readlink(from.c_str(), target, sizeof target - 1);
        if (size < 0)
            return false;
        target[size] = 0;
        return symlink(target, to.c_str()) == 0;
    }
    if (!S_ISDIR(info.st_mode))
        return true; // no test needs a plain file of the root directory
    if (mkdir(to.c_str(), 0755) != 0)
        return false;
    return from == MOUNT_POINT || mount(from.c_str(), to.c_str(), nullptr, MS_BIND | MS_REC, nullptr) == 0;
}

bool fillNewRoot()
{
    DIR* pc_dir = opendir("/");
    if (!pc_dir)
        return failed("reading /");
    bool b_ok = true;
    while (const dirent* pc_entry = readdir(pc_dir)) {
        const std::string name = pc_entry->d_name;
        if (name != "." && name != ".." && name != "ata07" && !bindEntry(name)) {
            b_ok = failed(name.c_str());
            break;
        }
    }
    closedir(pc_dir);
    return b_ok;
}

} // namespace

bool enterPrivateRoot()
{
    char cwd[4096];
    if (!getcwd(cwd, sizeof cwd))
        return failed("working directory");
    if (!unshareMounts())
        return false;
    if (mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
        return failed("private mounts");
    if (mount("tmpfs", MOUNT_POINT, "tmpfs", 0, "mode=755") != 0)
        return failed("tmpfs");
    if (!fillNewRoot())
        return false;
    if (mkdir((std::string(MOUNT_POINT) + "/ata07").c_str(), 0755) != 0)
        return failed("/ata07");
    // Last what cannot be taken back. An emulator may show another root directory than its own paths have.
    if (chdir((std::string(MOUNT_POINT) + cwd).c_str()) != 0 || chroot(MOUNT_POINT) != 0)
        return failed("chroot");
    return true;
}
