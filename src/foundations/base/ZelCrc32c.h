// CRC32C, the checksum with Castagnoli's polynomial (RFC 3720, appendix B.4), of a run of bytes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundations/port/ZelExport.h"

// Uses the processor's instruction where it has one.
QUINTOR_API std::uint32_t ZelCrc32c(const void *bytes, std::size_t length);

// The checksum of a longer run, of which these bytes follow those that gave `former`; 0 is that of no bytes.
QUINTOR_API std::uint32_t ZelCrc32cBehind(std::uint32_t former, const void *bytes, std::size_t length);

// The checksum of 512 bytes whose four at 40 count as zeros, as a page of a cache file has it there.
QUINTOR_API std::uint32_t ZelCrc32cOfPage(const unsigned char *page);

// The same for a processor that doesn't multiply such polynomials by vectors.
QUINTOR_API std::uint32_t ZelCrc32cOfPageInParts(const unsigned char *page);

// As ZelCrc32c, by tables alone, eight bytes at a time (Kounavis and Berry, "Novel Table Lookup-Based Algorithms for
// High-Performance CRC Generation", 2008).
QUINTOR_API std::uint32_t ZelCrc32cByTable(const void *bytes, std::size_t length);
