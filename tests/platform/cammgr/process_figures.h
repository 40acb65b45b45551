#pragma once

#include <malloc.h>

#include <cstddef>
#include <filesystem>

/// What this process holds at a moment.
struct ProcessFigures
{
    int threads = 0;
    int handles = 0;
    std::size_t heapBytes = 0; ///< allocated and not freed

    static ProcessFigures now()
    {
        const struct mallinfo2 heap = ::mallinfo2();
        return {.threads = entries("/proc/self/task"),
                .handles = entries("/proc/self/fd"),
                .heapBytes = heap.uordblks + heap.hblkhd};
    }

private:
    static int entries(const char *folder)
    {
        int count = 0;
        for ([[maybe_unused]] const auto &entry : std::filesystem::directory_iterator(folder))
            ++count;
        return count;
    }
};
