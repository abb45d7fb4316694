#include "bench/latency.h"

#include <algorithm>
#include <numeric>
#include <random>
#include <thread>

namespace bench {

void sample(std::vector<Latency>& all, int rounds, std::chrono::milliseconds rest) {
    std::vector<std::size_t> order(all.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::mt19937 random(1);
    for (int round = 0; round < rounds; ++round) {
        std::shuffle(order.begin(), order.end(), random);
        for (const std::size_t each : order) {
            std::this_thread::sleep_for(rest);
            all[each].times.push_back(all[each].once());
        }
    }
}

}  // namespace bench
