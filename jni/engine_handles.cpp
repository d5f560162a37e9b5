#include "engine_handles.h"

#include <utility>

std::int64_t EngineHandles::open(const tarnex::Options &options)
{
    auto held = std::make_shared<HeldEngine>(options);
    const std::lock_guard guard{lock};
    if (freePlaces.empty()) {
        freePlaces.reserve(places.size() + 1);
        places.emplace_back();
        freePlaces.push_back(static_cast<std::uint32_t>(places.size() - 1));
    }
    const std::uint32_t index = freePlaces.back();
    freePlaces.pop_back();
    Place &place = places[index];
    place.held = std::move(held);
    place.generation = (place.generation + 1) & 0x7fffffff;
    return (std::int64_t{place.generation} << 32) | index;
}

EngineHandles::Place *EngineHandles::placeOf(std::int64_t handle)
{
    const auto index = static_cast<std::size_t>(handle & 0xffffffff);
    if (handle < 0 || index >= places.size())
        return nullptr;
    Place &place = places[index];
    return place.held && place.generation == handle >> 32 ? &place : nullptr;
}

std::shared_ptr<HeldEngine> EngineHandles::find(std::int64_t handle)
{
    const std::lock_guard guard{lock};
    const Place *place = placeOf(handle);
    return place ? place->held : nullptr;
}

bool EngineHandles::close(std::int64_t handle)
{
    std::shared_ptr<HeldEngine> last; // goes after the lock: releasing a network takes a while
    const std::lock_guard guard{lock};
    Place *place = placeOf(handle);
    if (!place)
        return false;
    last = std::move(place->held);
    freePlaces.push_back(static_cast<std::uint32_t>(handle & 0xffffffff));
    return true;
}
