#include "backend/protocol/LossPoint.h"

#include <atomic>
#include <random>

namespace zorel::backend::protocol {

namespace {

std::uint64_t randomSeed()
{
    std::random_device device;
    return std::uint64_t{device()} << 32 | device();
}

/// A bijection of 64 bits that spreads neighbouring numbers (the finaliser of splitmix64): unique in, unique
/// out.
std::uint64_t scramble(std::uint64_t number)
{
    number = (number ^ number >> 30) * 0xbf58476d1ce4e5b9;
    number = (number ^ number >> 27) * 0x94d049bb133111eb;
    return number ^ number >> 31;
}

std::uint64_t nextId()
{
    static std::atomic<std::uint64_t> sequence{randomSeed()};
    return scramble(sequence.fetch_add(0x9e3779b97f4a7c15, std::memory_order_relaxed));
}

} // namespace

LossPoint::LossPoint(std::int64_t pointStep, double pointLoss)
    : id(nextId())
    , step(pointStep)
    , loss(pointLoss)
{}

} // namespace zorel::backend::protocol
