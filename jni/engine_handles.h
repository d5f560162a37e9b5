/**
 * The engines that Java programs hold through org.kestro.tarnex.Engine, by handle.
 *
 * A handle is a place in a table and the generation of what stands there: one that was closed or
 * never given out finds nothing, also when its place is in use again.
 */
#ifndef TARNEX_JNI_ENGINE_HANDLES_H
#define TARNEX_JNI_ENGINE_HANDLES_H

#include <tarnex/engine.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

/** An engine, and the lock that its calls from several threads take turns with. */
struct HeldEngine {
    explicit HeldEngine(const tarnex::Options &options) : engine(options) {}

    std::mutex turn;
    tarnex::Engine engine;
};

/** The table; its calls may come from any thread. */
class EngineHandles
{
public:
    /** Opens an engine; what the Engine throws, or std::bad_alloc, leaves the table as it was. */
    std::int64_t open(const tarnex::Options &options);
    /** The engine of a handle, kept alive by the result; null for a handle that is not live. */
    std::shared_ptr<HeldEngine> find(std::int64_t handle);
    /** Takes an engine out of the table; it goes with the last call on it. False when not live. */
    bool close(std::int64_t handle);

private:
    struct Place {
        std::uint32_t generation = 0;
        std::shared_ptr<HeldEngine> held;
    };
    Place *placeOf(std::int64_t handle);

    std::mutex lock;
    std::vector<Place> places;
    std::vector<std::uint32_t> freePlaces; ///< as much room as there are places: never grows late
};

#endif
