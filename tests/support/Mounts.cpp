#include "Mounts.h"

#include <sched.h>
#include <sys/mount.h>
#include <sys/statvfs.h>

bool EnterOwnMounts() {
    return unshare(CLONE_NEWNS) == 0 &&
           mount("none", "/", "none", MS_REC | MS_PRIVATE, nullptr) == 0;
}

bool HideDescriptors() {
    return EnterOwnMounts() && mount("none", "/proc/self/fd", "tmpfs", 0, nullptr) == 0;
}

bool ProtectDevices() {
    struct statvfs before;
    if (!EnterOwnMounts() || statvfs("/dev", &before) != 0) return false;
    const unsigned long kept = before.f_flag & (ST_NOSUID | ST_NODEV | ST_NOEXEC);
    return mount("/dev", "/dev", "none", MS_BIND | MS_REC, nullptr) == 0 &&
           mount("none", "/dev", "none", MS_BIND | MS_REMOUNT | MS_RDONLY | kept, nullptr) == 0;
}
