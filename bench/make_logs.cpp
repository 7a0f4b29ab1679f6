// Makes the log files that the benchmarks read: make_logs <directory> <megabytes> [in_order].

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int FILES = 21;
constexpr int USERS = 500;
constexpr int DAYS = 125;
constexpr int COMMANDS = 54;
constexpr std::int64_t DAY = 86400;

/// One record in `text`, which it is appended to: two of five are allowed commands, and one each
/// a denial, a bit and a decision of the parent policy.
void append_record(std::mt19937& random, std::int64_t time, std::string* text) {
    const std::string user = "user" + std::to_string(random() % USERS);
    const std::string command = std::to_string(1 + random() % COMMANDS);
    const auto record = [&](char kind, const std::string& tail) {
        *text += std::to_string(time) + ":" + kind + ":" + user + "[" + command + "]" + tail + "\n";
    };
    switch (random() % 5) {
        case 0:
            return record('D', std::string(1, "KBRC"[random() % 4]) + "<" +
                                   std::to_string(random() % 40) + ">");
        case 1:
            return record('B', "-<" + std::to_string(random() % 24) + ">");
        case 2:
            return record('P', random() % 4 == 0 ? "d<->" : "a<->");
        default:
            return record('S', "-<->");
    }
}

bool make_file(const std::string& path, std::size_t size, bool in_order, std::mt19937& random) {
    const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "w"), std::fclose);
    if (!file) return false;
    const std::int64_t now = std::time(nullptr);
    std::string text;
    for (std::size_t done = 0; done < size;) {
        const std::int64_t span = DAYS * DAY;
        const std::int64_t back =
            in_order ? span - static_cast<std::int64_t>(static_cast<double>(span) *
                                                        static_cast<double>(done) /
                                                        static_cast<double>(size))
                     : static_cast<std::int64_t>(random() % static_cast<std::uint64_t>(span));
        text.clear();
        append_record(random, now - back, &text);
        if (std::fwrite(text.data(), 1, text.size(), file.get()) != text.size()) return false;
        done += text.size();
    }
    return std::fflush(file.get()) == 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: make_logs <directory> <megabytes> [in_order]\n");
        return 2;
    }
    const std::string directory = argv[1];
    const std::size_t size = std::strtoul(argv[2], nullptr, 10) * 1000000 / FILES;
    const bool in_order = argc > 3 && std::string(argv[3]) == "in_order";
    std::mt19937 random(20);
    for (int number = 0; number < FILES; ++number) {
        const std::string path = directory + "/logging_" + std::to_string(number) + ".txt";
        if (!make_file(path, size, in_order, random)) {
            std::perror(path.c_str());
            return 1;
        }
    }
    return 0;
}
