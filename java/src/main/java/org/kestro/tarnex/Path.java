package org.kestro.tarnex;

import java.util.List;

/**
 * A way through the network.
 *
 * @param nodes ids of its nodes, ingress first
 * @param links ids of its links, one less
 */
public record Path(List<Integer> nodes, List<Integer> links) {
    /** Takes copies of the lists. */
    public Path {
        nodes = List.copyOf(nodes);
        links = List.copyOf(links);
    }
}
