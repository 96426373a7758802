# 32-bit x86: cross compiler and C library of Debian; programs run on a 64-bit machine as they are,
# once they find the C library that was installed for the cross compiler.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(CMAKE_CXX_COMPILER i686-linux-gnu-g++)
set(CMAKE_FIND_ROOT_PATH /usr/i686-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
# The old kind of run path, which is looked up for the libraries' own needs as well.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-Wl,--dynamic-linker=/usr/i686-linux-gnu/lib/ld-linux.so.2 \
-Wl,--disable-new-dtags,-rpath,/usr/i686-linux-gnu/lib")
