// Spoils samples: the same seed gives the same bytes on every machine.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

class Mutation
{
public:
    Mutation(std::vector<std::string> samples, uint64_t seed) : m_samples(std::move(samples)), m_random(seed) {}

    // Returns a sample with one to eight changes: flipped bits, numbers at their limits, pieces lost, doubled,
    // moved or taken from another sample, an early end.
    std::string Next();

private:
    size_t Below(size_t limit) { return limit == 0 ? 0 : static_cast<size_t>(m_random() % limit); }
    void Change(std::string &bytes);
    void WriteNumber(std::string &bytes);

    std::vector<std::string> m_samples;
    std::mt19937_64 m_random;
};
