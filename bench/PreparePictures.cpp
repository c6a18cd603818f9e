// Makes upload pictures as a run does, without the upload, and prints what that cost.
//
//     prepare_pictures intact|processed LONG-EDGE ROUNDS TARGET-FOLDER SOURCE...
//
// All metadata groups are kept. Prints the least time of a round over all sources and the least user and system time,
// in milliseconds, and the highest resident size of the process, in bytes. Each picture is prepared when it is asked
// for, none ahead of time.
#include "core/ErrorText.h"
#include "com/Hresult.h"
#include "host/PublishingHost.h"
#include "publish/ImagePreparation.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>

namespace
{
namespace fs = std::filesystem;

void Save(IStream *picture, const fs::path &target)
{
    std::ofstream file(target, std::ios::binary);
    char piece[1 << 16];
    ULONG got = 0;
    while (SUCCEEDED(picture->Read(piece, sizeof piece, &got)) && got != 0)
    {
        file.write(piece, got);
    }
}

UploadOptions AllGroups(bool isIntact, UINT32 longEdge)
{
    UploadOptions options;
    options.Mode = isIntact ? SendPixelsIntact : SendProcessed;
    options.WriteCopyright = options.WriteEXIF = options.WriteXMP = options.WriteGPS = options.WriteIPTC = true;
    options.LongEdgePixels = longEdge;
    options.PrintDpi = 300;
    return options;
}

// User and system time of this process so far, in milliseconds.
double Spent()
{
    return 1000.0 * std::clock() / CLOCKS_PER_SEC;
}

// Of this process so far, in bytes; proc(5) tells it in KiB.
long ResidentPeak()
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
    {
        if (line.rfind("VmHWM:", 0) == 0)
        {
            return std::atol(line.c_str() + 6) * 1024;
        }
    }
    return 0;
}
} // namespace

int main(int argc, char **argv)
{
    if (argc < 6)
    {
        std::fprintf(stderr,
                     "usage: prepare_pictures intact|processed LONG-EDGE ROUNDS TARGET-FOLDER SOURCE...\n");
        return 2;
    }
    CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    RunRecord record{ItemCollection()};
    const auto host = PublishingHost::Make(record, [](int, const std::string &, const std::string &message) {
        std::fprintf(stderr, "%s\n", message.c_str());
    });
    const UploadOptions options =
        AllGroups(std::strcmp(argv[1], "intact") == 0, static_cast<UINT32>(std::atoi(argv[2])));
    double least = std::numeric_limits<double>::max();
    double leastSpent = least;
    for (int round = std::atoi(argv[3]); round > 0; --round)
    {
        const auto start = std::chrono::steady_clock::now();
        const double spentBefore = Spent();
        for (char **source = argv + 5; *source != nullptr; ++source)
        {
            const fs::path path = fs::absolute(*source);
            ItemTexts texts;
            try
            {
                Save(PrepareJpeg(host.Get(), path.u16string().c_str(), u"picture", options, SystemPause, texts)
                         .Get(),
                     fs::path(argv[4]) / path.filename());
            }
            catch (const HresultError &error)
            {
                std::fprintf(stderr, "%s: 0x%08x\n", *source, static_cast<unsigned>(error.Code()));
                return 1;
            }
        }
        const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
        least = std::min(least, time.count());
        leastSpent = std::min(leastSpent, Spent() - spentBefore);
    }
    std::printf("%.1f %.1f %ld\n", least, leastSpent, ResidentPeak());
}
