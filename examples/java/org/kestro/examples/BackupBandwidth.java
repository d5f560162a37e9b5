package org.kestro.examples;

import java.util.ArrayList;
import java.util.Collection;
import java.util.HashMap;
import java.util.List;
import java.util.Map;

import org.kestro.examples.Placement.Lsp;

/**
 * How much bandwidth backups reserve on the links, by the rule that the engine follows.
 *
 * <p>Nothing but one link or one node fails at a time, where a failed node takes all links into it
 * along. A failure sends the traffic of some LSPs over their backups, and frees a link of the LSPs
 * that cross it but are cut elsewhere, unless a local backup leads them back to it. What a link
 * needs for a failure is the bandwidth of the backups put to use less the bandwidth freed. Since
 * only one failure happens at a time, the link reserves the largest need over all failures, not
 * their sum: that is how backups share bandwidth.
 */
final class BackupBandwidth {
    private final Collection<Lsp> lsps;
    private final List<Backup> backups;
    private final List<List<List<String>>> failures = new ArrayList<>(); // links that fail together

    BackupBandwidth(Network network, Collection<Lsp> lsps, List<Backup> backups) {
        this.lsps = lsps;
        this.backups = backups;
        List<List<String>> links = network.links().stream().map(Network.Link::ends).toList();
        links.forEach(link -> failures.add(List.of(link)));
        for (String node : network.nodes().keySet()) {
            failures.add(links.stream().filter(link -> link.get(1).equals(node)).toList());
        }
    }

    /** What backups of a class reserve on a link, beside the LSPs, in Mbit/s. */
    double reserved(List<String> link, int classType) {
        Map<List<String>, Double> needs = needs(link, classType);
        double reserved = 0;
        for (List<List<String>> failure : failures) {
            double need = 0;
            for (List<String> failed : failure) {
                need += needs.getOrDefault(failed, 0.0);
            }
            reserved = Math.max(reserved, need);
        }
        return reserved;
    }

    /** What a link needs for the failure of each other link; below 0 when bandwidth is freed. */
    private Map<List<String>, Double> needs(List<String> link, int classType) {
        Map<List<String>, Double> needs = new HashMap<>();
        for (Backup backup : backups) {
            double bandwidth = backup.lsp().demand().bandwidth();
            if (backup.lsp().demand().classType() == classType) {
                for (List<String> failed : backup.protectedLinks()) {
                    double uses = Network.hops(backup.path()).contains(link) ? bandwidth : 0;
                    double keeps = backup.stillUses(link) ? bandwidth : 0;
                    needs.merge(failed, uses + keeps, Double::sum);
                }
            }
        }
        for (Lsp lsp : lsps) {
            List<List<String>> hops = Network.hops(lsp.path());
            if (lsp.demand().classType() == classType && hops.contains(link)) {
                double freed = lsp.demand().bandwidth();
                hops.forEach(failed -> needs.merge(failed, -freed, Double::sum));
            }
        }
        return needs;
    }

    /** What the backups would reserve on all links together if none shared, in Mbit/s. */
    double unshared() {
        double sum = 0;
        for (Backup backup : backups) {
            sum += backup.lsp().demand().bandwidth() * (backup.path().size() - 1);
        }
        return sum;
    }
}
