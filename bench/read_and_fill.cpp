// The processor's time in milliseconds for reading files and making their models ready to drive,
// the best of some rounds: read_and_fill ROUNDS FILE... It is what bscan.read of the Python package
// adds to.

#include <bscan/bscan.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>

int main(int argc, char* argv[]) {
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 0;
    double best = 1e30;
    for (int round = 0; round < rounds; ++round) {
        const auto begin = std::clock();
        for (int i = 2; i < argc; ++i) {
            const bscan::Description description = bscan::Description::Read(argv[i]);
            BScanParser parser;
            if (description.Fill(parser) != bscan::kOk) continue;
            bscan::PinDriver pins(*parser.GetPinMap());
            const bscan::PinNames names(pins, &description.GetFacts());
            pins.Preset();
        }
        const double time = 1e3 * static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
        best = std::min(best, time);
    }
    std::printf("%.3f\n", best);
}
