#ifndef MOUNTS_H
#define MOUNTS_H

/// Mounts are this process's own from here on. False where that is not allowed.
bool EnterOwnMounts();

/// Takes /proc/self/fd away from this process and the program that it becomes, in mounts of its
/// own: files without a name then cannot get one.
bool HideDescriptors();

/// Lets nobody add, remove or replace anything in /dev, in mounts of this process's own. What runs
/// as root with the name of a device as its target may have a fault.
bool ProtectDevices();

#endif
