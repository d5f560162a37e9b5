/* A square of four nodes: an LSP is placed and protected, the next one finds no room. */
#include <tarnex/engine.h>

#include <array>
#include <iostream>

int main()
{
    using namespace tarnex;
    Engine engine{{.weights = Weights::of(Objective::hops)}};
    for (const int node : {0, 1, 2, 3})
        engine.addNode(NodeId{node});
    const std::array capacity{1000.0};
    int link = 0;
    for (const int node : {0, 1, 2, 3}) { // both ways around
        const NodeId here{node};
        const NodeId next{(node + 1) % 4};
        engine.addLink({LinkId{link++}, here, next, capacity});
        engine.addLink({LinkId{link++}, next, here, capacity});
    }

    const auto show = [](const Path &path) {
        for (const NodeId node : path.nodes)
            std::cout << ' ' << node.value;
        std::cout << '\n';
    };
    const Request request{
        .ingress = NodeId{0}, .egress = NodeId{1}, .bandwidth = 600.0, .level = 3};
    const auto placed = engine.place(request);
    std::cout << "LSP " << placed->id.value << ':';
    show(placed->path);
    const auto protection = engine.protect(placed->id, Scheme::local);
    std::cout << "backup:";
    show(protection->backups.front().path);

    if (const auto second = engine.place({NodeId{0}, NodeId{2}, 600.0}); !second)
        std::cout << second.refusal().sentence << '\n';
    const LinkUse use = engine.use(LinkId{0});
    std::cout << "link 0 carries " << use.total[0][3] << " of " << use.capacity[0] << '\n';
}
