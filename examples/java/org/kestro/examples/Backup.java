package org.kestro.examples;

import java.util.Collections;
import java.util.List;

/**
 * A backup LSP in place, with the bandwidth and class of the LSP that it protects.
 *
 * @param id id of the backup
 * @param lsp the LSP that it protects
 * @param hop the hop of the LSP's path that a local backup protects, counted from 0; for a global
 *        backup {@link #WHOLE_PATH}
 * @param path names of its nodes, first to last
 */
record Backup(int id, Placement.Lsp lsp, int hop, List<String> path) {
    static final int WHOLE_PATH = -1;

    boolean isLocal() {
        return hop != WHOLE_PATH;
    }

    /** The links whose failure sends traffic over the backup, each named by its two ends. */
    List<List<String>> protectedLinks() {
        List<List<String>> hops = Network.hops(lsp.path());
        return isLocal() ? hops.subList(hop, hop + 1) : hops;
    }

    /** Whether the backup also helps when a node at the end of a protected link fails. */
    boolean avoidsNodes() {
        List<String> nodes = isLocal() ? lsp.path().subList(hop + 1, hop + 2)
                                       : lsp.path().subList(1, lsp.path().size() - 1);
        return !nodes.isEmpty() && Collections.disjoint(nodes, path);
    }

    /** Whether traffic on the backup crosses that link of the LSP before or after its detour. */
    boolean stillUses(List<String> link) {
        int position = Network.hops(lsp.path()).indexOf(link);
        int rejoins = lsp.path().indexOf(path.get(path.size() - 1));
        return isLocal() && position >= 0 && (position < hop || position >= rejoins);
    }
}
