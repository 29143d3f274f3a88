// Memory for the arrays of a work on many rows, which are as large as the table and gone with the work: in huge pages,
// where the system has them. Memory that is new costs a fault of the processor for each page when it is first written
// to, which for small pages takes as long as what is written there.
//
// Arrays that are smaller than a huge page come from malloc.
//
// Threads: any.
#pragma once

#include <cstddef>
#include <vector>

#include "foundations/port/ZelExport.h"

class QUINTOR_API CZelArrays {
public:
    static constexpr std::size_t HUGE_PAGE = 2097152;  // bytes; larger arrays begin at a multiple

    static void *RATake(std::size_t bytes);  // never null
    static void RAGive(void *array, std::size_t bytes) noexcept;
};

template <class T>
class CZelArrayAllocator {
public:
    using value_type = T;

    CZelArrayAllocator() = default;
    template <class Other>
    CZelArrayAllocator(const CZelArrayAllocator<Other> & /*other*/) noexcept {}

    T *allocate(std::size_t count) { return static_cast<T *>(CZelArrays::RATake(count * sizeof(T))); }
    void deallocate(T *array, std::size_t count) noexcept { CZelArrays::RAGive(array, count * sizeof(T)); }
    bool operator==(const CZelArrayAllocator & /*other*/) const { return true; }
};

template <class T>
using CZelArray = std::vector<T, CZelArrayAllocator<T>>;
