#include "session.h"

#include <utility>

namespace tarnex
{

Engine::Engine(const Options &options) : state(std::make_unique<State>(options)) {}
Engine::~Engine() = default;
Engine::Engine(Engine &&other) noexcept = default;
Engine &Engine::operator=(Engine &&other) noexcept = default;

Engine::State &Engine::live() const
{
    if (!state)
        inside::wrong("The engine has been moved from.");
    return *state;
}

const Options &Engine::options() const { return live().options; }

} // namespace tarnex
