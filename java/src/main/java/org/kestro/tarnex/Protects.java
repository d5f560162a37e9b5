package org.kestro.tarnex;

import java.util.List;

/**
 * What a backup keeps alive when it fails.
 *
 * @param primary id of the LSP that it protects; -1 for a primary, which protects nothing
 * @param links ids of links of the primary's path: one for a local backup, all for a global one
 * @param nodes ids of nodes between the primary's ends that the backup avoids as well
 */
public record Protects(int primary, List<Integer> links, List<Integer> nodes) {
    /** Takes copies of the lists. */
    public Protects {
        links = List.copyOf(links);
        nodes = List.copyOf(nodes);
    }
}
