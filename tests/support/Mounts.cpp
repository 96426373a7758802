#include "Mounts.h"

#include <sched.h>
#include <sys/mount.h>

bool EnterOwnMounts() {
    return unshare(CLONE_NEWNS) == 0 &&
           mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

bool HideDescriptors() {
    return EnterOwnMounts() && mount("none", "/proc/self/fd", "tmpfs", 0, nullptr) == 0;
}
