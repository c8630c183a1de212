// The content of simulated devices: sparse files.
#pragma once

#include <cstdint>
#include <string>

namespace sim {

constexpr std::uint64_t SectorSize = 512; // bytes

/// Makes an empty image.
void createImage(const std::string& path, std::uint64_t sectors);

/// Copies a range of sectors; holes stay holes, and what lies beyond the end of the source stays empty.
void copySectors(const std::string& source, std::uint64_t sourceSector, const std::string& target,
                 std::uint64_t targetSector, std::uint64_t sectors);

} // namespace sim
