#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

// Runs every file of the corpus, and those named on the command line, once.
int main(int argc, char **argv)
{
    std::vector<std::filesystem::path> inputs(argv + 1, argv + argc);
    for (const auto &entry : std::filesystem::directory_iterator(FUZZ_CORPUS))
        inputs.push_back(entry.path());
    for (const std::filesystem::path &input : inputs) {
        std::ifstream file(input, std::ios::binary);
        const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
        // Named first, so that a crash says which one it was.
        std::printf("%s, %zu bytes\n", input.filename().c_str(), bytes.size());
        std::fflush(stdout);
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size());
    }
    std::printf("%zu inputs\n", inputs.size());
    return inputs.empty() ? 1 : 0;
}
