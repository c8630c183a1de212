/* Plays every file of a directory, or the files given, to the fuzzer's harness: without libFuzzer. */
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

static void replay(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(stream), {}};
    // In memory of exactly its size, so that a read past its end is seen.
    const std::vector<std::uint8_t> input(text.begin(), text.end());
    std::fprintf(stderr, "%s\n", file.c_str()); // the last one printed is the one that failed
    LLVMFuzzerTestOneInput(input.data(), input.size());
}

int main(int argc, char* argv[]) {
    int files = 0;
    for (int i = 1; i < argc; ++i) {
        if (!std::filesystem::is_directory(argv[i])) {
            replay(argv[i]);
            ++files;
            continue;
        }
        for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
            replay(entry.path());
            ++files;
        }
    }
    if (files == 0)
        std::fputs("replay: no input; give files or a directory\n", stderr);
    return files == 0 ? 2 : 0;
}
