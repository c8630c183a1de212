#include "SysBlock.h"

#include <filesystem>
#include <fmt/format.h>
#include <fstream>

static const char numbers[] = "/sys/dev/block";

SysBlock::SysBlock(Node number) : directory_(fmt::format("{}/{}:{}", numbers, number.major, number.minor)) {}

bool SysBlock::isThere() const {
    std::error_code error;
    return std::filesystem::exists(directory_, error) || !std::filesystem::exists(numbers, error);
}

std::string SysBlock::name() const {
    std::error_code error;
    return std::filesystem::read_symlink(directory_, error).filename().string();
}

std::optional<unsigned long long> SysBlock::sectors() const {
    std::ifstream file(directory_ + "/size");
    unsigned long long sectors = 0;
    return file >> sectors ? std::optional(sectors) : std::nullopt;
}

std::string SysBlock::diskState() const {
    std::ifstream file(directory_ + "/device/state");
    std::string state;
    std::getline(file, state);
    return state;
}

bool SysBlock::mayWork() const {
    const std::string state = diskState();
    return isThere() && (state.empty() || state == "running" || state == "live"); // of SCSI and of NVMe disks
}
