#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <string>
#include <unordered_set>

namespace {

constexpr unsigned lineBits = 6; // 64 bytes, as on all that we build for

/// The lines of the processor's cache that were touched.
class Lines {
public:
    void touch(std::uint64_t address, std::uint64_t size) {
        for (auto line = address >> lineBits; line <= (address + size - 1) >> lineBits; ++line)
            lines_.insert(line);
    }
    std::size_t takeCount() {
        const std::size_t count = lines_.size();
        lines_.clear();
        return count;
    }

private:
    std::unordered_set<std::uint64_t> lines_;
};

} // namespace

/// Reads what `valgrind --tool=lackey --trace-mem=yes` writes. Whenever the instruction at ADDRESS is carried
/// out, says how many instructions were since the last time, and how many lines of code and of data they
/// touched.
int main(int argc, char **argv) {
    const std::uint64_t mark = std::strtoull(argc > 1 ? argv[1] : "", nullptr, 0);
    Lines code;
    Lines data;
    std::size_t instructions = 0;
    std::string access; // "I  04016b80,3": kind, address, size
    while (std::getline(std::cin, access)) {
        constexpr std::size_t addressAt = 3;
        if (access.size() <= addressAt || access[0] == '=')
            continue;
        char *comma = nullptr;
        const std::uint64_t address = std::strtoull(access.c_str() + addressAt, &comma, 16);
        const std::uint64_t size = *comma == ',' ? std::strtoull(comma + 1, nullptr, 10) : 1;
        if (access[0] != 'I') {
            data.touch(address, size);
            continue;
        }
        if (address == mark) {
            std::printf("%zu %zu %zu\n", instructions, code.takeCount(), data.takeCount());
            std::fflush(stdout);
            instructions = 0;
        }
        ++instructions;
        code.touch(address, size);
    }
}
