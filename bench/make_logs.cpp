// Makes log files with records of random times for scripts/bench: make_logs <directory>
// <megabytes>.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <random>
#include <string>

#include "log_maker.h"

namespace gatescope {
namespace {

constexpr std::int64_t SPAN = BENCH_DAYS * std::int64_t{86400};

bool make_file(const std::string& path, std::size_t size, std::mt19937& random) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "w"), std::fclose);
    if (!file) return false;
    const std::int64_t now = std::time(nullptr);
    std::string text;
    for (std::size_t done = 0; done < size;) {
        text.clear();
        append_record(random, now - static_cast<std::int64_t>(random() % SPAN), &text);
        if (std::fwrite(text.data(), 1, text.size(), file.get()) != text.size()) return false;
        done += text.size();
    }
    return std::fflush(file.get()) == 0;
}

}  // namespace
}  // namespace gatescope

int main(int argc, char** argv) {
    using namespace gatescope;
    if (argc != 3) {
        std::fprintf(stderr, "usage: make_logs <directory> <megabytes>\n");
        return 2;
    }
    const std::string directory = argv[1];
    const std::size_t size = std::strtoul(argv[2], nullptr, 10) * 1000000 / BENCH_FILES;
    std::mt19937 random(20);
    for (int number = 0; number < BENCH_FILES; ++number) {
        const std::string path = directory + "/logging_" + std::to_string(number) + ".txt";
        if (!make_file(path, size, random)) {
            std::perror(path.c_str());
            return 1;
        }
    }
    return 0;
}
