// The album page with many files: how soon it can be used, how soon what can be seen has its
// picture, how long its thread is ever blocked, and what memory it takes; next to a plain icon list
// of the same files in the same run.
//
// bench_album [COUNT...]: how many photos, and as many recordings (10 200 2000).

#include "bench/measured_process.h"
#include "tests/support/client_home.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

using namespace std::chrono_literals;

namespace {

constexpr auto lineDeadline = 120s;
constexpr double usableTarget = 1000; // ms
constexpr double memoryTarget = 150;  // MB

/// What a run reported, by name, and what was measured from outside.
using Figures = std::map<std::string, double>;

Figures run(const std::string &program, const std::string &kind, const std::string &folder)
{
    bench::MeasuredProcess process({BENCH_ALBUM_PROGRAM, program, kind, folder}, true);
    Figures told;
    while (told.count("scrolled") == 0) {
        const std::string line = process.readLine(lineDeadline);
        const auto blank = line.find(' ');
        if (blank == std::string::npos)
            throw std::runtime_error("the program ended early or hangs");
        const std::string name = line.substr(0, blank);
        told[name] = std::strtod(line.c_str() + blank, nullptr);
        if (name == "opened" || name == "scrolled")
            told["memory." + name] = process.memoryMegabytes();
    }
    return told;
}

void fill(const std::string &folder, int count)
{
    bench::MeasuredProcess process({BENCH_ALBUM_PROGRAM, "fill", folder, std::to_string(count)},
                                   true);
    if (process.readLine(lineDeadline).empty())
        throw std::runtime_error("the files could not be made");
}

void print(const char *program, const Figures &figures)
{
    std::printf("%-12s %8.0f %8.0f %8.0f (%6.0f) %8.0f %8.0f %8.1f %8.1f\n", program,
                figures.at("usable"), figures.at("filled"), figures.at("open.block"),
                figures.at("open.computed"), figures.at("fill.block"), figures.at("scroll.block"),
                figures.at("memory.opened"), figures.at("memory.scrolled"));
}

void measure(int count)
{
    zelvaro::test::ClientHome home;
    zelvaro::test::SimulatedCamera camera;
    camera.name = "Front door";
    camera.uid = "ALBUM-1"; // nobody answers to it
    home.registerCameras({camera});
    const std::string folder = home.albumFolder() + "/" + camera.uid;
    fill(folder, count);
    for (const std::string kind : {"photos", "videos"}) {
        std::printf("%d %s\n", count, kind.c_str());
        std::printf("%-12s %8s %8s %-37s %-17s\n", "program", "usable", "filled",
                    "  longest block, ms", "  memory, MB");
        std::printf("%-12s %8s %8s %8s (%6s) %8s %8s %8s %8s\n", "", "ms", "ms", "opening", "CPU",
                    "filling", "scroll", "opened", "scrolled");
        const Figures client = run("client", kind, folder);
        print("zelvaro", client);
        print("plain list", run("list", kind, folder));
        const double memory = std::max(client.at("memory.opened"), client.at("memory.scrolled"));
        std::printf("usable within %.0f ms: %s; at most %.0f MB: %s\n\n", usableTarget,
                    client.at("usable") <= usableTarget ? "kept" : "MISSED", memoryTarget,
                    memory <= memoryTarget ? "kept" : "MISSED");
        std::fflush(stdout);
    }
}

} // namespace

int main(int argc, char **argv)
{
    std::vector<int> counts;
    for (int i = 1; i < argc; ++i)
        counts.push_back(std::max(1, std::atoi(argv[i])));
    if (counts.empty())
        counts = {10, 200, 2000};
    try {
        for (const int count : counts)
            measure(count);
    } catch (const std::exception &problem) {
        std::fprintf(stderr, "bench_album: %s\n", problem.what());
        return 1;
    }
    return 0;
}
