#ifndef LAST_PAGE_H
#define LAST_PAGE_H

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <new>

/// A page of memory with one behind it that cannot be read.
class LastPage {
public:
    LastPage()
        : size(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))),
          pages(
              mmap(nullptr, 2 * size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {
        if (pages == MAP_FAILED || mprotect(End(), size, PROT_NONE) != 0) throw std::bad_alloc();
    }
    LastPage(const LastPage&) = delete;
    LastPage& operator=(const LastPage&) = delete;
    ~LastPage() { munmap(pages, 2 * size); }

    char* End() const { return static_cast<char*>(pages) + size; }

private:
    const std::size_t size;
    void* const pages;
};

#endif
