package org.kestro.examples;

import java.io.PrintStream;
import java.text.DecimalFormat;
import java.text.DecimalFormatSymbols;
import java.util.Collection;
import java.util.HashMap;
import java.util.List;
import java.util.Locale;
import java.util.Map;
import java.util.stream.Collectors;

import org.kestro.examples.Placement.Lsp;

/** Prints what became of the demands and of their protection. All bandwidths are in Mbit/s. */
final class Report {
    private final PrintStream out;
    private final Network network;

    Report(PrintStream out, Network network) {
        this.out = out;
        this.network = network;
    }

    /** One line per demand: where it went and whom it pushed aside, or why it was refused. */
    void outcome(Placement.Outcome outcome) {
        if (outcome instanceof Placement.Placed placed) {
            line("%s  %s", describe(placed.lsp().demand()),
                 String.join(" > ", placed.lsp().path()));
            for (Lsp lost : placed.preempted()) {
                Demand demand = lost.demand();
                line("          preempts %d (%s, %s) from %s to %s", demand.id(), kind(demand),
                     mbits(demand.bandwidth()), demand.ingress(), demand.egress());
            }
        } else if (outcome instanceof Placement.Refused refused) {
            line("%s  REFUSED from %s to %s: %s", describe(refused.demand()),
                 refused.demand().ingress(), refused.demand().egress(), refused.reason());
        }
    }

    private String describe(Demand demand) {
        return format("%6d  %-20s %7s", demand.id(), kind(demand), mbits(demand.bandwidth()));
    }

    private String kind(Demand demand) {
        return network.classes().get(demand.classType()) + "/"
                + network.levels().get(demand.level());
    }

    /** One line per LSP and backup: what it protects and where it goes, or why there is none. */
    void protections(List<Placement.Protection> protections) {
        line("%nProtection");
        List<String> levels = network.levels();
        for (int level = 0; level < levels.size(); level++) {
            line("  %-10s %s", levels.get(level), level < Placement.LEVELS_WITH_LOCAL_BACKUPS
                 ? "a local backup for each link of the path" : "a global backup for the path");
        }
        protections.forEach(this::protection);
    }

    private void protection(Placement.Protection protection) {
        String lsp = describe(protection.lsp().demand());
        if (protection.backups().isEmpty()) {
            line("%s  UNPROTECTED: %s", lsp, protection.reason());
            return;
        }
        line("%s  %s", lsp, String.join(" > ", protection.lsp().path()));
        for (Backup backup : protection.backups()) {
            line("          %d for %s: %s", backup.id(), element(backup),
                 String.join(" > ", backup.path()));
        }
    }

    /** What a backup protects. */
    private static String element(Backup backup) {
        List<List<String>> links = backup.protectedLinks();
        List<String> first = links.get(0);
        if (links.size() == 1) {
            return "link " + String.join(" > ", first)
                    + (backup.avoidsNodes() ? " and node " + first.get(1) : "");
        }
        return backup.avoidsNodes() ? "all links and nodes between" : "all links";
    }

    /** How much bandwidth the backups reserve, and would reserve without sharing. */
    void sharing(BackupBandwidth bandwidth) {
        double shared = 0;
        for (Network.Link link : network.links()) {
            for (int oa = 0; oa < network.classes().size(); oa++) {
                shared += bandwidth.reserved(link.ends(), oa);
            }
        }
        double unshared = bandwidth.unshared();
        line("%nBackups reserve %s Mbit/s on all links together; without sharing it would be "
             + "%s (%.0f%% saved)", mbits(shared), mbits(unshared),
             unshared > 0 ? 100 * (1 - shared / unshared) : 0);
    }

    /** One table per class: what each link can carry, what it carries at each level and keeps. */
    void links(Collection<Lsp> inPlace, BackupBandwidth backups) {
        for (int oa = 0; oa < network.classes().size(); oa++) {
            line("%nLinks, class %s (Mbit/s)", network.classes().get(oa));
            String levels = network.levels().stream().map(name -> format("%9s", name))
                                   .collect(Collectors.joining());
            line("  %4s  %-13s %-13s %9s%s %9s %9s %6s", "id", "from", "to", "capacity", levels,
                 "backups", "reserved", "used");
            Map<List<String>, double[]> reserved = reservations(inPlace, oa);
            for (Network.Link link : network.links()) {
                linkRow(link, link.capacity()[oa], reserved.get(link.ends()),
                        backups.reserved(link.ends(), oa));
            }
        }
    }

    private void linkRow(Network.Link link, double capacity, double[] reserved, double backups) {
        StringBuilder levels = new StringBuilder();
        double total = backups;
        for (double atLevel : reserved) {
            levels.append(format("%9s", mbits(atLevel)));
            total += atLevel;
        }
        double utilisation = capacity > 0 ? 100 * total / capacity : 0;
        line("  %4d  %-13s %-13s %9s%s %9s %9s %5.1f%%", link.id(), link.from(), link.to(),
             mbits(capacity), levels, mbits(backups), mbits(total), utilisation);
    }

    /** Bandwidth of the LSPs in one class, per link (named by its two ends) and level. */
    private Map<List<String>, double[]> reservations(Collection<Lsp> inPlace, int classType) {
        Map<List<String>, double[]> reserved = new HashMap<>();
        for (Network.Link link : network.links()) {
            reserved.put(link.ends(), new double[network.levels().size()]);
        }
        for (Lsp lsp : inPlace) {
            Demand demand = lsp.demand();
            if (demand.classType() == classType) {
                for (List<String> hop : Network.hops(lsp.path())) {
                    reserved.get(hop)[demand.level()] += demand.bandwidth();
                }
            }
        }
        return reserved;
    }

    /** How many demands of each level got through and are protected, and their bandwidth. */
    void summary(List<Placement.Outcome> outcomes, List<Placement.Protection> protections) {
        line("%nSummary%n  %-10s %8s %8s %10s %9s %10s %16s", "level", "demands", "refused",
             "preempted", "in place", "protected", "Mbit/s in place");
        for (int level = 0; level < network.levels().size(); level++) {
            int demands = 0;
            int refused = 0;
            for (Placement.Outcome outcome : outcomes) {
                boolean refusal = outcome instanceof Placement.Refused;
                if (demand(outcome).level() == level) {
                    demands++;
                    refused += refusal ? 1 : 0;
                }
            }
            int carried = 0;
            int safe = 0;
            double bandwidth = 0;
            for (Placement.Protection protection : protections) {
                if (protection.lsp().demand().level() == level) {
                    carried++;
                    safe += protection.backups().isEmpty() ? 0 : 1;
                    bandwidth += protection.lsp().demand().bandwidth();
                }
            }
            line("  %-10s %8d %8d %10d %9d %10d %16s", network.levels().get(level), demands,
                 refused, demands - refused - carried, carried, safe, mbits(bandwidth));
        }
    }

    private static Demand demand(Placement.Outcome outcome) {
        return outcome instanceof Placement.Placed placed ? placed.lsp().demand()
                : ((Placement.Refused) outcome).demand();
    }

    void line(String format, Object... arguments) {
        out.println(format(format, arguments));
    }

    /** A bandwidth, with at most two decimals and none when it is whole. */
    private static String mbits(double bandwidth) {
        return new DecimalFormat("0.##", DecimalFormatSymbols.getInstance(Locale.ROOT))
                .format(bandwidth);
    }

    private static String format(String format, Object... arguments) {
        return String.format(Locale.ROOT, format, arguments);
    }
}
